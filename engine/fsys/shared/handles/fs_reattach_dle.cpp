// FS_ReattachDLE: binds the same handle pointer to another DLE, keeping the
// old binding as previousState so that one FS_DetachDLE releases both.
//
// Choices where the interface leaves room:
// - A null handle is refused with FS_ERR_INVALID_HANDLE, a null DLE with
//   FS_ERR_BAD_PARAMETER; the handle is then unchanged.
// - The ids are checked before any table is looked up, so an id above 50
//   never reads outside the registry.
// - A file system whose open operation fails leaves nothing behind: the
//   fresh state is closed again.
#include <new>
#include <utility>

#include <qbfsys/dle.h>
#include <qbfsys/fs_fsh_base.h>
#include <qbfsys/handles.h>
#include <qbfsys/registry.h>

#include "fs_handle_bind.h"
#include "fs_handle_swap.h"
#include "fs_print.h"
#include "fs_registry_access.h"

FS_STATUS FS_ReattachDLE(FSYS_HAND_STRUCT* hand, _FUNC_LIST* table, GENERIC_DLE* dle,
                         wchar_t* user, wchar_t* password) {
  if (hand == nullptr) return FS_ERR_INVALID_HANDLE;
  if (dle == nullptr) {
    fsys::print_bad_parameter(3103);
    return FS_ERR_BAD_PARAMETER;
  }
  unsigned const index = DLE_FsysIndex(dle);
  if (index >= FS_MAX_FSYS) return FS_ERR_DLE_UNAVAILABLE;
  if (table == nullptr) table = &fsys::table_of(index);

  FSYS_HAND_STRUCT* fresh = nullptr;
  FS_STATUS status = FS_OpenFileSys(&fresh, static_cast<short>(index), hand->cfg, table);
  if (status != FS_SUCCESS) {
    if (fresh != nullptr) FS_CloseFileSys(fresh);
    return status;
  }

  // The caller's pointer takes the new state; `fresh` keeps the old one.
  fsys::swap_handle_state(hand, fresh);
  FSYS_HAND_STRUCT* old = fresh;
  hand->dle = dle;
  hand->funcTable = table;
  hand->previousState = old;
  hand->attachFlags = old->attachFlags;
  hand->attachMode = old->attachMode;
  hand->attachContext = old->attachContext;
  hand->snapshot = old->snapshot;
  hand->ipc = old->ipc;
  hand->head = dle->head;
  fsys::set_root_path(hand);
  hand->stateFlags |= HAND_STATE_BOUND;
  hand->attachText->clear();

  if (fsys::cannot_attach(hand)) {
    status = FS_ERR_UNIMPLEMENTED;
  } else if (fsys::ipc_failed(hand)) {
    status = FS_ERR_ATTACH_REFUSED;
  } else {
    status = fsys::call_attach(hand, dle, user, password);
    if (status == FS_SUCCESS) {
      fsys::count_attach(dle);
      return FS_SUCCESS;
    }
  }

  // Anything but success (FS_STATUS_EXT_ERROR included) puts the old state
  // back and drops the new one.
  fsys::swap_handle_state(hand, fresh);
  fresh->dle = nullptr;
  fresh->previousState = nullptr;  // it pointed at itself after the swap back
  FS_CloseFileSys(fresh);
  return status;
}

FS_STATUS FS_ReattachDLE(FSYS_HAND_STRUCT* hand, GENERIC_DLE* dle, wchar_t* user,
                         wchar_t* password) {
  if (hand == nullptr) return FS_ERR_INVALID_HANDLE;

  FSYS_HAND_STRUCT* fresh = nullptr;
  FS_STATUS const status =
      FS_AttachToDLE(&fresh, dle, hand->cfg, user, password, hand->attachFlags, hand->attachMode,
                     hand->attachContext, hand->snapshot, 0, hand->ipc, false);
  if (fresh == nullptr) return status;

  fsys::swap_handle_state(hand, fresh);
  FSYS_HAND_STRUCT* old = fresh;
  hand->previousState = old;

  // The restore work flow follows the handle: the old state's own text, else
  // what its adapter says, else empty.
  try {
    wcstring text;
    if (old->restoreWorkFlow != nullptr) {
      text = *old->restoreWorkFlow;
    } else if (old->adapter != nullptr) {
      text = old->adapter->GetRestoreWorkFlow(old);
    }
    if (hand->restoreWorkFlow != nullptr) {
      *hand->restoreWorkFlow = std::move(text);
    } else {
      hand->restoreWorkFlow = new wcstring(std::move(text));
    }
  } catch (...) {
    // Out of memory (or an adapter that threw): the binding stands without
    // the text.
  }
  return status;
}
