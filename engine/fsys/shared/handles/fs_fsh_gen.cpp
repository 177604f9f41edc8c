// FS_FshGen: the generic file system's adapter; see the header for the
// behaviour of each form.
#include <qbfsys/dblk.h>
#include <qbfsys/file_hand.h>
#include <qbfsys/fs_fsh_gen.h>
#include <qbfsys/gen.h>
#include <qbfsys/handles.h>
#include <qbhost/zprintf.h>

#include "fs_dispatch.h"

namespace {

constexpr FS_STATUS kOne = 1;

int line_of(int operation) { return FS_FSHGEN_LINE_BASE + operation; }

FS_STATUS unimplemented(int line) {
  QB_Zprintf(0, L"FS_FshGen: Unimplemented function called at line number %d", line);
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS bad_parameter(int line) {
  QB_Zprintf(0, L"FS_FshGen: Bad Parameter at line number %d", line);
  return FS_ERR_BAD_PARAMETER;
}

}  // namespace

FS_FshGen::~FS_FshGen() = default;

FS_STATUS FS_FshGen::CloseSys(FSYS_HAND_STRUCT* hand) {
  if (hand != nullptr) hand->adapter = nullptr;
  delete this;
  return FS_SUCCESS;
}

FS_STATUS FS_FshGen::OpenSys(FSYS_HAND_STRUCT* /*hand*/) { return FS_SUCCESS; }

FS_STATUS FS_FshGen::AttachToDLE(FSYS_HAND_STRUCT* /*hand*/, GENERIC_DLE* /*dle*/,
                                 wchar_t* /*user*/, wchar_t* /*password*/) {
  return unimplemented(line_of(2));
}

FS_STATUS FS_FshGen::DetachDLE(FSYS_HAND_STRUCT* /*hand*/, void* /*arg*/, void** /*result*/) {
  return unimplemented(line_of(3));
}

FS_STATUS FS_FshGen::InitMakeData(FSYS_HAND_STRUCT* hand, short /*size*/, _CREATE_DBLK* request) {
  if (hand == nullptr || request == nullptr) return bad_parameter(line_of(5));
  return FS_SUCCESS;
}

FS_STATUS FS_FshGen::IsBlkComplete(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  if (hand == nullptr || blk == nullptr) return bad_parameter(line_of(6));
  return GEN_IsBlkComplete(hand, blk);
}

FS_STATUS FS_FshGen::CompleteBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char* buffer,
                                 unsigned int* value, STREAM_INFO* header) {
  if (hand == nullptr || blk == nullptr || buffer == nullptr || value == nullptr ||
      header == nullptr)
    return bad_parameter(line_of(7));
  return GEN_CompleteBlk(hand, blk, buffer, value, header);
}

FS_STATUS FS_FshGen::DupBlk(FSYS_HAND_STRUCT* hand, DBLK* blk, DBLK* blk2) {
  if (hand == nullptr || blk == nullptr || blk2 == nullptr) return bad_parameter(line_of(8));
  return GEN_DupBlk(hand, blk, blk2);
}

FS_STATUS FS_FshGen::ReleaseBlk(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  if (hand == nullptr || blk == nullptr) return bad_parameter(line_of(9));
  return GEN_ReleaseBlk(hand, blk);
}

FS_STATUS FS_FshGen::ProcessDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  return GEN_ProcessDDB(hand, blk);
}

FS_STATUS FS_FshGen::GetCurrentDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  if (hand == nullptr || blk == nullptr) return bad_parameter(line_of(11));
  return unimplemented(line_of(11));
}

FS_STATUS FS_FshGen::GetCurrentPath(FSYS_HAND_STRUCT* hand, wchar_t* text, short* size) {
  if (hand == nullptr || text == nullptr || size == nullptr) return bad_parameter(line_of(12));
  return unimplemented(line_of(12));
}

FS_STATUS FS_FshGen::ChangeDir(FSYS_HAND_STRUCT* /*hand*/, wchar_t* /*text*/, short /*size*/) {
  return unimplemented(line_of(13));
}

FS_STATUS FS_FshGen::ChangeDirUp(FSYS_HAND_STRUCT* /*hand*/) { return unimplemented(line_of(14)); }

FS_STATUS FS_FshGen::CreateObj(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/, wchar_t const* /*text*/,
                               RESTORE_SEMANTICS /*semantics*/) {
  return unimplemented(line_of(15));
}

FS_STATUS FS_FshGen::OpenObj(FSYS_HAND_STRUCT* /*hand*/, _FILE_HAND_STRUCT** /*out*/, DBLK* /*blk*/,
                             OPEN_MODE /*mode*/) {
  return unimplemented(line_of(16));
}

FS_STATUS FS_FshGen::SeekObj(_FILE_HAND_STRUCT* /*obj*/, unsigned int* /*value*/) {
  return unimplemented(line_of(17));
}

FS_STATUS FS_FshGen::ReadObj(_FILE_HAND_STRUCT* /*obj*/, unsigned char* /*buffer*/,
                             unsigned int* /*value*/, unsigned int* /*value2*/,
                             STREAM_INFO* /*header*/) {
  return unimplemented(line_of(18));
}

FS_STATUS FS_FshGen::WriteObj(_FILE_HAND_STRUCT* /*obj*/, unsigned char* /*buffer*/,
                              unsigned int* /*value*/, unsigned int* /*value2*/,
                              STREAM_INFO* /*header*/) {
  return unimplemented(line_of(19));
}

FS_STATUS FS_FshGen::CloseObj(_FILE_HAND_STRUCT* /*obj*/, void** /*result*/, void** /*result2*/) {
  return unimplemented(line_of(20));
}

FS_STATUS FS_FshGen::DeleteObj(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/) {
  return unimplemented(line_of(21));
}

FS_STATUS FS_FshGen::GetObjInfo(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/) {
  return unimplemented(line_of(22));
}

FS_STATUS FS_FshGen::FindFirstObj(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/, wchar_t* /*text*/,
                                  unsigned short /*flags*/) {
  return unimplemented(line_of(23));
}

FS_STATUS FS_FshGen::FindNextObj(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/) {
  return unimplemented(line_of(24));
}

FS_STATUS FS_FshGen::PushMinDDB(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/) {
  return unimplemented(line_of(25));
}

FS_STATUS FS_FshGen::MakePushDBLK(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/,
                                  unsigned int* /*value*/, void const* /*arg*/) {
  return unimplemented(line_of(26));
}

FS_STATUS FS_FshGen::PopMinDDB(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/) {
  return unimplemented(line_of(27));
}

FS_STATUS FS_FshGen::GetSpecialDBLKS(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/,
                                     unsigned int /*number*/, int /*number2*/) {
  return FS_STATUS_NONE;
}

FS_STATUS FS_FshGen::ModName(FSYS_HAND_STRUCT* hand, int number, DBLK* blk, wchar_t* text,
                             short* size) {
  if (hand == nullptr || blk == nullptr || text == nullptr || size == nullptr)
    return bad_parameter(line_of(29));
  return GEN_ModName(hand, number, blk, text, size);
}

FS_STATUS FS_FshGen::GetOSName(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* text, bool flag) {
  if (hand == nullptr || blk == nullptr || text == nullptr) return bad_parameter(line_of(30));
  return GEN_GetOSName(hand, blk, text, flag);
}

FS_STATUS FS_FshGen::GetCDateDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, _DATE_TIME* date) {
  if (hand == nullptr || blk == nullptr || date == nullptr) return bad_parameter(line_of(31));
  return GEN_GetCdateDBLK(hand, blk, date);
}

FS_STATUS FS_FshGen::GetMDateDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, _DATE_TIME* date) {
  if (hand == nullptr || blk == nullptr || date == nullptr) return bad_parameter(line_of(32));
  return GEN_GetMdateDBLK(hand, blk, date);
}

FS_STATUS FS_FshGen::ModBDateDBLK(FSYS_HAND_STRUCT* hand, int number, DBLK* blk, _DATE_TIME* date) {
  if (hand == nullptr || blk == nullptr || date == nullptr) return bad_parameter(line_of(33));
  return GEN_ModBdateDBLK(hand, number, blk, date);
}

FS_STATUS FS_FshGen::ModADateDBLK(FSYS_HAND_STRUCT* hand, int number, DBLK* blk, _DATE_TIME* date) {
  if (hand == nullptr || blk == nullptr || date == nullptr) return bad_parameter(line_of(34));
  return GEN_ModAdateDBLK(hand, number, blk, date);
}

FS_STATUS FS_FshGen::GetDisplaySizeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  if (hand == nullptr || blk == nullptr) return bad_parameter(line_of(35));
  return GEN_GetDisplaySizeDBLK(hand, blk);
}

FS_STATUS FS_FshGen::ModAttrib1DBLK(FSYS_HAND_STRUCT* hand, int number, DBLK* blk,
                                    unsigned int* value) {
  if (hand == nullptr || blk == nullptr || value == nullptr) return bad_parameter(line_of(36));
  return GEN_ModAttrib1DBLK(hand, number, blk, value);
}

FS_STATUS FS_FshGen::ModAttrib2DBLK(FSYS_HAND_STRUCT* hand, int number, DBLK* blk,
                                    unsigned int* value) {
  if (hand == nullptr || blk == nullptr || value == nullptr) return bad_parameter(line_of(37));
  return GEN_ModAttrib2DBLK(hand, number, blk, value);
}

FS_STATUS FS_FshGen::GetFileVerFDB(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned int* value) {
  return GEN_GetFileVerFDB(hand, blk, value);
}

FS_STATUS FS_FshGen::GetObjTypeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, OBJECT_TYPE* type) {
  if (hand == nullptr || blk == nullptr || type == nullptr) return bad_parameter(line_of(39));
  *type = FS_OBJ_GENERIC;
  return FS_SUCCESS;
}

FS_STATUS FS_FshGen::SizeofName(FSYS_HAND_STRUCT* hand, DBLK* blk, bool flag) {
  if (hand == nullptr || blk == nullptr) return bad_parameter(line_of(40));
  return fsys::narrow_size(GEN_SizeofName(hand, blk, flag));
}

FS_STATUS FS_FshGen::SizeofOSName(FSYS_HAND_STRUCT* hand, DBLK* blk, bool flag) {
  if (hand == nullptr || blk == nullptr) return bad_parameter(line_of(41));
  return fsys::narrow_size(GEN_SizeofOSName(hand, blk, flag));
}

FS_STATUS FS_FshGen::SizeofQbdsInfo(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  if (hand == nullptr || blk == nullptr) return bad_parameter(line_of(42));
  return GEN_SizeofOSInfo(hand, blk);
}

FS_STATUS FS_FshGen::GetQbdsInfoDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char* buffer,
                                     short* size) {
  if (hand == nullptr || blk == nullptr || buffer == nullptr || size == nullptr)
    return bad_parameter(line_of(43));
  return GEN_GetOS_InfoDBLK(hand, blk, buffer, size);
}

FS_STATUS FS_FshGen::GetActualSizeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  return fsys::narrow_size(GEN_GetActualSizeDBLK(hand, blk));
}

FS_STATUS FS_FshGen::InitializeGOS(FSYS_HAND_STRUCT* /*hand*/, _GOS* /*gos*/) { return FS_SUCCESS; }

FS_STATUS FS_FshGen::CreateGenFDB(FSYS_HAND_STRUCT* hand, _GEN_DBLK_DATA* data) {
  if (hand == nullptr || data == nullptr) return bad_parameter(line_of(46));
  return GEN_CreateFDB(hand, data);
}

FS_STATUS FS_FshGen::CreateGenDDB(FSYS_HAND_STRUCT* hand, _GEN_DBLK_DATA* data) {
  if (hand == nullptr || data == nullptr) return bad_parameter(line_of(47));
  return GEN_CreateDDB(hand, data);
}

FS_STATUS FS_FshGen::CreateGenDBLK(FSYS_HAND_STRUCT* hand, unsigned int number,
                                   _CREATE_DBLK* request) {
  if (hand == nullptr || request == nullptr) return bad_parameter(line_of(48));
  return GEN_CreateDBLK(hand, number, request);
}

FS_STATUS FS_FshGen::ChangeIntoDDB(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/) {
  return unimplemented(line_of(49));
}

FS_STATUS FS_FshGen::SpecExcludeObj(FSYS_HAND_STRUCT* hand, DBLK* blk, DBLK* blk2,
                                    unsigned int number) {
  if (hand == nullptr || blk == nullptr || blk2 == nullptr) return bad_parameter(line_of(50));
  return GEN_SpecExcludeObj(hand, blk, blk2, number);
}

FS_STATUS FS_FshGen::FindObjClose(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  return GEN_FindClose(hand, blk);
}

FS_STATUS FS_FshGen::GeneratedErrorLog(FSYS_HAND_STRUCT* /*hand*/, void** /*result*/,
                                       wchar_t* /*text*/, unsigned int /*number*/,
                                       unsigned int* /*value*/) {
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS FS_FshGen::GetDBInfoDBLK(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/,
                                   unsigned char* /*buffer*/) {
  return FS_SUCCESS;
}

FS_STATUS FS_FshGen::SizeofDBInfoDBLK(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/) {
  return FS_SUCCESS;
}

FS_STATUS FS_FshGen::PrePostProc(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/, _PREPOST* /*prepost*/) {
  return FS_SUCCESS;
}

FS_STATUS FS_FshGen::GetLastErrorMessage(FSYS_HAND_STRUCT* /*hand*/, wchar_t* /*text*/,
                                         unsigned int /*number*/) {
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS FS_FshGen::SetLastErrorMessage(FSYS_HAND_STRUCT* /*hand*/, wchar_t const* /*text*/) {
  return unimplemented(line_of(57));
}

FS_STATUS FS_FshGen::GetFinalSay(FSYS_HAND_STRUCT* /*hand*/, unsigned int* /*value*/,
                                 long* /*code*/, wchar_t* /*text*/, unsigned int /*number*/,
                                 wchar_t* /*text2*/, unsigned int /*number2*/) {
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS FS_FshGen::SetFinalSay(FSYS_HAND_STRUCT* /*hand*/, unsigned int /*number*/, long /*code*/,
                                 wchar_t* /*text*/, wchar_t* /*text2*/) {
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS FS_FshGen::GetBackupPriority(FSYS_HAND_STRUCT* /*hand*/, wchar_t const* /*text*/,
                                       unsigned long /*flags*/) {
  return kOne;
}

FS_STATUS FS_FshGen::EnumExcludedFiles(FSYS_HAND_STRUCT* /*hand*/, int* /*cursor*/,
                                       wcstring& /*name*/, bool* /*flag*/, EXCLUDE_TYPE& /*type*/) {
  return FS_STATUS_NONE;
}

FS_STATUS FS_FshGen::SizeofVolumeQbdsInfoInVCB(FSYS_HAND_STRUCT* /*hand*/, _ZRTSCB* /*vcb*/) {
  return FS_SUCCESS;
}

FS_STATUS FS_FshGen::GetVolumeQbdsInfoFromVCB(FSYS_HAND_STRUCT* /*hand*/, _ZRTSCB* /*vcb*/,
                                              unsigned char* /*buffer*/) {
  return FS_SUCCESS;
}

FS_STATUS FS_FshGen::CompareFileNames(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/,
                                      wchar_t* /*text*/) {
  return FS_SUCCESS;
}

FS_STATUS FS_FshGen::GetMountPointType(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/) {
  return FS_SUCCESS;
}

FS_STATUS FS_FshGen::GetSpecRestoreObjects(FSYS_HAND_STRUCT* /*hand*/, wcstring& /*name*/,
                                           wcstring& /*name2*/, bool /*flag*/, bool* /*flag2*/,
                                           bool* /*flag3*/, unsigned int /*number*/) {
  return FS_STATUS_NONE;
}

FS_STATUS FS_FshGen::GetHardLinkPathAndName(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* text,
                                            short* size) {
  if (hand == nullptr || blk == nullptr || text == nullptr || size == nullptr)
    return bad_parameter(line_of(67));
  *size = 0;
  return FS_SUCCESS;
}

FS_STATUS FS_FshGen::EnumDependentVolumes(FSYS_HAND_STRUCT* /*hand*/,
                                          FS_WCSTRING_INSERTER /*out*/) {
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS FS_FshGen::AddToSnapshotSet(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/,
                                      FS_WCSTRING_INSERTER /*out*/) {
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS FS_FshGen::SnapshotNotification(FSYS_HAND_STRUCT* /*hand*/,
                                          SNAPSHOT_NOTIFICATION::notify_type /*kind*/) {
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS FS_FshGen::GetExtendedErrorInfo(FSYS_HAND_STRUCT* hand, FS_EXT_ERR_ACTION* action,
                                          unsigned int* value, wchar_t** message) {
  if (hand == nullptr || action == nullptr || value == nullptr || message == nullptr)
    return bad_parameter(line_of(71));
  return GEN_GetExtendedErrorInfo(hand, action, value, message);
}

FS_STATUS FS_FshGen::EnumSpecFiles(FSYS_HAND_STRUCT* /*hand*/, FS_WCSTRING_VECTOR& /*names*/) {
  return FS_SUCCESS;
}

FS_STATUS FS_FshGen::GetVolb(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  if (hand == nullptr || blk == nullptr) return bad_parameter(line_of(73));
  return GEN_GetVolb(hand, blk);
}

FS_STATUS FS_FshGen::GenericInfo(FSYS_HAND_STRUCT* /*hand*/, unsigned int /*number*/,
                                 unsigned int /*number2*/, unsigned char* /*buffer*/) {
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS FS_FshGen::FillOutDBLK(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/, wchar_t const* /*text*/,
                                 unsigned int /*number*/, unsigned long long const& /*id*/) {
  return unimplemented(line_of(75));
}

FS_STATUS FS_FshGen::GetShortNameFromDBLK(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/,
                                          wcstring& /*name*/) {
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS FS_FshGen::GetMountPointInfo(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/,
                                       FS_MOUNTPOINT_INFO& /*info*/) {
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS FS_FshGen::GetLocalDeviceName(FSYS_HAND_STRUCT* /*hand*/, wcstring& /*name*/) {
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS FS_FshGen::GetDeviceTime(FSYS_HAND_STRUCT* /*hand*/, _DATE_TIME* /*date*/,
                                   _DATE_TIME* /*date2*/) {
  return unimplemented(line_of(79));
}

FS_STATUS FS_FshGen::GetOffHostFileList(
    _FILE_HAND_STRUCT* /*obj*/, FS_OFF_HOST_FILE_LIST** /*list*/, FS_OFF_HOST_FILE_LIST** /*list2*/,
    _OFF_HOST_FILELIST_OPER_DATA_TYPES::FS_OH_FL_OPER_TYPE* /*operation*/,
    _OFF_HOST_FILELIST_OPER_DATA_TYPES::FS_OH_FL_DATA_TYPE* /*data_type*/, void** /*result*/,
    unsigned int* /*value*/) {
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS FS_FshGen::PerformChecks(_FILE_HAND_STRUCT* /*obj*/,
                                   _PERFORM_CHECKS::OPERATION_TYPE /*kind*/,
                                   _PERFORM_CHECKS::OPERATION_SUB_TYPE /*sub_kind*/) {
  return unimplemented(line_of(81));
}

FS_STATUS FS_FshGen::DoCommand(FSYS_HAND_STRUCT* /*hand*/, FS_CMD /*command*/, void* /*arg*/,
                               void* /*arg2*/) {
  return unimplemented(line_of(82));
}

FS_STATUS FS_FshGen::GetExtendedAttribFromDBLK(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/,
                                               unsigned int /*number*/, void* /*arg*/,
                                               unsigned int* /*value*/) {
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS FS_FshGen::GetEquivalentRealPath(FSYS_HAND_STRUCT* /*hand*/, wchar_t const* /*text*/,
                                           unsigned int /*number*/, wcstring* /*name*/,
                                           long* /*code*/) {
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS FS_FshGen::GetVirtualVolumeDetails(FSYS_HAND_STRUCT* /*hand*/, unsigned char** /*buffer*/,
                                             unsigned int* /*value*/,
                                             _VIRTUAL_VOLUME_INFO** /*info*/) {
  return unimplemented(line_of(85));
}

FS_STATUS FS_FshGen::GetLastErrorAndMessage(FSYS_HAND_STRUCT* /*hand*/, wchar_t* /*text*/,
                                            unsigned int /*number*/, long* /*code*/) {
  return unimplemented(line_of(86));
}

FS_STATUS FS_FshGen::DirectImageInterface(FSYS_HAND_STRUCT* /*hand*/, wchar_t const* /*text*/,
                                          wchar_t const* /*text2*/, _DII_CONTROL_TYPE /*control*/,
                                          unsigned int /*number*/, FS_OFF_HOST_FILE_LIST** /*list*/,
                                          FS_OFF_HOST_FILE_LIST** /*list2*/, wchar_t* /*text3*/,
                                          unsigned int& /*size*/) {
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS FS_FshGen::GetSearchMetadataBlob(_FILE_HAND_STRUCT* /*obj*/, unsigned char* /*buffer*/,
                                           unsigned int* /*value*/) {
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS FS_FshGen::BackupPrep(FSYS_HAND_STRUCT* /*hand*/) { return unimplemented(line_of(89)); }

FS_STATUS FS_FshGen::BackupPrepObj(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/) {
  return unimplemented(line_of(90));
}

wcstring FS_FshGen::GetRestoreWorkFlow(FSYS_HAND_STRUCT* /*hand*/) { return wcstring(); }

FS_STATUS FS_FshGen::RefreshBrowseCache(FSYS_HAND_STRUCT* /*hand*/) { return FS_SUCCESS; }

FS_STATUS FS_FshGen::GetDblkExtendedProperties(FSYS_HAND_STRUCT* /*hand*/, DBLK* /*blk*/,
                                               fs_property_tree& /*tree*/) {
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS FS_FshGen::MoveGranularData(FSYS_HAND_STRUCT* /*hand*/, FS_WCSTRING_VECTOR& /*names*/,
                                      void* /*arg*/) {
  return FS_ERR_UNIMPLEMENTED;
}
