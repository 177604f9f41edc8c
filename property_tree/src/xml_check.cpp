#include "xml_check.h"

#include <algorithm>
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

constexpr unsigned long kBeyondUnicode = 0x110000;

bool is_digit_of(char c, bool hex) {
  if (c >= '0' && c <= '9') return true;
  return hex && ((c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'));
}

unsigned digit_value(char c) {
  if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a' + 10);
  return static_cast<unsigned>(c - 'A' + 10);
}

// The reference that starts at the '&' `amp` in [amp, last): empty when it
// is acceptable or malformed in a way the parser reports itself (a missing
// ';' after digits).
std::string check_reference(char const* amp, char const* last, char const* text) {
  char const* q = amp + 1;
  if (q < last && *q == '#') {
    ++q;
    bool const hex = q < last && *q == 'x';
    if (hex) ++q;
    unsigned long const radix = hex ? 16 : 10;
    // Saturates above the Unicode range: a long digit string must not wrap
    // round to an allowed character.
    unsigned long code = 0;
    std::size_t digits = 0;
    for (; q < last && is_digit_of(*q, hex); ++q, ++digits)
      code = std::min<unsigned long>(code * radix + digit_value(*q), kBeyondUnicode);
    if (q == last || *q != ';') return std::string();
    if (digits == 0 || !is_xml_char(code)) return "invalid numeric character entity";
    return std::string();
  }
  for (char const* entity : {"amp;", "lt;", "gt;", "quot;", "apos;"})
    if (starts(q, last, entity)) return std::string();
  return "'&' at byte offset " + std::to_string(amp - text) +
         " starts no character or entity reference";
}

std::string check_references(char const* p, char const* last, char const* text) {
  while (p < last) {
    char const* amp =
        static_cast<char const*>(std::memchr(p, '&', static_cast<std::size_t>(last - p)));
    if (amp == nullptr) break;
    std::string problem = check_reference(amp, last, text);
    if (!problem.empty()) return problem;
    p = amp + 1;
  }
  return std::string();
}
}  // namespace

std::string check_markup(char const* text, std::size_t size, unsigned limit) {
  char const* p = text;
  char const* last = text + size;
  unsigned depth = 0;
  while (p < last) {
    char const* lt =
        static_cast<char const*>(std::memchr(p, '<', static_cast<std::size_t>(last - p)));
    std::string problem = check_references(p, lt != nullptr ? lt : last, text);
    if (!problem.empty()) return problem;
    if (lt == nullptr) break;
    p = lt;
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
      // (a quoted value is checked for references and skipped whole).
      char const* name = ++p;
      while (p < last && *p != '>') {
        if (*p == '"' || *p == '\'') {
          char const* close =
              static_cast<char const*>(std::memchr(p + 1, *p, static_cast<std::size_t>(last - p - 1)));
          char const* value_end = close != nullptr ? close : last;
          problem = check_references(p + 1, value_end, text);
          if (!problem.empty()) return problem;
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

namespace {
constexpr std::uint64_t kHighBits = 0x8080808080808080ULL;
constexpr std::uint64_t kSpaces = 0x2020202020202020ULL;

std::string not_allowed(std::size_t offset) {
  return "character not allowed in XML at byte offset " + std::to_string(offset);
}

bool is_allowed_control(unsigned char c) { return c == '\t' || c == '\n' || c == '\r'; }
}  // namespace

std::string check_characters(char const* text, std::size_t size) {
  unsigned char const* s = reinterpret_cast<unsigned char const*>(text);
  std::size_t i = 0;
  while (i < size) {
    // ASCII runs, eight bytes at a time; a run with a byte below 0x20 (a
    // line break or a tab, mostly) is looked at byte by byte.
    while (size - i >= 8) {
      std::uint64_t chunk;
      std::memcpy(&chunk, s + i, 8);
      if ((chunk & kHighBits) != 0) break;
      if (((chunk - kSpaces) & ~chunk & kHighBits) != 0) {
        for (std::size_t k = 0; k < 8; ++k)
          if (s[i + k] < 0x20 && !is_allowed_control(s[i + k])) return not_allowed(i + k);
      }
      i += 8;
    }
    if (i >= size) break;
    unsigned char c = s[i];
    if (c < 0x80) {
      if (c < 0x20 && !is_allowed_control(c)) return not_allowed(i);
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
    if (!is_xml_char(cp)) return not_allowed(i);
    i += n + 1;
  }
  return std::string();
}

}  // namespace property_tree_details
