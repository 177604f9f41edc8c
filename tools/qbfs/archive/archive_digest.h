// The two checks of the archive: SHA-256 digests (OpenSSL) for objects and
// the archive as a whole, CRC-32 (the common reflected polynomial 0xEDB88320,
// as in zip and PNG) for frame headers and records.
#pragma once
#include <openssl/evp.h>
#include <zlib.h>

#include <array>
#include <cstddef>
#include <cstdint>

#include "archive_format.h"

namespace qbfs::archive {

using Digest = std::array<unsigned char, kDigestSize>;

// The SHA-256 implementation, looked up once: naming it at every start of
// a digest (EVP_sha256() in EVP_DigestInit_ex) makes the library search its
// providers under a lock each time, twice per object.
inline EVP_MD const* sha256_method() {
#if OPENSSL_VERSION_MAJOR >= 3
  static EVP_MD const* const fetched = EVP_MD_fetch(nullptr, "SHA256", nullptr);
  if (fetched != nullptr) return fetched;
#endif
  return EVP_sha256();
}

class Sha256 {
 public:
  Sha256() : ctx_(EVP_MD_CTX_new()) { reset(); }
  ~Sha256() { EVP_MD_CTX_free(ctx_); }
  Sha256(Sha256 const&) = delete;
  Sha256& operator=(Sha256 const&) = delete;

  void reset() { EVP_DigestInit_ex(ctx_, sha256_method(), nullptr); }
  void add(void const* data, std::size_t size) { EVP_DigestUpdate(ctx_, data, size); }
  // The digest of what was added; the object starts over.
  Digest finish() {
    Digest out{};
    unsigned int size = 0;
    EVP_DigestFinal_ex(ctx_, out.data(), &size);
    reset();
    return out;
  }

 private:
  EVP_MD_CTX* ctx_;
};

// CRC-32 built up over several pieces (zlib's, which takes several bytes
// a step; a byte-at-a-time CRC showed in the profile of a backup).
class Crc32 {
 public:
  void add(void const* data, std::size_t size) {
    crc_ = ::crc32_z(crc_, static_cast<Bytef const*>(data), size);
  }
  std::uint32_t value() const { return static_cast<std::uint32_t>(crc_); }

 private:
  uLong crc_ = ::crc32_z(0, nullptr, 0);
};

// CRC-32 of a frame header's first 12 bytes followed by `payload` (null
// for DATA frames).
inline std::uint32_t frame_crc(FrameHeader const& header, void const* payload, std::size_t size) {
  Crc32 crc;
  crc.add(&header, offsetof(FrameHeader, crc));
  if (payload != nullptr) crc.add(payload, size);
  return crc.value();
}

inline std::uint32_t header_crc(ArchiveHeader const& header) {
  Crc32 crc;
  crc.add(&header, offsetof(ArchiveHeader, crc));
  return crc.value();
}

}  // namespace qbfs::archive
