// FS_CreateTempDLE: a file system builds a temporary DLE for a name.
#include <qbfsys/machine.h>
#include <qbfsys/registry.h>

#include "fs_registry_access.h"

FS_STATUS FS_CreateTempDLE(QB_CFG* cfg, wchar_t const* name, HEAD_DLE* head, int kind,
                           GENERIC_DLE** out) {
  if (out == nullptr) return FS_ERR_BAD_PARAMETER;
  *out = nullptr;
  FS_STATUS status = FS_ERR_NOT_SUPPORTED;
  for (unsigned i = 0; i < FS_MAX_FSYS; ++i) {
    FS_STATUS result;
    if (FS_DleBase* object = fsys::object_of(i)) {
      result = object->CreateTempDLE(cfg, name, head, kind, out);
      if (result == FS_ERR_UNIMPLEMENTED) continue;  // the object does not offer it
    } else if (FS_SLOT_CreateTempDLE create = fsys::table_of(i).CreateTempDLE) {
      result = create(cfg, name, head, kind, out);
    } else {
      continue;
    }
    if (result == FS_SUCCESS && *out != nullptr) return FS_SUCCESS;
    *out = nullptr;
    status = result == FS_SUCCESS ? FS_ERR_NOT_SUPPORTED : result;
  }
  return status;
}
