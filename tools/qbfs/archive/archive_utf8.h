// UTF-8 as archive paths carry it: shortest forms, code points up to
// U+10FFFF, surrogates allowed (they are how a module's stand-ins for
// bytes that were not UTF-8 travel). Shared by the path codec and the
// terminal escaping, so both read the same bytes the same way.
#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace qbfs::archive {

constexpr char32_t kMaxCodePoint = 0x10FFFF;

// Appends `cp` in UTF-8; false (nothing appended) above U+10FFFF.
inline bool put_utf8(char32_t cp, std::string& out) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp <= kMaxCodePoint) {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    return false;
  }
  return true;
}

// One code point at `at` (advanced past it); false, `at` unchanged, when
// the bytes there are not one.
inline bool take_utf8(std::string_view s, std::size_t& at, char32_t& cp) {
  auto byte = [&](std::size_t i) { return static_cast<unsigned char>(s[i]); };
  unsigned char const lead = byte(at);
  std::size_t length = 0;
  char32_t min = 0;
  if (lead < 0x80) {
    cp = lead;
    ++at;
    return true;
  } else if ((lead & 0xE0) == 0xC0) {
    length = 2, min = 0x80, cp = lead & 0x1F;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3, min = 0x800, cp = lead & 0x0F;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 4, min = 0x10000, cp = lead & 0x07;
  } else {
    return false;
  }
  if (at + length > s.size()) return false;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return false;
    cp = (cp << 6) | (byte(at + i) & 0x3F);
  }
  if (cp < min || cp > kMaxCodePoint) return false;
  at += length;
  return true;
}

}  // namespace qbfs::archive
