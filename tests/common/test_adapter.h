// An in-process adapter for the handle tests: attach, detach, close and the
// restore work flow answer as the test sets them (TestAdapterControl); the
// other 90 operations are empty and answer FS_ERR_UNIMPLEMENTED.
//
// Like a real adapter it belongs to the handle that points at it: CloseSys
// clears the handle's field and deletes the object.
#pragma once
#include <qbfsys/fs_fsh_base.h>
#include <qbfsys/handles.h>

namespace qbtest {

struct TestAdapterControl {
  FS_STATUS attach_result = FS_SUCCESS;
  FS_STATUS detach_result = FS_SUCCESS;
  FS_STATUS close_result = FS_SUCCESS;
  wchar_t const* restore_work_flow = L"";
  int attaches = 0;
  int detaches = 0;
  int closes = 0;
  int live = 0;  // adapters made and not yet deleted
};

class TestAdapter : public FS_FshBase {
 public:
  explicit TestAdapter(TestAdapterControl* control) : control_(control) { ++control_->live; }
  virtual ~TestAdapter() { --control_->live; }

  FS_STATUS AttachToDLE(FSYS_HAND_STRUCT*, GENERIC_DLE*, wchar_t*, wchar_t*) override {
    ++control_->attaches;
    return control_->attach_result;
  }
  FS_STATUS DetachDLE(FSYS_HAND_STRUCT*, void*, void**) override {
    ++control_->detaches;
    return control_->detach_result;
  }
  FS_STATUS CloseSys(FSYS_HAND_STRUCT* hand) override {
    ++control_->closes;
    FS_STATUS const result = control_->close_result;
    if (hand != nullptr) hand->adapter = nullptr;
    delete this;
    return result;
  }
  wcstring GetRestoreWorkFlow(FSYS_HAND_STRUCT*) override { return control_->restore_work_flow; }

  // The other operations.
  FS_STATUS OpenSys(FSYS_HAND_STRUCT*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS InitMakeData(FSYS_HAND_STRUCT*, short, _CREATE_DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS IsBlkComplete(FSYS_HAND_STRUCT*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS CompleteBLK(FSYS_HAND_STRUCT*, DBLK*, unsigned char*, unsigned int*, STREAM_INFO*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS DupBlk(FSYS_HAND_STRUCT*, DBLK*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS ReleaseBlk(FSYS_HAND_STRUCT*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS ProcessDDB(FSYS_HAND_STRUCT*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetCurrentDDB(FSYS_HAND_STRUCT*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetCurrentPath(FSYS_HAND_STRUCT*, wchar_t*, short*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS ChangeDir(FSYS_HAND_STRUCT*, wchar_t*, short) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS ChangeDirUp(FSYS_HAND_STRUCT*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS CreateObj(FSYS_HAND_STRUCT*, DBLK*, wchar_t const*, RESTORE_SEMANTICS) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS OpenObj(FSYS_HAND_STRUCT*, _FILE_HAND_STRUCT**, DBLK*, OPEN_MODE) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS SeekObj(_FILE_HAND_STRUCT*, unsigned int*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS ReadObj(_FILE_HAND_STRUCT*, unsigned char*, unsigned int*, unsigned int*, STREAM_INFO*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS WriteObj(_FILE_HAND_STRUCT*, unsigned char*, unsigned int*, unsigned int*, STREAM_INFO*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS CloseObj(_FILE_HAND_STRUCT*, void**, void**) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS DeleteObj(FSYS_HAND_STRUCT*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetObjInfo(FSYS_HAND_STRUCT*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS FindFirstObj(FSYS_HAND_STRUCT*, DBLK*, wchar_t*, unsigned short) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS FindNextObj(FSYS_HAND_STRUCT*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS PushMinDDB(FSYS_HAND_STRUCT*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS MakePushDBLK(FSYS_HAND_STRUCT*, DBLK*, unsigned int*, void const*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS PopMinDDB(FSYS_HAND_STRUCT*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetSpecialDBLKS(FSYS_HAND_STRUCT*, DBLK*, unsigned int, int) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS ModName(FSYS_HAND_STRUCT*, int, DBLK*, wchar_t*, short*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetOSName(FSYS_HAND_STRUCT*, DBLK*, wchar_t*, bool) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetCDateDBLK(FSYS_HAND_STRUCT*, DBLK*, _DATE_TIME*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetMDateDBLK(FSYS_HAND_STRUCT*, DBLK*, _DATE_TIME*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS ModBDateDBLK(FSYS_HAND_STRUCT*, int, DBLK*, _DATE_TIME*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS ModADateDBLK(FSYS_HAND_STRUCT*, int, DBLK*, _DATE_TIME*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetDisplaySizeDBLK(FSYS_HAND_STRUCT*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS ModAttrib1DBLK(FSYS_HAND_STRUCT*, int, DBLK*, unsigned int*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS ModAttrib2DBLK(FSYS_HAND_STRUCT*, int, DBLK*, unsigned int*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetFileVerFDB(FSYS_HAND_STRUCT*, DBLK*, unsigned int*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetObjTypeDBLK(FSYS_HAND_STRUCT*, DBLK*, OBJECT_TYPE*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS SizeofName(FSYS_HAND_STRUCT*, DBLK*, bool) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS SizeofOSName(FSYS_HAND_STRUCT*, DBLK*, bool) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS SizeofQbdsInfo(FSYS_HAND_STRUCT*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetQbdsInfoDBLK(FSYS_HAND_STRUCT*, DBLK*, unsigned char*, short*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetActualSizeDBLK(FSYS_HAND_STRUCT*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS InitializeGOS(FSYS_HAND_STRUCT*, _GOS*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS CreateGenFDB(FSYS_HAND_STRUCT*, _GEN_DBLK_DATA*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS CreateGenDDB(FSYS_HAND_STRUCT*, _GEN_DBLK_DATA*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS CreateGenDBLK(FSYS_HAND_STRUCT*, unsigned int, _CREATE_DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS ChangeIntoDDB(FSYS_HAND_STRUCT*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS SpecExcludeObj(FSYS_HAND_STRUCT*, DBLK*, DBLK*, unsigned int) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS FindObjClose(FSYS_HAND_STRUCT*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GeneratedErrorLog(FSYS_HAND_STRUCT*, void**, wchar_t*, unsigned int, unsigned int*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetDBInfoDBLK(FSYS_HAND_STRUCT*, DBLK*, unsigned char*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS SizeofDBInfoDBLK(FSYS_HAND_STRUCT*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS PrePostProc(FSYS_HAND_STRUCT*, DBLK*, _PREPOST*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetLastErrorMessage(FSYS_HAND_STRUCT*, wchar_t*, unsigned int) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS SetLastErrorMessage(FSYS_HAND_STRUCT*, wchar_t const*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetFinalSay(FSYS_HAND_STRUCT*, unsigned int*, long*, wchar_t*, unsigned int, wchar_t*, unsigned int) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS SetFinalSay(FSYS_HAND_STRUCT*, unsigned int, long, wchar_t*, wchar_t*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetBackupPriority(FSYS_HAND_STRUCT*, wchar_t const*, unsigned long) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS EnumExcludedFiles(FSYS_HAND_STRUCT*, int*, wcstring&, bool*, EXCLUDE_TYPE&) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS SizeofVolumeQbdsInfoInVCB(FSYS_HAND_STRUCT*, _ZRTSCB*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetVolumeQbdsInfoFromVCB(FSYS_HAND_STRUCT*, _ZRTSCB*, unsigned char*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS CompareFileNames(FSYS_HAND_STRUCT*, DBLK*, wchar_t*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetMountPointType(FSYS_HAND_STRUCT*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetSpecRestoreObjects(FSYS_HAND_STRUCT*, wcstring&, wcstring&, bool, bool*, bool*, unsigned int) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetHardLinkPathAndName(FSYS_HAND_STRUCT*, DBLK*, wchar_t*, short*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS EnumDependentVolumes(FSYS_HAND_STRUCT*, FS_WCSTRING_INSERTER) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS AddToSnapshotSet(FSYS_HAND_STRUCT*, DBLK*, FS_WCSTRING_INSERTER) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS SnapshotNotification(FSYS_HAND_STRUCT*, SNAPSHOT_NOTIFICATION::notify_type) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetExtendedErrorInfo(FSYS_HAND_STRUCT*, FS_EXT_ERR_ACTION*, unsigned int*, wchar_t**) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS EnumSpecFiles(FSYS_HAND_STRUCT*, FS_WCSTRING_VECTOR&) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetVolb(FSYS_HAND_STRUCT*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GenericInfo(FSYS_HAND_STRUCT*, unsigned int, unsigned int, unsigned char*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS FillOutDBLK(FSYS_HAND_STRUCT*, DBLK*, wchar_t const*, unsigned int, unsigned long long const&) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetShortNameFromDBLK(FSYS_HAND_STRUCT*, DBLK*, wcstring&) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetMountPointInfo(FSYS_HAND_STRUCT*, DBLK*, FS_MOUNTPOINT_INFO&) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetLocalDeviceName(FSYS_HAND_STRUCT*, wcstring&) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetDeviceTime(FSYS_HAND_STRUCT*, _DATE_TIME*, _DATE_TIME*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetOffHostFileList(_FILE_HAND_STRUCT*, FS_OFF_HOST_FILE_LIST**, FS_OFF_HOST_FILE_LIST**, _OFF_HOST_FILELIST_OPER_DATA_TYPES::FS_OH_FL_OPER_TYPE*, _OFF_HOST_FILELIST_OPER_DATA_TYPES::FS_OH_FL_DATA_TYPE*, void**, unsigned int*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS PerformChecks(_FILE_HAND_STRUCT*, _PERFORM_CHECKS::OPERATION_TYPE, _PERFORM_CHECKS::OPERATION_SUB_TYPE) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS DoCommand(FSYS_HAND_STRUCT*, FS_CMD, void*, void*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetExtendedAttribFromDBLK(FSYS_HAND_STRUCT*, DBLK*, unsigned int, void*, unsigned int*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetEquivalentRealPath(FSYS_HAND_STRUCT*, wchar_t const*, unsigned int, wcstring*, long*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetVirtualVolumeDetails(FSYS_HAND_STRUCT*, unsigned char**, unsigned int*, _VIRTUAL_VOLUME_INFO**) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetLastErrorAndMessage(FSYS_HAND_STRUCT*, wchar_t*, unsigned int, long*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS DirectImageInterface(FSYS_HAND_STRUCT*, wchar_t const*, wchar_t const*, _DII_CONTROL_TYPE, unsigned int, FS_OFF_HOST_FILE_LIST**, FS_OFF_HOST_FILE_LIST**, wchar_t*, unsigned int&) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetSearchMetadataBlob(_FILE_HAND_STRUCT*, unsigned char*, unsigned int*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS BackupPrep(FSYS_HAND_STRUCT*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS BackupPrepObj(FSYS_HAND_STRUCT*, DBLK*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS RefreshBrowseCache(FSYS_HAND_STRUCT*) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS GetDblkExtendedProperties(FSYS_HAND_STRUCT*, DBLK*, fs_property_tree&) override { return FS_ERR_UNIMPLEMENTED; }
  FS_STATUS MoveGranularData(FSYS_HAND_STRUCT*, FS_WCSTRING_VECTOR&, void*) override { return FS_ERR_UNIMPLEMENTED; }

 private:
  TestAdapterControl* control_;
};

}  // namespace qbtest
