// Access to the registry for the layer's own code: the table of an index and
// the DLE-level dispatch rule (the per-index object first, then the slot).
#pragma once
#include <qbfsys/registry.h>

namespace fsys {

// The table of file system `index` (0..50); no range check.
inline _FUNC_LIST& table_of(unsigned index) {
  static _FUNC_LIST* tables = nullptr;  // cached as each client does
  if (tables == nullptr) get_func_tabs(&tables);
  return tables[index];
}

// The per-index object of `index` (0..50) without the range message.
FS_DleBase* object_of(unsigned index);

}  // namespace fsys
