// Opening an object, and reading it: a file is one data stream
// (STRM_GENERIC_DATA), its header delivered by a call of its own, then its
// bytes; the end is FS_ERR_OBJ_NO_DATA. Each call asks through `need` for
// MEMFS_READ_UNIT bytes of room, so the layer stages for callers that offer
// less. Opening for writing is for a restore (memfs_write.cpp); a directory
// opens only for that, as it has no stream to read.
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>

#include "memfs.h"

namespace memfs {

FS_STATUS memfs_open(FSYS_HAND_STRUCT* fsh, _FILE_HAND_STRUCT** out, DBLK* blk, OPEN_MODE mode) {
  if (out != nullptr) *out = nullptr;
  HandleState* state = memfs_state(fsh);
  if (state == nullptr || out == nullptr || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  if (mode != FS_READ && mode != FS_WRITE) return FS_ERR_NOT_SUPPORTED;
  NodePtr node, dir;
  std::shared_ptr<std::string const> contents;
  {
    auto const hold = memfs_lock();
    node = memfs_entry_of(*state, blk);
    if (node != nullptr) contents = node->data;  // what this reader sees to its end
    if (node != nullptr && mode == FS_WRITE && !node->in_tree && !node->directory) {
      for (HandleState::Created const& c : state->created)
        if (c.node == node) dir = c.dir;
    }
  }
  if (node == nullptr || (node->directory && mode == FS_READ)) return FS_ERR_NOT_SUPPORTED;
  auto* file = new (std::nothrow) OpenFile{};
  if (file == nullptr) return FS_ERR_NO_MEMORY;
  file->fsysHand = fsh;
  file->node = std::move(node);
  file->dir = std::move(dir);
  file->contents = std::move(contents);
  file->mode = mode;
  *out = file;
  return FS_SUCCESS;
}

FS_STATUS memfs_read(_FILE_HAND_STRUCT* hand, unsigned char* buffer, unsigned int* size,
                     unsigned int* need, STREAM_INFO* stream) {
  if (hand == nullptr || size == nullptr || need == nullptr || stream == nullptr ||
      (buffer == nullptr && *size > 0))
    return FS_ERR_BAD_PARAMETER;
  auto& file = static_cast<OpenFile&>(*hand);
  if (file.mode != FS_READ || file.contents == nullptr) return FS_ERR_BAD_PARAMETER;
  std::string const& data = *file.contents;
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
  auto* file = static_cast<OpenFile*>(hand);
  FS_STATUS status = FS_SUCCESS;
  if (file->mode == FS_WRITE) {
    auto const hold = memfs_lock();
    status = memfs_finish_write(*file);
  }
  delete file;
  return status;
}

}  // namespace memfs
