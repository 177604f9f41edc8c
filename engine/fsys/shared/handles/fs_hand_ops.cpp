// The FS_Hand functions: the layer's own dispatch (fs_dispatch.h) made
// public, one line each, so a host takes exactly the road the layer takes.
#include <qbfsys/handle_ops.h>

#include "fs_dispatch.h"

namespace {

// Every FS_Hand operation: a null handle is refused before the road is taken.
template <typename... Params, typename Slot, typename... Args>
FS_STATUS road(FSYS_HAND_STRUCT* hand, FS_STATUS (FS_FshBase::*op)(FSYS_HAND_STRUCT*, Params...),
               Slot _FUNC_LIST::*slot, Args&&... args) {
  if (hand == nullptr) return FS_ERR_BAD_PARAMETER;
  return fsys::dispatch(hand, op, slot, FS_ERR_UNIMPLEMENTED, std::forward<Args>(args)...);
}

}  // namespace

bool FS_HandCanWalk(FSYS_HAND_STRUCT const* hand) {
  return fsys::can_dispatch(hand, &_FUNC_LIST::FindFirstObj) &&
         fsys::can_dispatch(hand, &_FUNC_LIST::FindNextObj);
}

FS_STATUS FS_HandFindFirstObj(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* spec, unsigned short flags) {
  return road(hand, &FS_FshBase::FindFirstObj, &_FUNC_LIST::FindFirstObj, blk, spec, flags);
}

FS_STATUS FS_HandFindNextObj(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  return road(hand, &FS_FshBase::FindNextObj, &_FUNC_LIST::FindNextObj, blk);
}

FS_STATUS FS_HandFindObjClose(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  return road(hand, &FS_FshBase::FindObjClose, &_FUNC_LIST::FindObjClose, blk);
}

FS_STATUS FS_HandChangeDir(FSYS_HAND_STRUCT* hand, wchar_t* path, short size) {
  return road(hand, &FS_FshBase::ChangeDir, &_FUNC_LIST::ChangeDir, path, size);
}

FS_STATUS FS_HandChangeIntoDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  return road(hand, &FS_FshBase::ChangeIntoDDB, &_FUNC_LIST::ChangeIntoDDB, blk);
}

FS_STATUS FS_HandChangeDirUp(FSYS_HAND_STRUCT* hand) {
  return road(hand, &FS_FshBase::ChangeDirUp, &_FUNC_LIST::ChangeDirUp);
}

FS_STATUS FS_HandGetCurrentPath(FSYS_HAND_STRUCT* hand, wchar_t* path, short* size) {
  return road(hand, &FS_FshBase::GetCurrentPath, &_FUNC_LIST::GetCurrentPath, path, size);
}

FS_STATUS FS_HandGetCurrentDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  return road(hand, &FS_FshBase::GetCurrentDDB, &_FUNC_LIST::GetCurrentDDB, blk);
}

FS_STATUS FS_HandCreateObj(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t const* name,
                           RESTORE_SEMANTICS semantics) {
  return road(hand, &FS_FshBase::CreateObj, &_FUNC_LIST::CreateObj, blk, name, semantics);
}

FS_STATUS FS_HandDeleteObj(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  return road(hand, &FS_FshBase::DeleteObj, &_FUNC_LIST::DeleteObj, blk);
}

FS_STATUS FS_HandReleaseBlk(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  return road(hand, &FS_FshBase::ReleaseBlk, &_FUNC_LIST::ReleaseBlk, blk);
}

FS_STATUS FS_HandDupBlk(FSYS_HAND_STRUCT* hand, DBLK* source, DBLK* copy) {
  return road(hand, &FS_FshBase::DupBlk, &_FUNC_LIST::DupBlk, source, copy);
}

std::int32_t FS_HandSizeofOSName(FSYS_HAND_STRUCT* hand, DBLK* blk, bool withPath) {
  FS_STATUS const size = fsys::dispatch(hand, &FS_FshBase::SizeofOSName, &_FUNC_LIST::SizeofOSName,
                                        FS_STATUS{0}, blk, withPath);
  return static_cast<std::int16_t>(size);
}

FS_STATUS FS_HandGetOSName(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* buffer, bool withPath) {
  return road(hand, &FS_FshBase::GetOSName, &_FUNC_LIST::GetOSName, blk, buffer, withPath);
}

FS_STATUS FS_HandGetObjTypeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, OBJECT_TYPE* type) {
  return road(hand, &FS_FshBase::GetObjTypeDBLK, &_FUNC_LIST::GetObjTypeDBLK, blk, type);
}

FS_STATUS FS_HandGetCDateDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, _DATE_TIME* date) {
  return road(hand, &FS_FshBase::GetCDateDBLK, &_FUNC_LIST::GetCDateDBLK, blk, date);
}

FS_STATUS FS_HandGetMDateDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, _DATE_TIME* date) {
  return road(hand, &FS_FshBase::GetMDateDBLK, &_FUNC_LIST::GetMDateDBLK, blk, date);
}

FS_STATUS FS_HandModBDateDBLK(FSYS_HAND_STRUCT* hand, int direction, DBLK* blk, _DATE_TIME* date) {
  return road(hand, &FS_FshBase::ModBDateDBLK, &_FUNC_LIST::ModBDateDBLK, direction, blk, date);
}

FS_STATUS FS_HandModADateDBLK(FSYS_HAND_STRUCT* hand, int direction, DBLK* blk, _DATE_TIME* date) {
  return road(hand, &FS_FshBase::ModADateDBLK, &_FUNC_LIST::ModADateDBLK, direction, blk, date);
}

FS_STATUS FS_HandGetDisplaySizeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  return road(hand, &FS_FshBase::GetDisplaySizeDBLK, &_FUNC_LIST::GetDisplaySizeDBLK, blk);
}
