// tolower64: ASCII letters fold the same in every locale (a locale may map
// 'I' elsewhere); everything else is left to the C library.
#include <qbfsys/fs_filespec.h>

#include "filespec_literal.h"

wchar_t tolower64(wchar_t c) noexcept {
  if (c >= L'a' && c <= L'z') return c;
  if (c >= L'A' && c <= L'Z') return static_cast<wchar_t>(c + 32);
  return qbfsys::filespec::lib_tolower(c);
}
