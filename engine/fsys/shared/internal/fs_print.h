// The layer's fixed diagnostics, printed through the host at level 0.
#pragma once
#include <string>

#include <qbhost/zprintf.h>

namespace fsys {

// "fstable: Bad Parameter at line number %d"
inline void print_bad_parameter(int line) {
  QB_Zprintf(0, L"fstable: Bad Parameter at line number %d", line);
}

// A wide string for messages whose format takes "%s": the host's printf
// family reads "%s" as narrow text, so wide names are passed as UTF-8.
std::string narrow_for_print(wchar_t const* text);

}  // namespace fsys
