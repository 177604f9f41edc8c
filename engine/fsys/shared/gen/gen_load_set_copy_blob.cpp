// GEN_LoadSetCopyBlob: the blob grows with 512 bytes to spare, so a run of
// slightly growing loads does not reallocate each time.
#include <cstdlib>
#include <cstring>

#include <qbfsys/gen.h>

namespace {
constexpr std::uint64_t kSpare = 512;
}  // namespace

FS_STATUS GEN_LoadSetCopyBlob(std::uint32_t length, void const* data, SET_COPY_BLOB* blob) {
  if (blob == nullptr || (data == nullptr && length > 0)) return FS_ERR_BAD_PARAMETER;
  blob->length = length;
  if (length == 0) return FS_SUCCESS;
  if (length > blob->capacity || blob->data == nullptr) {
    std::free(blob->data);
    std::uint64_t const capacity = std::uint64_t{length} + kSpare;
    blob->data = capacity > UINT32_MAX ? nullptr : static_cast<unsigned char*>(std::malloc(capacity));
    if (blob->data == nullptr) {
      blob->length = 0;
      blob->capacity = 0;
      return FS_ERR_NO_MEMORY;
    }
    blob->capacity = static_cast<std::uint32_t>(capacity);
  }
  std::memcpy(blob->data, data, length);
  return FS_SUCCESS;
}
