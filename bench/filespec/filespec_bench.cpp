// Matches per second of FS_CompareFileSpec on the kind of names an exclusion
// walk meets, and its cost on the worst inputs (long almost-matching
// segments, thousands of stars).
#include <qbfsys/fs_filespec.h>

#include <benchmark/benchmark.h>

#include <climits>
#include <random>
#include <string>
#include <vector>

namespace {

// A mix of document, temporary, lock, database and cache names, some of them
// full paths with backslashes.
std::vector<std::wstring> make_names(bool paths) {
  static wchar_t const* const stems[] = {L"report", L"budget_2023", L"IMG_", L"data", L"thumbs",
                                         L"setup", L"f_", L"notes", L"~$budget", L"index"};
  static wchar_t const* const exts[] = {L".docx", L".tmp", L".db", L".xlsx", L".jpg",
                                        L"", L".log", L".TMP", L".bin", L".dat"};
  static wchar_t const* const dirs[] = {L"C:\\Users\\alice\\Documents\\",
                                        L"C:\\Users\\bob\\AppData\\Local\\cache\\",
                                        L"D:\\projects\\build\\obj\\", L"C:\\Temp\\spool\\"};
  std::mt19937 rng(7);
  std::vector<std::wstring> out;
  for (int i = 0; i < 1024; ++i) {
    std::wstring n = paths ? dirs[rng() % 4] : L"";
    n += stems[rng() % 10];
    if (rng() % 2) n += std::to_wstring(rng() % 100);
    n += exts[rng() % 10];
    out.push_back(n + L'\0');
  }
  return out;
}

void run(benchmark::State& state, wchar_t const* specText, bool paths, int cs) {
  std::vector<std::wstring> names = make_names(paths);
  std::wstring spec = std::wstring(specText) + L'\0';
  long matched = 0;
  for (auto _ : state) {
    for (auto& n : names) {
      matched += FS_CompareFileSpec(&n[0], static_cast<short>(n.size()), &spec[0],
                                    static_cast<short>(spec.size()), cs, 0, 0) == FS_SPEC_MATCH;
    }
  }
  benchmark::DoNotOptimize(matched);
  state.SetItemsProcessed(state.iterations() * static_cast<long>(names.size()));
  state.counters["match_ratio"] =
      static_cast<double>(matched) / static_cast<double>(state.iterations() * names.size());
}

BENCHMARK_CAPTURE(run, star_tmp, L"*.tmp", false, 0);
BENCHMARK_CAPTURE(run, tilde_star, L"~*", false, 0);
BENCHMARK_CAPTURE(run, data_qq_db, L"data??.db", false, 0);
BENCHMARK_CAPTURE(run, star_dot_star, L"*.*", false, 0);
BENCHMARK_CAPTURE(run, star_dot, L"*.", false, 0);
BENCHMARK_CAPTURE(run, exact_case_sensitive, L"thumbs.db", false, 1);
BENCHMARK_CAPTURE(run, path_star_tmp, L"*.tmp", true, 0);
BENCHMARK_CAPTURE(run, path_cache, L"*\\cache\\*", true, 0);
BENCHMARK_CAPTURE(run, path_cache_case_sensitive, L"*\\cache\\*", true, 1);
BENCHMARK_CAPTURE(run, path_two_segments, L"C:\\Users\\*\\AppData\\*.db", true, 0);

// Longest name against "*a...ab*": the floating segment is compared at every
// position, so the cost grows with the product of the two lengths. (A
// segment ending the specification, "*a...ab", is compared only where the
// name ends.)
void worst_segment(benchmark::State& state) {
  std::wstring name(SHRT_MAX - 1, L'a');
  name += L'\0';
  std::wstring spec = L"*" + std::wstring(static_cast<size_t>(state.range(0)), L'a') + L"b*";
  spec += L'\0';
  for (auto _ : state) {
    benchmark::DoNotOptimize(FS_CompareFileSpec(&name[0], static_cast<short>(name.size()),
                                                &spec[0], static_cast<short>(spec.size()), 0, 0, 0));
  }
}
BENCHMARK(worst_segment)->Arg(16)->Arg(256)->Arg(4096)->Arg(16000)->Unit(benchmark::kMillisecond);

// Thousands of stars: every star costs one step, never a backtrack.
void many_stars(benchmark::State& state) {
  std::wstring name(SHRT_MAX - 1, L'a');
  name += L'\0';
  std::wstring spec;
  while (spec.size() + 3 < SHRT_MAX) spec += L"*a";
  spec += L'b';
  for (auto _ : state) {
    benchmark::DoNotOptimize(FS_CompareFileSpec(&name[0], static_cast<short>(name.size()),
                                                &spec[0], static_cast<short>(spec.size()), 0, 0, 0));
  }
}
BENCHMARK(many_stars)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
