// FS_FshBase: the interface of a handle's adapter object.
//
// A file system may serve a handle through an object instead of its table:
// the handle's `adapter` field holds it, and every layer call on the handle
// looks there first. The 94 operations are pure and in a fixed slot order
// shared with modules; the interface declares no destructor (the concrete
// classes do, after the 94 operations), so objects are destroyed through
// CloseSys. SizeofName, SizeofOSName and GetActualSizeDBLK return a size;
// GetRestoreWorkFlow returns text; every other operation returns a status.
#pragma once
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>

class FS_FshBase {
 public:
  virtual FS_STATUS OpenSys(FSYS_HAND_STRUCT*) = 0;  // 1
  virtual FS_STATUS AttachToDLE(FSYS_HAND_STRUCT*, GENERIC_DLE*, wchar_t*, wchar_t*) = 0;  // 2
  virtual FS_STATUS DetachDLE(FSYS_HAND_STRUCT*, void*, void**) = 0;  // 3
  virtual FS_STATUS CloseSys(FSYS_HAND_STRUCT*) = 0;  // 4
  virtual FS_STATUS InitMakeData(FSYS_HAND_STRUCT*, short, _CREATE_DBLK*) = 0;  // 5
  virtual FS_STATUS IsBlkComplete(FSYS_HAND_STRUCT*, DBLK*) = 0;  // 6
  virtual FS_STATUS CompleteBLK(FSYS_HAND_STRUCT*, DBLK*, unsigned char*, unsigned int*, STREAM_INFO*) = 0;  // 7
  virtual FS_STATUS DupBlk(FSYS_HAND_STRUCT*, DBLK*, DBLK*) = 0;  // 8
  virtual FS_STATUS ReleaseBlk(FSYS_HAND_STRUCT*, DBLK*) = 0;  // 9
  virtual FS_STATUS ProcessDDB(FSYS_HAND_STRUCT*, DBLK*) = 0;  // 10
  virtual FS_STATUS GetCurrentDDB(FSYS_HAND_STRUCT*, DBLK*) = 0;  // 11
  virtual FS_STATUS GetCurrentPath(FSYS_HAND_STRUCT*, wchar_t*, short*) = 0;  // 12
  virtual FS_STATUS ChangeDir(FSYS_HAND_STRUCT*, wchar_t*, short) = 0;  // 13
  virtual FS_STATUS ChangeDirUp(FSYS_HAND_STRUCT*) = 0;  // 14
  virtual FS_STATUS CreateObj(FSYS_HAND_STRUCT*, DBLK*, wchar_t const*, RESTORE_SEMANTICS) = 0;  // 15
  virtual FS_STATUS OpenObj(FSYS_HAND_STRUCT*, _FILE_HAND_STRUCT**, DBLK*, OPEN_MODE) = 0;  // 16
  virtual FS_STATUS SeekObj(_FILE_HAND_STRUCT*, unsigned int*) = 0;  // 17
  virtual FS_STATUS ReadObj(_FILE_HAND_STRUCT*, unsigned char*, unsigned int*, unsigned int*, STREAM_INFO*) = 0;  // 18
  virtual FS_STATUS WriteObj(_FILE_HAND_STRUCT*, unsigned char*, unsigned int*, unsigned int*, STREAM_INFO*) = 0;  // 19
  virtual FS_STATUS CloseObj(_FILE_HAND_STRUCT*, void**, void**) = 0;  // 20
  virtual FS_STATUS DeleteObj(FSYS_HAND_STRUCT*, DBLK*) = 0;  // 21
  virtual FS_STATUS GetObjInfo(FSYS_HAND_STRUCT*, DBLK*) = 0;  // 22
  virtual FS_STATUS FindFirstObj(FSYS_HAND_STRUCT*, DBLK*, wchar_t*, unsigned short) = 0;  // 23
  virtual FS_STATUS FindNextObj(FSYS_HAND_STRUCT*, DBLK*) = 0;  // 24
  virtual FS_STATUS PushMinDDB(FSYS_HAND_STRUCT*, DBLK*) = 0;  // 25
  virtual FS_STATUS MakePushDBLK(FSYS_HAND_STRUCT*, DBLK*, unsigned int*, void const*) = 0;  // 26
  virtual FS_STATUS PopMinDDB(FSYS_HAND_STRUCT*, DBLK*) = 0;  // 27
  virtual FS_STATUS GetSpecialDBLKS(FSYS_HAND_STRUCT*, DBLK*, unsigned int, int) = 0;  // 28
  virtual FS_STATUS ModName(FSYS_HAND_STRUCT*, int, DBLK*, wchar_t*, short*) = 0;  // 29
  virtual FS_STATUS GetOSName(FSYS_HAND_STRUCT*, DBLK*, wchar_t*, bool) = 0;  // 30
  virtual FS_STATUS GetCDateDBLK(FSYS_HAND_STRUCT*, DBLK*, _DATE_TIME*) = 0;  // 31
  virtual FS_STATUS GetMDateDBLK(FSYS_HAND_STRUCT*, DBLK*, _DATE_TIME*) = 0;  // 32
  virtual FS_STATUS ModBDateDBLK(FSYS_HAND_STRUCT*, int, DBLK*, _DATE_TIME*) = 0;  // 33
  virtual FS_STATUS ModADateDBLK(FSYS_HAND_STRUCT*, int, DBLK*, _DATE_TIME*) = 0;  // 34
  virtual FS_STATUS GetDisplaySizeDBLK(FSYS_HAND_STRUCT*, DBLK*) = 0;  // 35
  virtual FS_STATUS ModAttrib1DBLK(FSYS_HAND_STRUCT*, int, DBLK*, unsigned int*) = 0;  // 36
  virtual FS_STATUS ModAttrib2DBLK(FSYS_HAND_STRUCT*, int, DBLK*, unsigned int*) = 0;  // 37
  virtual FS_STATUS GetFileVerFDB(FSYS_HAND_STRUCT*, DBLK*, unsigned int*) = 0;  // 38
  virtual FS_STATUS GetObjTypeDBLK(FSYS_HAND_STRUCT*, DBLK*, OBJECT_TYPE*) = 0;  // 39
  virtual FS_STATUS SizeofName(FSYS_HAND_STRUCT*, DBLK*, bool) = 0;  // 40
  virtual FS_STATUS SizeofOSName(FSYS_HAND_STRUCT*, DBLK*, bool) = 0;  // 41
  virtual FS_STATUS SizeofQbdsInfo(FSYS_HAND_STRUCT*, DBLK*) = 0;  // 42
  virtual FS_STATUS GetQbdsInfoDBLK(FSYS_HAND_STRUCT*, DBLK*, unsigned char*, short*) = 0;  // 43
  virtual FS_STATUS GetActualSizeDBLK(FSYS_HAND_STRUCT*, DBLK*) = 0;  // 44
  virtual FS_STATUS InitializeGOS(FSYS_HAND_STRUCT*, _GOS*) = 0;  // 45
  virtual FS_STATUS CreateGenFDB(FSYS_HAND_STRUCT*, _GEN_DBLK_DATA*) = 0;  // 46
  virtual FS_STATUS CreateGenDDB(FSYS_HAND_STRUCT*, _GEN_DBLK_DATA*) = 0;  // 47
  virtual FS_STATUS CreateGenDBLK(FSYS_HAND_STRUCT*, unsigned int, _CREATE_DBLK*) = 0;  // 48
  virtual FS_STATUS ChangeIntoDDB(FSYS_HAND_STRUCT*, DBLK*) = 0;  // 49
  virtual FS_STATUS SpecExcludeObj(FSYS_HAND_STRUCT*, DBLK*, DBLK*, unsigned int) = 0;  // 50
  virtual FS_STATUS FindObjClose(FSYS_HAND_STRUCT*, DBLK*) = 0;  // 51
  virtual FS_STATUS GeneratedErrorLog(FSYS_HAND_STRUCT*, void**, wchar_t*, unsigned int, unsigned int*) = 0;  // 52
  virtual FS_STATUS GetDBInfoDBLK(FSYS_HAND_STRUCT*, DBLK*, unsigned char*) = 0;  // 53
  virtual FS_STATUS SizeofDBInfoDBLK(FSYS_HAND_STRUCT*, DBLK*) = 0;  // 54
  virtual FS_STATUS PrePostProc(FSYS_HAND_STRUCT*, DBLK*, _PREPOST*) = 0;  // 55
  virtual FS_STATUS GetLastErrorMessage(FSYS_HAND_STRUCT*, wchar_t*, unsigned int) = 0;  // 56
  virtual FS_STATUS SetLastErrorMessage(FSYS_HAND_STRUCT*, wchar_t const*) = 0;  // 57
  virtual FS_STATUS GetFinalSay(FSYS_HAND_STRUCT*, unsigned int*, long*, wchar_t*, unsigned int, wchar_t*, unsigned int) = 0;  // 58
  virtual FS_STATUS SetFinalSay(FSYS_HAND_STRUCT*, unsigned int, long, wchar_t*, wchar_t*) = 0;  // 59
  virtual FS_STATUS GetBackupPriority(FSYS_HAND_STRUCT*, wchar_t const*, unsigned long) = 0;  // 60
  virtual FS_STATUS EnumExcludedFiles(FSYS_HAND_STRUCT*, int*, wcstring&, bool*, EXCLUDE_TYPE&) = 0;  // 61
  virtual FS_STATUS SizeofVolumeQbdsInfoInVCB(FSYS_HAND_STRUCT*, _ZRTSCB*) = 0;  // 62
  virtual FS_STATUS GetVolumeQbdsInfoFromVCB(FSYS_HAND_STRUCT*, _ZRTSCB*, unsigned char*) = 0;  // 63
  virtual FS_STATUS CompareFileNames(FSYS_HAND_STRUCT*, DBLK*, wchar_t*) = 0;  // 64
  virtual FS_STATUS GetMountPointType(FSYS_HAND_STRUCT*, DBLK*) = 0;  // 65
  virtual FS_STATUS GetSpecRestoreObjects(FSYS_HAND_STRUCT*, wcstring&, wcstring&, bool, bool*, bool*, unsigned int) = 0;  // 66
  virtual FS_STATUS GetHardLinkPathAndName(FSYS_HAND_STRUCT*, DBLK*, wchar_t*, short*) = 0;  // 67
  virtual FS_STATUS EnumDependentVolumes(FSYS_HAND_STRUCT*, FS_WCSTRING_INSERTER) = 0;  // 68
  virtual FS_STATUS AddToSnapshotSet(FSYS_HAND_STRUCT*, DBLK*, FS_WCSTRING_INSERTER) = 0;  // 69
  virtual FS_STATUS SnapshotNotification(FSYS_HAND_STRUCT*, SNAPSHOT_NOTIFICATION::notify_type) = 0;  // 70
  virtual FS_STATUS GetExtendedErrorInfo(FSYS_HAND_STRUCT*, FS_EXT_ERR_ACTION*, unsigned int*, wchar_t**) = 0;  // 71
  virtual FS_STATUS EnumSpecFiles(FSYS_HAND_STRUCT*, FS_WCSTRING_VECTOR&) = 0;  // 72
  virtual FS_STATUS GetVolb(FSYS_HAND_STRUCT*, DBLK*) = 0;  // 73
  virtual FS_STATUS GenericInfo(FSYS_HAND_STRUCT*, unsigned int, unsigned int, unsigned char*) = 0;  // 74
  virtual FS_STATUS FillOutDBLK(FSYS_HAND_STRUCT*, DBLK*, wchar_t const*, unsigned int, unsigned long long const&) = 0;  // 75
  virtual FS_STATUS GetShortNameFromDBLK(FSYS_HAND_STRUCT*, DBLK*, wcstring&) = 0;  // 76
  virtual FS_STATUS GetMountPointInfo(FSYS_HAND_STRUCT*, DBLK*, FS_MOUNTPOINT_INFO&) = 0;  // 77
  virtual FS_STATUS GetLocalDeviceName(FSYS_HAND_STRUCT*, wcstring&) = 0;  // 78
  virtual FS_STATUS GetDeviceTime(FSYS_HAND_STRUCT*, _DATE_TIME*, _DATE_TIME*) = 0;  // 79
  virtual FS_STATUS GetOffHostFileList(_FILE_HAND_STRUCT*, FS_OFF_HOST_FILE_LIST**, FS_OFF_HOST_FILE_LIST**, _OFF_HOST_FILELIST_OPER_DATA_TYPES::FS_OH_FL_OPER_TYPE*, _OFF_HOST_FILELIST_OPER_DATA_TYPES::FS_OH_FL_DATA_TYPE*, void**, unsigned int*) = 0;  // 80
  virtual FS_STATUS PerformChecks(_FILE_HAND_STRUCT*, _PERFORM_CHECKS::OPERATION_TYPE, _PERFORM_CHECKS::OPERATION_SUB_TYPE) = 0;  // 81
  virtual FS_STATUS DoCommand(FSYS_HAND_STRUCT*, FS_CMD, void*, void*) = 0;  // 82
  virtual FS_STATUS GetExtendedAttribFromDBLK(FSYS_HAND_STRUCT*, DBLK*, unsigned int, void*, unsigned int*) = 0;  // 83
  virtual FS_STATUS GetEquivalentRealPath(FSYS_HAND_STRUCT*, wchar_t const*, unsigned int, wcstring*, long*) = 0;  // 84
  virtual FS_STATUS GetVirtualVolumeDetails(FSYS_HAND_STRUCT*, unsigned char**, unsigned int*, _VIRTUAL_VOLUME_INFO**) = 0;  // 85
  virtual FS_STATUS GetLastErrorAndMessage(FSYS_HAND_STRUCT*, wchar_t*, unsigned int, long*) = 0;  // 86
  virtual FS_STATUS DirectImageInterface(FSYS_HAND_STRUCT*, wchar_t const*, wchar_t const*, _DII_CONTROL_TYPE, unsigned int, FS_OFF_HOST_FILE_LIST**, FS_OFF_HOST_FILE_LIST**, wchar_t*, unsigned int&) = 0;  // 87
  virtual FS_STATUS GetSearchMetadataBlob(_FILE_HAND_STRUCT*, unsigned char*, unsigned int*) = 0;  // 88
  virtual FS_STATUS BackupPrep(FSYS_HAND_STRUCT*) = 0;  // 89
  virtual FS_STATUS BackupPrepObj(FSYS_HAND_STRUCT*, DBLK*) = 0;  // 90
  virtual wcstring GetRestoreWorkFlow(FSYS_HAND_STRUCT*) = 0;  // 91
  virtual FS_STATUS RefreshBrowseCache(FSYS_HAND_STRUCT*) = 0;  // 92
  virtual FS_STATUS GetDblkExtendedProperties(FSYS_HAND_STRUCT*, DBLK*, fs_property_tree&) = 0;  // 93
  virtual FS_STATUS MoveGranularData(FSYS_HAND_STRUCT*, FS_WCSTRING_VECTOR&, void*) = 0;  // 94

 protected:
  // Not deletable through this interface.
  FS_FshBase() = default;
  FS_FshBase(FS_FshBase const&) = default;
  FS_FshBase& operator=(FS_FshBase const&) = default;
  ~FS_FshBase() = default;
};
