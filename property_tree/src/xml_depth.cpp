#include "xml_depth.h"

#include <cstdint>
#include <cstring>

namespace property_tree_details {

namespace {
// Position just after `end` found from `p`, or `last` when it is missing.
char const* skip_past(char const* p, char const* last, char const* end) {
  std::size_t n = std::strlen(end);
  while (p < last) {
    char const* hit = static_cast<char const*>(std::memchr(p, end[0], static_cast<std::size_t>(last - p)));
    if (hit == nullptr) return last;
    if (static_cast<std::size_t>(last - hit) >= n && std::memcmp(hit, end, n) == 0) return hit + n;
    p = hit + 1;
  }
  return last;
}

bool starts(char const* p, char const* last, char const* prefix) {
  std::size_t n = std::strlen(prefix);
  return static_cast<std::size_t>(last - p) >= n && std::memcmp(p, prefix, n) == 0;
}
}  // namespace

std::string check_xml_depth(char const* text, std::size_t size, unsigned limit) {
  char const* p = text;
  char const* last = text + size;
  unsigned depth = 0;
  while (p < last) {
    p = static_cast<char const*>(std::memchr(p, '<', static_cast<std::size_t>(last - p)));
    if (p == nullptr) break;
    char const next = last - p > 1 ? p[1] : '\0';
    if (next == '/') {
      if (depth > 0) --depth;
      char const* gt = static_cast<char const*>(std::memchr(p + 2, '>', static_cast<std::size_t>(last - p - 2)));
      p = gt != nullptr ? gt + 1 : last;
    } else if (next == '?') {
      p = skip_past(p + 2, last, "?>");
    } else if (next == '!') {
      if (starts(p, last, "<!--")) p = skip_past(p + 4, last, "-->");
      else if (starts(p, last, "<![CDATA[")) p = skip_past(p + 9, last, "]]>");
      else p = skip_past(p + 2, last, ">");
    } else {
      // An element start tag: find its end outside quoted attribute values
      // (a quoted value is skipped whole).
      char const* name = ++p;
      while (p < last && *p != '>') {
        if (*p == '"' || *p == '\'') {
          char const* close =
              static_cast<char const*>(std::memchr(p + 1, *p, static_cast<std::size_t>(last - p - 1)));
          p = close != nullptr ? close + 1 : last;
        } else {
          ++p;
        }
      }
      char previous = p > name ? p[-1] : 0;
      if (p < last) ++p;
      if (previous != '/' && ++depth > limit)
        return "XML elements nested deeper than " + std::to_string(limit) +
               " levels are not supported";
    }
  }
  return std::string();
}

std::string check_utf8(char const* text, std::size_t size) {
  unsigned char const* s = reinterpret_cast<unsigned char const*>(text);
  std::size_t i = 0;
  while (i < size) {
    // ASCII runs, eight bytes at a time.
    while (size - i >= 8) {
      std::uint64_t chunk;
      std::memcpy(&chunk, s + i, 8);
      if ((chunk & 0x8080808080808080ULL) != 0) break;
      i += 8;
    }
    if (i >= size) break;
    unsigned char c = s[i];
    if (c < 0x80) {
      ++i;
      continue;
    }
    std::size_t n;
    unsigned long cp;
    if (c >= 0xC2 && c <= 0xDF) {
      n = 1;
      cp = c & 0x1F;
    } else if (c >= 0xE0 && c <= 0xEF) {
      n = 2;
      cp = c & 0x0F;
    } else if (c >= 0xF0 && c <= 0xF4) {
      n = 3;
      cp = c & 0x07;
    } else {
      return "invalid UTF-8 sequence at byte offset " + std::to_string(i);
    }
    if (size - i <= n) return "truncated UTF-8 sequence at byte offset " + std::to_string(i);
    for (std::size_t k = 1; k <= n; ++k) {
      if ((s[i + k] & 0xC0) != 0x80) return "invalid UTF-8 sequence at byte offset " + std::to_string(i);
      cp = (cp << 6) | (s[i + k] & 0x3F);
    }
    if ((n == 2 && cp < 0x800) || (n == 3 && cp < 0x10000) || cp > 0x10FFFF ||
        (cp >= 0xD800 && cp <= 0xDFFF))
      return "invalid UTF-8 sequence at byte offset " + std::to_string(i);
    i += n + 1;
  }
  return std::string();
}

}  // namespace property_tree_details
