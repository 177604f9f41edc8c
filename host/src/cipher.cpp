// The Zym name cipher: AES-256-CTR through OpenSSL EVP. CTR keeps a name's
// length and makes encryption and decryption the same operation. Every call
// starts from the context's current IV and leaves it unchanged, so names are
// independent of the order in which they are processed.
#include <qbhost/cipher.h>

#include <openssl/crypto.h>
#include <openssl/evp.h>

#include <cstring>
#include <new>

struct ZYM_ENCRYPTION_CONTEXT {
  unsigned char key[32];
  unsigned char initial_iv[16];
  unsigned char iv[16];
};

namespace {

constexpr std::size_t kKeySize = 32;
constexpr std::size_t kIvSize = 16;

// The first 16 bytes of `bytes`, zero-padded when shorter.
void take_iv(unsigned char* iv, unsigned char const* bytes, std::size_t size) {
  std::memset(iv, 0, kIvSize);
  if (bytes != nullptr && size > 0) std::memcpy(iv, bytes, size < kIvSize ? size : kIvSize);
}

bool sha256(unsigned char const* bytes, std::size_t size, unsigned char* digest) {
  static unsigned char const empty = 0;
  unsigned int length = 0;
  return EVP_Digest(bytes != nullptr ? bytes : &empty, size, digest, &length, EVP_sha256(),
                    nullptr) == 1 &&
         length == kKeySize;
}

int run_ctr(ZYM_ENCRYPTION_CONTEXT* context, unsigned char const* in, unsigned int inSize,
            unsigned char* out, unsigned int outCapacity, unsigned int* outSize) {
  if (outSize != nullptr) *outSize = 0;
  if (context == nullptr || outSize == nullptr || (inSize > 0 && (in == nullptr || out == nullptr)))
    return ZYM_ERR_PARAMETER;
  if (outCapacity < inSize) {
    *outSize = inSize;  // what the caller needs
    return ZYM_ERR_BUFFER;
  }
  if (inSize == 0) return ZYM_OK;

  EVP_CIPHER_CTX* ctx = EVP_CIPHER_CTX_new();
  if (ctx == nullptr) return ZYM_ERR_CIPHER;
  int produced = 0;
  int final_len = 0;
  bool ok = EVP_EncryptInit_ex(ctx, EVP_aes_256_ctr(), nullptr, context->key, context->iv) == 1;
  // EVP lengths are int; feed oversized input in pieces.
  unsigned int done = 0;
  while (ok && done < inSize) {
    unsigned int const piece = (inSize - done) > (1u << 30) ? (1u << 30) : (inSize - done);
    int n = 0;
    ok = EVP_EncryptUpdate(ctx, out + done, &n, in + done, static_cast<int>(piece)) == 1;
    done += piece;
    produced += n;
  }
  if (ok) ok = EVP_EncryptFinal_ex(ctx, out + produced, &final_len) == 1;
  EVP_CIPHER_CTX_free(ctx);
  if (!ok || static_cast<unsigned int>(produced + final_len) != inSize) return ZYM_ERR_CIPHER;
  *outSize = inSize;
  return ZYM_OK;
}

}  // namespace

ZYM_ENCRYPTION_CONTEXT* ZymCreateContext(unsigned char const* key, std::size_t keySize,
                                         unsigned char const* iv, std::size_t ivSize) {
  if (key == nullptr || keySize == 0) return nullptr;
  auto* context = new (std::nothrow) ZYM_ENCRYPTION_CONTEXT;
  if (context == nullptr) return nullptr;
  if (keySize == kKeySize) {
    std::memcpy(context->key, key, kKeySize);
  } else if (!sha256(key, keySize, context->key)) {
    ZymDestroyContext(context);
    return nullptr;
  }
  take_iv(context->initial_iv, iv, ivSize);
  std::memcpy(context->iv, context->initial_iv, kIvSize);
  return context;
}

void ZymDestroyContext(ZYM_ENCRYPTION_CONTEXT* context) {
  if (context == nullptr) return;
  OPENSSL_cleanse(context, sizeof *context);
  delete context;
}

int ZymEncrypt(ZYM_ENCRYPTION_CONTEXT* context, unsigned char const* in, unsigned int inSize,
               unsigned char* out, unsigned int outCapacity, unsigned int* outSize) {
  return run_ctr(context, in, inSize, out, outCapacity, outSize);
}

int ZymDecrypt(ZYM_ENCRYPTION_CONTEXT* context, unsigned char const* in, unsigned int inSize,
               unsigned char* out, unsigned int outCapacity, unsigned int* outSize) {
  return run_ctr(context, in, inSize, out, outCapacity, outSize);
}

int ZymResetEncryptionIV(ZYM_ENCRYPTION_CONTEXT* context) {
  if (context == nullptr) return ZYM_ERR_PARAMETER;
  std::memcpy(context->iv, context->initial_iv, kIvSize);
  return ZYM_OK;
}

int ZymUpdateEncryptionIV_V1(ZYM_ENCRYPTION_CONTEXT* context, unsigned char const* iv,
                             unsigned int ivSize) {
  if (context == nullptr || (iv == nullptr && ivSize > 0)) return ZYM_ERR_PARAMETER;
  take_iv(context->iv, iv, ivSize);
  return ZYM_OK;
}

int ZymUpdateEncryptionIV_V2(ZYM_ENCRYPTION_CONTEXT* context, unsigned char const* iv,
                             unsigned int ivSize) {
  if (context == nullptr || (iv == nullptr && ivSize > 0)) return ZYM_ERR_PARAMETER;
  unsigned char digest[kKeySize];
  if (!sha256(iv, ivSize, digest)) return ZYM_ERR_CIPHER;
  std::memcpy(context->iv, digest, kIvSize);
  return ZYM_OK;
}
