// The byte-name codec. Decoding is strict UTF-8 (RFC 3629 ranges) so that
// an escaped character can never also be the decoding of valid bytes.
#include "posix_name_codec.h"

#include <cstdint>

namespace qbposix {
namespace {

constexpr std::uint32_t kMaxCodePoint = 0x10FFFF;
constexpr std::uint32_t kSurrogateFirst = 0xD800;
constexpr std::uint32_t kSurrogateLast = 0xDFFF;
constexpr std::uint32_t kEscapeBase = 0xDC00;
constexpr unsigned char kAsciiLimit = 0x80;
constexpr unsigned char kContinuationMask = 0xC0;
constexpr unsigned char kContinuationTag = 0x80;
constexpr unsigned char kPayloadBits = 6;
constexpr std::uint32_t kPayloadMask = 0x3F;

// Length of the sequence a lead byte starts (0: not a lead byte), the bits
// the lead contributes and the smallest code point of that length.
struct Lead {
  int length;
  std::uint32_t bits;
  std::uint32_t minimum;
};
Lead lead_of(unsigned char b) {
  if (b >= 0xC2 && b <= 0xDF) return {2, b & 0x1Fu, 0x80};
  if (b >= 0xE0 && b <= 0xEF) return {3, b & 0x0Fu, 0x800};
  if (b >= 0xF0 && b <= 0xF4) return {4, b & 0x07u, 0x10000};
  return {0, 0, 0};
}

bool is_continuation(unsigned char b) {
  return (b & kContinuationMask) == kContinuationTag;
}

// Decodes the sequence at `p` (at most `left` bytes); 0 when it is not a
// well-formed sequence.
int decode_one(unsigned char const* p, std::size_t left, std::uint32_t& cp) {
  Lead const lead = lead_of(p[0]);
  if (lead.length == 0 || static_cast<std::size_t>(lead.length) > left) return 0;
  std::uint32_t value = lead.bits;
  for (int i = 1; i < lead.length; ++i) {
    if (!is_continuation(p[i])) return 0;
    value = (value << kPayloadBits) | (p[i] & kPayloadMask);
  }
  if (value < lead.minimum || value > kMaxCodePoint) return 0;
  if (value >= kSurrogateFirst && value <= kSurrogateLast) return 0;
  cp = value;
  return lead.length;
}

void append_utf8(std::uint32_t cp, std::string& out) {
  if (cp < 0x80) {
    out.push_back(static_cast<char>(cp));
  } else if (cp < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
    out.push_back(static_cast<char>(kContinuationTag | (cp & kPayloadMask)));
  } else if (cp < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
    out.push_back(static_cast<char>(kContinuationTag | ((cp >> 6) & kPayloadMask)));
    out.push_back(static_cast<char>(kContinuationTag | (cp & kPayloadMask)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
    out.push_back(static_cast<char>(kContinuationTag | ((cp >> 12) & kPayloadMask)));
    out.push_back(static_cast<char>(kContinuationTag | ((cp >> 6) & kPayloadMask)));
    out.push_back(static_cast<char>(kContinuationTag | (cp & kPayloadMask)));
  }
}

}  // namespace

std::wstring posix_decode_name(char const* bytes, std::size_t size) {
  std::wstring out;
  if (bytes == nullptr) return out;
  out.reserve(size);
  auto const* p = reinterpret_cast<unsigned char const*>(bytes);
  std::size_t i = 0;
  while (i < size) {
    if (p[i] < kAsciiLimit) {
      out.push_back(static_cast<wchar_t>(p[i++]));
      continue;
    }
    std::uint32_t cp = 0;
    int const n = decode_one(p + i, size - i, cp);
    if (n == 0) {
      out.push_back(static_cast<wchar_t>(kEscapeBase + p[i++]));
      continue;
    }
    out.push_back(static_cast<wchar_t>(cp));
    i += static_cast<std::size_t>(n);
  }
  return out;
}

bool posix_encode_name(wchar_t const* wide, std::size_t count, std::string& out) {
  out.clear();
  if (wide == nullptr) return count == 0;
  out.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    auto const cp = static_cast<std::uint32_t>(wide[i]);
    if (cp >= static_cast<std::uint32_t>(POSIX_ESCAPE_FIRST) &&
        cp <= static_cast<std::uint32_t>(POSIX_ESCAPE_LAST)) {
      out.push_back(static_cast<char>(cp - kEscapeBase));
      continue;
    }
    if (cp == 0 || cp > kMaxCodePoint || (cp >= kSurrogateFirst && cp <= kSurrogateLast))
      return false;
    append_utf8(cp, out);
  }
  return true;
}

}  // namespace qbposix
