// The host's name cipher: AES-256 in CTR mode (OpenSSL EVP), so a name keeps
// its length when encrypted.
//
// A context holds the key, the initial IV and the current IV. Each encryption
// or decryption call starts at the current IV. ZymResetEncryptionIV goes back
// to the initial IV; ZymUpdateEncryptionIV_V1 takes the given bytes as the IV
// (the first 16, zero-padded when shorter); ZymUpdateEncryptionIV_V2 takes the
// first 16 bytes of the SHA-256 digest of the given bytes.
// Results: 0 success, ZYM_ERR_PARAMETER for null or inconsistent arguments,
// ZYM_ERR_BUFFER when the output is too small (then *outSize tells the size
// needed), ZYM_ERR_CIPHER when the cipher library fails. A call leaves the
// current IV as it was; the output may be the input buffer.
#pragma once
#include <cstddef>
#include <qbhost/export.h>

struct ZYM_ENCRYPTION_CONTEXT;

enum : int { ZYM_OK = 0, ZYM_ERR_PARAMETER = -1, ZYM_ERR_BUFFER = -2, ZYM_ERR_CIPHER = -3 };

// Key material of any length; a key that is not 32 bytes is hashed to 32 with
// SHA-256. `iv` may be null (zero IV). Returns null on bad arguments.
QBHOST_API ZYM_ENCRYPTION_CONTEXT* ZymCreateContext(unsigned char const* key, std::size_t keySize,
                                                    unsigned char const* iv, std::size_t ivSize);
QBHOST_API void ZymDestroyContext(ZYM_ENCRYPTION_CONTEXT* context);

QBHOST_API int ZymEncrypt(ZYM_ENCRYPTION_CONTEXT* context, unsigned char const* in,
                          unsigned int inSize, unsigned char* out, unsigned int outCapacity,
                          unsigned int* outSize);
QBHOST_API int ZymDecrypt(ZYM_ENCRYPTION_CONTEXT* context, unsigned char const* in,
                          unsigned int inSize, unsigned char* out, unsigned int outCapacity,
                          unsigned int* outSize);
QBHOST_API int ZymResetEncryptionIV(ZYM_ENCRYPTION_CONTEXT* context);
QBHOST_API int ZymUpdateEncryptionIV_V1(ZYM_ENCRYPTION_CONTEXT* context, unsigned char const* iv,
                                        unsigned int ivSize);
QBHOST_API int ZymUpdateEncryptionIV_V2(ZYM_ENCRYPTION_CONTEXT* context, unsigned char const* iv,
                                        unsigned int ivSize);
