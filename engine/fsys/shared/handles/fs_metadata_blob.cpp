// FS_SetMetaDataBlob: copies bytes into the handle's metadata blob, which
// grows in 1,024-byte units.
//
// Choices where the interface leaves room: a null handle, or null data with
// a non-zero size, is refused with 1 (the function's failure result) and
// changes nothing; a size whose rounded capacity would not fit 32 bits is
// treated as memory running out.
#include <cstdlib>
#include <cstring>

#include <qbfsys/handles.h>

namespace {
constexpr unsigned int kUnit = 1024;
constexpr unsigned int kFailed = 1;
}  // namespace

unsigned int FS_SetMetaDataBlob(FSYS_HAND_STRUCT* hand, void const* data, unsigned int size) {
  if (size == 0) {
    if (hand != nullptr) hand->metaLen = 0;  // the buffer is kept for later
    return 0;
  }
  if (hand == nullptr || data == nullptr) return kFailed;

  if (hand->metaBlob == nullptr || size > hand->metaCap) {
    std::free(hand->metaBlob);
    hand->metaBlob = nullptr;
    unsigned int const capacity = (size & ~(kUnit - 1)) + kUnit;
    if (capacity > size) hand->metaBlob = static_cast<unsigned char*>(std::calloc(1, capacity));
    if (hand->metaBlob == nullptr) {
      hand->metaCap = 0;
      hand->metaLen = 0;
      return kFailed;
    }
    hand->metaCap = capacity;
  }
  std::memcpy(hand->metaBlob, data, size);
  hand->metaLen = size;
  return 0;
}
