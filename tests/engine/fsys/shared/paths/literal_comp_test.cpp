#include <qbfsys/fs_filespec.h>

#include <gtest/gtest.h>

#include <cctype>
#include <climits>
#include <ostream>
#include <cstdio>

#include "exact_wide.h"

using qbtest::ExactWide;
using qbtest::U;
using qbtest::W;

namespace {

struct LiteralCase {
  char const* what;
  std::wstring pattern, text;
  short count;
  int cs, literal;
  short expected;
};

void PrintTo(LiteralCase const& c, std::ostream* os) { *os << c.what; }

class LiteralCompTable : public testing::TestWithParam<LiteralCase> {};

TEST_P(LiteralCompTable, CountsLeadingMatch) {
  auto const& c = GetParam();
  ExactWide p(c.pattern), t(c.text);
  EXPECT_EQ(FS_LiteralComp(p.get(), t.get(), c.count, c.cs, c.literal), c.expected) << c.what;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, LiteralCompTable,
    testing::Values(
        LiteralCase{"'?' at the end of the text is one short", W(L"a?"), W(L"a") + L'\0', 3, 0, 0, 0},
        LiteralCase{"'?' at the first position facing the end", W(L"?bc"), W(L"") + U(L"zz"), 3, 0, 0, -1},
        LiteralCase{"'?' matches any real character", W(L"a?c"), W(L"abc"), 4, 1, 0, 4},
        LiteralCase{"literal '?' is plain text", W(L"a?c"), W(L"abc"), 4, 1, 1, 1},
        LiteralCase{"literal '?' at the end is not one short", W(L"a?"), W(L"a") + L'\0', 3, 0, 1, 1},
        LiteralCase{"'?' against '?'", U(L"??"), U(L"??"), 2, 1, 1, 2},
        LiteralCase{"first difference", W(L"abc"), W(L"abd"), 4, 1, 0, 2},
        LiteralCase{"case folded", U(L"ABC"), U(L"abc"), 3, 0, 0, 3},
        LiteralCase{"case kept", U(L"ABC"), U(L"abc"), 3, 1, 0, 0},
        LiteralCase{"count caps the comparison", U(L"abcdef"), U(L"abcxyz"), 2, 1, 0, 2},
        LiteralCase{"equal terminators run on to the count", W(L"ab\0"), W(L"ab\0"), 4, 1, 0, 4},
        LiteralCase{"'*' is plain text here", U(L"a*"), U(L"ab"), 2, 0, 0, 1},
        LiteralCase{"count 0", U(L"a"), U(L"b"), 0, 0, 0, 0},
        LiteralCase{"negative count looks at nothing", U(L"a"), U(L"a"), -5, 0, 0, 0}));

TEST(LiteralComp, NullStringsCountAsMatching) {
  wchar_t s[] = L"abc";
  EXPECT_EQ(FS_LiteralComp(s, nullptr, 7, 0, 0), 7);
  EXPECT_EQ(FS_LiteralComp(nullptr, s, 3, 1, 1), 3);
  EXPECT_EQ(FS_LiteralComp(nullptr, nullptr, SHRT_MAX, 0, 0), SHRT_MAX);
  EXPECT_EQ(FS_LiteralComp(nullptr, s, -2, 0, 0), -2);
}

TEST(Tolower64, FoldsAsciiLettersItself) {
  for (wchar_t c = L'A'; c <= L'Z'; ++c) EXPECT_EQ(tolower64(c), c + 32);
  for (wchar_t c = L'a'; c <= L'z'; ++c) EXPECT_EQ(tolower64(c), c);
}

TEST(Tolower64, OtherCharactersGoThroughTheLibrary) {
  for (int c = 0; c <= UCHAR_MAX; ++c) {
    if (std::isalpha(c) && c < 128) continue;
    EXPECT_EQ(tolower64(static_cast<wchar_t>(c)), std::tolower(c)) << c;
  }
  EXPECT_EQ(tolower64(static_cast<wchar_t>(EOF)), static_cast<wchar_t>(EOF));
  // Outside the library's domain: unchanged, never an out-of-table lookup.
  for (wchar_t c : {wchar_t(0x100), wchar_t(0x1F600), wchar_t(-2), wchar_t(-129),
                    static_cast<wchar_t>(INT_MIN), static_cast<wchar_t>(INT_MAX)}) {
    EXPECT_EQ(tolower64(c), c);
  }
}

}  // namespace
