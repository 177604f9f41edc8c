// Making, reusing and giving back the module's open-object records.
#include "posix_object.h"

#include <unistd.h>

#include <cstdlib>
#include <new>

#include <qbfsys/handles.h>

#include "posix_handle_state.h"
#include "posix_name_codec.h"

namespace qbposix {
namespace {

// Clears what one object left in a reused record; the layer's staging
// buffer and its capacity stay, the vectors keep their memory.
void reset(PosixObject& obj) {
  obj.stagePos = 0;
  obj.stageCount = 0;
  obj.needSize = 0;
  obj.pending = 0;
  obj.stageMode = FS_STAGE_IDLE;
  obj.mode = FS_READ;
  obj.fd = obj.dirfd = -1;
  obj.dir.reset();
  obj.name.clear();
  obj.node = POSIX_NO_NODE;
  obj.info = POSIX_OS_INFO{};
  obj.streams.clear();
  obj.current = 0;
  obj.header_sent = false;
  obj.offset = 0;
  obj.extents.clear();
  obj.extent = 0;
  obj.extent_offset = 0;
  obj.in_id = 0;
  obj.in_size = obj.in_received = 0;
  obj.in_bytes.clear();
  obj.xattrs.clear();
  obj.sparse = false;
  obj.sparse_size = 0;
  obj.linked = false;
  obj.failure = FS_SUCCESS;
}

}  // namespace

PosixObject* posix_object_acquire(FSYS_HAND_STRUCT* fsh) {
  // Only this module sets objHand on its handles, so it is a PosixObject.
  auto* own = static_cast<PosixObject*>(fsh->objHand);
  if (own != nullptr && !own->busy) {
    reset(*own);
    own->busy = true;
    return own;
  }
  auto* obj = new (std::nothrow) PosixObject();
  if (obj == nullptr) return nullptr;
  obj->fsysHand = fsh;
  obj->busy = true;
  if (fsh->objHand == nullptr) fsh->objHand = obj;
  return obj;
}

void posix_object_release(PosixObject* obj) {
  if (obj->fd >= 0) close(obj->fd);
  obj->dir.reset();
  obj->fd = obj->dirfd = -1;
  obj->busy = false;
  if (obj != obj->fsysHand->objHand) delete obj;
}

void posix_object_drop_own(FSYS_HAND_STRUCT* fsh) {
  auto* own = static_cast<PosixObject*>(fsh->objHand);
  if (own == nullptr) return;
  if (own->fd >= 0) close(own->fd);
  own->dir.reset();
  std::free(own->stageBuf);  // the layer's calloc'd buffer, when detach left one
  delete own;
  fsh->objHand = nullptr;
}

std::wstring posix_object_path(PosixObject const& obj) {
  PosixHandleState* state = posix_state(obj.fsysHand);
  return state != nullptr ? posix_display_path(*state, obj.name)
                          : L"/" + posix_decode_name(obj.name);
}

}  // namespace qbposix
