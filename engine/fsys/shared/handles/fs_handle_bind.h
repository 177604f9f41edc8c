// Small steps shared by FS_AttachToDLE and FS_ReattachDLE when they bind a
// handle to a DLE.
#pragma once
#include <qbfsys/dle.h>
#include <qbfsys/fs_fsh_base.h>
#include <qbfsys/handles.h>
#include <qbhost/zprintf.h>

#include "fs_dispatch.h"

namespace fsys {

// The current path of a freshly bound handle is the root, "\".
inline void set_root_path(FSYS_HAND_STRUCT* hand) {
  if (hand->pathBuf != nullptr && hand->pathBufSize >= 2 * sizeof(wchar_t)) {
    hand->pathBuf[0] = L'\\';
    hand->pathBuf[1] = L'\0';
  }
}

// True when neither the adapter nor the table can attach.
inline bool cannot_attach(FSYS_HAND_STRUCT const* hand) {
  return !can_dispatch(hand, &_FUNC_LIST::AttachToDLE);
}

// True (after saying so) when the host's IPC channel was not opened.
inline bool ipc_failed(FSYS_HAND_STRUCT const* hand) {
  if (hand->ipc == nullptr || hand->ipc->failure == 0) return false;
  QB_Zprintf(0, L"FS_Attach deferred error: IPC was not successfully opened.");
  return true;
}

// The file system's attach, through the adapter when one is set.
inline FS_STATUS call_attach(FSYS_HAND_STRUCT* hand, GENERIC_DLE* dle, wchar_t* user,
                             wchar_t* password) {
  return dispatch(hand, &FS_FshBase::AttachToDLE, &_FUNC_LIST::AttachToDLE, FS_ERR_UNIMPLEMENTED,
                  dle, user, password);
}

// Counts a successful binding on the DLE and says so.
inline void count_attach(GENERIC_DLE* dle) {
  ++dle->attach_count;
  if (wchar_t const* name = DLE_DisplayName(dle)) QB_Zprintf(0, L"Attach to: %ls", name);
}

}  // namespace fsys
