// Reading an object: a file is one data stream (STRM_GENERIC_DATA), its
// header delivered by a call of its own, then its bytes; the end is
// FS_ERR_OBJ_NO_DATA. Each call asks through `need` for MEMFS_READ_UNIT
// bytes of room, so the layer stages for callers that offer less.
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>

#include "memfs.h"

namespace memfs {
namespace {

// The layer's fields first, then the module's own.
struct OpenFile : _FILE_HAND_STRUCT {
  Node const* node = nullptr;
  bool header_sent = false;
  std::size_t offset = 0;
};

}  // namespace

FS_STATUS memfs_open(FSYS_HAND_STRUCT* fsh, _FILE_HAND_STRUCT** out, DBLK* blk, OPEN_MODE mode) {
  if (out != nullptr) *out = nullptr;
  HandleState* state = memfs_state(fsh);
  if (state == nullptr || out == nullptr || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  if (mode != FS_READ) return FS_ERR_NOT_SUPPORTED;  // the tree is read-only
  Node const* node = memfs_entry_of(*state, blk);
  if (node == nullptr || node->directory) return FS_ERR_NOT_SUPPORTED;
  auto* file = new (std::nothrow) OpenFile{};
  if (file == nullptr) return FS_ERR_NO_MEMORY;
  file->fsysHand = fsh;
  file->node = node;
  *out = file;
  return FS_SUCCESS;
}

FS_STATUS memfs_read(_FILE_HAND_STRUCT* hand, unsigned char* buffer, unsigned int* size,
                     unsigned int* need, STREAM_INFO* stream) {
  if (hand == nullptr || size == nullptr || need == nullptr || stream == nullptr ||
      (buffer == nullptr && *size > 0))
    return FS_ERR_BAD_PARAMETER;
  auto& file = static_cast<OpenFile&>(*hand);
  std::string const& data = file.node->data;
  *need = MEMFS_READ_UNIT;
  if (!file.header_sent) {
    FS_InitStrmInfo(stream, STRM_GENERIC_DATA, 0, data.size());  // the whole size up front
    file.header_sent = true;
    *size = 0;
    return FS_SUCCESS;
  }
  std::size_t const n = std::min<std::size_t>(*size, data.size() - file.offset);
  *size = static_cast<unsigned int>(n);
  if (n == 0) return FS_ERR_OBJ_NO_DATA;
  std::memcpy(buffer, data.data() + file.offset, n);
  file.offset += n;
  return FS_SUCCESS;
}

FS_STATUS memfs_close_obj(_FILE_HAND_STRUCT* hand, void**, void**) {
  if (hand == nullptr) return FS_ERR_BAD_PARAMETER;
  delete static_cast<OpenFile*>(hand);
  return FS_SUCCESS;
}

}  // namespace memfs
