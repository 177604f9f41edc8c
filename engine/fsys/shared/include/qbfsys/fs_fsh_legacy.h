// FS_FshLegacy: an adapter over a module that has only a function table.
// Each operation forwards to the slot of the handle's table (for object
// operations, the table of the object's owning handle), in one of three
// forms:
// - plain: forwarded as it is;
// - optional: FS_ERR_UNIMPLEMENTED when the slot is empty;
// - guarded: a null handle or pointer argument prints "FS_FshLegacy: Bad
//   Parameter at line number %d" (FS_FSHLEGACY_LINE_BASE plus the
//   operation's number) and returns FS_ERR_BAD_PARAMETER (SizeofName and
//   SizeofOSName return size 0 instead); GetExtendedErrorInfo with an empty
//   slot stores 0 into its outputs and returns 0.
// A plain or guarded operation whose slot is empty answers
// FS_ERR_UNIMPLEMENTED rather than calling through a null pointer. OpenSys
// and the eight newest operations (88 to 94) are FS_FshGen's. CloseSys calls
// the table's CloseSys (slot 67) when set, then clears the handle's adapter
// field and deletes the object; its result is the slot's (0 without one).
#pragma once
#include <qbfsys/fs_fsh_gen.h>

// The forwarding adapter: each operation goes to the handle's table slot,
// guarded or not as described above.
class FS_EXPORT FS_FshLegacy : public FS_FshGen {
 public:
  FS_FshLegacy() = default;

  FS_STATUS CloseSys(FSYS_HAND_STRUCT* hand) override;
  FS_STATUS AttachToDLE(FSYS_HAND_STRUCT* hand, GENERIC_DLE* dle, wchar_t* user,
                        wchar_t* password) override;
  FS_STATUS DetachDLE(FSYS_HAND_STRUCT* hand, void* arg, void** result) override;
  FS_STATUS InitMakeData(FSYS_HAND_STRUCT* hand, short size, _CREATE_DBLK* request) override;
  FS_STATUS IsBlkComplete(FSYS_HAND_STRUCT* hand, DBLK* blk) override;
  FS_STATUS CompleteBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char* buffer,
                        unsigned int* value, STREAM_INFO* header) override;
  FS_STATUS DupBlk(FSYS_HAND_STRUCT* hand, DBLK* blk, DBLK* blk2) override;
  FS_STATUS ReleaseBlk(FSYS_HAND_STRUCT* hand, DBLK* blk) override;
  FS_STATUS ProcessDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) override;
  FS_STATUS GetCurrentDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) override;
  FS_STATUS GetCurrentPath(FSYS_HAND_STRUCT* hand, wchar_t* text, short* size) override;
  FS_STATUS ChangeDir(FSYS_HAND_STRUCT* hand, wchar_t* text, short size) override;
  FS_STATUS ChangeDirUp(FSYS_HAND_STRUCT* hand) override;
  FS_STATUS CreateObj(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t const* text,
                      RESTORE_SEMANTICS semantics) override;
  FS_STATUS OpenObj(FSYS_HAND_STRUCT* hand, _FILE_HAND_STRUCT** out, DBLK* blk,
                    OPEN_MODE mode) override;
  FS_STATUS SeekObj(_FILE_HAND_STRUCT* obj, unsigned int* value) override;
  FS_STATUS ReadObj(_FILE_HAND_STRUCT* obj, unsigned char* buffer, unsigned int* value,
                    unsigned int* value2, STREAM_INFO* header) override;
  FS_STATUS WriteObj(_FILE_HAND_STRUCT* obj, unsigned char* buffer, unsigned int* value,
                     unsigned int* value2, STREAM_INFO* header) override;
  FS_STATUS CloseObj(_FILE_HAND_STRUCT* obj, void** result, void** result2) override;
  FS_STATUS DeleteObj(FSYS_HAND_STRUCT* hand, DBLK* blk) override;
  FS_STATUS GetObjInfo(FSYS_HAND_STRUCT* hand, DBLK* blk) override;
  FS_STATUS FindFirstObj(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* text,
                         unsigned short flags) override;
  FS_STATUS FindNextObj(FSYS_HAND_STRUCT* hand, DBLK* blk) override;
  FS_STATUS PushMinDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) override;
  FS_STATUS MakePushDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned int* value,
                         void const* arg) override;
  FS_STATUS PopMinDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) override;
  FS_STATUS GetSpecialDBLKS(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned int number,
                            int number2) override;
  FS_STATUS ModName(FSYS_HAND_STRUCT* hand, int number, DBLK* blk, wchar_t* text,
                    short* size) override;
  FS_STATUS GetOSName(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* text, bool flag) override;
  FS_STATUS GetCDateDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, _DATE_TIME* date) override;
  FS_STATUS GetMDateDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, _DATE_TIME* date) override;
  FS_STATUS ModBDateDBLK(FSYS_HAND_STRUCT* hand, int number, DBLK* blk, _DATE_TIME* date) override;
  FS_STATUS ModADateDBLK(FSYS_HAND_STRUCT* hand, int number, DBLK* blk, _DATE_TIME* date) override;
  FS_STATUS GetDisplaySizeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk) override;
  FS_STATUS ModAttrib1DBLK(FSYS_HAND_STRUCT* hand, int number, DBLK* blk,
                           unsigned int* value) override;
  FS_STATUS ModAttrib2DBLK(FSYS_HAND_STRUCT* hand, int number, DBLK* blk,
                           unsigned int* value) override;
  FS_STATUS GetFileVerFDB(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned int* value) override;
  FS_STATUS GetObjTypeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, OBJECT_TYPE* type) override;
  FS_STATUS SizeofName(FSYS_HAND_STRUCT* hand, DBLK* blk, bool flag) override;
  FS_STATUS SizeofOSName(FSYS_HAND_STRUCT* hand, DBLK* blk, bool flag) override;
  FS_STATUS SizeofQbdsInfo(FSYS_HAND_STRUCT* hand, DBLK* blk) override;
  FS_STATUS GetQbdsInfoDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char* buffer,
                            short* size) override;
  FS_STATUS GetActualSizeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk) override;
  FS_STATUS InitializeGOS(FSYS_HAND_STRUCT* hand, _GOS* gos) override;
  FS_STATUS CreateGenFDB(FSYS_HAND_STRUCT* hand, _GEN_DBLK_DATA* data) override;
  FS_STATUS CreateGenDDB(FSYS_HAND_STRUCT* hand, _GEN_DBLK_DATA* data) override;
  FS_STATUS CreateGenDBLK(FSYS_HAND_STRUCT* hand, unsigned int number,
                          _CREATE_DBLK* request) override;
  FS_STATUS ChangeIntoDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) override;
  FS_STATUS SpecExcludeObj(FSYS_HAND_STRUCT* hand, DBLK* blk, DBLK* blk2,
                           unsigned int number) override;
  FS_STATUS FindObjClose(FSYS_HAND_STRUCT* hand, DBLK* blk) override;
  FS_STATUS GeneratedErrorLog(FSYS_HAND_STRUCT* hand, void** result, wchar_t* text,
                              unsigned int number, unsigned int* value) override;
  FS_STATUS GetDBInfoDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char* buffer) override;
  FS_STATUS SizeofDBInfoDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk) override;
  FS_STATUS PrePostProc(FSYS_HAND_STRUCT* hand, DBLK* blk, _PREPOST* prepost) override;
  FS_STATUS GetLastErrorMessage(FSYS_HAND_STRUCT* hand, wchar_t* text,
                                unsigned int number) override;
  FS_STATUS SetLastErrorMessage(FSYS_HAND_STRUCT* hand, wchar_t const* text) override;
  FS_STATUS GetFinalSay(FSYS_HAND_STRUCT* hand, unsigned int* value, long* code, wchar_t* text,
                        unsigned int number, wchar_t* text2, unsigned int number2) override;
  FS_STATUS SetFinalSay(FSYS_HAND_STRUCT* hand, unsigned int number, long code, wchar_t* text,
                        wchar_t* text2) override;
  FS_STATUS GetBackupPriority(FSYS_HAND_STRUCT* hand, wchar_t const* text,
                              unsigned long flags) override;
  FS_STATUS EnumExcludedFiles(FSYS_HAND_STRUCT* hand, int* cursor, wcstring& name, bool* flag,
                              EXCLUDE_TYPE& type) override;
  FS_STATUS SizeofVolumeQbdsInfoInVCB(FSYS_HAND_STRUCT* hand, _ZRTSCB* vcb) override;
  FS_STATUS GetVolumeQbdsInfoFromVCB(FSYS_HAND_STRUCT* hand, _ZRTSCB* vcb,
                                     unsigned char* buffer) override;
  FS_STATUS CompareFileNames(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* text) override;
  FS_STATUS GetMountPointType(FSYS_HAND_STRUCT* hand, DBLK* blk) override;
  FS_STATUS GetSpecRestoreObjects(FSYS_HAND_STRUCT* hand, wcstring& name, wcstring& name2,
                                  bool flag, bool* flag2, bool* flag3,
                                  unsigned int number) override;
  FS_STATUS GetHardLinkPathAndName(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* text,
                                   short* size) override;
  FS_STATUS EnumDependentVolumes(FSYS_HAND_STRUCT* hand, FS_WCSTRING_INSERTER out) override;
  FS_STATUS AddToSnapshotSet(FSYS_HAND_STRUCT* hand, DBLK* blk, FS_WCSTRING_INSERTER out) override;
  FS_STATUS SnapshotNotification(FSYS_HAND_STRUCT* hand,
                                 SNAPSHOT_NOTIFICATION::notify_type kind) override;
  FS_STATUS GetExtendedErrorInfo(FSYS_HAND_STRUCT* hand, FS_EXT_ERR_ACTION* action,
                                 unsigned int* value, wchar_t** message) override;
  FS_STATUS EnumSpecFiles(FSYS_HAND_STRUCT* hand, FS_WCSTRING_VECTOR& names) override;
  FS_STATUS GetVolb(FSYS_HAND_STRUCT* hand, DBLK* blk) override;
  FS_STATUS GenericInfo(FSYS_HAND_STRUCT* hand, unsigned int number, unsigned int number2,
                        unsigned char* buffer) override;
  FS_STATUS FillOutDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t const* text, unsigned int number,
                        unsigned long long const& id) override;
  FS_STATUS GetShortNameFromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, wcstring& name) override;
  FS_STATUS GetMountPointInfo(FSYS_HAND_STRUCT* hand, DBLK* blk, FS_MOUNTPOINT_INFO& info) override;
  FS_STATUS GetLocalDeviceName(FSYS_HAND_STRUCT* hand, wcstring& name) override;
  FS_STATUS GetDeviceTime(FSYS_HAND_STRUCT* hand, _DATE_TIME* date, _DATE_TIME* date2) override;
  FS_STATUS GetOffHostFileList(_FILE_HAND_STRUCT* obj, FS_OFF_HOST_FILE_LIST** list,
                               FS_OFF_HOST_FILE_LIST** list2,
                               _OFF_HOST_FILELIST_OPER_DATA_TYPES::FS_OH_FL_OPER_TYPE* operation,
                               _OFF_HOST_FILELIST_OPER_DATA_TYPES::FS_OH_FL_DATA_TYPE* data_type,
                               void** result, unsigned int* value) override;
  FS_STATUS PerformChecks(_FILE_HAND_STRUCT* obj, _PERFORM_CHECKS::OPERATION_TYPE kind,
                          _PERFORM_CHECKS::OPERATION_SUB_TYPE sub_kind) override;
  FS_STATUS DoCommand(FSYS_HAND_STRUCT* hand, FS_CMD command, void* arg, void* arg2) override;
  FS_STATUS GetExtendedAttribFromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned int number,
                                      void* arg, unsigned int* value) override;
  FS_STATUS GetEquivalentRealPath(FSYS_HAND_STRUCT* hand, wchar_t const* text, unsigned int number,
                                  wcstring* name, long* code) override;
  FS_STATUS GetVirtualVolumeDetails(FSYS_HAND_STRUCT* hand, unsigned char** buffer,
                                    unsigned int* value, _VIRTUAL_VOLUME_INFO** info) override;
  FS_STATUS GetLastErrorAndMessage(FSYS_HAND_STRUCT* hand, wchar_t* text, unsigned int number,
                                   long* code) override;
  FS_STATUS DirectImageInterface(FSYS_HAND_STRUCT* hand, wchar_t const* text, wchar_t const* text2,
                                 _DII_CONTROL_TYPE control, unsigned int number,
                                 FS_OFF_HOST_FILE_LIST** list, FS_OFF_HOST_FILE_LIST** list2,
                                 wchar_t* text3, unsigned int& size) override;

  ~FS_FshLegacy() override;
};
