// FS_SeekObj: staged read data belongs to the old position and is dropped.
// Staged write data is not: it is handed over first, since the caller
// counted it as written.
#include <qbfsys/file_hand.h>
#include <qbfsys/handles.h>

#include "fs_dispatch.h"
#include "object_handles.h"

FS_STATUS FS_SeekObj(_FILE_HAND_STRUCT* obj, unsigned int* position) {
  if (obj == nullptr || obj->fsysHand == nullptr) return FS_ERR_BAD_PARAMETER;
  if (obj->stageMode == FS_STAGE_WRITING) {
    FS_STATUS const flushed = fsys::flush_staged_writes(obj);
    if (flushed != FS_SUCCESS) return flushed;
  }
  obj->stageCount = 0;
  obj->stagePos = 0;
  obj->stageMode = FS_STAGE_IDLE;
  return fsys::dispatch_object(obj, &FS_FshBase::SeekObj, &_FUNC_LIST::SeekObj,
                               FS_ERR_UNIMPLEMENTED, position);
}
