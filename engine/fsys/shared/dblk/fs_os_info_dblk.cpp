// The OS-info and OS-id accessors: FS_SizeofQbdsInfoInDBLK,
// FS_SizeofOS_InfoInDBLK, FS_GetQbdsInfoFromDBLK, FS_GetOS_InfoFromDBLK,
// FS_GetOSid_verFromDBLK, FS_GetDataIdQbdsIdQbdsVerFromDBLK.
#include <qbfsys/dblk_access.h>
#include <qbfsys/handles.h>

#include "fs_dispatch.h"

namespace {
bool has_os_info(DBLK const* blk) { return blk != nullptr && dblk_is_object(blk); }

void widen_into(unsigned short* out, std::uint8_t value) {
  if (out != nullptr) *out = value;
}
}  // namespace

std::uint32_t FS_SizeofQbdsInfoInDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  if (!has_os_info(blk)) return 0;
  FS_STATUS const size = fsys::dispatch(hand, &FS_FshBase::SizeofQbdsInfo,
                                        &_FUNC_LIST::SizeofOSInfo, FS_STATUS{0}, blk);
  return fsys::narrow_size(size);
}

std::uint32_t FS_SizeofOS_InfoInDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  return FS_SizeofQbdsInfoInDBLK(hand, blk);
}

FS_STATUS FS_GetQbdsInfoFromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char* buffer) {
  if (!has_os_info(blk)) return FS_SUCCESS;
  if (buffer == nullptr) return FS_ERR_BAD_PARAMETER;
  short capacity = FS_OS_INFO_CAPACITY;
  return fsys::dispatch(hand, &FS_FshBase::GetQbdsInfoDBLK, &_FUNC_LIST::GetOS_InfoDBLK,
                        FS_ERR_UNIMPLEMENTED, blk, buffer, &capacity);
}

FS_STATUS FS_GetOS_InfoFromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char* buffer) {
  return FS_GetQbdsInfoFromDBLK(hand, blk, buffer);
}

FS_STATUS FS_GetOSid_verFromDBLK(FSYS_HAND_STRUCT* /*hand*/, DBLK* blk, unsigned short* osId,
                                 unsigned short* osVer) {
  if (blk == nullptr) return FS_ERR_BAD_PARAMETER;
  widen_into(osId, blk->os_id);
  widen_into(osVer, blk->os_ver);
  return FS_SUCCESS;
}

void FS_GetDataIdQbdsIdQbdsVerFromDBLK(DBLK* blk, unsigned short* dataId, unsigned short* qbdsId,
                                       unsigned short* qbdsVer) {
  if (blk == nullptr) return;
  widen_into(dataId, blk->os_id);
  widen_into(qbdsId, blk->qbds_id);
  widen_into(qbdsVer, blk->os_ver);
}
