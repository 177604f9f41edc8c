// The two checks of the archive: SHA-256 digests (OpenSSL) for objects and
// the archive as a whole, CRC-32 (the common reflected polynomial 0xEDB88320,
// as in zip and PNG) for frame headers and records.
#pragma once
#include <openssl/evp.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

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

namespace crc_tables {

// Table k gives the CRC of a byte followed by k zero bytes, so eight bytes
// are taken in one step (eight lookups) instead of one lookup per byte.
struct Tables {
  std::uint32_t t[8][256];
};

constexpr Tables make() {
  Tables x{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t c = i;
    for (int bit = 0; bit < 8; ++bit) c = (c & 1) != 0 ? (c >> 1) ^ 0xEDB88320u : c >> 1;
    x.t[0][i] = c;
  }
  for (int k = 1; k < 8; ++k)
    for (std::uint32_t i = 0; i < 256; ++i)
      x.t[k][i] = (x.t[k - 1][i] >> 8) ^ x.t[0][x.t[k - 1][i] & 0xFF];
  return x;
}

inline constexpr Tables kTables = make();

}  // namespace crc_tables

// CRC-32 built up over several pieces. The archive's numbers are
// little-endian, as is this machine: the eight-byte step reads two words.
class Crc32 {
 public:
  void add(void const* data, std::size_t size) {
    auto const& t = crc_tables::kTables.t;
    auto const* p = static_cast<unsigned char const*>(data);
    std::uint32_t c = crc_;
    for (; size >= 8; p += 8, size -= 8) {
      std::uint32_t one = 0, two = 0;
      std::memcpy(&one, p, 4);
      std::memcpy(&two, p + 4, 4);
      one ^= c;
      c = t[7][one & 0xFF] ^ t[6][(one >> 8) & 0xFF] ^ t[5][(one >> 16) & 0xFF] ^ t[4][one >> 24] ^
          t[3][two & 0xFF] ^ t[2][(two >> 8) & 0xFF] ^ t[1][(two >> 16) & 0xFF] ^ t[0][two >> 24];
    }
    for (; size > 0; ++p, --size) c = (c >> 8) ^ t[0][(c ^ *p) & 0xFF];
    crc_ = c;
  }
  std::uint32_t value() const { return ~crc_; }

 private:
  std::uint32_t crc_ = 0xFFFFFFFFu;
};
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "Crc32 reads little-endian words");

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
