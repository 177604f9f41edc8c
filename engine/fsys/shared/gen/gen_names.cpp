// GEN_SizeofName, GEN_ModName and GEN_GetOSName: the name of a GEN block.
//
// Every offset computed from a prefixed name's length word is checked
// against the element before it is used: the word comes from the media.
#include <cstring>
#include <string>

#include <qbfsys/dblk.h>
#include <qbfsys/gen.h>
#include <qbfsys/name_pool.h>
#include <qbhost/zprintf.h>

#include "fs_print.h"

namespace {

constexpr FS_STATUS kNoName = 0xFFFFFFFF;
constexpr std::uint32_t kAlignMask = ~std::uint32_t{3};
constexpr std::uint32_t kPrefixSlack = 3;
constexpr int kRead = 0;

bool is_prefixed(DBLK const* blk) {
  return blk->blk_subtype == GEN_PREFIXED_SUBTYPE &&
         (blk->os_id == GEN_OSID_PREFIXED_BLANK || blk->os_id == GEN_OSID_PREFIXED_Q) &&
         blk->os_ver != 0;
}

// Where the name proper starts in a prefixed name.
std::uint32_t prefixed_start(FS_NAME_Q_ELEM const* element) {
  std::uint16_t length = 0;
  std::memcpy(&length, element->buffer, sizeof length);
  return (std::uint32_t{length} + kPrefixSlack) & kAlignMask;
}

}  // namespace

FS_STATUS GEN_SizeofName(FSYS_HAND_STRUCT*, DBLK* blk, bool) {
  if (blk == nullptr || blk->os_name == nullptr) return kNoName;
  std::uint32_t const size = blk->os_name->size;
  if (!is_prefixed(blk)) return size;
  std::uint32_t const start = prefixed_start(blk->os_name);
  return start <= size ? size - start : 0;
}

FS_STATUS GEN_ModName(FSYS_HAND_STRUCT*, int direction, DBLK* blk, wchar_t* buffer, short* size) {
  if (direction != kRead || blk == nullptr || buffer == nullptr || size == nullptr)
    return FS_ERR_BAD_PARAMETER;
  FS_NAME_Q_ELEM const* element = blk->os_name;
  if (element == nullptr) return FS_ERR_OBJ_NO_DATA;
  std::uint32_t const whole = element->size;
  std::uint32_t start = 0;
  if (is_prefixed(blk)) {
    start = prefixed_start(element);
    if (start >= whole) {
      // The element as wide text, bounded by its size, in the UTF-8 that
      // "%s" prints.
      auto const* wide = reinterpret_cast<wchar_t const*>(element->buffer);
      std::size_t chars = 0;
      while (chars < whole / sizeof(wchar_t) && wide[chars] != L'\0') ++chars;
      std::string const text = fsys::narrow_for_print(std::wstring(wide, chars).c_str());
      QB_Zprintf(0, L"File name: %s\nFile name size: %d\ntsize: %d\n", text.c_str(),
                 static_cast<int>(whole), static_cast<int>(start));
      start = 0;
    }
  }
  std::uint32_t const bytes = whole - start;
  if (*size < 0 || static_cast<std::uint32_t>(*size) < bytes) return FS_ERR_OBJ_NO_DATA;
  std::memcpy(buffer, element->buffer + start, bytes);
  *size = static_cast<short>(bytes);
  return FS_SUCCESS;
}

FS_STATUS GEN_GetOSName(FSYS_HAND_STRUCT*, DBLK* blk, wchar_t* buffer, bool) {
  if (blk == nullptr || buffer == nullptr) return FS_ERR_BAD_PARAMETER;
  FS_NAME_Q_ELEM const* element = blk->os_name;
  if (element == nullptr) return FS_ERR_OBJ_NO_DATA;
  std::uint32_t const chars = element->size / sizeof(wchar_t);
  std::memcpy(buffer, element->buffer, chars * sizeof(wchar_t));
  if (chars > 0) buffer[chars - 1] = L'\0';
  else buffer[0] = L'\0';
  return FS_SUCCESS;
}
