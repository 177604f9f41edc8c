// FS_CompareFileSpec against hostile input, against an independent wildcard
// matcher on the inputs where the two must agree, and through the symbols
// that modules resolve in the real library.
#include <qbfsys/fs_filespec.h>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <climits>
#include <cwctype>
#include <random>
#include <string>
#include <vector>

#include "exact_wide.h"

using qbtest::ExactWide;

namespace {

int compare(std::wstring const& name, std::wstring const& spec, int flags, int cs = 0) {
  ExactWide n(name), s(spec);
  return FS_CompareFileSpec(n.get(), n.len(), s.get(), s.len(), cs, 0, flags);
}

TEST(CompareFileSpecHostile, NullAndNegativeCounts) {
  wchar_t name[] = L"abc", spec[] = L"*";
  for (int flags : {0, 1, 2, 4, 6, 8, -1, INT_MIN, INT_MAX}) {
    EXPECT_EQ(FS_CompareFileSpec(nullptr, 4, spec, 2, 0, 1, flags), FS_SPEC_NO_MATCH);
    EXPECT_EQ(FS_CompareFileSpec(name, 4, nullptr, 2, 0, 1, flags), FS_SPEC_NO_MATCH);
    EXPECT_EQ(FS_CompareFileSpec(name, -1, spec, 2, 0, 1, flags), FS_SPEC_NO_MATCH);
    EXPECT_EQ(FS_CompareFileSpec(name, 4, spec, SHRT_MIN, 0, 1, flags), FS_SPEC_NO_MATCH);
  }
}

// Longest counted strings; the engine runs without recursion, so thousands
// of segments cannot exhaust the stack, and no input makes it backtrack.
TEST(CompareFileSpecHostile, LongestStringsAndManyStars) {
  std::wstring const longA(SHRT_MAX - 1, L'a');
  std::wstring const name = longA + L'\0';
  std::wstring stars(SHRT_MAX - 1, L'*');
  std::wstring alternating;
  for (int i = 0; i < SHRT_MAX / 2 - 1; ++i) alternating += L"*a";
  for (int flags : {0, 2, 4, 6}) {
    EXPECT_EQ(compare(name, stars + L'\0', flags), FS_SPEC_MATCH) << flags;
    EXPECT_EQ(compare(name, alternating + L'\0', flags), FS_SPEC_MATCH) << flags;
    EXPECT_EQ(compare(name, alternating + L"b", flags), FS_SPEC_NO_MATCH) << flags;
    EXPECT_EQ(compare(std::wstring(SHRT_MAX - 1, L'b') + L'\0', alternating, flags),
              FS_SPEC_NO_MATCH) << flags;
  }
  EXPECT_EQ(compare(name, std::wstring(SHRT_MAX - 1, L'?') + L'\0', 0), FS_SPEC_MATCH);
  EXPECT_EQ(compare(name, std::wstring(SHRT_MAX, L'?'), 0), FS_SPEC_NO_MATCH);
  EXPECT_EQ(compare(name, longA + L'\0', FS_SPEC_LITERAL), FS_SPEC_MATCH);
  EXPECT_EQ(compare(name, std::wstring(SHRT_MAX, L'*'), FS_SPEC_STAY_CLASSIC), FS_SPEC_NO_MATCH);
  // The search is quadratic at worst: a long segment that almost matches everywhere.
  std::wstring const nearly = L"*" + std::wstring(500, L'a') + L"b";
  EXPECT_EQ(compare(std::wstring(8000, L'a') + L'\0', nearly + L'\0', 0), FS_SPEC_NO_MATCH);
}

// Textbook wildcard matching: '*' any run, '?' any one character.
bool glob(std::wstring const& n, std::wstring const& p, bool cs) {
  std::vector<std::vector<char>> m(n.size() + 1, std::vector<char>(p.size() + 1, 0));
  m[0][0] = 1;
  for (size_t j = 1; j <= p.size(); ++j) m[0][j] = p[j - 1] == L'*' && m[0][j - 1];
  for (size_t i = 1; i <= n.size(); ++i) {
    for (size_t j = 1; j <= p.size(); ++j) {
      wchar_t a = p[j - 1], b = n[i - 1];
      if (a == L'*') {
        m[i][j] = m[i - 1][j] || m[i][j - 1];
      } else {
        bool same = a == L'?' || a == b || (!cs && std::towlower(a) == std::towlower(b));
        m[i][j] = same && m[i - 1][j - 1];
      }
    }
  }
  return m[n.size()][p.size()];
}

// For single-component names of letters and digits, both modes are plain
// wildcard matching: the classic mode anchored at the start, the
// segment-search mode floating. One difference is by design: an empty name
// against a non-empty specification gives "name ended" (2) in the classic
// mode, even where the specification is all stars.
TEST(CompareFileSpecReference, AgreesWithTextbookMatching) {
  std::mt19937 rng(20240605);
  wchar_t const nameChars[] = L"abAB09";
  wchar_t const specChars[] = L"abAB09?*";
  auto draw = [&](wchar_t const* set, int setSize, int minLen, int maxLen) {
    std::wstring s(std::uniform_int_distribution<int>(minLen, maxLen)(rng), L' ');
    for (auto& c : s) c = set[std::uniform_int_distribution<int>(0, setSize - 1)(rng)];
    return s;
  };
  for (int round = 0; round < 20000; ++round) {
    std::wstring const n = draw(nameChars, 6, 0, 9), p = draw(specChars, 8, 0, 7);
    int const cs = round & 1;
    int const classic = n.empty() && !p.empty() ? FS_SPEC_NAME_ENDED : glob(n, p, cs) ? 1 : 0;
    EXPECT_EQ(compare(n + L'\0', p + L'\0', 0, cs), classic) << "classic " << round;
    EXPECT_EQ(compare(n + L'\0', p + L'\0', FS_SPEC_SEGMENT_SEARCH, cs), glob(n, L"*" + p, cs) ? 1 : 0)
        << "segment " << round;
  }
}

TEST(CompareFileSpecLibrary, ExportsOnlyTheInterface) {
  void* lib = dlopen(QB_TEST_MODULE_DIR "/libqbfsys.so", RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(lib, nullptr) << dlerror();
  auto cmp = reinterpret_cast<decltype(&FS_CompareFileSpec)>(
      dlsym(lib, "_Z18FS_CompareFileSpecPwsS_siii"));
  auto lit = reinterpret_cast<decltype(&FS_LiteralComp)>(dlsym(lib, "_Z14FS_LiteralCompPwS_sii"));
  auto low = reinterpret_cast<decltype(&tolower64)>(dlsym(lib, "_Z9tolower64w"));
  ASSERT_TRUE(cmp && lit && low);
  wchar_t name[] = L"Data01.DB", spec[] = L"data??.db";
  EXPECT_EQ(cmp(name, 10, spec, 10, 0, 0, 0), FS_SPEC_MATCH);
  EXPECT_EQ(lit(spec, name, 10, 1, 0), 0);
  EXPECT_EQ(low(L'Q'), L'q');
  EXPECT_EQ(dlsym(lib, "_ZN6qbfsys8filespec12classic_stepERNS0_10MatchStateE"), nullptr);
  dlclose(lib);
}

}  // namespace
