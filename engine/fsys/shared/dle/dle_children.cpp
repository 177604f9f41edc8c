// Children of a DLE: DLE_AddChildren, CheckChildren, and the locality
// answers they rely on.
#include <qbfsys/dle.h>
#include <qbfsys/handles.h>
#include <qbfsys/registry.h>

#include "fs_print.h"
#include "fs_registry_access.h"

bool FS_IsLocalMachine(wcstring const& /*name*/) { return true; }

std::uint32_t FS_IsLocalDLE(GENERIC_DLE* dle) {
  if (dle == nullptr) return 0;
  return (dle->status_flags & DLE_STATUS_MAYBE_REMOTE) == 0 ? 1u : 0u;
}

FS_STATUS DLE_AddChildren(GENERIC_DLE* dle, unsigned short fsIndex, QB_CFG* cfg) {
  if (dle == nullptr || cfg == nullptr) {
    fsys::print_bad_parameter(2418);
    return FS_ERR_BAD_PARAMETER;
  }
  if (fsIndex >= FS_MAX_FSYS) return FS_ERR_NOT_SUPPORTED;
  // What the file system's add-children returns is deliberately not passed on.
  if (FS_DleBase* object = fsys::object_of(fsIndex)) {
    object->AddChildren(dle, cfg);
    return FS_SUCCESS;
  }
  FS_SLOT_AddChildren add = fsys::table_of(fsIndex).AddChildren;
  if (add == nullptr) return FS_ERR_NOT_SUPPORTED;
  add(dle, cfg);
  return FS_SUCCESS;
}

std::uint32_t CheckChildren(GENERIC_DLE* dle, unsigned short flags) {
  if (dle == nullptr) return 0;
  std::uint32_t m = dle->flags2 & DLE_FLAGS2_INDEX23;
  if (m == DLE_FLAGS2_INDEX23 || (dle->type & DLE_TYPE_BYTE_MASK) != DLE_TYPE_LOCAL || dle->child_q.q_count == 0) return m;
  if (std::uint32_t local = FS_IsLocalDLE(dle)) return local;

  GENERIC_DLE* child = nullptr;
  FS_STATUS status = DLE_GetFirstChild(dle, &child, false);
  while (status == FS_SUCCESS) {
    std::uint32_t type = child->type & DLE_TYPE_BYTE_MASK;
    if ((child->flags2 & DLE_FLAGS2_INDEX23) == DLE_FLAGS2_INDEX23) {
      child->status_flags |= DLE_STATUS_UNAVAILABLE;
    } else if (type == DLE_TYPE_REMOTE_MACHINE) {
      if (child->state == DLE_STATE_UNREACHABLE && (flags & FS_ATTACH_ALLOW_REMOTE) == 0) child->status_flags |= DLE_STATUS_UNAVAILABLE;
    } else if (type != DLE_TYPE_LOCAL) {
      child->status_flags |= DLE_STATUS_UNAVAILABLE;
    }
    status = DLE_GetNext(&child, false);
  }
  return status;
}
