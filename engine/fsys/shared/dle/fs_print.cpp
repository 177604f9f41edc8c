// Helpers for the layer's fixed diagnostics.
#include "fs_print.h"

#include <cwchar>

#include <qbhost/strings.h>

namespace fsys {

std::string narrow_for_print(wchar_t const* text) {
  if (text == nullptr) return std::string("(null)");
  wcstring wide(text);
  return wide.to_utf8();
}

}  // namespace fsys
