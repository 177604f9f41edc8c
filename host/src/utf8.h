// UTF-8 encoding and decoding shared by the host's string functions and its
// debug print. Internal to libqbhost (not exported).
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

namespace qbhost_detail {

constexpr char32_t kReplacement = 0xFFFD;

// Appends the UTF-8 form of `c`; a surrogate or a value above U+10FFFF is
// written as U+FFFD.
void append_utf8(std::string& out, char32_t c);

// Encodes `count` wide characters as UTF-8.
std::string encode_utf8(wchar_t const* text, std::size_t count);

// Decodes the sequence that starts at text[0] (size bytes available, size > 0).
// On success stores the code point and returns its length (1..4). On an
// invalid or truncated sequence returns -n, where n >= 1 is the length of the
// maximal ill-formed prefix (the bytes that one U+FFFD stands for).
int decode_utf8(unsigned char const* text, std::size_t size, char32_t& out);

}  // namespace qbhost_detail
