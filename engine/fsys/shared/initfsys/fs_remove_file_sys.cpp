// FS_RemoveFileSys: de-initialises every file system and drops every module
// reference. The tables and order arrays are left as they are; the next
// FS_InitFileSys resets them.
#include <qbfsys/fs_init.h>

#include "fs_registry_access.h"
#include <qbfsys/registry.h>
#include <qbhost/zprintf.h>

void FS_RemoveFileSys() {
  QB_Zprintf(0, L"FS_RemoveFileSys");
  for (unsigned i = 0; i < FS_MAX_FSYS; ++i) {
    if (FS_DleBase* object = get_DLE_fsysObjPtr(i)) {
      object->DeInitFileSys();
    } else if (FS_SLOT_DeInitFileSys deinit = fsys::table_of(i).DeInitFileSys) {
      deinit();
    }
  }
  for (unsigned k = 0; k < dlls.size(); ++k) {
    RefPointer<DllInstance> record = std::move(dlls[k]);
    record.reset();
    if (k < FS_MAX_FSYS) set_DLE_fsysObjPtr(k, nullptr);
  }
}

void FS_BlockWaitForInitThreads(HEAD_DLE* /*head*/, int /*wait*/) {
  // Start-up runs no threads of its own; callers keep this call at the points
  // where they must not overlap with drive finding.
}
