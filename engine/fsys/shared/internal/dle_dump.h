// The tree dump (not part of the layer's interface).
#pragma once
#include <qbfsys/dle.h>

namespace fsys {
// Prints the star line, the title, every element (hidden ones included, each
// subtree indented by 4 more spaces, at most 154) and "End of List".
void dump_dle_tree(HEAD_DLE const* head, wchar_t const* title);
}  // namespace fsys
