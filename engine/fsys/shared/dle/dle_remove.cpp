// Removing elements with their subtrees: DLE_RemoveRecurse, DLE_Remove.
#include <qbfsys/dle.h>
#include <qbfsys/registry.h>

#include "fs_registry_access.h"

FS_STATUS DLE_RemoveRecurse(GENERIC_DLE* dle, int force) {
  if (dle == nullptr) return 0;
  FS_STATUS child_result = 0;
  _Q_ELEM* next = nullptr;
  for (_Q_ELEM* e = QueueHead(&dle->child_q); e != nullptr; e = next) {
    next = e->q_next;  // read first: the child is gone after the call
    if (DLE_RemoveRecurse(reinterpret_cast<GENERIC_DLE*>(e), force) == 1) child_result = 1;
  }
  if (force == 0 && child_result == 1) return 1;

  // The owning file system unlinks and frees the element; what it returns is
  // not looked at.
  unsigned index = DLE_FsysIndex(dle);
  if (FS_DleBase* object = fsys::object_of(index)) {
    object->RemoveDLE(dle);
  } else if (index < FS_MAX_FSYS) {
    if (FS_SLOT_RemoveDLE remove = fsys::table_of(index).RemoveDLE) remove(dle);
  }
  return child_result;
}

FS_STATUS DLE_Remove(HEAD_DLE* /*head*/, GENERIC_DLE* dle) {
  DLE_RemoveRecurse(dle, 0);
  return 0;
}
