// FS_FshGen: the adapter class of the built-in generic file system, and the
// base of every concrete adapter.
//
// It implements all 94 operations of FS_FshBase: the block operations go to
// the generic file system (GEN_*, qbfsys/gen.h) after their pointer
// arguments were checked; the rest give fixed answers or report that they
// are not offered. Its virtual destructor comes after the 94 operations, so
// the vtable of any class derived from it keeps FS_FshBase's slot order: a
// module may derive its own adapter from FS_FshGen (or FS_FshLegacy) and
// override what it serves.
//
// Messages (through the host's debug print, level 0), each with the fixed
// line number of the operation that printed it (FS_FSHGEN_LINE_BASE plus the
// operation's number, 1 to 94):
//   "FS_FshGen: Unimplemented function called at line number %d", then the
//   operation returns FS_ERR_UNIMPLEMENTED;
//   "FS_FshGen: Bad Parameter at line number %d" when the handle or a pointer
//   argument is null, then it returns FS_ERR_BAD_PARAMETER.
// SizeofName, SizeofOSName and GetActualSizeDBLK return a size narrowed to
// signed 16 bits. CloseSys clears the handle's adapter field and deletes the
// object (adapters are made with new and owned by the handle).
//
// The classes hold no data: all state is in the handle passed to each call.
#pragma once
#include <qbfsys/fs_export.h>
#include <qbfsys/fs_fsh_base.h>

constexpr int FS_FSHGEN_LINE_BASE = 1000;
constexpr int FS_FSHLEGACY_LINE_BASE = 2000;

// The generic adapter: fixed answers, guarded GEN operations, and
// FS_ERR_UNIMPLEMENTED for what only a file system can do (see above).
class FS_EXPORT FS_FshGen : public FS_FshBase {
 public:
  FS_FshGen() = default;

  FS_STATUS OpenSys(FSYS_HAND_STRUCT* hand) override;  // 1
  FS_STATUS AttachToDLE(FSYS_HAND_STRUCT* hand, GENERIC_DLE* dle, wchar_t* user,
                        wchar_t* password) override;                                           // 2
  FS_STATUS DetachDLE(FSYS_HAND_STRUCT* hand, void* arg, void** result) override;              // 3
  FS_STATUS CloseSys(FSYS_HAND_STRUCT* hand) override;                                         // 4
  FS_STATUS InitMakeData(FSYS_HAND_STRUCT* hand, short size, _CREATE_DBLK* request) override;  // 5
  FS_STATUS IsBlkComplete(FSYS_HAND_STRUCT* hand, DBLK* blk) override;                         // 6
  FS_STATUS CompleteBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char* buffer,
                        unsigned int* value, STREAM_INFO* header) override;               // 7
  FS_STATUS DupBlk(FSYS_HAND_STRUCT* hand, DBLK* blk, DBLK* blk2) override;               // 8
  FS_STATUS ReleaseBlk(FSYS_HAND_STRUCT* hand, DBLK* blk) override;                       // 9
  FS_STATUS ProcessDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) override;                       // 10
  FS_STATUS GetCurrentDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) override;                    // 11
  FS_STATUS GetCurrentPath(FSYS_HAND_STRUCT* hand, wchar_t* text, short* size) override;  // 12
  FS_STATUS ChangeDir(FSYS_HAND_STRUCT* hand, wchar_t* text, short size) override;        // 13
  FS_STATUS ChangeDirUp(FSYS_HAND_STRUCT* hand) override;                                 // 14
  FS_STATUS CreateObj(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t const* text,
                      RESTORE_SEMANTICS semantics) override;  // 15
  FS_STATUS OpenObj(FSYS_HAND_STRUCT* hand, _FILE_HAND_STRUCT** out, DBLK* blk,
                    OPEN_MODE mode) override;                               // 16
  FS_STATUS SeekObj(_FILE_HAND_STRUCT* obj, unsigned int* value) override;  // 17
  FS_STATUS ReadObj(_FILE_HAND_STRUCT* obj, unsigned char* buffer, unsigned int* value,
                    unsigned int* value2, STREAM_INFO* header) override;  // 18
  FS_STATUS WriteObj(_FILE_HAND_STRUCT* obj, unsigned char* buffer, unsigned int* value,
                     unsigned int* value2, STREAM_INFO* header) override;              // 19
  FS_STATUS CloseObj(_FILE_HAND_STRUCT* obj, void** result, void** result2) override;  // 20
  FS_STATUS DeleteObj(FSYS_HAND_STRUCT* hand, DBLK* blk) override;                     // 21
  FS_STATUS GetObjInfo(FSYS_HAND_STRUCT* hand, DBLK* blk) override;                    // 22
  FS_STATUS FindFirstObj(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* text,
                         unsigned short flags) override;              // 23
  FS_STATUS FindNextObj(FSYS_HAND_STRUCT* hand, DBLK* blk) override;  // 24
  FS_STATUS PushMinDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) override;   // 25
  FS_STATUS MakePushDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned int* value,
                         void const* arg) override;                 // 26
  FS_STATUS PopMinDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) override;  // 27
  FS_STATUS GetSpecialDBLKS(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned int number,
                            int number2) override;  // 28
  FS_STATUS ModName(FSYS_HAND_STRUCT* hand, int number, DBLK* blk, wchar_t* text,
                    short* size) override;                                                    // 29
  FS_STATUS GetOSName(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* text, bool flag) override;  // 30
  FS_STATUS GetCDateDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, _DATE_TIME* date) override;       // 31
  FS_STATUS GetMDateDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, _DATE_TIME* date) override;       // 32
  FS_STATUS ModBDateDBLK(FSYS_HAND_STRUCT* hand, int number, DBLK* blk,
                         _DATE_TIME* date) override;  // 33
  FS_STATUS ModADateDBLK(FSYS_HAND_STRUCT* hand, int number, DBLK* blk,
                         _DATE_TIME* date) override;                         // 34
  FS_STATUS GetDisplaySizeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk) override;  // 35
  FS_STATUS ModAttrib1DBLK(FSYS_HAND_STRUCT* hand, int number, DBLK* blk,
                           unsigned int* value) override;  // 36
  FS_STATUS ModAttrib2DBLK(FSYS_HAND_STRUCT* hand, int number, DBLK* blk,
                           unsigned int* value) override;                                    // 37
  FS_STATUS GetFileVerFDB(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned int* value) override;  // 38
  FS_STATUS GetObjTypeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, OBJECT_TYPE* type) override;   // 39
  FS_STATUS SizeofName(FSYS_HAND_STRUCT* hand, DBLK* blk, bool flag) override;               // 40
  FS_STATUS SizeofOSName(FSYS_HAND_STRUCT* hand, DBLK* blk, bool flag) override;             // 41
  FS_STATUS SizeofQbdsInfo(FSYS_HAND_STRUCT* hand, DBLK* blk) override;                      // 42
  FS_STATUS GetQbdsInfoDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char* buffer,
                            short* size) override;                                // 43
  FS_STATUS GetActualSizeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk) override;        // 44
  FS_STATUS InitializeGOS(FSYS_HAND_STRUCT* hand, _GOS* gos) override;            // 45
  FS_STATUS CreateGenFDB(FSYS_HAND_STRUCT* hand, _GEN_DBLK_DATA* data) override;  // 46
  FS_STATUS CreateGenDDB(FSYS_HAND_STRUCT* hand, _GEN_DBLK_DATA* data) override;  // 47
  FS_STATUS CreateGenDBLK(FSYS_HAND_STRUCT* hand, unsigned int number,
                          _CREATE_DBLK* request) override;              // 48
  FS_STATUS ChangeIntoDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) override;  // 49
  FS_STATUS SpecExcludeObj(FSYS_HAND_STRUCT* hand, DBLK* blk, DBLK* blk2,
                           unsigned int number) override;              // 50
  FS_STATUS FindObjClose(FSYS_HAND_STRUCT* hand, DBLK* blk) override;  // 51
  FS_STATUS GeneratedErrorLog(FSYS_HAND_STRUCT* hand, void** result, wchar_t* text,
                              unsigned int number, unsigned int* value) override;              // 52
  FS_STATUS GetDBInfoDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char* buffer) override;  // 53
  FS_STATUS SizeofDBInfoDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk) override;                      // 54
  FS_STATUS PrePostProc(FSYS_HAND_STRUCT* hand, DBLK* blk, _PREPOST* prepost) override;        // 55
  FS_STATUS GetLastErrorMessage(FSYS_HAND_STRUCT* hand, wchar_t* text,
                                unsigned int number) override;                          // 56
  FS_STATUS SetLastErrorMessage(FSYS_HAND_STRUCT* hand, wchar_t const* text) override;  // 57
  FS_STATUS GetFinalSay(FSYS_HAND_STRUCT* hand, unsigned int* value, long* code, wchar_t* text,
                        unsigned int number, wchar_t* text2, unsigned int number2) override;  // 58
  FS_STATUS SetFinalSay(FSYS_HAND_STRUCT* hand, unsigned int number, long code, wchar_t* text,
                        wchar_t* text2) override;  // 59
  FS_STATUS GetBackupPriority(FSYS_HAND_STRUCT* hand, wchar_t const* text,
                              unsigned long flags) override;  // 60
  FS_STATUS EnumExcludedFiles(FSYS_HAND_STRUCT* hand, int* cursor, wcstring& name, bool* flag,
                              EXCLUDE_TYPE& type) override;                            // 61
  FS_STATUS SizeofVolumeQbdsInfoInVCB(FSYS_HAND_STRUCT* hand, _ZRTSCB* vcb) override;  // 62
  FS_STATUS GetVolumeQbdsInfoFromVCB(FSYS_HAND_STRUCT* hand, _ZRTSCB* vcb,
                                     unsigned char* buffer) override;                     // 63
  FS_STATUS CompareFileNames(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* text) override;  // 64
  FS_STATUS GetMountPointType(FSYS_HAND_STRUCT* hand, DBLK* blk) override;                // 65
  FS_STATUS GetSpecRestoreObjects(FSYS_HAND_STRUCT* hand, wcstring& name, wcstring& name2,
                                  bool flag, bool* flag2, bool* flag3,
                                  unsigned int number) override;  // 66
  FS_STATUS GetHardLinkPathAndName(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* text,
                                   short* size) override;                                     // 67
  FS_STATUS EnumDependentVolumes(FSYS_HAND_STRUCT* hand, FS_WCSTRING_INSERTER out) override;  // 68
  FS_STATUS AddToSnapshotSet(FSYS_HAND_STRUCT* hand, DBLK* blk,
                             FS_WCSTRING_INSERTER out) override;  // 69
  FS_STATUS SnapshotNotification(FSYS_HAND_STRUCT* hand,
                                 SNAPSHOT_NOTIFICATION::notify_type kind) override;  // 70
  FS_STATUS GetExtendedErrorInfo(FSYS_HAND_STRUCT* hand, FS_EXT_ERR_ACTION* action,
                                 unsigned int* value, wchar_t** message) override;      // 71
  FS_STATUS EnumSpecFiles(FSYS_HAND_STRUCT* hand, FS_WCSTRING_VECTOR& names) override;  // 72
  FS_STATUS GetVolb(FSYS_HAND_STRUCT* hand, DBLK* blk) override;                        // 73
  FS_STATUS GenericInfo(FSYS_HAND_STRUCT* hand, unsigned int number, unsigned int number2,
                        unsigned char* buffer) override;  // 74
  FS_STATUS FillOutDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t const* text, unsigned int number,
                        unsigned long long const& id) override;                                // 75
  FS_STATUS GetShortNameFromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, wcstring& name) override;  // 76
  FS_STATUS GetMountPointInfo(FSYS_HAND_STRUCT* hand, DBLK* blk,
                              FS_MOUNTPOINT_INFO& info) override;                 // 77
  FS_STATUS GetLocalDeviceName(FSYS_HAND_STRUCT* hand, wcstring& name) override;  // 78
  FS_STATUS GetDeviceTime(FSYS_HAND_STRUCT* hand, _DATE_TIME* date,
                          _DATE_TIME* date2) override;  // 79
  FS_STATUS GetOffHostFileList(_FILE_HAND_STRUCT* obj, FS_OFF_HOST_FILE_LIST** list,
                               FS_OFF_HOST_FILE_LIST** list2,
                               _OFF_HOST_FILELIST_OPER_DATA_TYPES::FS_OH_FL_OPER_TYPE* operation,
                               _OFF_HOST_FILELIST_OPER_DATA_TYPES::FS_OH_FL_DATA_TYPE* data_type,
                               void** result, unsigned int* value) override;  // 80
  FS_STATUS PerformChecks(_FILE_HAND_STRUCT* obj, _PERFORM_CHECKS::OPERATION_TYPE kind,
                          _PERFORM_CHECKS::OPERATION_SUB_TYPE sub_kind) override;  // 81
  FS_STATUS DoCommand(FSYS_HAND_STRUCT* hand, FS_CMD command, void* arg,
                      void* arg2) override;  // 82
  FS_STATUS GetExtendedAttribFromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned int number,
                                      void* arg, unsigned int* value) override;  // 83
  FS_STATUS GetEquivalentRealPath(FSYS_HAND_STRUCT* hand, wchar_t const* text, unsigned int number,
                                  wcstring* name, long* code) override;  // 84
  FS_STATUS GetVirtualVolumeDetails(FSYS_HAND_STRUCT* hand, unsigned char** buffer,
                                    unsigned int* value,
                                    _VIRTUAL_VOLUME_INFO** info) override;  // 85
  FS_STATUS GetLastErrorAndMessage(FSYS_HAND_STRUCT* hand, wchar_t* text, unsigned int number,
                                   long* code) override;  // 86
  FS_STATUS DirectImageInterface(FSYS_HAND_STRUCT* hand, wchar_t const* text, wchar_t const* text2,
                                 _DII_CONTROL_TYPE control, unsigned int number,
                                 FS_OFF_HOST_FILE_LIST** list, FS_OFF_HOST_FILE_LIST** list2,
                                 wchar_t* text3, unsigned int& size) override;  // 87
  FS_STATUS GetSearchMetadataBlob(_FILE_HAND_STRUCT* obj, unsigned char* buffer,
                                  unsigned int* value) override;        // 88
  FS_STATUS BackupPrep(FSYS_HAND_STRUCT* hand) override;                // 89
  FS_STATUS BackupPrepObj(FSYS_HAND_STRUCT* hand, DBLK* blk) override;  // 90
  wcstring GetRestoreWorkFlow(FSYS_HAND_STRUCT* hand) override;         // 91
  FS_STATUS RefreshBrowseCache(FSYS_HAND_STRUCT* hand) override;        // 92
  FS_STATUS GetDblkExtendedProperties(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                      fs_property_tree& tree) override;  // 93
  FS_STATUS MoveGranularData(FSYS_HAND_STRUCT* hand, FS_WCSTRING_VECTOR& names,
                             void* arg) override;  // 94
  virtual ~FS_FshGen();
};
