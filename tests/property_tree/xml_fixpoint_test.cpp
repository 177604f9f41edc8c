// Whatever loads can be written, written text loads back to an equal tree and
// writes again to the same text, the text is well-formed, and loading takes
// time linear in the document.
#include <algorithm>
#include <chrono>
#include <gtest/gtest.h>
#include "pt_test_util.h"

namespace {

struct fixpoint_case {
  char const* label;
  std::string xml;
};
std::ostream& operator<<(std::ostream& os, fixpoint_case const& c) { return os << c.label; }

class Fixpoint : public ::testing::TestWithParam<fixpoint_case> {};

TEST_P(Fixpoint, WriteLoadWriteGivesTheSameTextAndTree) {
  fs_property_tree_ptr first = fs_property_tree_load_utf8(GetParam().xml.c_str());
  std::string text = first->serialize_utf8txt();
  fs_property_tree_ptr second = fs_property_tree_load_utf8(text.c_str());
  EXPECT_EQ(pt_test::tree_difference(*first, *second), "");
  EXPECT_EQ(second->serialize_utf8txt(), text);
}

fixpoint_case const fixpoint_cases[] = {
    {"mixed content", "<r><x type=\"xml\">t<b/>u</x></r>"},
    {"mixed content below elements", "<r><x type=\"xml\"><p>a<i>b</i> c</p><q/></x></r>"},
    {"mixed content in a nested tree",
     "<r><t><x type=\"xml\" count=\"2\">1<b/></x><x>2<c/>3</x></t></r>"},
    {"xml value nested beyond the tree limit",
     "<r><x type=\"xml\">" + pt_test::nested(static_cast<int>(fs_property_tree_max_depth) + 40) +
         "</x></r>"},
    {"blank-only string", "<r><s>&#32;&#9;</s></r>"},
    // These passed before as well; they guard the printer's CDATA and
    // escaping paths.
    {"CDATA beside an element", "<r><x type=\"xml\"><![CDATA[<&>]]><b/></x></r>"},
    {"carriage return", "<r><s>a&#13;&#10;b</s><x type=\"xml\"><p a='&#13;&#9;'/></x></r>"},
    {"quotes in attribute values", "<r><x type=\"xml\"><p a='\"' b=\"'\"/></x></r>"},
};
INSTANTIATE_TEST_SUITE_P(Documents, Fixpoint, ::testing::ValuesIn(fixpoint_cases));

// Characters XML cannot carry are written as U+FFFD, so the text stays
// well-formed and loads.
TEST(XmlWriting, ControlCharactersAreNotWrittenRaw) {
  fs_property_tree_ptr tree = fs_property_tree_create("r");
  tree->add_str_property("s", L"a\x01" L"b\x1f\xffff");
  std::string text = tree->serialize_utf8txt();
  for (char c : text)
    EXPECT_FALSE(static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n') << int(c);
  fs_property_tree_ptr back = fs_property_tree_load_utf8(text.c_str());
  EXPECT_EQ(std::wstring(back->at(0).at(0).get_str_val()), L"a\xfffd" L"b\xfffd\xfffd");
}

double load_seconds(std::string const& text) {
  double best = 1e9;
  for (int run = 0; run < 3; ++run) {
    auto start = std::chrono::steady_clock::now();
    fs_property_tree_ptr tree = fs_property_tree_load_utf8(text.c_str());
    std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    best = std::min(best, took.count());
  }
  return best;
}

// One property of n values and n - 1 other properties; the values alternate
// with the others, or come one after another.
std::string interleaved(int n, bool scattered) {
  std::string values, others;
  for (int i = 1; i < n; ++i) {
    std::string other = "<b" + std::to_string(i) + "/>";
    if (scattered) values += other;
    else others += other;
    values += "<a>1</a>";
  }
  return "<r><a type=\"int\" count=\"" + std::to_string(n) + "\">0</a>" + values + others + "</r>";
}

// n properties of two values each: every first value before every second
// one, or each property's two values together.
std::string pairs(int n, bool scattered) {
  std::string firsts, seconds;
  for (int i = 0; i < n; ++i) {
    std::string name = "p" + std::to_string(i);
    std::string first = "<" + name + " count=\"2\">1</" + name + ">";
    std::string second = "<" + name + ">2</" + name + ">";
    if (scattered) firsts += first, seconds += second;
    else firsts += first + second;
  }
  return "<r>" + firsts + seconds + "</r>";
}

// The same elements make the same tree with the same work wherever a
// property's values stand; a load that walks the siblings again for every
// value needs time growing with the square of the distance between them.
// Comparing the two arrangements of one size keeps the machine's speed and
// caches out of the comparison.
TEST(XmlLoadTime, ScatteredValuesLoadAsFastAsAdjacentOnes) {
  constexpr int kElements = 16000;
  constexpr double kMostRatio = 5.0;
  for (auto shape : {interleaved, pairs}) {
    double adjacent = load_seconds(shape(kElements, false));
    double scattered = load_seconds(shape(kElements, true));
    EXPECT_LT(scattered, kMostRatio * adjacent) << scattered << " s against " << adjacent << " s";
  }
}

}  // namespace
