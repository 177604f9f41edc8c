// ascii_fold_table: recognises the "C" locale's lower-case table, so that
// case-insensitive searches can look for a letter's two forms directly
// instead of folding every name character through the table.
#include <cstdint>

#include "filespec_literal.h"

#ifdef __GLIBC__
#include <locale.h>
#endif

namespace qbfsys {
namespace filespec {
namespace {

#ifdef __GLIBC__
// Checked entry by entry once: a library whose "C" table folded anything
// beyond 'A'..'Z' would simply never take the shortcut.
const std::int32_t* find_ascii_table() noexcept {
  locale_t c_locale = newlocale(LC_CTYPE_MASK, "C", static_cast<locale_t>(nullptr));
  if (c_locale == static_cast<locale_t>(nullptr)) return nullptr;
  const std::int32_t* table = c_locale->__ctype_tolower;
  // The table belongs to the library, not to the locale object.
  freelocale(c_locale);
  if (table == nullptr) return nullptr;
  for (int ch = EOF; ch <= UCHAR_MAX; ++ch) {
    const int expected = (ch >= 'A' && ch <= 'Z') ? ch + 32 : ch;
    if (table[ch] != expected) return nullptr;
  }
  return table;
}
#endif

}  // namespace

const std::int32_t* ascii_fold_table() noexcept {
#ifdef __GLIBC__
  static const std::int32_t* const table = find_ascii_table();
  return table;
#else
  return nullptr;
#endif
}

}  // namespace filespec
}  // namespace qbfsys
