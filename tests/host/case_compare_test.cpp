#include <qbhost/strings.h>

#include <gtest/gtest.h>

#include <clocale>

namespace {

struct FoldPair {
  wchar_t const* a;
  wchar_t const* b;
};

class CaseInsensitiveEqual : public ::testing::TestWithParam<FoldPair> {};

TEST_P(CaseInsensitiveEqual, BothDirections) {
  EXPECT_EQ(0, QB::stricmp_internal(GetParam().a, GetParam().b));
  EXPECT_EQ(0, QB::stricmp_internal(GetParam().b, GetParam().a));
}

INSTANTIATE_TEST_SUITE_P(
    Alphabets, CaseInsensitiveEqual,
    ::testing::Values(FoldPair{L"Program Files", L"PROGRAM files"},
                      FoldPair{L"\u00C9T\u00C9", L"\u00E9t\u00E9"},              // Latin-1
                      FoldPair{L"\u0178", L"\u00FF"},                            // Y diaeresis
                      FoldPair{L"\u0141\u00F3d\u017A", L"\u0142\u00D3D\u0179"},  // Extended-A
                      FoldPair{L"\u1E9E", L"\u00DF"},                            // sharp s
                      FoldPair{L"\u0391\u0398\u0389\u039D\u0391",
                               L"\u03B1\u03B8\u03AE\u03BD\u03B1"},               // Greek
                      FoldPair{L"\u03A3", L"\u03C2"},                            // final sigma
                      FoldPair{L"\u041C\u041E\u0421\u041A\u0412\u0410\u0401",
                               L"\u043C\u043E\u0441\u043A\u0432\u0430\u0451"},   // Cyrillic
                      FoldPair{L"\u0531", L"\u0561"},                            // Armenian
                      FoldPair{L"\u212A", L"k"},                                 // Kelvin
                      FoldPair{L"\uFF21\uFF3A", L"\uFF41\uFF5A"},                // full width
                      FoldPair{L"\U00010400", L"\U00010428"}));                  // Deseret

TEST(CaseCompare, OrdersByFoldedValue) {
  EXPECT_LT(QB::stricmp_internal(L"apple", L"BANANA"), 0);
  EXPECT_GT(QB::stricmp_internal(L"Zebra", L"apple"), 0);
  EXPECT_LT(QB::stricmp_internal(L"abc", L"ABCD"), 0);  // prefix sorts first
  EXPECT_GT(QB::stricmp_internal(L"abcd", L"ABC"), 0);
  EXPECT_NE(0, QB::stricmp_internal(L"\u00DF", L"ss"));  // no length-changing folds
  EXPECT_NE(0, QB::stricmp_internal(L"\u0130", L"i"));   // Turkish dotted I is not simple
  // Characters beyond the Unicode range compare by value and do not crash.
  wchar_t const odd[] = {static_cast<wchar_t>(-5), 0};
  EXPECT_GT(QB::stricmp_internal(odd, L"a"), 0);
}

TEST(CaseCompare, CountLimitsTheCompare) {
  EXPECT_EQ(0, QB::strnicmp_internal(L"DATAbase", L"dataBANK", 6));
  EXPECT_NE(0, QB::strnicmp_internal(L"DATAbase", L"dataBANK", 7));
  EXPECT_EQ(0, QB::strnicmp_internal(L"x", L"y", 0));
  EXPECT_EQ(0, QB::strnicmp_internal(L"ab", L"AB", 100));  // stops at the terminator
}

TEST(CaseCompare, NullSortsFirst) {
  EXPECT_EQ(0, QB::stricmp_internal(nullptr, nullptr));
  EXPECT_LT(QB::stricmp_internal(nullptr, L""), 0);
  EXPECT_GT(QB::stricmp_internal(L"", nullptr), 0);
  EXPECT_LT(QB::strnicmp_internal(nullptr, L"a", 1), 0);
}

TEST(CaseCompare, IndependentOfProcessLocale) {
  // The "C" locale knows no non-ASCII case; the compare must not care.
  std::setlocale(LC_ALL, "C");
  EXPECT_EQ(0, QB::stricmp_internal(L"\u00C5NGSTR\u00D6M", L"\u00E5ngstr\u00F6m"));
}

}  // namespace
