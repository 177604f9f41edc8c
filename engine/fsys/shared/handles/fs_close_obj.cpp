// FS_CloseObj and FS_ResetHand.
//
// The handle's own object handle keeps its staging buffer across objects,
// so a file system that reuses it does not pay for a new buffer each time.
#include <cstring>

#include <qbfsys/file_hand.h>
#include <qbfsys/handles.h>

#include "fs_dispatch.h"
#include "object_handles.h"
#include "object_stage.h"

FS_STATUS FS_CloseObj(_FILE_HAND_STRUCT* obj, void** arg, void** result) {
  if (obj == nullptr || obj->fsysHand == nullptr) return FS_SUCCESS;
  FS_STATUS const flushed = fsys::flush_staged_writes(obj);
  if (obj != obj->fsysHand->objHand) {
    fsys::stage_free(obj);
    obj->needSize = 0;
    obj->pending = 0;
    obj->stageMode = FS_STAGE_IDLE;
  }
  FS_STATUS const closed = fsys::dispatch_object(obj, &FS_FshBase::CloseObj, &_FUNC_LIST::CloseObj,
                                                 FS_ERR_UNIMPLEMENTED, arg, result);
  return closed == FS_SUCCESS ? flushed : closed;
}

void FS_ResetHand(_FILE_HAND_STRUCT* obj, unsigned int size) {
  if (obj == nullptr) return;
  unsigned char* const buffer = obj->stageBuf;
  std::uint32_t const capacity = obj->stageCap;
  std::memset(obj, 0, size);
  if (size > offsetof(_FILE_HAND_STRUCT, stageBuf)) obj->stageBuf = buffer;
  if (size > offsetof(_FILE_HAND_STRUCT, stageCap)) obj->stageCap = capacity;
}
