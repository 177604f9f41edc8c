// The adapter's object side: a file is one data stream (STRM_GENERIC_DATA),
// its header delivered by a call of its own, then its bytes at most
// ADAPTERFS_READ_UNIT at a time; the end is FS_ERR_OBJ_NO_DATA. Directories
// are not opened: they have no streams.
//
// The file named by ADAPTERFS_FAIL_READ fails with FS_ERR_NOT_SUPPORTED once
// its first unit was delivered, as a device that breaks mid-file would.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "adapterfs.h"

namespace adapterfs {
namespace {

// The layer's fields first, then the module's own.
struct OpenFile : _FILE_HAND_STRUCT {
  Node const* node = nullptr;
  bool header_sent = false;
  bool fails = false;  // reading breaks after the first unit
  std::size_t offset = 0;
};

bool is_failing(std::string const& path) {
  char const* failing = std::getenv(ADAPTERFS_FAIL_READ_VARIABLE);
  return failing != nullptr && path == failing;
}

}  // namespace

FS_STATUS Adapter::OpenObj(FSYS_HAND_STRUCT* fsh, _FILE_HAND_STRUCT** out, DBLK* blk, OPEN_MODE mode) {
  if (out != nullptr) *out = nullptr;
  if (fsh == nullptr || !attached_ || out == nullptr || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  if (mode != FS_READ) return FS_ERR_NOT_SUPPORTED;  // the tree is read-only
  Node const* node = entry_of(blk);
  if (node == nullptr || node->directory) return FS_ERR_NOT_SUPPORTED;
  auto* file = new (std::nothrow) OpenFile{};
  if (file == nullptr) return FS_ERR_NO_MEMORY;
  std::string const dir = current_path();
  std::string const name = adapterfs_narrow(node->name);
  file->fsysHand = fsh;
  file->node = node;
  file->fails = is_failing(dir.empty() ? name : dir + "/" + name);
  *out = file;
  return FS_SUCCESS;
}

FS_STATUS Adapter::ReadObj(_FILE_HAND_STRUCT* obj, unsigned char* buffer, unsigned int* size, unsigned int* need,
                           STREAM_INFO* stream) {
  if (obj == nullptr || size == nullptr || need == nullptr || stream == nullptr ||
      (buffer == nullptr && *size > 0))
    return FS_ERR_BAD_PARAMETER;
  auto& file = static_cast<OpenFile&>(*obj);
  std::string const& data = file.node->data;
  *need = ADAPTERFS_READ_UNIT;
  if (!file.header_sent) {
    FS_InitStrmInfo(stream, STRM_GENERIC_DATA, 0, data.size());  // the whole size up front
    file.header_sent = true;
    *size = 0;
    return FS_SUCCESS;
  }
  if (file.fails && file.offset > 0) {
    *size = 0;
    return FS_ERR_NOT_SUPPORTED;
  }
  std::size_t const n = std::min<std::size_t>({*size, ADAPTERFS_READ_UNIT, data.size() - file.offset});
  *size = static_cast<unsigned int>(n);
  if (n == 0) return FS_ERR_OBJ_NO_DATA;
  std::memcpy(buffer, data.data() + file.offset, n);
  file.offset += n;
  return FS_SUCCESS;
}

FS_STATUS Adapter::CloseObj(_FILE_HAND_STRUCT* obj, void**, void**) {
  if (obj == nullptr) return FS_ERR_BAD_PARAMETER;
  delete static_cast<OpenFile*>(obj);
  return FS_SUCCESS;
}

}  // namespace adapterfs
