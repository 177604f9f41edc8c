#include <qbhost/base64.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct Vector {
  std::string plain;
  std::string encoded;
};

class Rfc4648 : public ::testing::TestWithParam<Vector> {};

TEST_P(Rfc4648, EncodeAndDecode) {
  Vector const& v = GetParam();
  auto const* bytes = reinterpret_cast<unsigned char const*>(v.plain.data());
  EXPECT_EQ(v.encoded, base64_encode(bytes, v.plain.size()));
  std::vector<unsigned char> out{1, 2, 3};
  ASSERT_TRUE(base64_decode(v.encoded.data(), v.encoded.size(), out));
  EXPECT_EQ(v.plain, std::string(out.begin(), out.end()));
}

INSTANTIATE_TEST_SUITE_P(Vectors, Rfc4648,
                         ::testing::Values(Vector{"", ""}, Vector{"f", "Zg=="},
                                           Vector{"fo", "Zm8="}, Vector{"foo", "Zm9v"},
                                           Vector{"foob", "Zm9vYg=="},
                                           Vector{"fooba", "Zm9vYmE="},
                                           Vector{"foobar", "Zm9vYmFy"}));

TEST(Base64, AllByteValuesRoundTripAcrossChunks) {
  std::vector<unsigned char> data(3 * 1024 * 1024 + 2);  // more than one coder chunk
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<unsigned char>(i * 7 + i / 256);
  std::string const text = base64_encode(data.data(), data.size());
  EXPECT_EQ((data.size() + 2) / 3 * 4, text.size());
  std::vector<unsigned char> back;
  ASSERT_TRUE(base64_decode(text, back));
  EXPECT_EQ(data, back);
}

TEST(Base64, WhiteSpaceIsSkipped) {
  std::string const text = " Zm9v\r\nYmFy\t\n";
  std::vector<unsigned char> out;
  ASSERT_TRUE(base64_decode(text.data(), text.size(), out));
  EXPECT_EQ("foobar", std::string(out.begin(), out.end()));
}

class Base64Invalid : public ::testing::TestWithParam<std::string> {};

TEST_P(Base64Invalid, IsRefusedAndLeavesOutputEmpty) {
  std::vector<unsigned char> out{9, 9};
  EXPECT_FALSE(base64_decode(GetParam().data(), GetParam().size(), out));
  EXPECT_TRUE(out.empty());
}

INSTANTIATE_TEST_SUITE_P(Texts, Base64Invalid,
                         ::testing::Values("Zg=", "Zm9", "Z", "Zg===", "====", "Z===",
                                           "Zg==Zg==", "Z=g=", "Zm9v!mFy", "Zm9v-_Fy",
                                           std::string("Zm9\0", 4), "Zh==", "Zm9=",
                                           "\xC3\xA9Zm"),
                         [](auto const& info) { return "text" + std::to_string(info.index); });

TEST(Base64, NullInput) {
  std::vector<unsigned char> out{1};
  EXPECT_TRUE(base64_decode(nullptr, 0, out));
  EXPECT_TRUE(out.empty());
  EXPECT_FALSE(base64_decode(nullptr, 4, out));
  EXPECT_EQ("", base64_encode(nullptr, 10));
}

}  // namespace
