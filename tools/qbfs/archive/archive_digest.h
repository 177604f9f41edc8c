// The two checks of the archive: SHA-256 digests (OpenSSL) for objects and
// the archive as a whole, CRC-32 (Boost.CRC) for frame headers and records.
#pragma once
#include <openssl/evp.h>

#include <array>
#include <cstddef>
#include <cstdint>

#include <boost/crc.hpp>

#include "archive_format.h"

namespace qbfs::archive {

using Digest = std::array<unsigned char, kDigestSize>;

class Sha256 {
 public:
  Sha256() : ctx_(EVP_MD_CTX_new()) { reset(); }
  ~Sha256() { EVP_MD_CTX_free(ctx_); }
  Sha256(Sha256 const&) = delete;
  Sha256& operator=(Sha256 const&) = delete;

  void reset() { EVP_DigestInit_ex(ctx_, EVP_sha256(), nullptr); }
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

// CRC-32 of a frame header's first 12 bytes followed by `payload` (null
// for DATA frames).
inline std::uint32_t frame_crc(FrameHeader const& header, void const* payload, std::size_t size) {
  boost::crc_32_type crc;
  crc.process_bytes(&header, offsetof(FrameHeader, crc));
  if (payload != nullptr) crc.process_bytes(payload, size);
  return crc.checksum();
}

inline std::uint32_t header_crc(ArchiveHeader const& header) {
  boost::crc_32_type crc;
  crc.process_bytes(&header, offsetof(ArchiveHeader, crc));
  return crc.checksum();
}

}  // namespace qbfs::archive
