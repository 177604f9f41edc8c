#include "conversions.h"

#include <charconv>
#include <cstdio>
#include <cstring>
#include <limits>
#include <locale>
#include <system_error>
#include <langinfo.h>

namespace property_tree_details {

source null_source() noexcept {
  source s;
  s.is_null = true;
  return s;
}

source number_source(fs_property_type kind, long double v) noexcept {
  source s;
  s.kind = kind;
  s.number = v;
  return s;
}

source text_source(fs_property_type kind, wchar_t const* text, std::size_t size) noexcept {
  source s;
  s.kind = kind;
  s.text = text;
  s.text_size = size;
  return s;
}

source guid_source(_SSGUID const& g) noexcept {
  source s;
  s.kind = fs_property_type::guid;
  s.guid = &g;
  return s;
}

source bin_source(unsigned char const* bytes, std::size_t size) {
  if (bytes == nullptr && size != 0) throw std::invalid_argument("null binary data");
  source s;
  s.kind = fs_property_type::bin;
  s.bytes = bytes;
  s.byte_count = size;
  return s;
}

source tree_source(fs_property_tree const* tree) noexcept {
  source s;
  s.kind = fs_property_type::tree;
  s.tree = tree;
  return s;
}

source input(wchar_t const* text) {
  if (text == nullptr) throw std::invalid_argument("null string pointer");
  return text_source(fs_property_type::str, text, std::wcslen(text));
}

void refuse(char const* from, char const* to) {
  std::string message = "Type conversion error: can not convert ";
  message += from;
  message += " to ";
  message += to;
  throw type_conversion_error(message);
}

void refuse_kind(fs_property_type from, fs_property_type target) {
  kind_info const& t = info(target);
  if (from == fs_property_type::tree) refuse("a tree", (std::string(t.tree_target) + " type").c_str());
  switch (target) {
    case fs_property_type::tree:
      refuse(info(from).tree_source, "a tree type");
    case fs_property_type::xml:
      refuse(info(from).plain, "xml doc");
    case fs_property_type::guid:
      refuse(info(from).guid_source, "guid");
    case fs_property_type::str:
      if (from == fs_property_type::bin) refuse("binary", "string");
      refuse("uuid", "string");
    case fs_property_type::boolean:
      if (from == fs_property_type::bin) refuse("binary", "bool");
      refuse("uuid", "bool");
    default:
      refuse(info(from).plain, t.plain);
  }
}

namespace {
bool is_digit(char c) noexcept { return c >= '0' && c <= '9'; }

// The stream behind the lexical conversion reads with the global locale; only
// the classic one is known to agree with from_chars (no grouping, '.').
bool classic_numbers() noexcept {
  try {
    return std::locale() == std::locale::classic();
  } catch (...) {
    return false;
  }
}

template <class T>
bool plain_integer(char const* text, std::size_t size, T* out) noexcept {
  char const* end = text + size;
  char const* p = text;
  if (std::is_signed<T>::value && p != end && *p == '-') ++p;
  if (p == end) return false;
  for (char const* q = p; q != end; ++q)
    if (!is_digit(*q)) return false;
  if (!classic_numbers()) return false;
  T v{};
  std::from_chars_result r = std::from_chars(text, end, v);
  if (r.ec != std::errc() || r.ptr != end) return false;
  *out = v;
  return true;
}

// Sign, digits with at most one '.', an exponent with digits: what both the
// stream and from_chars read the same way (no '+', no "inf", no hex).
template <class T>
bool plain_floating(char const* text, std::size_t size, T* out) noexcept {
  char const* end = text + size;
  char const* p = text;
  if (p != end && *p == '-') ++p;
  bool digits = false;
  bool nonzero = false;
  for (; p != end && is_digit(*p); ++p) {
    digits = true;
    nonzero = nonzero || *p != '0';
  }
  if (p != end && *p == '.') {
    for (++p; p != end && is_digit(*p); ++p) {
      digits = true;
      nonzero = nonzero || *p != '0';
    }
  }
  if (!digits) return false;
  if (p != end && (*p == 'e' || *p == 'E')) {
    ++p;
    if (p != end && (*p == '-' || *p == '+')) ++p;
    if (p == end) return false;
    for (; p != end; ++p)
      if (!is_digit(*p)) return false;
  }
  if (p != end || !classic_numbers()) return false;
  T v{};
  std::from_chars_result r = std::from_chars(text, end, v);
  if (r.ec != std::errc() || r.ptr != end) return false;
  // Underflow and subnormal results are left to the general path.
  if (v == 0 ? nonzero : !std::isnormal(v)) return false;
  *out = v;
  return true;
}

template <class T>
std::size_t format_integer(T v, char* buf) noexcept {
  return static_cast<std::size_t>(std::to_chars(buf, buf + 63, v).ptr - buf);
}
std::size_t finish(int n) noexcept { return n < 0 ? 0 : static_cast<std::size_t>(n); }
}  // namespace

bool parse_plain_number(char const* text, std::size_t size, long* out) noexcept {
  return plain_integer(text, size, out);
}
bool parse_plain_number(char const* text, std::size_t size, unsigned long* out) noexcept {
  return plain_integer(text, size, out);
}
bool parse_plain_number(char const* text, std::size_t size, int* out) noexcept {
  return plain_integer(text, size, out);
}
bool parse_plain_number(char const* text, std::size_t size, unsigned int* out) noexcept {
  return plain_integer(text, size, out);
}
bool parse_plain_number(char const* text, std::size_t size, long long* out) noexcept {
  return plain_integer(text, size, out);
}
bool parse_plain_number(char const* text, std::size_t size, unsigned long long* out) noexcept {
  return plain_integer(text, size, out);
}
bool parse_plain_number(char const* text, std::size_t size, double* out) noexcept {
  return plain_floating(text, size, out);
}
bool parse_plain_number(char const* text, std::size_t size, float* out) noexcept {
  return plain_floating(text, size, out);
}

std::size_t format_number(long v, char* buf) noexcept { return format_integer(v, buf); }
std::size_t format_number(unsigned long v, char* buf) noexcept { return format_integer(v, buf); }
std::size_t format_number(int v, char* buf) noexcept { return format_integer(v, buf); }
std::size_t format_number(unsigned int v, char* buf) noexcept { return format_integer(v, buf); }
std::size_t format_number(long long v, char* buf) noexcept { return format_integer(v, buf); }
std::size_t format_number(unsigned long long v, char* buf) noexcept {
  return format_integer(v, buf);
}
namespace {
// "%.*g" of a double. to_chars with a precision writes exactly what printf
// writes in the C locale, several times faster; printf itself keeps the
// cases where they could differ (another decimal point, inf and nan).
std::size_t format_g(double v, int precision, char* buf) noexcept {
  if (std::isfinite(v)) {
    char const* radix = nl_langinfo(RADIXCHAR);
    if (radix != nullptr && radix[0] == '.' && radix[1] == '\0') {
      std::to_chars_result r = std::to_chars(buf, buf + 63, v, std::chars_format::general, precision);
      if (r.ec == std::errc()) return static_cast<std::size_t>(r.ptr - buf);
    }
  }
  return finish(std::snprintf(buf, 64, "%.*g", precision, v));
}
}  // namespace

std::size_t format_number(float v, char* buf) noexcept {
  return format_g(static_cast<double>(v), std::numeric_limits<float>::max_digits10, buf);
}
std::size_t format_number(double v, char* buf) noexcept {
  return format_g(v, std::numeric_limits<double>::max_digits10, buf);
}
std::size_t format_number(long double v, char* buf) noexcept {
  return finish(
      std::snprintf(buf, 64, "%.*Lg", std::numeric_limits<long double>::max_digits10, v));
}
std::size_t format_number(bool v, char* buf) noexcept {
  buf[0] = v ? '1' : '0';
  return 1;
}

void format_guid(_SSGUID const& g, char* buf) noexcept {
  static char const hex[] = "0123456789ABCDEF";
  char* p = buf;
  auto put = [&p](unsigned long long v, int digits) {
    for (int i = digits - 1; i >= 0; --i) *p++ = hex[(v >> (4 * i)) & 0xF];
  };
  *p++ = '{';
  put(g.Data1, 8);
  *p++ = '-';
  put(g.Data2, 4);
  *p++ = '-';
  put(g.Data3, 4);
  *p++ = '-';
  put(g.Data4[0], 2);
  put(g.Data4[1], 2);
  *p++ = '-';
  for (int i = 2; i < 8; ++i) put(g.Data4[i], 2);
  *p++ = '}';
}

bool parse_guid(char const* text, std::size_t size, _SSGUID* out) noexcept {
  if (size == guid_text_size && text[0] == '{' && text[guid_text_size - 1] == '}') {
    ++text;
    size -= 2;
  }
  if (size != guid_text_size - 2) return false;
  unsigned char nibbles[32];
  std::size_t n = 0;
  for (std::size_t i = 0; i < size; ++i) {
    char c = text[i];
    if (i == 8 || i == 13 || i == 18 || i == 23) {
      if (c != '-') return false;
      continue;
    }
    if (c >= '0' && c <= '9') nibbles[n++] = static_cast<unsigned char>(c - '0');
    else if (c >= 'A' && c <= 'F') nibbles[n++] = static_cast<unsigned char>(c - 'A' + 10);
    else if (c >= 'a' && c <= 'f') nibbles[n++] = static_cast<unsigned char>(c - 'a' + 10);
    else return false;
  }
  auto take = [&nibbles](std::size_t first, std::size_t count) {
    unsigned long long v = 0;
    for (std::size_t i = 0; i < count; ++i) v = (v << 4) | nibbles[first + i];
    return v;
  };
  _SSGUID g{};
  g.Data1 = static_cast<unsigned int>(take(0, 8));
  g.Data2 = static_cast<unsigned short>(take(8, 4));
  g.Data3 = static_cast<unsigned short>(take(12, 4));
  for (std::size_t i = 0; i < 8; ++i) g.Data4[i] = static_cast<unsigned char>(take(16 + 2 * i, 2));
  *out = g;
  return true;
}

std::string ascii_of(wchar_t const* text, std::size_t size, std::type_info const& target) {
  std::string narrow(size, '\0');
  for (std::size_t i = 0; i < size; ++i) {
    if (text[i] <= 0 || text[i] > 0x7F) throw boost::bad_lexical_cast(typeid(std::wstring), target);
    narrow[i] = static_cast<char>(text[i]);
  }
  return narrow;
}

namespace {
template <class T>
std::wstring widen_number(long double v) {
  char buf[64];
  std::size_t n = format_number(static_cast<T>(v), buf);
  return std::wstring(buf, buf + n);
}
}  // namespace

std::wstring to_text(source const& s) {
  if (s.is_null) return std::wstring();
  switch (s.kind) {
    case fs_property_type::str:
    case fs_property_type::xml: return std::wstring(s.text, s.text_size);
    case fs_property_type::lng: return widen_number<long>(s.number);
    case fs_property_type::dbl: return widen_number<double>(s.number);
    case fs_property_type::ulng: return widen_number<unsigned long>(s.number);
    case fs_property_type::int32: return widen_number<int>(s.number);
    case fs_property_type::uint32: return widen_number<unsigned int>(s.number);
    case fs_property_type::int64: return widen_number<long long>(s.number);
    case fs_property_type::uint64: return widen_number<unsigned long long>(s.number);
    case fs_property_type::ldbl: return widen_number<long double>(s.number);
    case fs_property_type::flt: return widen_number<float>(s.number);
    case fs_property_type::boolean: return s.number != 0 ? L"1" : L"0";
    default: refuse_kind(s.kind, fs_property_type::str);
  }
}

bool to_bool(source const& s) {
  if (s.is_null) return false;
  if (is_numeric(s.kind) || s.kind == fs_property_type::boolean) return from_number<bool>(s.number);
  if (s.kind == fs_property_type::str || s.kind == fs_property_type::xml) {
    std::string narrow = ascii_of(s.text, s.text_size, typeid(bool));
    return parse_number<bool>(narrow.data(), narrow.size());
  }
  refuse_kind(s.kind, fs_property_type::boolean);
}

_SSGUID to_guid(source const& s) {
  _SSGUID g{};
  if (s.is_null) return g;
  if (s.kind == fs_property_type::guid) return *s.guid;
  if (s.kind == fs_property_type::str || s.kind == fs_property_type::xml) {
    std::string narrow = ascii_of(s.text, s.text_size, typeid(_SSGUID));
    if (!parse_guid(narrow.data(), narrow.size(), &g))
      throw boost::bad_lexical_cast(typeid(std::wstring), typeid(_SSGUID));
    return g;
  }
  refuse_kind(s.kind, fs_property_type::guid);
}

void to_bin(source const& s, std::vector<unsigned char>& out) {
  if (s.is_null) {
    out.clear();
  } else if (s.kind == fs_property_type::bin) {
    out.assign(s.bytes, s.bytes + s.byte_count);
  } else if (s.kind == fs_property_type::guid) {
    unsigned char const* p = reinterpret_cast<unsigned char const*>(s.guid);
    out.assign(p, p + sizeof(_SSGUID));
  } else {
    refuse_kind(s.kind, fs_property_type::bin);
  }
}

std::wstring to_xml(source const& s) {
  if (s.is_null) return std::wstring();
  if (s.kind == fs_property_type::str || s.kind == fs_property_type::xml)
    return std::wstring(s.text, s.text_size);
  refuse_kind(s.kind, fs_property_type::xml);
}

void check_tree_source(source const& s) {
  if (!s.is_null && s.kind != fs_property_type::tree) refuse_kind(s.kind, fs_property_type::tree);
}

}  // namespace property_tree_details
