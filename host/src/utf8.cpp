// UTF-8 encoder and a strict decoder (no overlong forms, no surrogates, nothing
// above U+10FFFF); ill-formed input is measured as "maximal subparts" so that a
// caller substitutes one character per broken sequence, the way text editors
// and browsers do.
#include "utf8.h"

namespace qbhost_detail {

void append_utf8(std::string& out, char32_t c) {
  if ((c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF) c = kReplacement;
  if (c < 0x80) {
    out.push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (c >> 6)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (c >> 12)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (c >> 18)));
    out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  }
}

namespace {
char32_t scalar_of(wchar_t w) {
  auto c = static_cast<char32_t>(static_cast<std::uint32_t>(w));
  return (c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF ? kReplacement : c;
}
std::size_t utf8_length(char32_t c) { return c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4; }
}  // namespace

// Measured first, then written in place: long texts (whole XML documents)
// pass through here, and a push_back a byte costs more than the walk.
std::string encode_utf8(wchar_t const* text, std::size_t count) {
  std::string out;
  if (text == nullptr) return out;
  std::size_t bytes = 0;
  for (std::size_t i = 0; i < count; ++i) bytes += utf8_length(scalar_of(text[i]));
  out.resize(bytes);
  char* o = &out[0];
  for (std::size_t i = 0; i < count; ++i) {
    char32_t const c = scalar_of(text[i]);
    if (c < 0x80) {
      *o++ = static_cast<char>(c);
    } else if (c < 0x800) {
      *o++ = static_cast<char>(0xC0 | (c >> 6));
      *o++ = static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      *o++ = static_cast<char>(0xE0 | (c >> 12));
      *o++ = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      *o++ = static_cast<char>(0x80 | (c & 0x3F));
    } else {
      *o++ = static_cast<char>(0xF0 | (c >> 18));
      *o++ = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
      *o++ = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      *o++ = static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  return out;
}

int decode_utf8(unsigned char const* text, std::size_t size, char32_t& out) {
  unsigned char const lead = text[0];
  if (lead < 0x80) {
    out = lead;
    return 1;
  }
  int length;
  char32_t value;
  // The range allowed for the second byte excludes overlong forms, surrogates
  // and values above U+10FFFF.
  unsigned char low = 0x80, high = 0xBF;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
    value = lead & 0x1F;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    value = lead & 0x0F;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    value = lead & 0x07;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
  } else {
    return -1;
  }
  for (int i = 1; i < length; ++i) {
    if (static_cast<std::size_t>(i) >= size) return -i;
    unsigned char const b = text[i];
    if (i == 1 ? (b < low || b > high) : (b < 0x80 || b > 0xBF)) return -i;
    value = (value << 6) | (b & 0x3F);
  }
  out = value;
  return length;
}

}  // namespace qbhost_detail
