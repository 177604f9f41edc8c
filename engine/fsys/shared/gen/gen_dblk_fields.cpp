// The generic file system's block fields: attribute words, dates, sizes,
// OS info and completeness of its own directory and file blocks.
#include <cstring>

#include <qbfsys/dblk.h>
#include <qbfsys/dblk_names.h>
#include <qbfsys/gen.h>
#include <qbfsys/name_pool.h>
#include <qbfsys/stream_info.h>

namespace {

constexpr int kRead = 0;
constexpr FS_STATUS kYes = 1;
constexpr FS_STATUS kNo = 0;

template <typename T>
FS_STATUS mod_field(int direction, DBLK* blk, T* value, T& field) {
  if (blk == nullptr || value == nullptr) return FS_ERR_BAD_PARAMETER;
  if (direction == kRead) *value = field;
  else field = *value;
  return FS_SUCCESS;
}


}  // namespace

FS_STATUS GEN_ModAttrib1DBLK(FSYS_HAND_STRUCT*, int direction, DBLK* blk, unsigned int* word) {
  return blk == nullptr ? FS_ERR_BAD_PARAMETER : mod_field(direction, blk, word, blk->area.gen.attrib1);
}

FS_STATUS GEN_ModAttrib2DBLK(FSYS_HAND_STRUCT*, int direction, DBLK* blk, unsigned int* word) {
  return blk == nullptr ? FS_ERR_BAD_PARAMETER : mod_field(direction, blk, word, blk->area.gen.attrib2);
}

FS_STATUS GEN_GetDisplaySizeDBLK(FSYS_HAND_STRUCT*, DBLK* blk) {
  return blk == nullptr ? 0 : static_cast<FS_STATUS>(blk->area.gen.display_size);
}

FS_STATUS GEN_GetCdateDBLK(FSYS_HAND_STRUCT*, DBLK* blk, _DATE_TIME* date) {
  return blk == nullptr ? FS_ERR_BAD_PARAMETER : mod_field(kRead, blk, date, blk->area.gen.cdate);
}

FS_STATUS GEN_GetMdateDBLK(FSYS_HAND_STRUCT*, DBLK* blk, _DATE_TIME* date) {
  return blk == nullptr ? FS_ERR_BAD_PARAMETER : mod_field(kRead, blk, date, blk->area.gen.mdate);
}

FS_STATUS GEN_ModBdateDBLK(FSYS_HAND_STRUCT*, int direction, DBLK* blk, _DATE_TIME* date) {
  return blk == nullptr ? FS_ERR_BAD_PARAMETER : mod_field(direction, blk, date, blk->area.gen.bdate);
}

FS_STATUS GEN_ModAdateDBLK(FSYS_HAND_STRUCT*, int direction, DBLK* blk, _DATE_TIME* date) {
  return blk == nullptr ? FS_ERR_BAD_PARAMETER : mod_field(direction, blk, date, blk->area.gen.adate);
}

FS_STATUS GEN_GetFileVerFDB(FSYS_HAND_STRUCT*, DBLK*, unsigned int* version) {
  if (version == nullptr) return FS_ERR_BAD_PARAMETER;
  *version = 0;
  return FS_SUCCESS;
}

FS_STATUS GEN_SizeofOSName(FSYS_HAND_STRUCT*, DBLK* blk, bool) {
  if (blk == nullptr || !dblk_is_object(blk) || blk->os_name == nullptr) return 0;
  return blk->os_name->size;
}

FS_STATUS GEN_SizeofOSInfo(FSYS_HAND_STRUCT*, DBLK* blk) {
  return blk == nullptr || blk->os_info == nullptr ? 0 : blk->os_info_size;
}

FS_STATUS GEN_GetOS_InfoDBLK(FSYS_HAND_STRUCT*, DBLK* blk, unsigned char* buffer, short* size) {
  if (blk == nullptr || size == nullptr) return FS_ERR_BAD_PARAMETER;
  if (blk->os_info == nullptr) {
    *size = 0;
    return FS_SUCCESS;
  }
  if (buffer == nullptr || *size < 0 || static_cast<std::uint16_t>(*size) < blk->os_info_size)
    return FS_ERR_OBJ_NO_DATA;
  std::memcpy(buffer, blk->os_info, blk->os_info_size);
  *size = static_cast<short>(blk->os_info_size);
  return FS_SUCCESS;
}

FS_STATUS GEN_GetActualSizeDBLK(FSYS_HAND_STRUCT*, DBLK*) { return GEN_DBLK_ACTUAL_SIZE; }

FS_STATUS GEN_ProcessDDB(FSYS_HAND_STRUCT*, DBLK*) { return kYes; }

FS_STATUS GEN_FindClose(FSYS_HAND_STRUCT*, DBLK*) { return FS_SUCCESS; }

FS_STATUS GEN_SpecExcludeObj(FSYS_HAND_STRUCT*, DBLK*, DBLK*, unsigned int) { return FS_SUCCESS; }

FS_STATUS GEN_IsBlkComplete(FSYS_HAND_STRUCT*, DBLK* blk) {
  if (blk == nullptr) return kNo;
  if (blk->blk_type == DBLK_KIND_VCB || blk->blk_type == DBLK_KIND_CFDB ||
      blk->blk_subtype == DBLK_SUBTYPE_CLST)
    return kYes;
  return blk->os_name != nullptr ? kYes : kNo;
}

FS_STATUS GEN_CompleteBlk(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char* data, unsigned int* size,
                          STREAM_INFO* header) {
  FS_STATUS const status = FS_FillBufferWithStream(hand, blk, data, size, header);
  if (status != FS_BLK_COMPLETE) return status;
  STREAM_INFO* gathered = nullptr;
  unsigned char* name = nullptr;
  FS_GetStreamInfo(hand, blk, &gathered, &name);
  if (gathered == nullptr) return FS_SetupOSPathOrNameInDBLK(hand, blk, nullptr, 0, 0);
  if (gathered->size > UINT32_MAX) return FS_ERR_NO_MEMORY;
  return FS_SetupOSPathOrNameInDBLK(hand, blk, name, static_cast<std::uint16_t>(gathered->size), 0);
}
