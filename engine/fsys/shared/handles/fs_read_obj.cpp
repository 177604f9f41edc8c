// FS_ReadObj: reads through the staging buffer when the module wants larger
// reads than the caller makes.
//
// Three guards keep a misbehaving module from costing data or memory
// safety:
// - what the module claims beyond the room it was given is never counted
//   (the overrun is reported, the excess dropped), so staged counts never
//   reach past the buffer;
// - an error that arrives with data is returned only after every byte of
//   that data was delivered, so staged bytes are never dropped for it;
// - a read that brought nothing is retried at most once, and only when the
//   retry will stage, so a module that keeps answering nothing cannot hold
//   the caller in a loop.
#include <cstring>

#include <qbfsys/file_hand.h>
#include <qbfsys/handles.h>
#include <qbfsys/stream_info.h>

#include "fs_dispatch.h"
#include "object_handles.h"
#include "object_stage.h"

namespace {

constexpr std::uint32_t kNoMinimum = 1;

bool is_error(FS_STATUS status) { return (status & 0xC0000000u) == 0xC0000000u; }

void clear_header(STREAM_INFO* header) {
  header->id = STRM_INVALID;
  std::memset(header->tail, 0, sizeof(std::uint32_t));
}

// Delivers staged bytes; the count goes to *size.
void deliver_staged(_FILE_HAND_STRUCT* obj, unsigned char* buffer, std::uint32_t room,
                    unsigned int* size) {
  std::uint32_t const n = obj->stageCount < room ? obj->stageCount : room;
  if (n > 0) std::memcpy(buffer, obj->stageBuf + obj->stagePos, n);
  obj->stagePos += n;
  obj->stageCount -= n;
  *size = n;
}

FS_STATUS take_pending(_FILE_HAND_STRUCT* obj, unsigned int* size) {
  FS_STATUS const status = static_cast<FS_STATUS>(obj->pending);
  obj->pending = 0;
  *size = 0;
  return status;
}

}  // namespace

FS_STATUS FS_ReadObj(_FILE_HAND_STRUCT* obj, unsigned char* buffer, unsigned int* size,
                     unsigned int* need, STREAM_INFO* header) {
  if (obj == nullptr || obj->fsysHand == nullptr || size == nullptr || need == nullptr ||
      header == nullptr || (buffer == nullptr && *size > 0))
    return FS_ERR_BAD_PARAMETER;
  std::uint32_t const room = *size;
  bool retried = false;
  if (obj->stageMode == FS_STAGE_WRITING) {
    // Bytes a write left staged belong to the module before anything is read.
    FS_STATUS const flushed = fsys::flush_staged_writes(obj);
    if (flushed != FS_SUCCESS) {
      *size = 0;
      *need = kNoMinimum;
      return flushed;
    }
  }

  for (;;) {
    *need = kNoMinimum;
    clear_header(header);
    if (obj->stageMode == FS_STAGE_READING && obj->stageCount > 0) {
      deliver_staged(obj, buffer, room, size);
      return FS_SUCCESS;
    }
    if (obj->pending != 0) return take_pending(obj, size);
    obj->stageMode = FS_STAGE_IDLE;
    obj->stageCount = 0;

    bool const staged = room != 0 && room < obj->needSize;
    if (staged && obj->needSize > obj->stageCap && !fsys::stage_replace(obj, obj->needSize)) {
      *size = 0;
      return FS_ERR_NO_MEMORY;
    }
    unsigned char* const target = staged ? obj->stageBuf : buffer;
    std::uint32_t const target_size = staged ? obj->needSize : room;
    *size = target_size;
    FS_STATUS status = fsys::dispatch_object(obj, &FS_FshBase::ReadObj, &_FUNC_LIST::ReadObj,
                                             FS_ERR_UNIMPLEMENTED, target, size, need, header);
    std::uint32_t const module_need = *need;
    *need = kNoMinimum;

    if (is_error(status) && *size == 0) {
      obj->needSize = module_need;
      return status;
    }
    // An error that came with data waits for the next call; any other
    // status of a read that delivered is success.
    if (is_error(status)) obj->pending = status;
    status = FS_SUCCESS;
    std::uint32_t delivered = *size;
    if (delivered > target_size) {
      delivered = target_size;
      status = FS_ERR_OBJ_OVERRUN;
    }

    if (staged) {
      obj->stageMode = FS_STAGE_READING;
      obj->stagePos = 0;
      obj->stageCount = delivered;
      deliver_staged(obj, buffer, room, size);
      obj->needSize = module_need;
      return status;
    }
    *size = delivered;
    obj->needSize = module_need;
    if (status == FS_ERR_OBJ_OVERRUN || module_need <= kNoMinimum) return status;

    // The module wants larger reads from now on.
    if (module_need > obj->stageCap && !fsys::stage_replace(obj, module_need)) {
      *size = 0;
      return FS_ERR_NO_MEMORY;
    }
    if (room == 0 || delivered > 0 || header->id != STRM_INVALID) return status;
    if (retried || room >= obj->needSize) return status;
    retried = true;
    *size = room;
  }
}
