// DLE_PrintTree: the layer's tree dump, offered to hosts.
#include <qbfsys/dle.h>

#include "../internal/dle_dump.h"

void DLE_PrintTree(HEAD_DLE const* head, wchar_t const* title) {
  fsys::dump_dle_tree(head, title != nullptr ? title : L"");
}
