// FS_RemoveFileSys: de-initialises every file system and drops every module
// reference. The tables and order arrays are left as they are; the next
// FS_InitFileSys resets them.
#include <qbfsys/fs_init.h>

#include "fs_registry_access.h"
#include "module_exception.h"
#include <qbclass/debug_trace.h>
#include <qbfsys/registry.h>
#include <qbhost/zprintf.h>

namespace {
constexpr char kTracePath[] = "engine/fsys/shared/initfsys";
constexpr int kTraceLineDeinitThrew = 590;
}  // namespace

void FS_RemoveFileSys() {
  QB_Zprintf(0, L"FS_RemoveFileSys");
  for (unsigned i = 0; i < FS_MAX_FSYS; ++i) {
    // A module that throws here still loses its references like the others.
    try {
      if (FS_DleBase* object = get_DLE_fsysObjPtr(i)) {
        object->DeInitFileSys();
      } else if (FS_SLOT_DeInitFileSys deinit = fsys::table_of(i).DeInitFileSys) {
        deinit();
      }
    } catch (...) {
      qbclass::debug_trace(kTracePath, kTraceLineDeinitThrew,
                           "%s threw while de-initializing file system %d: %s",
                           fsys::module_name_of(i), i, fsys::current_exception_text());
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
