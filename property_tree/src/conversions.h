// Conversions between value kinds, and the text forms of values.
//
// A value offers itself as a `source` (a view of its kind and contents); the
// to_... functions turn a source into a target kind or refuse with the
// message of the pair. Numbers travel as long double, which holds every value
// of every numeric kind exactly, and are range-checked on the way out.
#pragma once
#include <cmath>
#include <cstddef>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>
#include <boost/lexical_cast.hpp>
#include <boost/numeric/conversion/cast.hpp>
#include <fs_property_tree_error.h>
#include "kind_table.h"

class fs_property_tree;

namespace property_tree_details {

struct source {
  fs_property_type kind = fs_property_type::str;
  bool is_null = false;                  // a null value: reads as defaults
  long double number = 0;                // numeric kinds and bool
  wchar_t const* text = nullptr;         // str and xml
  std::size_t text_size = 0;
  _SSGUID const* guid = nullptr;         // guid
  unsigned char const* bytes = nullptr;  // bin
  std::size_t byte_count = 0;
  fs_property_tree const* tree = nullptr;  // tree
};

source null_source() noexcept;
source number_source(fs_property_type kind, long double v) noexcept;
source text_source(fs_property_type kind, wchar_t const* text, std::size_t size) noexcept;
source guid_source(_SSGUID const& g) noexcept;
source bin_source(unsigned char const* bytes, std::size_t size);
source tree_source(fs_property_tree const* tree) noexcept;

// Sources for the argument types of the public operations.
source input(wchar_t const* text);
inline source input(long v) { return number_source(fs_property_type::lng, v); }
inline source input(double v) { return number_source(fs_property_type::dbl, v); }
inline source input(unsigned long v) { return number_source(fs_property_type::ulng, v); }
inline source input(int v) { return number_source(fs_property_type::int32, v); }
inline source input(unsigned int v) { return number_source(fs_property_type::uint32, v); }
inline source input(long long v) { return number_source(fs_property_type::int64, v); }
inline source input(unsigned long long v) { return number_source(fs_property_type::uint64, v); }
inline source input(long double v) { return number_source(fs_property_type::ldbl, v); }
inline source input(float v) { return number_source(fs_property_type::flt, v); }
inline source input(bool v) { return number_source(fs_property_type::boolean, v ? 1 : 0); }
inline source input(_SSGUID const& v) { return guid_source(v); }

// Throws type_conversion_error "Type conversion error: can not convert <from> to <to>".
[[noreturn]] void refuse(char const* from, char const* to);
// The refusal for any source kind that cannot become `target`.
[[noreturn]] void refuse_kind(fs_property_type from, fs_property_type target);

// Plain decimal text ("-12", "3.25e-4") read straight with from_chars when
// the result is certain to equal the lexical conversion's: the global locale
// reads numbers as the classic one does, the text is in the plain grammar,
// and the result is in range (floating results normal or an exact zero).
// False means "not decided here": the caller takes the general path, which
// also produces the exact error of the lexical conversion.
bool parse_plain_number(char const* text, std::size_t size, long* out) noexcept;
bool parse_plain_number(char const* text, std::size_t size, unsigned long* out) noexcept;
bool parse_plain_number(char const* text, std::size_t size, int* out) noexcept;
bool parse_plain_number(char const* text, std::size_t size, unsigned int* out) noexcept;
bool parse_plain_number(char const* text, std::size_t size, long long* out) noexcept;
bool parse_plain_number(char const* text, std::size_t size, unsigned long long* out) noexcept;
bool parse_plain_number(char const* text, std::size_t size, double* out) noexcept;
bool parse_plain_number(char const* text, std::size_t size, float* out) noexcept;

// Text forms (XML and lexical): numbers in decimal at full precision.
template <class T>
T parse_number(char const* text, std::size_t size) {
  T v{};
  if constexpr (!std::is_same<T, bool>::value && !std::is_same<T, long double>::value) {
    if (parse_plain_number(text, size, &v)) return v;
  }
  if constexpr (std::is_unsigned<T>::value && !std::is_same<T, bool>::value) {
    // The lexical conversion would wrap "-1" around; a negative text is no
    // unsigned number.
    if (size > 0 && text[0] == '-') throw boost::bad_lexical_cast(typeid(std::string), typeid(T));
  }
  if (!boost::conversion::try_lexical_convert<T>(text, size, v))
    throw boost::bad_lexical_cast(typeid(std::string), typeid(T));
  return v;
}
// Writes the decimal form of v into buf (at least 64 bytes); returns its length.
std::size_t format_number(long v, char* buf) noexcept;
std::size_t format_number(unsigned long v, char* buf) noexcept;
std::size_t format_number(int v, char* buf) noexcept;
std::size_t format_number(unsigned int v, char* buf) noexcept;
std::size_t format_number(long long v, char* buf) noexcept;
std::size_t format_number(unsigned long long v, char* buf) noexcept;
std::size_t format_number(float v, char* buf) noexcept;
std::size_t format_number(double v, char* buf) noexcept;
std::size_t format_number(long double v, char* buf) noexcept;
std::size_t format_number(bool v, char* buf) noexcept;

// GUID text: 38 characters with braces; parse accepts 36 or 38.
constexpr std::size_t guid_text_size = 38;
void format_guid(_SSGUID const& g, char* buf) noexcept;
bool parse_guid(char const* text, std::size_t size, _SSGUID* out) noexcept;

// Range-checked numeric conversion of a long double.
template <class T>
T from_number(long double v) {
  if constexpr (std::is_floating_point<T>::value) {
    if (!std::isfinite(v)) return static_cast<T>(v);
  } else {
    if (std::isnan(v)) throw boost::numeric::bad_numeric_cast();
  }
  return boost::numeric_cast<T>(v);
}

// Narrow copy of wide text that can only be a number; non-ASCII fails.
std::string ascii_of(wchar_t const* text, std::size_t size, std::type_info const& target);

template <class T>
T to_number(source const& s, fs_property_type target) {
  if (s.is_null) return T{};
  if (is_numeric(s.kind) || s.kind == fs_property_type::boolean) return from_number<T>(s.number);
  if (s.kind == fs_property_type::str || s.kind == fs_property_type::xml) {
    std::string narrow = ascii_of(s.text, s.text_size, typeid(T));
    return parse_number<T>(narrow.data(), narrow.size());
  }
  refuse_kind(s.kind, target);
}

std::wstring to_text(source const& s);
bool to_bool(source const& s);
_SSGUID to_guid(source const& s);
void to_bin(source const& s, std::vector<unsigned char>& out);
std::wstring to_xml(source const& s);
// Accepts a tree or null source, refuses every other kind.
void check_tree_source(source const& s);

}  // namespace property_tree_details
