#include <qbhost/cipher.h>

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

struct ContextDeleter {
  void operator()(ZYM_ENCRYPTION_CONTEXT* c) const { ZymDestroyContext(c); }
};
using Context = std::unique_ptr<ZYM_ENCRYPTION_CONTEXT, ContextDeleter>;

Bytes bytes(std::string const& s) { return Bytes(s.begin(), s.end()); }

Context make_context(Bytes const& key, Bytes const& iv) {
  return Context(ZymCreateContext(key.data(), key.size(), iv.empty() ? nullptr : iv.data(), iv.size()));
}

Bytes run(int (*fn)(ZYM_ENCRYPTION_CONTEXT*, unsigned char const*, unsigned int, unsigned char*,
                    unsigned int, unsigned int*),
          ZYM_ENCRYPTION_CONTEXT* c, Bytes const& in) {
  Bytes out(in.size() + 8, 0xAA);
  unsigned int size = 12345;
  EXPECT_EQ(ZYM_OK, fn(c, in.data(), static_cast<unsigned>(in.size()), out.data(),
                       static_cast<unsigned>(out.size()), &size));
  out.resize(size);
  return out;
}

class Cipher : public ::testing::Test {
 protected:
  Bytes key_ = bytes("0123456789abcdef0123456789abcdef");  // 32 bytes: used as is
  Bytes iv_ = bytes("initial-vector!!");
  Bytes name_ = bytes("C:/Users/\xC3\xA9l\xC3\xA8ve/Documents/report.txt");
  Context ctx_ = make_context(key_, iv_);
};

TEST_F(Cipher, MatchesAes256CtrWithTheGivenKeyAndIv) {
  Bytes expected(name_.size());
  EVP_CIPHER_CTX* evp = EVP_CIPHER_CTX_new();
  int n = 0;
  ASSERT_EQ(1, EVP_EncryptInit_ex(evp, EVP_aes_256_ctr(), nullptr, key_.data(), iv_.data()));
  ASSERT_EQ(1, EVP_EncryptUpdate(evp, expected.data(), &n, name_.data(), static_cast<int>(name_.size())));
  EVP_CIPHER_CTX_free(evp);
  EXPECT_EQ(expected, run(ZymEncrypt, ctx_.get(), name_));
}

TEST_F(Cipher, IvUpdatesChangeTheCiphertextAndResetRestoresIt) {
  Bytes const base = run(ZymEncrypt, ctx_.get(), name_);
  Bytes const other_iv = bytes("another");

  ASSERT_EQ(ZYM_OK, ZymUpdateEncryptionIV_V1(ctx_.get(), other_iv.data(), 7));
  Bytes const v1 = run(ZymEncrypt, ctx_.get(), name_);
  ASSERT_EQ(ZYM_OK, ZymUpdateEncryptionIV_V2(ctx_.get(), other_iv.data(), 7));
  Bytes const v2 = run(ZymEncrypt, ctx_.get(), name_);
  EXPECT_NE(base, v1);
  EXPECT_NE(base, v2);
  EXPECT_NE(v1, v2);
  EXPECT_EQ(name_, run(ZymDecrypt, ctx_.get(), v2));

  // V1 zero-pads a short IV: a context created with that padded IV agrees.
  Bytes padded = other_iv;
  padded.resize(16, 0);
  EXPECT_EQ(v1, run(ZymEncrypt, make_context(key_, padded).get(), name_));

  ASSERT_EQ(ZYM_OK, ZymResetEncryptionIV(ctx_.get()));
  EXPECT_EQ(base, run(ZymEncrypt, ctx_.get(), name_));
}

TEST_F(Cipher, ShortKeysAreHashedAndKeysMatter) {
  Context a = make_context(bytes("secret"), {});
  Context b = make_context(bytes("secreT"), {});
  ASSERT_NE(nullptr, a);
  ASSERT_NE(nullptr, b);
  EXPECT_NE(run(ZymEncrypt, a.get(), name_), run(ZymEncrypt, b.get(), name_));
}

TEST_F(Cipher, InPlaceAndEmptyInput) {
  Bytes buffer = name_;
  unsigned int size = 0;
  ASSERT_EQ(ZYM_OK, ZymEncrypt(ctx_.get(), buffer.data(), static_cast<unsigned>(buffer.size()),
                               buffer.data(), static_cast<unsigned>(buffer.size()), &size));
  EXPECT_EQ(run(ZymEncrypt, ctx_.get(), name_), buffer);  // calls do not advance the IV
  EXPECT_EQ(ZYM_OK, ZymEncrypt(ctx_.get(), nullptr, 0, nullptr, 0, &size));
  EXPECT_EQ(0u, size);
}

TEST_F(Cipher, BufferTooSmallReportsTheNeed) {
  Bytes out(name_.size() - 1);
  unsigned int size = 0;
  EXPECT_EQ(ZYM_ERR_BUFFER, ZymDecrypt(ctx_.get(), name_.data(), static_cast<unsigned>(name_.size()),
                                       out.data(), static_cast<unsigned>(out.size()), &size));
  EXPECT_EQ(name_.size(), size);
}

TEST_F(Cipher, NullArgumentsAreRefused) {
  unsigned char out[8];
  unsigned int size = 0;
  unsigned char const in[4] = {1, 2, 3, 4};
  EXPECT_EQ(ZYM_ERR_PARAMETER, ZymEncrypt(nullptr, in, 4, out, 8, &size));
  EXPECT_EQ(ZYM_ERR_PARAMETER, ZymEncrypt(ctx_.get(), nullptr, 4, out, 8, &size));
  EXPECT_EQ(ZYM_ERR_PARAMETER, ZymEncrypt(ctx_.get(), in, 4, nullptr, 8, &size));
  EXPECT_EQ(ZYM_ERR_PARAMETER, ZymDecrypt(ctx_.get(), in, 4, out, 8, nullptr));
  EXPECT_EQ(ZYM_ERR_PARAMETER, ZymResetEncryptionIV(nullptr));
  EXPECT_EQ(ZYM_ERR_PARAMETER, ZymUpdateEncryptionIV_V1(nullptr, in, 4));
  EXPECT_EQ(ZYM_ERR_PARAMETER, ZymUpdateEncryptionIV_V1(ctx_.get(), nullptr, 4));
  EXPECT_EQ(ZYM_ERR_PARAMETER, ZymUpdateEncryptionIV_V2(nullptr, in, 4));
  EXPECT_EQ(ZYM_ERR_PARAMETER, ZymUpdateEncryptionIV_V2(ctx_.get(), nullptr, 4));
  EXPECT_EQ(nullptr, ZymCreateContext(nullptr, 32, nullptr, 0));
  EXPECT_EQ(nullptr, ZymCreateContext(in, 0, nullptr, 0));
  ZymDestroyContext(nullptr);
}

}  // namespace
