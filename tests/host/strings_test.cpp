#include <qbhost/strings.h>

#include <gtest/gtest.h>

#include <string>

namespace {

struct Utf8Case {
  char const* name;
  std::string bytes;
  std::wstring wide;
};

// Decoding, including ill-formed input: one U+FFFD per maximal ill-formed
// subsequence.
class Utf8Decode : public ::testing::TestWithParam<Utf8Case> {};

TEST_P(Utf8Decode, FromUtf8) {
  Utf8Case const& c = GetParam();
  EXPECT_EQ(c.wide, wcstring::from_utf8(c.bytes.data(), c.bytes.size()));
  wcstring w;
  w.assign(c.bytes.data(), c.bytes.size(), cstring::UTF8);
  EXPECT_EQ(c.wide, w);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Utf8Decode,
    ::testing::Values(
        Utf8Case{"ascii", "abc", L"abc"},
        Utf8Case{"two_byte", "caf\xC3\xA9", L"caf\u00E9"},
        Utf8Case{"three_byte", "\xE2\x82\xAC", L"\u20AC"},
        Utf8Case{"four_byte", "\xF0\x9F\x98\x80", L"\U0001F600"},
        Utf8Case{"embedded_nul", std::string("a\0b", 3), std::wstring(L"a\0b", 3)},
        Utf8Case{"lone_continuation", "a\x80z", L"a\uFFFDz"},
        Utf8Case{"truncated_at_end", "a\xE2\x82", L"a\uFFFD"},
        Utf8Case{"truncated_then_ascii", "\xE2\x82z", L"\uFFFDz"},
        Utf8Case{"overlong_slash", "\xC0\xAF", L"\uFFFD\uFFFD"},
        Utf8Case{"overlong_three", "\xE0\x80\xAF", L"\uFFFD\uFFFD\uFFFD"},
        Utf8Case{"surrogate", "\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},
        Utf8Case{"above_max", "\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},
        Utf8Case{"invalid_lead", "\xFF", L"\uFFFD"}),
    [](auto const& info) { return std::string(info.param.name); });

// Encoding: UTF-8 for every plane, ACP as Latin-1; what a charset cannot
// carry becomes U+FFFD (UTF-8) or '?' (ACP). Exact encodings decode back.
TEST(Strings, EncodeAndDecodeBack) {
  struct {
    std::wstring wide;
    cstring::codePage set;
    std::string bytes;
    bool round_trip;
  } const cases[] = {
      {L"A\u00E9\u0416\u20AC\uFFFD\U00010348\U0010FFFF", cstring::UTF8,
       "A\xC3\xA9\xD0\x96\xE2\x82\xAC\xEF\xBF\xBD\xF0\x90\x8D\x88\xF4\x8F\xBF\xBF", true},
      {{L'a', static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0x110000), static_cast<wchar_t>(-1), L'b'},
       cstring::UTF8, "a\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD" "b", false},
      {L"A\u00E9\u00FF\u0080", cstring::ACP, "\x41\xE9\xFF\x80", true},
      {L"\u00E9\u20ACx", cstring::ACP, "\xE9?x", false},
  };
  for (auto const& c : cases) {
    cstring bytes;
    bytes.assign(c.wide.data(), c.wide.size(), c.set);
    EXPECT_EQ(c.bytes, static_cast<std::string const&>(bytes));
    if (c.set == cstring::UTF8) {
      EXPECT_EQ(c.bytes, static_cast<std::string const&>(wcstring(c.wide).to_utf8()));
    }
    if (!c.round_trip) continue;
    wcstring back;
    back.assign(c.bytes.data(), c.bytes.size(), c.set);
    EXPECT_EQ(c.wide, back);
  }
}

TEST(Strings, NullTextConvertsAsEmpty) {
  wcstring w(L"old");
  w.assign(nullptr, 5, cstring::UTF8);
  EXPECT_TRUE(w.empty());
  cstring c("old");
  c.assign(static_cast<wchar_t const*>(nullptr), 5, cstring::ACP);
  EXPECT_TRUE(c.empty());
  EXPECT_TRUE(wcstring::from_utf8(nullptr, 3).empty());
}

// UniConv keeps a byte that is not part of a valid sequence as itself.
TEST(UniConv, InvalidBytesStandForThemselves) {
  std::string const name = "a\xC3\xA9\xE9\xE2\x82" "z";
  wchar_t out[16];
  std::size_t const n = QB::UniConv(name.data(), name.size(), out, 16);
  EXPECT_EQ(std::wstring(L"a\u00E9\u00E9\u00E2\u0082z"), std::wstring(out, n));
  EXPECT_EQ(L'\0', out[n]);
}

TEST(UniConv, CapacityBoundsOutputAndTerminator) {
  wchar_t out[4] = {L'x', L'x', L'x', L'x'};
  EXPECT_EQ(3u, QB::UniConv("abcdef", 6, out, 3));
  EXPECT_EQ(std::wstring(L"abcx"), std::wstring(out, 4));  // no room for the terminator
  EXPECT_EQ(2u, QB::UniConv("ab", 2, out, 4));
  EXPECT_EQ(L'\0', out[2]);
  EXPECT_EQ(0u, QB::UniConv("ab", 2, nullptr, 4));
  EXPECT_EQ(0u, QB::UniConv("ab", 2, out, 0));
  EXPECT_EQ(0u, QB::UniConv(nullptr, 2, out, 4));
  EXPECT_EQ(L'\0', out[0]);
}

}  // namespace
