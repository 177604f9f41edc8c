// FS_WriteObj: collects data in the staging buffer until the module's
// minimum is reached, so the caller may write any amount.
//
// Bytes still waiting in the buffer when a new stream header arrives are
// handed to the module first (a stream's last call may be short of the
// minimum; the module cannot get more of that stream), and FS_CloseObj does
// the same at the end of the object, so no byte counted as consumed is
// ever left behind. A module that took nothing although it was given at
// least what it asked for is reported as incomplete rather than offered the
// same bytes forever.
#include <cstring>

#include <qbfsys/file_hand.h>
#include <qbfsys/handles.h>
#include <qbfsys/stream_info.h>
#include <qbhost/zprintf.h>

#include "fs_dispatch.h"
#include "object_handles.h"
#include "object_stage.h"

namespace {

constexpr std::uint32_t kNoMinimum = 1;

FS_STATUS module_write(_FILE_HAND_STRUCT* obj, unsigned char* data, unsigned int* taken,
                       unsigned int* need, STREAM_INFO* header) {
  *need = kNoMinimum;
  FS_STATUS const status = fsys::dispatch_object(obj, &FS_FshBase::WriteObj, &_FUNC_LIST::WriteObj,
                                                 FS_ERR_UNIMPLEMENTED, data, taken, need, header);
  if (status == FS_STATUS_OBJ_DEFERRED) obj->pending = status;
  return status;
}

// Sets up collection of `need` bytes per module call; the bytes already
// staged (stagePos of them) are kept.
FS_STATUS stage_for(_FILE_HAND_STRUCT* obj, std::uint32_t need) {
  if (need > obj->stageCap) {
    bool const ok = obj->stagePos > 0 ? fsys::stage_grow(obj, need) : fsys::stage_replace(obj, need);
    if (!ok) return FS_ERR_NO_MEMORY;
  }
  obj->stageMode = FS_STAGE_WRITING;
  obj->stageCount = need;
  return FS_SUCCESS;
}

// The data part of a write (no header): W bytes at `data`.
FS_STATUS write_data(_FILE_HAND_STRUCT* obj, unsigned char* data, std::uint32_t offered_total,
                     unsigned int* size, unsigned int* need, STREAM_INFO* header, bool header_only) {
  std::uint32_t consumed = 0;
  do {
    bool const staging = obj->stageMode == FS_STAGE_WRITING && obj->stageCount > 0;
    unsigned char* offer = data + consumed;
    std::uint32_t offered = offered_total - consumed;
    if (staging) {
      std::uint32_t const room = obj->stageCount - obj->stagePos;
      std::uint32_t const n = offered < room ? offered : room;
      if (n > 0) std::memcpy(obj->stageBuf + obj->stagePos, data + consumed, n);
      obj->stagePos += n;
      consumed += n;
      if (obj->stagePos < obj->stageCount) break;  // the bytes wait for the next call
      offer = obj->stageBuf;
      offered = obj->stageCount;
    }

    unsigned int taken = offered;
    FS_STATUS status = module_write(obj, offer, &taken, need, header);
    std::uint32_t const module_need = *need;
    if (taken == 0 && status == FS_SUCCESS && !header_only &&
        (module_need <= kNoMinimum || offered >= module_need)) {
      *size = consumed;
      *need = kNoMinimum;
      return FS_ERR_OBJ_INCOMPLETE;
    }
    if (taken > offered) {
      QB_Zprintf(0, L"FS_WriteObj returned more than expected");
      status = FS_ERR_OBJ_OVERRUN;
    } else if (!staging) {
      consumed += taken;
    } else {
      std::uint32_t const tail = offered - taken;
      std::memmove(obj->stageBuf, obj->stageBuf + taken, tail);
      obj->stagePos = tail;
      obj->stageCount = tail;
      if (tail == 0) obj->stageMode = FS_STAGE_IDLE;
    }
    if (status != FS_SUCCESS) {
      *size = consumed;
      *need = kNoMinimum;
      return status;
    }
    if (module_need > kNoMinimum && (!staging || obj->stagePos < module_need)) {
      if (stage_for(obj, module_need) != FS_SUCCESS) {
        *size = consumed;
        *need = kNoMinimum;
        return FS_ERR_NO_MEMORY;
      }
    }
  } while (consumed < offered_total);
  *size = consumed;
  *need = kNoMinimum;
  return FS_SUCCESS;
}

}  // namespace

namespace fsys {

FS_STATUS flush_staged_writes(_FILE_HAND_STRUCT* obj) {
  if (obj->stageMode != FS_STAGE_WRITING) return FS_SUCCESS;
  while (obj->stagePos > 0) {
    unsigned int taken = obj->stagePos;
    unsigned int need = kNoMinimum;
    STREAM_INFO no_header{};
    FS_STATUS status = module_write(obj, obj->stageBuf, &taken, &need, &no_header);
    // A deferring module wants no more of this stream: the rest is dropped.
    if (status == FS_STATUS_OBJ_DEFERRED) break;
    if (taken > obj->stagePos) {
      QB_Zprintf(0, L"FS_WriteObj returned more than expected");
      status = FS_ERR_OBJ_OVERRUN;
      taken = 0;
    } else if (status == FS_SUCCESS && taken == 0) {
      status = FS_ERR_OBJ_INCOMPLETE;
    }
    std::memmove(obj->stageBuf, obj->stageBuf + taken, obj->stagePos - taken);
    obj->stagePos -= taken;
    if (status != FS_SUCCESS) {
      // The rest stays staged and is offered first by the next call.
      obj->stageCount = obj->stagePos;
      if (obj->stagePos == 0) obj->stageMode = FS_STAGE_IDLE;
      return status;
    }
  }
  obj->stagePos = 0;
  obj->stageCount = 0;
  obj->stageMode = FS_STAGE_IDLE;
  return FS_SUCCESS;
}

}  // namespace fsys

FS_STATUS FS_WriteObj(_FILE_HAND_STRUCT* obj, unsigned char* data, unsigned int* size,
                      unsigned int* need, STREAM_INFO* header) {
  if (obj == nullptr || obj->fsysHand == nullptr || size == nullptr || need == nullptr)
    return FS_ERR_BAD_PARAMETER;
  std::uint32_t const offered = *size;
  *need = kNoMinimum;
  bool const has_header = header != nullptr && header->id != STRM_INVALID;
  if (offered > 0 && data == nullptr) return FS_ERR_BAD_PARAMETER;

  if (obj->pending == FS_STATUS_OBJ_DEFERRED) {
    if (!has_header) return FS_SUCCESS;
    obj->pending = 0;
  }
  if (has_header && offered > 0) {
    *size = 0;
    FS_STATUS const status = FS_WriteObj(obj, data, size, need, header);
    if (status != FS_SUCCESS) return status;
    *size = offered;
    header->id = STRM_INVALID;
    return FS_WriteObj(obj, data, size, need, header);
  }
  if (!has_header && offered == 0) return FS_ERR_OBJ_NO_DATA;

  if (has_header) {
    // The current stream ends here: what it left in the buffer goes first.
    FS_STATUS const flushed = fsys::flush_staged_writes(obj);
    if (flushed != FS_SUCCESS) {
      *size = 0;
      return flushed;
    }
  }
  // Data calls carry a header with id 0, never a null one.
  STREAM_INFO no_header{};
  return write_data(obj, data, offered, size, need, has_header ? header : &no_header, has_header);
}
