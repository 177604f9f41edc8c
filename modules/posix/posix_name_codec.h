// Names are bytes on Linux; the layer speaks 4-byte wide characters. This
// codec carries every byte string into the wide form and back, losslessly.
//
// Decoding reads the bytes as UTF-8. Every byte that does not start or belong
// to a well-formed sequence (stray continuation bytes, overlong forms, encoded
// surrogates, values above U+10FFFF, truncated sequences) becomes one
// character U+DC80..U+DCFF: U+DC00 plus the byte, which is always 0x80..0xFF
// because ASCII is always valid. Well-formed UTF-8 never yields those code
// points (they are surrogates), so encoding can send each of them back to its
// byte, and every other character to its UTF-8 form.
//
// Encoding refuses characters that no decoded name can contain: NUL, the
// other surrogates, and values above U+10FFFF. Everything else (newlines,
// backslashes, wildcards, leading dashes) passes unchanged; only the kernel's
// rules on '/' and NUL limit what a name holds.
#pragma once
#include <cstddef>
#include <string>

namespace qbposix {

// First and last character of the escape range; U+DC00 + byte.
constexpr wchar_t POSIX_ESCAPE_FIRST = 0xDC80;
constexpr wchar_t POSIX_ESCAPE_LAST = 0xDCFF;

// The wide form of `size` bytes at `bytes` (which may hold any value but NUL
// is not expected in a name; a NUL byte decodes to U+0000 like any ASCII).
std::wstring posix_decode_name(char const* bytes, std::size_t size);
inline std::wstring posix_decode_name(std::string const& bytes) {
  return posix_decode_name(bytes.data(), bytes.size());
}

// The bytes of the wide name at `wide` (`count` characters). Returns false,
// with `out` unspecified, when a character cannot come from a decoded name
// (see above).
bool posix_encode_name(wchar_t const* wide, std::size_t count, std::string& out);

}  // namespace qbposix
