// The cost per object of finding its exclusion reason among 10, 100 and
// 1,000 patterns, through the layer's index (DLE_GetExcludeReason) and by the
// plain walk over the list, on the paths of this machine's files.
//
// The patterns are what exclusion lists hold: the usual temporary, build and
// cache rules first, then extensions, directory names, name prefixes and
// subtrees taken from the same file names, so that many of them hit. Before
// anything is timed, both ways are run over every path and must agree.
#include <ftw.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <qbfsys/qbfsys.h>

namespace {

constexpr std::size_t kMostPaths = 200000;
constexpr char const* kRoots[] = {"/usr/include", "/usr/share/doc", "/usr/lib", "/etc"};
constexpr int kSizes[] = {10, 100, 1000};

std::vector<std::wstring> g_paths;  // component form, relative to "/", with terminator

int collect(char const* path, struct stat const*, int, struct FTW*) {
  std::wstring key;
  for (char const* p = path + 1; *p != '\0'; ++p)
    key.push_back(*p == '/' ? L'\0' : static_cast<wchar_t>(static_cast<unsigned char>(*p)));
  key.push_back(L'\0');
  if (key.size() * sizeof(wchar_t) < SHRT_MAX) g_paths.push_back(key);
  return g_paths.size() >= kMostPaths ? 1 : 0;
}


// Extensions, directory names and name prefixes of the collected paths.
// Each pattern made from them should exclude a few objects, not a large
// share of the tree: real lists leave most of a machine to be backed up.
struct Tokens {
  std::vector<std::wstring> extensions, directories, prefixes, subtrees;
};
constexpr std::size_t kMostCoveredShare = 5000;  // a token names at most 1/5000 of the paths
std::vector<std::wstring> by_count(std::map<std::wstring, int> const& counts) {
  std::vector<std::wstring> out;
  for (auto const& [token, n] : counts)
    if (static_cast<std::size_t>(n) * kMostCoveredShare <= g_paths.size()) out.push_back(token);
  return out;
}
Tokens tokens_of(std::vector<std::wstring> const& paths) {
  std::map<std::wstring, int> ext, dir, prefix, subtree;
  for (std::wstring const& path : paths) {
    std::size_t const last = path.find_last_of(L'\0', path.size() - 2);
    std::wstring const name = path.substr(last == std::wstring::npos ? 0 : last + 1);
    std::size_t const dot = name.find_last_of(L'.');
    if (dot != std::wstring::npos && dot > 0 && name.size() - dot < 8) ++ext[name.substr(dot, name.size() - dot - 1)];
    if (name.size() > 4) ++prefix[name.substr(0, 3)];
    for (std::size_t start = 0, end; (end = path.find(L'\0', start)) < last && last != std::wstring::npos; start = end + 1) {
      ++dir[path.substr(start, end - start)];
      if (start > 0) ++subtree[path.substr(0, end)];
    }
  }
  return {by_count(ext), by_count(dir), by_count(prefix), by_count(subtree)};
}

std::vector<std::wstring> make_patterns(Tokens const& t) {
  std::vector<std::wstring> out = {L"**.tmp", L"**.o", L"**~", L"**/cache/**", L"**/.git/**",
                                   L"**/node_modules/**", L"tmp/*", L"**/core", L"**.swp",
                                   L"**/~*"};
  std::mt19937 rng(1123);
  auto pick = [&](std::vector<std::wstring> const& from) { return from[rng() % from.size()]; };
  while (out.size() < 1000) {
    std::wstring p;
    switch (rng() % 10) {
      case 0: case 1: case 2: case 3: p = L"**" + pick(t.extensions); break;
      case 4: case 5: p = L"**/" + pick(t.directories) + L"/**"; break;
      case 6: p = L"**/" + pick(t.prefixes) + L"*"; break;
      case 7: p = pick(t.subtrees) + L"/*"; break;
      case 8: p = L"**/" + pick(t.directories); break;
      default: p = pick(t.subtrees) + L"/*" + pick(t.extensions); break;
    }
    for (wchar_t& c : p) c = c == L'\0' ? L'/' : c;
    if (std::find(out.begin(), out.end(), p) == out.end()) out.push_back(p);
  }
  return out;
}

struct RuleSet {
  HEAD_DLE* head = nullptr;
  GENERIC_DLE* dle = nullptr;
  std::vector<std::pair<std::wstring, std::uint32_t>> patterns;  // component form
};
std::map<int, RuleSet> g_sets;

std::uint32_t plain_walk(RuleSet& set, std::wstring& path) {
  for (auto& [pattern, reason] : set.patterns) {
    if (FS_CompareFileSpec(path.data(), static_cast<short>(path.size()), pattern.data(),
                           static_cast<short>(pattern.size()), 0, 0, 0) == FS_SPEC_MATCH)
      return reason;
  }
  return 0;
}

std::uint32_t indexed(RuleSet& set, std::wstring& path) {
  return DLE_GetExcludeReason(set.dle, path.data(), static_cast<short>(path.size() * sizeof(wchar_t)));
}

void setup() {
  for (char const* root : kRoots) nftw(root, collect, 32, FTW_PHYS);
  std::mt19937 rng(42);
  std::shuffle(g_paths.begin(), g_paths.end(), rng);
  std::vector<std::wstring> const all = make_patterns(tokens_of(g_paths));
  for (int size : kSizes) {
    RuleSet& set = g_sets[size];
    set.head = static_cast<HEAD_DLE*>(std::calloc(1, sizeof(HEAD_DLE)));
    InitQueue(&set.head->dle_q);
    InitQueue(&set.head->pdi_q);
    DLE_Create(set.head, nullptr, L"/", 7, 2, L'/', &set.dle);
    for (int i = 0; i < size; ++i) {
      auto const reason = static_cast<std::uint32_t>(i + 1);
      if (DLE_AddSpecObj(set.dle, all[i].c_str(), DLE_RULE_PATTERN, reason) != FS_SUCCESS) std::abort();
      std::wstring stored = all[i];
      for (wchar_t& c : stored) c = c == L'/' ? L'\0' : c;
      set.patterns.emplace_back(stored + L'\0', reason);
    }
    std::size_t excluded = 0;
    for (std::wstring& path : g_paths) {
      std::uint32_t const want = plain_walk(set, path);
      if (indexed(set, path) != want) {
        std::fprintf(stderr, "the index and the plain walk disagree with %d patterns\n", size);
        std::exit(1);
      }
      excluded += want != 0;
    }
    std::printf("%d patterns: %zu paths agree, %zu excluded\n", size, g_paths.size(), excluded);
  }
}

template <std::uint32_t (*Lookup)(RuleSet&, std::wstring&)>
void lookup(benchmark::State& state) {
  RuleSet& set = g_sets[static_cast<int>(state.range(0))];
  std::size_t next = 0;
  std::uint32_t sink = 0;
  for (auto _ : state) {
    sink ^= Lookup(set, g_paths[next]);
    next = next + 1 == g_paths.size() ? 0 : next + 1;
  }
  benchmark::DoNotOptimize(sink);
  state.SetItemsProcessed(state.iterations());
}

BENCHMARK_TEMPLATE(lookup, indexed)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK_TEMPLATE(lookup, plain_walk)->Arg(10)->Arg(100)->Arg(1000);

}  // namespace

int main(int argc, char** argv) {
  setup();
  if (g_paths.empty()) return 1;
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  for (auto& [size, set] : g_sets) {
    GEN_RemoveDLE(set.dle);
    FS_DeinitDleList(set.head);
  }
  return 0;
}
