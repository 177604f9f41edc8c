// FS_OpenObj: refuses objects flagged not to be opened, else asks the file
// system.
//
// The name recorded for a refused object is read into a zeroed buffer of
// 260 characters, and only when the file system says it fits: a longer
// name is recorded as empty rather than cut.
#include <cwchar>

#include <qbfsys/dblk.h>
#include <qbfsys/file_hand.h>
#include <qbfsys/handles.h>

#include "fs_dispatch.h"

namespace {

constexpr std::size_t kNameChars = 260;
constexpr FS_EXT_ERR_ACTION kDeniedAction = static_cast<FS_EXT_ERR_ACTION>(7);
constexpr unsigned int kDeniedExtra = 16032;
constexpr bool kNameOnly = false;

FS_STATUS record_denial(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  wchar_t name[kNameChars + 1] = {};
  std::int16_t const length = static_cast<std::int16_t>(fsys::dispatch(
      hand, &FS_FshBase::SizeofOSName, &_FUNC_LIST::SizeofOSName, FS_STATUS{0}, blk, kNameOnly));
  if (length < static_cast<std::int16_t>(kNameChars + 1)) {
    fsys::dispatch(hand, &FS_FshBase::GetOSName, &_FUNC_LIST::GetOSName, FS_ERR_UNIMPLEMENTED, blk,
                   name, kNameOnly);
    name[kNameChars] = L'\0';
  }
  return FS_SetLastError(hand, static_cast<int>(FS_ERR_OBJ_ACCESS_DENIED), kDeniedAction,
                         kDeniedExtra, name);
}

}  // namespace

FS_STATUS FS_OpenObj(FSYS_HAND_STRUCT* hand, _FILE_HAND_STRUCT** out, DBLK* blk, OPEN_MODE mode) {
  if (hand == nullptr || out == nullptr || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  if (blk->obj_flags & DBLK_OBJ_NO_OPEN) {
    if ((blk->obj_flags & DBLK_OBJ_DENIAL_MASK) == DBLK_OBJ_DENIAL_RECORDED)
      return record_denial(hand, blk);
    return FS_ERR_OBJ_ACCESS_DENIED;
  }
  return fsys::dispatch(hand, &FS_FshBase::OpenObj, &_FUNC_LIST::OpenObj, FS_ERR_UNIMPLEMENTED,
                        out, blk, mode);
}
