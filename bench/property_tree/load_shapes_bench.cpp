// Loading property-tree documents of three shapes at 1x, 2x and 4x their base
// size. Loading is linear when the time per document grows with the size
// factor, i.e. when the bytes per second stay the same across the three
// sizes of one shape.
//   interleaved: one property whose 40,000 values alternate with 40,000
//                other properties;
//   pairs:       20,000 properties of two values each, every first value
//                before every second one;
//   flat:        80,000 properties of one value each.
// Each also reports the page faults per load ("faults"): memory the heap has
// handed back to the system between loads faults in again, page by page, and
// at the larger sizes that can cost more than the parsing.
// Every size runs for at least two seconds, so that a 4x document is loaded
// several times and its figure is not one cold iteration.
#include <sys/resource.h>
#include <map>
#include <string>
#include <utility>
#include <benchmark/benchmark.h>
#include <fs_property_tree.h>

namespace {

constexpr int kInterleavedBase = 40000;
constexpr int kPairsBase = 20000;
constexpr int kFlatBase = 80000;

std::string interleaved(int n) {
  std::string text = "<root><a type=\"int\" count=\"" + std::to_string(n) + "\">0</a>";
  for (int i = 0; i < n; ++i) {
    text += "<b" + std::to_string(i) + ">x</b" + std::to_string(i) + ">";
    if (i + 1 < n) text += "<a>" + std::to_string(i + 1) + "</a>";
  }
  return text + "</root>";
}

std::string pairs(int n) {
  std::string text = "<root>";
  for (int i = 0; i < n; ++i)
    text += "<p" + std::to_string(i) + " type=\"int\" count=\"2\">1</p" + std::to_string(i) + ">";
  for (int i = 0; i < n; ++i) text += "<p" + std::to_string(i) + ">2</p" + std::to_string(i) + ">";
  return text + "</root>";
}

std::string flat(int n) {
  std::string text = "<root>";
  for (int i = 0; i < n; ++i)
    text += "<p" + std::to_string(i) + " type=\"int\">" + std::to_string(i) + "</p" +
            std::to_string(i) + ">";
  return text + "</root>";
}

// One document per shape and size, built on first use.
std::string const& document(std::string (*shape)(int), int base, int factor) {
  static std::map<std::pair<std::string (*)(int), int>, std::string> cache;
  auto key = std::make_pair(shape, base * factor);
  auto it = cache.find(key);
  if (it == cache.end()) it = cache.emplace(key, shape(base * factor)).first;
  return it->second;
}

long minor_faults() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_minflt;
}

void load(benchmark::State& state, std::string const& text) {
  long const faults_before = minor_faults();
  for (auto _ : state) {
    fs_property_tree_ptr tree = fs_property_tree_load_utf8(text.c_str());
    benchmark::DoNotOptimize(tree.get());
  }
  long const faults = minor_faults() - faults_before;
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
  state.counters["doc_bytes"] = static_cast<double>(text.size());
  state.counters["faults"] =
      benchmark::Counter(static_cast<double>(faults), benchmark::Counter::kAvgIterations);
}

void BM_LoadInterleaved(benchmark::State& state) {
  load(state, document(interleaved, kInterleavedBase, static_cast<int>(state.range(0))));
}
void BM_LoadPairs(benchmark::State& state) {
  load(state, document(pairs, kPairsBase, static_cast<int>(state.range(0))));
}
void BM_LoadFlat(benchmark::State& state) {
  load(state, document(flat, kFlatBase, static_cast<int>(state.range(0))));
}

constexpr double kMinSeconds = 2.0;
BENCHMARK(BM_LoadInterleaved)->Arg(1)->Arg(2)->Arg(4)->MinTime(kMinSeconds)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadPairs)->Arg(1)->Arg(2)->Arg(4)->MinTime(kMinSeconds)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadFlat)->Arg(1)->Arg(2)->Arg(4)->MinTime(kMinSeconds)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
