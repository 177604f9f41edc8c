// Names in blocks: FS_SetupOSPathOrNameInDBLK, FS_ReleaseOSPathOrNameInDBLK,
// FS_SetupExtendedAttribNameInGenDBLK, FS_ReleaseExtendedAttribNameInGenDBLK.
//
// An element's recorded size is the allocation size, which may be larger
// than the name; the bytes between are zeroed because a pooled element may
// come back with an earlier name still in it.
#include <cstring>

#include <qbfsys/dblk_names.h>
#include <qbfsys/name_pool.h>
#include <qbhost/strings.h>

namespace {

constexpr std::uint32_t kWideChar = sizeof(wchar_t);
std::uint32_t const kEmptyName = 0;

// Builds an element holding the name as FS_SetupOSPathOrNameInDBLK
// describes; `*out` is the element on success.
FS_STATUS make_name_element(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char const* name,
                            std::uint32_t size, std::uint32_t allocSize, FS_NAME_Q_ELEM** out) {
  if (name == nullptr || size == 0) {
    name = reinterpret_cast<unsigned char const*>(&kEmptyName);
    size = sizeof kEmptyName;
  }
  if (allocSize == 0) allocSize = size;
  bool const widen = blk->name_char_type == DBLK_NAME_NARROW;
  std::uint32_t const narrow_bytes = size;
  if (widen) {
    size *= kWideChar;
    allocSize *= kWideChar;
  }
  if (size > FS_MAX_NAME_BYTES) return FS_ERR_NAME_TOO_LONG;
  if (allocSize < size || allocSize > FS_MAX_NAME_BYTES) return FS_ERR_BAD_PARAMETER;

  FS_NAME_Q_ELEM* element = FS_AllocPathOrName(hand, static_cast<std::uint16_t>(allocSize));
  if (element == nullptr) return FS_ERR_NO_MEMORY;

  std::uint32_t copied = size;
  if (widen) {
    auto* wide = reinterpret_cast<wchar_t*>(element->buffer);
    copied = kWideChar * static_cast<std::uint32_t>(
                             QB::UniConv(reinterpret_cast<char const*>(name), narrow_bytes, wide,
                                         narrow_bytes));
    blk->name_char_type = DBLK_NAME_WIDE;
  } else {
    std::memcpy(element->buffer, name, size);
  }
  std::memset(element->buffer + copied, 0, allocSize - copied);
  element->size = static_cast<std::uint16_t>(allocSize);
  *out = element;
  return FS_SUCCESS;
}

FS_NAME_Q_ELEM** ea_field(DBLK* blk, std::uint16_t which) {
  switch (which) {
    case GEN_EA_NAME_1:
      return &blk->area.gen.ext.ea.ea_name1;
    case GEN_EA_NAME_2:
      return &blk->area.gen.ext.ea.ea_name2;
    default:
      return nullptr;
  }
}

}  // namespace

FS_STATUS FS_SetupOSPathOrNameInDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char* name,
                                     std::uint16_t size, std::uint16_t allocSize) {
  if (hand == nullptr || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  FS_NAME_Q_ELEM* element = nullptr;
  FS_STATUS const status = make_name_element(hand, blk, name, size, allocSize, &element);
  if (status == FS_SUCCESS) blk->os_name = element;
  return status;
}

void FS_ReleaseOSPathOrNameInDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  if (hand == nullptr || blk == nullptr) return;
  FS_ReleasePathOrName(hand, &blk->os_name);
  blk->os_name = nullptr;
}

FS_STATUS FS_SetupExtendedAttribNameInGenDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                              unsigned char* name, std::uint16_t size,
                                              std::uint16_t which, std::uint16_t allocSize) {
  if (hand == nullptr || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  // A `which` other than name 1 or 2 still builds the element and reports how
  // that went, but stores it nowhere: the element stays in the handle's in-use
  // queue and is freed with the pools. Callers that probe with another value
  // see the same statuses a real set-up would give.
  FS_NAME_Q_ELEM** field = ea_field(blk, which);
  if (size == 0 && allocSize == 0) {
    if (field != nullptr) *field = nullptr;
    return FS_SUCCESS;
  }
  FS_NAME_Q_ELEM* element = nullptr;
  FS_STATUS const status = make_name_element(hand, blk, name, size, allocSize, &element);
  if (status == FS_SUCCESS && field != nullptr) *field = element;
  return status;
}

void FS_ReleaseExtendedAttribNameInGenDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                           std::uint16_t which) {
  if (hand == nullptr || blk == nullptr) return;
  if (FS_NAME_Q_ELEM** field = ea_field(blk, which)) {
    if (*field != nullptr) FS_ReleasePathOrName(hand, field);
  }
}
