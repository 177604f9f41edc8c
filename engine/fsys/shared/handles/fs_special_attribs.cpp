// FS_GetSpecialAttribs and FS_GetAgentWarningFlag: an object's path built
// from the handle's current path and its OS name, looked up in its DLE's
// rules.
//
// The path is built in a fixed 1,054-byte buffer; every size a file system
// reports is checked against the room it was given before it is used, so a
// module that reports more than fits stops the lookup instead of moving it
// past the buffer.
#include <qbfsys/dblk.h>
#include <qbfsys/dle_rules.h>
#include <qbfsys/handles.h>

#include "fs_dispatch.h"

namespace {

constexpr std::size_t kPathBufferBytes = 1054;
constexpr std::int16_t kLongestFileName = 1019;
constexpr std::int16_t kLongestDirectoryName = 1039;
constexpr std::int16_t kFileRoom = 1036;  // current path and name together
constexpr std::int16_t kRootPathBytes = 4;
constexpr std::int16_t kWideChar = sizeof(wchar_t);
constexpr bool kNameOnly = false;

struct ObjectPath {
  wchar_t text[kPathBufferBytes / sizeof(wchar_t) + 1] = {};
  std::int16_t bytes = 0;
};

std::int16_t name_size(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  return static_cast<std::int16_t>(fsys::dispatch(hand, &FS_FshBase::SizeofOSName,
                                                  &_FUNC_LIST::SizeofOSName, FS_STATUS{0}, blk,
                                                  kNameOnly));
}

bool get_name(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* at) {
  return fsys::dispatch(hand, &FS_FshBase::GetOSName, &_FUNC_LIST::GetOSName, FS_ERR_UNIMPLEMENTED,
                        blk, at, kNameOnly) == FS_SUCCESS;
}

// False when the path cannot be built.
// A block that is neither a file nor a directory stops before the file
// system is asked anything.
bool build_path(FSYS_HAND_STRUCT* hand, DBLK* blk, ObjectPath& path) {
  if (blk->blk_type != DBLK_KIND_FDB && blk->blk_type != DBLK_KIND_DDB) return false;
  std::int16_t const size = name_size(hand, blk);
  if (size < 0) return false;
  if (blk->blk_type == DBLK_KIND_FDB) {
    if (size > kLongestFileName) return false;
    short room = static_cast<short>(kFileRoom - size);
    short length = room;
    if (fsys::dispatch(hand, &FS_FshBase::GetCurrentPath, &_FUNC_LIST::GetCurrentPath,
                       FS_ERR_UNIMPLEMENTED, path.text, &length) != FS_SUCCESS)
      return false;
    if (length < 0 || length > room) return false;
    if (length == kRootPathBytes) length = 0;  // the root alone: the name is the path
    if (!get_name(hand, blk, path.text + length / kWideChar)) return false;
    path.bytes = static_cast<std::int16_t>(length + size);
    return true;
  }
  if (size > kLongestDirectoryName) return false;
  if (!get_name(hand, blk, path.text)) return false;
  path.bytes = size;
  return true;
}

}  // namespace

void FS_GetSpecialAttribs(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  if (hand == nullptr || hand->dle == nullptr || blk == nullptr) return;
  GENERIC_DLE* dle = hand->dle;
  if (dle->exclude_patterns == nullptr && dle->exclude_paths == nullptr) return;
  if (blk->obj_flags & DBLK_OBJ_MARKED_MASK) return;
  ObjectPath path;
  if (!build_path(hand, blk, path)) return;
  blk->obj_flags |= DLE_GetExcludeReason(dle, path.text, path.bytes);
}

// `*flag` is written only with an answer: 0 when there are no rules to ask,
// the cached or the new reason otherwise. A path that cannot be built leaves
// it as the caller set it.
FS_STATUS FS_GetAgentWarningFlag(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned int* flag) {
  if (hand == nullptr || hand->dle == nullptr || hand->dle->agent_warnings == nullptr ||
      blk == nullptr) {
    if (flag != nullptr) *flag = 0;
    return FS_ERR_NOT_SUPPORTED;
  }
  if (blk->agent_warning != 0) {
    if (flag != nullptr) *flag = blk->agent_warning & ~DBLK_WARNING_CACHED;
    return FS_SUCCESS;
  }
  ObjectPath path;
  if (!build_path(hand, blk, path)) return FS_ERR_NOT_SUPPORTED;
  std::uint32_t const reason = DLE_GetWarningReason(hand->dle, path.text, path.bytes);
  blk->agent_warning = DBLK_WARNING_CACHED | reason;
  if (flag != nullptr) *flag = reason & ~DBLK_WARNING_CACHED;
  return (reason & ~DBLK_WARNING_CACHED) != 0 ? FS_SUCCESS : FS_ERR_NOT_SUPPORTED;
}
