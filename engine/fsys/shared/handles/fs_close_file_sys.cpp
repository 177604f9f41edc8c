// FS_CloseFileSys: destroys a handle without lowering any DLE's attach count.
//
// A pushed-aside state that is still hanging from the handle (its detach was
// answered with FS_STATUS_EXT_ERROR while the chain was unwound) is closed
// with it, so that no state outlives the handle that held it.
#include <cstdlib>

#include <qbfsys/fs_fsh_base.h>
#include <qbfsys/handles.h>
#include <qbfsys/name_pool.h>

#include "fs_dispatch.h"

FS_STATUS FS_CloseFileSys(FSYS_HAND_STRUCT* hand) {
  if (hand == nullptr) return FS_ERR_INVALID_HANDLE;

  FS_FreeOSPathOrNameQueueInHand(hand);

  // A still-bound handle tells its table that it goes (the adapter is
  // closed just below and learns it there). The result is deliberately not
  // looked at: the handle goes anyway.
  _FUNC_LIST* table = hand->funcTable;
  if (hand->dle != nullptr && table != nullptr && table->DetachDLE != nullptr)
    table->DetachDLE(hand, nullptr, nullptr);
  FS_STATUS const result =
      fsys::dispatch(hand, &FS_FshBase::CloseSys, &_FUNC_LIST::CloseSys, FS_SUCCESS);

  if (FSYS_HAND_STRUCT* previous = hand->previousState) {
    hand->previousState = nullptr;
    FS_CloseFileSys(previous);
  }

  std::free(hand->scratch);
  std::free(hand->workBuf);
  std::free(hand->pathBuf);
  std::free(hand->nameBuf);
  std::free(hand->lastMsg);
  std::free(hand->metaBlob);
  std::free(hand->decryptBuf);
  delete hand->attachText;
  delete hand->workText;
  delete hand->restoreWorkFlow;
  std::free(hand);
  return result;
}
