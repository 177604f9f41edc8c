// The byte-name codec: what each kind of byte string decodes to, and that
// every byte string comes back byte for byte (a seeded property).
#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "posix_name_codec.h"

namespace {

using qbposix::posix_decode_name;
using qbposix::posix_encode_name;

TEST(PosixNameCodec, DecodesValidUtf8EscapesEveryOtherByteAndRefusesWhatNoNameHolds) {
  struct {
    char const* what;
    std::string bytes;
    std::wstring wide;
  } const cases[] = {
      {"ascii with wildcards", "-a*b?\\c\n", L"-a*b?\\c\n"},
      {"two-byte", "caf\xc3\xa9", L"caf\u00e9"},
      {"four-byte", "\xf0\x9f\x98\x80", std::wstring(1, static_cast<wchar_t>(0x1F600))},
      {"stray continuation", "\x80", L"\xDC80"},
      {"lone lead at the end", "a\xe2\x82", L"a\xDCE2\xDC82"},
      {"overlong slash", "\xc0\xaf", L"\xDCC0\xDCAF"},
      {"encoded surrogate", "\xed\xa0\x80", L"\xDCED\xDCA0\xDC80"},
      {"above U+10FFFF", "\xf4\x90\x80\x80", L"\xDCF4\xDC90\xDC80\xDC80"},
      {"0xFF", "\xff\xfe", L"\xDCFF\xDCFE"},
  };
  for (auto const& c : cases) {
    EXPECT_EQ(posix_decode_name(c.bytes), c.wide) << c.what;
    std::string back;
    EXPECT_TRUE(posix_encode_name(c.wide.data(), c.wide.size(), back) && back == c.bytes) << c.what;
  }
  for (std::wstring const& w : {std::wstring(1, L'\0'), std::wstring(L"\xD800"), std::wstring(L"\xDC7F"),
                                std::wstring(1, static_cast<wchar_t>(0x110000))}) {
    std::string out;
    EXPECT_FALSE(posix_encode_name(w.data(), w.size(), out)) << static_cast<unsigned>(w[0]);
  }
}

TEST(PosixNameCodec, EveryByteStringComesBackUnchanged) {
  char const* env = std::getenv("QB_TEST_SEED");
  std::uint32_t const seed = env != nullptr ? static_cast<std::uint32_t>(std::strtoul(env, nullptr, 10)) : 14;
  std::mt19937 rng(seed);
  for (int i = 0; i < 20000; ++i) {
    std::string bytes(1 + rng() % 24, '\0');
    for (char& c : bytes) c = static_cast<char>(1 + rng() % 255);  // names hold no NUL
    std::wstring const wide = posix_decode_name(bytes);
    std::string back;
    ASSERT_TRUE(posix_encode_name(wide.data(), wide.size(), back)) << "seed " << seed << " case " << i;
    ASSERT_EQ(back, bytes) << "seed " << seed << " case " << i;
  }
}

}  // namespace
