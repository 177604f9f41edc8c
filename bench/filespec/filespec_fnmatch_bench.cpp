// FS_CompareFileSpec against the C library's fnmatch on the same corpus of
// real file names, gathered at start-up from the machine's own directories.
// Case-sensitive matching is set against fnmatch flags 0, case-insensitive
// against FNM_CASEFOLD. Before timing, the two match counts of every pattern
// are compared and the first names on which they differ are printed.
//
// To time a change against an earlier build of the layer in the same run,
// point QB_FILESPEC_BASELINE at that build's libqbfsys.so: its
// FS_CompareFileSpec is then timed too ("by_baseline"). With
// --benchmark_enable_random_interleaving=true the repetitions of all three
// are spread over the same stretch of time, which keeps a busy machine from
// favouring one of them.
#include <qbfsys/fs_filespec.h>

#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <fnmatch.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace {

constexpr std::size_t kMaxNames = 300000;
char const* const kPatterns[] = {"*.h",     "*.so*",   "lib*",    "*a*b*c*",
                                 "???.txt", "*_*_*.h", "README*", "*test*"};
constexpr int kPatternCount = sizeof(kPatterns) / sizeof(kPatterns[0]);

struct Corpus {
  std::vector<std::string> narrow;
  std::vector<std::wstring> wide;  // byte for byte, with the terminator counted
};

std::wstring widen(std::string const& s) {
  std::wstring w;
  for (unsigned char c : s) w += static_cast<wchar_t>(c);
  return w + L'\0';
}

Corpus const& corpus() {
  static Corpus const c = [] {
    Corpus out;
    namespace fs = std::filesystem;
    for (char const* root : {"/usr/include", "/usr/share/doc", "/usr/lib", "/usr/share"}) {
      std::error_code ec;
      fs::recursive_directory_iterator it(root, fs::directory_options::skip_permission_denied, ec);
      for (; !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
        if (out.narrow.size() >= kMaxNames) break;
        out.narrow.push_back(it->path().filename().string());
        out.wide.push_back(widen(out.narrow.back()));
      }
    }
    return out;
  }();
  return c;
}

using CompareFn = int (*)(wchar_t*, short, wchar_t*, short, int, int, int) noexcept;

// FS_CompareFileSpec of the baseline build, or null when none was named.
CompareFn baseline() {
  static CompareFn const fn = []() -> CompareFn {
    char const* path = std::getenv("QB_FILESPEC_BASELINE");
    if (path == nullptr || *path == '\0') return nullptr;
    // Kept open for the whole run. Deep binding keeps the second copy of the
    // layer on its own globals instead of sharing those of the linked one.
    void* lib = dlopen(path, RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
    // The exported name of FS_CompareFileSpec as the compiler encodes it.
    void* sym = lib != nullptr ? dlsym(lib, "_Z18FS_CompareFileSpecPwsS_siii") : nullptr;
    if (sym == nullptr) {
      std::fprintf(stderr, "baseline %s not usable: %s\n", path, dlerror());
      return nullptr;
    }
    return reinterpret_cast<CompareFn>(sym);
  }();
  return fn;
}

bool fs_match(CompareFn compare, std::wstring& name, std::wstring& spec, bool caseSensitive) {
  return compare(&name[0], static_cast<short>(name.size()), &spec[0],
                 static_cast<short>(spec.size()), caseSensitive ? 1 : 0, 0, 0) == FS_SPEC_MATCH;
}

void report_differences() {
  Corpus c = corpus();
  std::printf("corpus: %zu file names\n", c.narrow.size());
  for (bool cs : {true, false}) {
    for (char const* p : kPatterns) {
      std::wstring spec = widen(p);
      long ours = 0, theirs = 0, before = 0;
      int shown = 0;
      for (std::size_t i = 0; i < c.narrow.size(); ++i) {
        bool const a = fs_match(FS_CompareFileSpec, c.wide[i], spec, cs);
        bool const b = fnmatch(p, c.narrow[i].c_str(), cs ? 0 : FNM_CASEFOLD) == 0;
        bool const old = baseline() != nullptr ? fs_match(baseline(), c.wide[i], spec, cs) : a;
        ours += a;
        theirs += b;
        before += old;
        if ((a != b || a != old) && shown++ < 5) {
          std::printf("  differs: %-10s %s FS=%d fnmatch=%d baseline=%d\n", p,
                      c.narrow[i].c_str(), a, b, old);
        }
      }
      std::printf("%-16s %-10s FS_CompareFileSpec %7ld  fnmatch %7ld",
                  cs ? "case-sensitive" : "case-folded", p, ours, theirs);
      if (baseline() != nullptr) std::printf("  baseline %7ld", before);
      std::printf("\n");
    }
  }
}

void time_compare(benchmark::State& state, CompareFn compare) {
  Corpus c = corpus();
  std::wstring spec = widen(kPatterns[state.range(0)]);
  bool const cs = state.range(1) != 0;
  long matched = 0;
  for (auto _ : state) {
    for (auto& n : c.wide) matched += fs_match(compare, n, spec, cs);
  }
  benchmark::DoNotOptimize(matched);
  state.SetLabel(kPatterns[state.range(0)]);
  state.counters["per_call"] = benchmark::Counter(
      static_cast<double>(c.wide.size()),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void by_fs(benchmark::State& state) { time_compare(state, FS_CompareFileSpec); }

void by_baseline(benchmark::State& state) { time_compare(state, baseline()); }

void by_fnmatch(benchmark::State& state) {
  Corpus const& c = corpus();
  char const* p = kPatterns[state.range(0)];
  int const flags = state.range(1) != 0 ? 0 : FNM_CASEFOLD;
  long matched = 0;
  for (auto _ : state) {
    for (auto& n : c.narrow) matched += fnmatch(p, n.c_str(), flags) == 0;
  }
  benchmark::DoNotOptimize(matched);
  state.SetLabel(p);
  state.counters["per_call"] = benchmark::Counter(
      static_cast<double>(c.narrow.size()),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void patterns(benchmark::internal::Benchmark* b) {
  for (int cs : {1, 0}) {
    for (int p = 0; p < kPatternCount; ++p) b->Args({p, cs});
  }
  b->ArgNames({"pattern", "case_sensitive"})->Unit(benchmark::kMillisecond);
}
BENCHMARK(by_fs)->Apply(patterns);
BENCHMARK(by_fnmatch)->Apply(patterns);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (baseline() != nullptr) {
    benchmark::RegisterBenchmark("by_baseline", by_baseline)->Apply(patterns);
  }
  report_differences();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
