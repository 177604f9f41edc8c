// Character folding and the literal prefix comparison shared by the exported
// comparer and the matching engine. Kept inline so the engine's inner search
// loop does not go through the library's exported (interposable) entry.
#pragma once

#include <cctype>
#include <climits>
#include <cstdint>
#include <cstdio>

namespace qbfsys {
namespace filespec {

// The C library's tolower, restricted to the values it is defined for;
// every other wide character is already its own lower case for it.
inline wchar_t lib_tolower(wchar_t c) noexcept {
  if (c == EOF || (c >= 0 && c <= UCHAR_MAX)) {
    return static_cast<wchar_t>(std::tolower(static_cast<int>(c)));
  }
  return c;
}

// Lower-case table of the "C" locale when it folds 'A'..'Z' to 'a'..'z' and
// leaves every other value alone (null otherwise, or without the GNU C
// library). That table is static data of the library, so its address stays
// meaningful for the life of the process.
const std::int32_t* ascii_fold_table() noexcept;

// The same mapping for a run of characters. With the GNU C library, the
// table that its tolower reads for the calling thread's locale is fetched
// once, instead of one library call (and locale lookup) per character.
class Folder {
 public:
#ifdef __GLIBC__
  Folder() noexcept : table_(*__ctype_tolower_loc()) {}
  wchar_t operator()(wchar_t c) const noexcept {
    return (c == EOF || (c >= 0 && c <= UCHAR_MAX)) ? static_cast<wchar_t>(table_[c]) : c;
  }
  // True when only 'A'..'Z' change: then exactly 'x' and 'X' fold to a
  // lower-case ASCII letter 'x', and any other value has itself alone.
  bool ascii_only() const noexcept { return table_ == ascii_fold_table(); }
  // True when both fold through the same table.
  bool same_as(Folder const& other) const noexcept { return table_ == other.table_; }

 private:
  const std::int32_t* table_;
#else
  wchar_t operator()(wchar_t c) const noexcept { return lib_tolower(c); }
  bool ascii_only() const noexcept { return false; }
  // The library folds through no table we can compare, so never.
  bool same_as(Folder const&) const noexcept { return false; }
#endif
};

// Leading characters of `text` that match `pattern`, at most `count`.
// '?' matches any real character unless `literal`; a '?' facing the
// terminator reports one less than matched so far.
inline int literal_prefix(const wchar_t* pattern, const wchar_t* text, int count,
                          int caseSensitive, int literal, Folder const& fold) noexcept {
  for (int i = 0; i < count; ++i) {
    const wchar_t p = pattern[i];
    const wchar_t t = text[i];
    if (p == t) continue;
    if (!caseSensitive && fold(p) == fold(t)) continue;
    if (literal || p != L'?') return i;
    if (t == L'\0') return i - 1;
  }
  return count;
}

// True when the counted string (s, n) is exactly `lit` (len characters),
// with or without one trailing terminator inside the count.
inline bool counted_is(const wchar_t* s, int n, const wchar_t* lit, int len) noexcept {
  if (n != len && !(n == len + 1 && s[len] == L'\0')) return false;
  for (int i = 0; i < len; ++i) {
    if (s[i] != lit[i]) return false;
  }
  return true;
}

}  // namespace filespec
}  // namespace qbfsys
