#include "archive_terminal_text.h"

#include <cstdio>

#include "archive_utf8.h"

namespace qbfs::archive {
namespace {

constexpr char32_t kLastC0 = 0x1F, kDelete = 0x7F;
constexpr char32_t kFirstC1 = 0x80, kLastC1 = 0x9F;
constexpr char32_t kArabicLetterMark = 0x061C;
constexpr char32_t kLeftToRightMark = 0x200E, kRightToLeftMark = 0x200F;
constexpr char32_t kFirstEmbedding = 0x202A, kLastEmbedding = 0x202E;  // LRE RLE PDF LRO RLO
constexpr char32_t kFirstIsolate = 0x2066, kLastIsolate = 0x2069;      // LRI RLI FSI PDI
constexpr char32_t kLineSeparator = 0x2028, kParagraphSeparator = 0x2029;
constexpr char32_t kFirstSurrogate = 0xD800, kLastSurrogate = 0xDFFF;
constexpr char32_t kByteStandInFirst = 0xDC80, kByteStandInLast = 0xDCFF;
constexpr char32_t kByteStandInBase = 0xDC00;

bool acted_on(char32_t cp) {
  return (cp >= kFirstC1 && cp <= kLastC1) || cp == kArabicLetterMark || cp == kLeftToRightMark ||
         cp == kRightToLeftMark || (cp >= kFirstEmbedding && cp <= kLastEmbedding) ||
         (cp >= kFirstIsolate && cp <= kLastIsolate) || cp == kLineSeparator || cp == kParagraphSeparator ||
         (cp >= kFirstSurrogate && cp <= kLastSurrogate);
}

void show_byte(unsigned byte, std::string& out) {
  char hex[8];
  std::snprintf(hex, sizeof hex, "\\x%02X", byte & 0xFFu);
  out += hex;
}

// One character of decoded text.
void show(char32_t cp, std::string& out) {
  char hex[16];
  if (cp >= kByteStandInFirst && cp <= kByteStandInLast) {
    show_byte(static_cast<unsigned>(cp - kByteStandInBase), out);
  } else if (cp <= kLastC0 || cp == kDelete) {
    show_byte(static_cast<unsigned>(cp), out);
  } else if (acted_on(cp)) {
    std::snprintf(hex, sizeof hex, "\\u%04X", static_cast<unsigned>(cp));
    out += hex;
  } else if (!put_utf8(cp, out)) {
    std::snprintf(hex, sizeof hex, "\\U%08X", static_cast<unsigned>(cp));
    out += hex;
  }
}

}  // namespace

std::string terminal_text(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    char32_t cp = 0;
    if (take_utf8(text, at, cp)) {
      show(cp, out);
    } else {
      show_byte(static_cast<unsigned char>(text[at]), out);
      ++at;
    }
  }
  return out;
}

std::string terminal_text(std::wstring_view text) {
  std::string out;
  out.reserve(text.size());
  // wchar_t is 32 bits here: each element is one code point, or a value
  // no code point has.
  for (wchar_t ch : text) show(static_cast<char32_t>(ch), out);
  return out;
}

}  // namespace qbfs::archive
