#include "archive_names.h"

#include <cstdint>
#include <cstdio>

namespace qbfs::archive {
namespace {

constexpr char32_t kMaxCodePoint = 0x10FFFF;
constexpr char32_t kByteStandInFirst = 0xDC80;
constexpr char32_t kByteStandInLast = 0xDCFF;

bool acceptable_component(std::wstring const& c) {
  return !c.empty() && c != L"." && c != L".." && c.find(L'/') == std::wstring::npos &&
         c.find(L'\0') == std::wstring::npos;
}

bool put_utf8(char32_t cp, std::string& out) {
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

// One code point at `at`, shortest form only (surrogates allowed: they are
// how byte stand-ins travel); false for anything else.
bool take_utf8(std::string const& s, std::size_t& at, char32_t& cp) {
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

void show(char32_t cp, std::string& out) {
  char hex[8];
  if (cp >= kByteStandInFirst && cp <= kByteStandInLast) {
    std::snprintf(hex, sizeof hex, "\\x%02X", static_cast<unsigned>(cp - 0xDC00));
    out += hex;
  } else if (cp < 0x20 || cp == 0x7F || (cp >= 0xD800 && cp <= 0xDFFF)) {
    std::snprintf(hex, sizeof hex, "\\x%02X", static_cast<unsigned>(cp & 0xFF));
    out += hex;
  } else {
    put_utf8(cp, out);
  }
}

}  // namespace

bool encode_path(Components const& components, std::string& out) {
  out.clear();
  std::size_t characters = 0;
  for (std::wstring const& c : components) characters += c.size() + 1;
  out.reserve(characters);  // the size of an ASCII path: one allocation for most
  for (std::wstring const& c : components) {
    if (!acceptable_component(c)) return false;
    if (!out.empty()) out += '/';
    for (wchar_t ch : c)
      if (!put_utf8(static_cast<char32_t>(ch), out)) return false;
  }
  return !components.empty();
}

bool decode_path(std::string const& path, Components& out, std::string& why) {
  out.assign(1, std::wstring());
  if (path.empty()) {
    why = "the path is empty";
    return false;
  }
  if (path.front() == '/') {
    why = "the path is absolute";
    return false;
  }
  // Each component is given room for its bytes, at least its characters,
  // instead of growing a character at a time.
  auto room = [&](std::size_t from) {
    std::size_t const slash = path.find('/', from);
    out.back().reserve((slash == std::string::npos ? path.size() : slash) - from);
  };
  room(0);
  for (std::size_t at = 0; at < path.size();) {
    char32_t cp = 0;
    if (!take_utf8(path, at, cp)) {
      why = "the path is not well-formed UTF-8";
      return false;
    }
    if (cp == U'/') {
      out.emplace_back();
      room(at);
    } else {
      out.back() += static_cast<wchar_t>(cp);
    }
  }
  for (std::wstring const& c : out) {
    if (!acceptable_component(c)) {
      why = c.empty() ? "the path has an empty component"
            : c.find(L'\0') != std::wstring::npos ? "the path holds a NUL character"
                                                  : "the path climbs with \"..\" or \".\"";
      return false;
    }
  }
  return true;
}

std::string display_path(std::string const& path) {
  std::string out;
  for (std::size_t at = 0; at < path.size();) {
    char32_t cp = 0;
    if (take_utf8(path, at, cp)) {
      show(cp, out);
    } else {
      show(static_cast<unsigned char>(path[at]) | 0xDC00, out);
      ++at;
    }
  }
  return out;
}

std::string display_path(Components const& components) {
  std::string out;
  for (std::wstring const& c : components) {
    if (!out.empty()) out += '/';
    for (wchar_t ch : c) show(static_cast<char32_t>(ch), out);
  }
  return out;
}

}  // namespace qbfs::archive
