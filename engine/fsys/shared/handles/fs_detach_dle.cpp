// FS_DetachDLE: unbinds a handle (and every state pushed aside by
// FS_ReattachDLE, newest first) and destroys it.
//
// Choices where the interface leaves room:
// - A file system with neither an adapter nor a detach slot has nothing to
//   undo: the detach counts as successful.
// - An attach count already at zero is not lowered further.
#include <cstdlib>

#include <qbfsys/dle.h>
#include <qbfsys/file_hand.h>
#include <qbfsys/fs_fsh_base.h>
#include <qbfsys/handles.h>
#include <qbhost/zprintf.h>

#include "fs_dispatch.h"

FS_STATUS FS_DetachDLE(FSYS_HAND_STRUCT* hand, void* arg, void** result) {
  FS_STATUS status = FS_ERR_NOT_ATTACHED;

  if (hand != nullptr && hand->dle != nullptr) {
    GENERIC_DLE* dle = hand->dle;
    if (wchar_t const* name = DLE_DisplayName(dle)) QB_Zprintf(0, L"Detach from: %ls", name);

    if (_FILE_HAND_STRUCT* obj = hand->objHand) {
      if (obj->stageBuf != nullptr) {
        std::free(obj->stageBuf);
        obj->stageBuf = nullptr;
        obj->stageCap = 0;
      }
    }

    // Without a detach operation there is nothing to undo.
    status = fsys::dispatch(hand, &FS_FshBase::DetachDLE, &_FUNC_LIST::DetachDLE, FS_SUCCESS, arg,
                            result);
    // The file system wants the caller to read its message first: the handle
    // stays attached and allocated.
    if (status == FS_STATUS_EXT_ERROR) return status;

    if (dle->attach_count > 0) --dle->attach_count;
    hand->dle = nullptr;
  }

  if (hand != nullptr && hand->previousState != nullptr) {
    // A state that its file system keeps attached stays hanging here and is
    // closed with the handle.
    if (FS_DetachDLE(hand->previousState, arg, result) != FS_STATUS_EXT_ERROR)
      hand->previousState = nullptr;
  }

  FS_CloseFileSys(hand);
  return status;
}
