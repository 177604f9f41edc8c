// Loading and serializing a property tree document of about 20,000
// properties (mixed kinds, three levels of nesting), against
// Boost.PropertyTree's read_xml/write_xml on the same text and against bare
// RapidXML parsing and printing (the floor, since the tree is built on it).
// Every benchmark reports the document's bytes per second.
#include <cstring>
#include <random>
#include <sstream>
#include <string>
#include <vector>
#include <benchmark/benchmark.h>
#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <rapidxml/rapidxml.hpp>
#include <rapidxml/rapidxml_print.hpp>
#include <fs_property_tree.h>

namespace {

void add_leaf(fs_property_tree& t, std::string const& name, std::mt19937& rng) {
  char const* n = name.c_str();
  int values = 1 + static_cast<int>(rng() % 3);
  fs_property_tree_property* p = nullptr;
  switch (rng() % 10) {
    case 0: p = &t.add_str_property(n); for (int i = 0; i < values; ++i) p->append_new_str_value(L"some text \x00e9 & more"); break;
    case 1: p = &t.add_lng_property(n); for (int i = 0; i < values; ++i) p->append_new_lng_value(static_cast<long>(rng())); break;
    case 2: p = &t.add_dbl_property(n); for (int i = 0; i < values; ++i) p->append_new_dbl_value(rng() / 7.0); break;
    case 3: p = &t.add_uint64_property(n); for (int i = 0; i < values; ++i) p->append_new_uint64_value(rng() * 977ULL); break;
    case 4: p = &t.add_bool_property(n); for (int i = 0; i < values; ++i) p->append_new_bool_value(rng() % 2 == 0); break;
    case 5: {
      p = &t.add_guid_property(n);
      _SSGUID g{static_cast<unsigned>(rng()), 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}};
      for (int i = 0; i < values; ++i) p->append_new_guid_value(g);
      break;
    }
    case 6: {
      p = &t.add_bin_property(n);
      unsigned char bytes[48];
      for (auto& b : bytes) b = static_cast<unsigned char>(rng());
      for (int i = 0; i < values; ++i) p->append_new_bin_value(sizeof bytes, bytes);
      break;
    }
    case 7: p = &t.add_int32_property(n); for (int i = 0; i < values; ++i) p->append_new_int32_value(static_cast<int>(rng() % 100000)); break;
    case 8: p = &t.add_flt_property(n); for (int i = 0; i < values; ++i) p->append_new_flt_value(static_cast<float>(rng() % 1000) / 8.0f); break;
    default: p = &t.add_xml_property(n); p->append_new_str_value(L"<item id=\"7\">x</item>"); break;
  }
}

// 20 x 10 nested trees holding 100 leaf properties each: 20,000 leaves.
std::string const& document() {
  static std::string const text = [] {
    std::mt19937 rng(12345);
    fs_property_tree_ptr root = fs_property_tree_create("inventory");
    for (int a = 0; a < 20; ++a) {
      fs_property_tree& level1 =
          root->add_sub_tree_property(("volume" + std::to_string(a)).c_str()).append_new_sub_tree();
      for (int b = 0; b < 10; ++b) {
        fs_property_tree& level2 =
            level1.add_sub_tree_property(("dir" + std::to_string(b)).c_str()).append_new_sub_tree();
        for (int c = 0; c < 100; ++c) add_leaf(level2, "p" + std::to_string(c), rng);
      }
    }
    return root->serialize_utf8txt();
  }();
  return text;
}

void BM_TreeLoad(benchmark::State& state) {
  std::string const& text = document();
  for (auto _ : state) {
    fs_property_tree_ptr tree = fs_property_tree_load_utf8(text.c_str());
    benchmark::DoNotOptimize(tree.get());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void BM_TreeSerialize(benchmark::State& state) {
  std::string const& text = document();
  fs_property_tree_ptr tree = fs_property_tree_load_utf8(text.c_str());
  for (auto _ : state) {
    std::string out = tree->serialize_utf8txt();
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void BM_PtreeReadXml(benchmark::State& state) {
  std::string const& text = document();
  for (auto _ : state) {
    std::istringstream in(text);
    boost::property_tree::ptree tree;
    boost::property_tree::read_xml(in, tree);
    benchmark::DoNotOptimize(&tree);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void BM_PtreeWriteXml(benchmark::State& state) {
  std::string const& text = document();
  std::istringstream in(text);
  boost::property_tree::ptree tree;
  boost::property_tree::read_xml(in, tree);
  for (auto _ : state) {
    std::ostringstream out;
    boost::property_tree::write_xml(out, tree);
    benchmark::DoNotOptimize(out.tellp());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

// The parser's own work on a private copy, as the tree's load does.
void BM_RapidxmlParse(benchmark::State& state) {
  std::string const& text = document();
  for (auto _ : state) {
    std::vector<char> buffer(text.c_str(), text.c_str() + text.size() + 1);
    rapidxml::xml_document<char> doc;
    doc.parse<0>(buffer.data());
    benchmark::DoNotOptimize(doc.first_node());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void BM_RapidxmlPrint(benchmark::State& state) {
  std::string const& text = document();
  std::vector<char> buffer(text.c_str(), text.c_str() + text.size() + 1);
  rapidxml::xml_document<char> doc;
  doc.parse<0>(buffer.data());
  for (auto _ : state) {
    std::string out;
    rapidxml::print(std::back_inserter(out), doc, 0);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

BENCHMARK(BM_TreeLoad)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PtreeReadXml)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RapidxmlParse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TreeSerialize)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PtreeWriteXml)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RapidxmlPrint)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
