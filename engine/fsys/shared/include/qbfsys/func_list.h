// _FUNC_LIST: the table of a file system's entry points.
//
// 115 slots of plain function pointers (920 bytes), in a fixed order that is a
// contract with separately built modules: a module fills a table and hands it
// out through "GetTable" or "Get64BitTable", and the layer copies it by value.
// A null slot means the file system does not offer the operation; every
// caller tests the slot before calling it.
//
// Slots 6 to 9 are the device and volume name operations of the generic file
// system: 6 DeviceDispName (dle, buffer, buffer size in bytes), 7 GetVolName
// (dle, buffer), 8 SizeofVolName (dle) and 9 SizeofDevName (dle), the last two
// returning a size in bytes. Slots named ReservedNN have no caller in the
// layer; they keep their place so that the numbering holds. Slot 58 and 85
// are left to the volume-block code of the modules. The third argument of
// GetMachineName (slot 69) receives the name's length in characters.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>

// Module interface version a module's table must have been built for.
constexpr int FS_MODULE_INTERFACE_VERSION = 23;
constexpr unsigned FS_FUNC_LIST_SLOTS = 115;

// Slot types, one per slot, named FS_SLOT_<slot name>.

using FS_SLOT_CreateObject = FS_DleBase* (*)(unsigned int index);
using FS_SLOT_OpenSys = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh);
using FS_SLOT_InitFileSys = FS_STATUS (*)(QB_CFG* cfg);
using FS_SLOT_FindDrives = FS_STATUS (*)(HEAD_DLE* head, QB_CFG* cfg);
using FS_SLOT_RemoveDLE = FS_STATUS (*)(GENERIC_DLE* dle);
using FS_SLOT_DeInitFileSys = FS_STATUS (*)(void);
using FS_SLOT_DeviceDispName = FS_STATUS (*)(GENERIC_DLE* dle, wchar_t* buffer, unsigned short bufferSize);
using FS_SLOT_GetVolName = FS_STATUS (*)(GENERIC_DLE* dle, wchar_t* buffer);
using FS_SLOT_SizeofVolName = FS_STATUS (*)(GENERIC_DLE* dle);
using FS_SLOT_SizeofDevName = FS_STATUS (*)(GENERIC_DLE* dle);
using FS_SLOT_InitMakeData = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, short kind, _CREATE_DBLK* data);
using FS_SLOT_IsBlkComplete = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk);
using FS_SLOT_CompleteBLK = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, unsigned char* data, unsigned int* size, STREAM_INFO* stream);
using FS_SLOT_DupBlk = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* source, DBLK* copy);
using FS_SLOT_ReleaseBlk = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk);
using FS_SLOT_AttachToDLE = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, GENERIC_DLE* dle, wchar_t* user, wchar_t* password);
using FS_SLOT_DetachDLE = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, void* arg, void** result);
using FS_SLOT_ProcessDDB = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk);
using FS_SLOT_GetCurrentDDB = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk);
using FS_SLOT_GetCurrentPath = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, wchar_t* path, short* size);
using FS_SLOT_ChangeDir = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, wchar_t* path, short size);
using FS_SLOT_ChangeDirUp = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh);
using FS_SLOT_CreateObj = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, wchar_t const* name, RESTORE_SEMANTICS semantics);
using FS_SLOT_OpenObj = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, _FILE_HAND_STRUCT** hand, DBLK* blk, OPEN_MODE mode);
using FS_SLOT_SeekObj = FS_STATUS (*)(_FILE_HAND_STRUCT* hand, unsigned int* offset);
using FS_SLOT_ReadObj = FS_STATUS (*)(_FILE_HAND_STRUCT* hand, unsigned char* buffer, unsigned int* size, unsigned int* blockSize, STREAM_INFO* stream);
using FS_SLOT_WriteObj = FS_STATUS (*)(_FILE_HAND_STRUCT* hand, unsigned char* buffer, unsigned int* size, unsigned int* blockSize, STREAM_INFO* stream);
using FS_SLOT_CloseObj = FS_STATUS (*)(_FILE_HAND_STRUCT* hand, void** arg, void** result);
using FS_SLOT_DeleteObj = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk);
using FS_SLOT_GetObjInfo = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk);
using FS_SLOT_FindFirstObj = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, wchar_t* spec, unsigned short flags);
using FS_SLOT_FindNextObj = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk);
using FS_SLOT_PushMinDDB = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk);
using FS_SLOT_PopMinDDB = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk);
using FS_SLOT_GetSpecialDBLKS = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, unsigned int index, int flags);
using FS_SLOT_ModName = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, int direction, DBLK* blk, wchar_t* buffer, short* size);
using FS_SLOT_GetOSName = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, wchar_t* buffer, bool withPath);
using FS_SLOT_GetCDateDBLK = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, _DATE_TIME* date);
using FS_SLOT_GetMDateDBLK = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, _DATE_TIME* date);
using FS_SLOT_ModBDateDBLK = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, int direction, DBLK* blk, _DATE_TIME* date);
using FS_SLOT_ModADateDBLK = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, int direction, DBLK* blk, _DATE_TIME* date);
using FS_SLOT_GetDisplaySizeDBLK = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk);
using FS_SLOT_ModAttrib1DBLK = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, int direction, DBLK* blk, unsigned int* attributes);
using FS_SLOT_ModAttrib2DBLK = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, int direction, DBLK* blk, unsigned int* attributes);
using FS_SLOT_GetFileVerFDB = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, unsigned int* version);
using FS_SLOT_GetObjTypeDBLK = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, OBJECT_TYPE* type);
using FS_SLOT_SizeofName = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, bool withPath);
using FS_SLOT_SizeofOSName = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, bool withPath);
using FS_SLOT_SizeofOSInfo = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk);
using FS_SLOT_GetOS_InfoDBLK = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, unsigned char* buffer, short* size);
using FS_SLOT_GetActualSizeDBLK = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk);
using FS_SLOT_InitializeGOS = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, _GOS* gos);
using FS_SLOT_CreateGenFDB = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, _GEN_DBLK_DATA* data);
using FS_SLOT_CreateGenDDB = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, _GEN_DBLK_DATA* data);
using FS_SLOT_CreateDBLK = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, unsigned int kind, _CREATE_DBLK* data);
using FS_SLOT_ChangeIntoDDB = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk);
using FS_SLOT_SpecExcludeObj = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* directory, DBLK* blk, unsigned int flags);
using FS_SLOT_FindObjClose = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk);
using FS_SLOT_Reserved58 = FS_STATUS (*)(void);
using FS_SLOT_GeneratedErrorLog = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, void** log, wchar_t* buffer, unsigned int size, unsigned int* needed);
using FS_SLOT_GetDBInfoDBLK = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, unsigned char* buffer);
using FS_SLOT_SizeofDBInfoDBLK = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk);
using FS_SLOT_PrePostProc = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, _PREPOST* prepost);
using FS_SLOT_CreateTempDLE = FS_STATUS (*)(QB_CFG* cfg, wchar_t const* name, HEAD_DLE* head, int kind, GENERIC_DLE** out);
using FS_SLOT_Reserved64 = FS_STATUS (*)(void);
using FS_SLOT_Reserved65 = FS_STATUS (*)(void);
using FS_SLOT_MakePushDBLK = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, unsigned int* size, void const* data);
using FS_SLOT_CloseSys = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh);
using FS_SLOT_AddChildren = FS_STATUS (*)(GENERIC_DLE* parent, QB_CFG* cfg);
using FS_SLOT_GetMachineName = FS_STATUS (*)(GENERIC_DLE* dle, wchar_t* name, unsigned int* nameLength, int reserved);
using FS_SLOT_GetLastErrorMessage = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, wchar_t* buffer, unsigned int size);
using FS_SLOT_SetLastErrorMessage = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, wchar_t const* message);
using FS_SLOT_GetFinalSay = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, unsigned int* status, long* code, wchar_t* text, unsigned int textSize, wchar_t* detail, unsigned int detailSize);
using FS_SLOT_SetFinalSay = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, unsigned int status, long code, wchar_t* text, wchar_t* detail);
using FS_SLOT_GetBackupPriority = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, wchar_t const* path, unsigned long flags);
using FS_SLOT_EnumExcludedFiles = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, int* cursor, wcstring& path, bool* recursive, EXCLUDE_TYPE& type);
using FS_SLOT_SizeofVolumeQbdsInfoInVCB = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, _ZRTSCB* vcb);
using FS_SLOT_GetVolumeQbdsInfoFromVCB = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, _ZRTSCB* vcb, unsigned char* buffer);
using FS_SLOT_Reserved78 = FS_STATUS (*)(void);
using FS_SLOT_Reserved79 = FS_STATUS (*)(void);
using FS_SLOT_CompareFileNames = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, wchar_t* name);
using FS_SLOT_Reserved81 = FS_STATUS (*)(void);
using FS_SLOT_GetMountPointType = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk);
using FS_SLOT_GetSpecRestoreObjects = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, wcstring& source, wcstring& target, bool flag, bool* more, bool* special, unsigned int index);
using FS_SLOT_Reserved84 = FS_STATUS (*)(void);
using FS_SLOT_Reserved85 = FS_STATUS (*)(void);
using FS_SLOT_GetHardLinkPathAndName = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, wchar_t* buffer, short* size);
using FS_SLOT_EnumDependentVolumes = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, FS_WCSTRING_INSERTER out);
using FS_SLOT_AddToSnapshotSet = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, FS_WCSTRING_INSERTER out);
using FS_SLOT_SnapshotNotification = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, SNAPSHOT_NOTIFICATION::notify_type type);
using FS_SLOT_GetExtendedErrorInfo = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, FS_EXT_ERR_ACTION* action, unsigned int* error, wchar_t** message);
using FS_SLOT_Reserved91 = FS_STATUS (*)(void);
using FS_SLOT_EnumSpecFiles = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, FS_WCSTRING_VECTOR& files);
using FS_SLOT_GetVolb = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk);
using FS_SLOT_GenericInfo = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, unsigned int kind, unsigned int size, unsigned char* buffer);
using FS_SLOT_Reserved95 = FS_STATUS (*)(void);
using FS_SLOT_FillOutDBLK = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, wchar_t const* name, unsigned int flags, unsigned long long const& id);
using FS_SLOT_GetShortNameFromDBLK = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, wcstring& name);
using FS_SLOT_GetMountPointInfo = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, FS_MOUNTPOINT_INFO& info);
using FS_SLOT_GetLocalDeviceName = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, wcstring& name);
using FS_SLOT_GetDeviceTime = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, _DATE_TIME* local, _DATE_TIME* utc);
using FS_SLOT_ResolveDevName = FS_STATUS (*)(QB_CFG* cfg, wchar_t* devName, wchar_t* machineName, int* kind, int* errOut, int* out3, int* out4, unsigned int machineNameMax);
using FS_SLOT_GetOffHostFileList = FS_STATUS (*)(_FILE_HAND_STRUCT* hand, FS_OFF_HOST_FILE_LIST** first, FS_OFF_HOST_FILE_LIST** second, _OFF_HOST_FILELIST_OPER_DATA_TYPES::FS_OH_FL_OPER_TYPE* operation, _OFF_HOST_FILELIST_OPER_DATA_TYPES::FS_OH_FL_DATA_TYPE* dataType, void** data, unsigned int* size);
using FS_SLOT_PerformChecks = FS_STATUS (*)(_FILE_HAND_STRUCT* hand, _PERFORM_CHECKS::OPERATION_TYPE type, _PERFORM_CHECKS::OPERATION_SUB_TYPE subType);
using FS_SLOT_DoCommand = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, FS_CMD command, void* in, void* out);
using FS_SLOT_Reserved105 = FS_STATUS (*)(void);
using FS_SLOT_Reserved106 = FS_STATUS (*)(void);
using FS_SLOT_GetExtendedAttribFromDBLK = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, DBLK* blk, unsigned int which, void* buffer, unsigned int* size);
using FS_SLOT_Reserved108 = FS_STATUS (*)(void);
using FS_SLOT_Reserved109 = FS_STATUS (*)(void);
using FS_SLOT_GetEquivalentRealPath = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, wchar_t const* path, unsigned int flags, wcstring* realPath, long* error);
using FS_SLOT_GetVirtualVolumeDetails = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, unsigned char** buffer, unsigned int* size, _VIRTUAL_VOLUME_INFO** info);
using FS_SLOT_GetLastErrorAndMessage = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, wchar_t* buffer, unsigned int size, long* error);
using FS_SLOT_Reserved113 = FS_STATUS (*)(void);
using FS_SLOT_DirectImageInterface = FS_STATUS (*)(FSYS_HAND_STRUCT* fsh, wchar_t const* source, wchar_t const* target, _DII_CONTROL_TYPE control, unsigned int flags, FS_OFF_HOST_FILE_LIST** first, FS_OFF_HOST_FILE_LIST** second, wchar_t* buffer, unsigned int& size);

struct _FUNC_LIST {
  FS_SLOT_CreateObject CreateObject;  // 0
  FS_SLOT_OpenSys OpenSys;  // 1
  FS_SLOT_InitFileSys InitFileSys;  // 2
  FS_SLOT_FindDrives FindDrives;  // 3
  FS_SLOT_RemoveDLE RemoveDLE;  // 4
  FS_SLOT_DeInitFileSys DeInitFileSys;  // 5
  FS_SLOT_DeviceDispName DeviceDispName;  // 6
  FS_SLOT_GetVolName GetVolName;  // 7
  FS_SLOT_SizeofVolName SizeofVolName;  // 8
  FS_SLOT_SizeofDevName SizeofDevName;  // 9
  FS_SLOT_InitMakeData InitMakeData;  // 10
  FS_SLOT_IsBlkComplete IsBlkComplete;  // 11
  FS_SLOT_CompleteBLK CompleteBLK;  // 12
  FS_SLOT_DupBlk DupBlk;  // 13
  FS_SLOT_ReleaseBlk ReleaseBlk;  // 14
  FS_SLOT_AttachToDLE AttachToDLE;  // 15
  FS_SLOT_DetachDLE DetachDLE;  // 16
  FS_SLOT_ProcessDDB ProcessDDB;  // 17
  FS_SLOT_GetCurrentDDB GetCurrentDDB;  // 18
  FS_SLOT_GetCurrentPath GetCurrentPath;  // 19
  FS_SLOT_ChangeDir ChangeDir;  // 20
  FS_SLOT_ChangeDirUp ChangeDirUp;  // 21
  FS_SLOT_CreateObj CreateObj;  // 22
  FS_SLOT_OpenObj OpenObj;  // 23
  FS_SLOT_SeekObj SeekObj;  // 24
  FS_SLOT_ReadObj ReadObj;  // 25
  FS_SLOT_WriteObj WriteObj;  // 26
  FS_SLOT_CloseObj CloseObj;  // 27
  FS_SLOT_DeleteObj DeleteObj;  // 28
  FS_SLOT_GetObjInfo GetObjInfo;  // 29
  FS_SLOT_FindFirstObj FindFirstObj;  // 30
  FS_SLOT_FindNextObj FindNextObj;  // 31
  FS_SLOT_PushMinDDB PushMinDDB;  // 32
  FS_SLOT_PopMinDDB PopMinDDB;  // 33
  FS_SLOT_GetSpecialDBLKS GetSpecialDBLKS;  // 34
  FS_SLOT_ModName ModName;  // 35
  FS_SLOT_GetOSName GetOSName;  // 36
  FS_SLOT_GetCDateDBLK GetCDateDBLK;  // 37
  FS_SLOT_GetMDateDBLK GetMDateDBLK;  // 38
  FS_SLOT_ModBDateDBLK ModBDateDBLK;  // 39
  FS_SLOT_ModADateDBLK ModADateDBLK;  // 40
  FS_SLOT_GetDisplaySizeDBLK GetDisplaySizeDBLK;  // 41
  FS_SLOT_ModAttrib1DBLK ModAttrib1DBLK;  // 42
  FS_SLOT_ModAttrib2DBLK ModAttrib2DBLK;  // 43
  FS_SLOT_GetFileVerFDB GetFileVerFDB;  // 44
  FS_SLOT_GetObjTypeDBLK GetObjTypeDBLK;  // 45
  FS_SLOT_SizeofName SizeofName;  // 46
  FS_SLOT_SizeofOSName SizeofOSName;  // 47
  FS_SLOT_SizeofOSInfo SizeofOSInfo;  // 48
  FS_SLOT_GetOS_InfoDBLK GetOS_InfoDBLK;  // 49
  FS_SLOT_GetActualSizeDBLK GetActualSizeDBLK;  // 50
  FS_SLOT_InitializeGOS InitializeGOS;  // 51
  FS_SLOT_CreateGenFDB CreateGenFDB;  // 52
  FS_SLOT_CreateGenDDB CreateGenDDB;  // 53
  FS_SLOT_CreateDBLK CreateDBLK;  // 54
  FS_SLOT_ChangeIntoDDB ChangeIntoDDB;  // 55
  FS_SLOT_SpecExcludeObj SpecExcludeObj;  // 56
  FS_SLOT_FindObjClose FindObjClose;  // 57
  FS_SLOT_Reserved58 Reserved58;  // 58
  FS_SLOT_GeneratedErrorLog GeneratedErrorLog;  // 59
  FS_SLOT_GetDBInfoDBLK GetDBInfoDBLK;  // 60
  FS_SLOT_SizeofDBInfoDBLK SizeofDBInfoDBLK;  // 61
  FS_SLOT_PrePostProc PrePostProc;  // 62
  FS_SLOT_CreateTempDLE CreateTempDLE;  // 63
  FS_SLOT_Reserved64 Reserved64;  // 64
  FS_SLOT_Reserved65 Reserved65;  // 65
  FS_SLOT_MakePushDBLK MakePushDBLK;  // 66
  FS_SLOT_CloseSys CloseSys;  // 67
  FS_SLOT_AddChildren AddChildren;  // 68
  FS_SLOT_GetMachineName GetMachineName;  // 69
  FS_SLOT_GetLastErrorMessage GetLastErrorMessage;  // 70
  FS_SLOT_SetLastErrorMessage SetLastErrorMessage;  // 71
  FS_SLOT_GetFinalSay GetFinalSay;  // 72
  FS_SLOT_SetFinalSay SetFinalSay;  // 73
  FS_SLOT_GetBackupPriority GetBackupPriority;  // 74
  FS_SLOT_EnumExcludedFiles EnumExcludedFiles;  // 75
  FS_SLOT_SizeofVolumeQbdsInfoInVCB SizeofVolumeQbdsInfoInVCB;  // 76
  FS_SLOT_GetVolumeQbdsInfoFromVCB GetVolumeQbdsInfoFromVCB;  // 77
  FS_SLOT_Reserved78 Reserved78;  // 78
  FS_SLOT_Reserved79 Reserved79;  // 79
  FS_SLOT_CompareFileNames CompareFileNames;  // 80
  FS_SLOT_Reserved81 Reserved81;  // 81
  FS_SLOT_GetMountPointType GetMountPointType;  // 82
  FS_SLOT_GetSpecRestoreObjects GetSpecRestoreObjects;  // 83
  FS_SLOT_Reserved84 Reserved84;  // 84
  FS_SLOT_Reserved85 Reserved85;  // 85
  FS_SLOT_GetHardLinkPathAndName GetHardLinkPathAndName;  // 86
  FS_SLOT_EnumDependentVolumes EnumDependentVolumes;  // 87
  FS_SLOT_AddToSnapshotSet AddToSnapshotSet;  // 88
  FS_SLOT_SnapshotNotification SnapshotNotification;  // 89
  FS_SLOT_GetExtendedErrorInfo GetExtendedErrorInfo;  // 90
  FS_SLOT_Reserved91 Reserved91;  // 91
  FS_SLOT_EnumSpecFiles EnumSpecFiles;  // 92
  FS_SLOT_GetVolb GetVolb;  // 93
  FS_SLOT_GenericInfo GenericInfo;  // 94
  FS_SLOT_Reserved95 Reserved95;  // 95
  FS_SLOT_FillOutDBLK FillOutDBLK;  // 96
  FS_SLOT_GetShortNameFromDBLK GetShortNameFromDBLK;  // 97
  FS_SLOT_GetMountPointInfo GetMountPointInfo;  // 98
  FS_SLOT_GetLocalDeviceName GetLocalDeviceName;  // 99
  FS_SLOT_GetDeviceTime GetDeviceTime;  // 100
  FS_SLOT_ResolveDevName ResolveDevName;  // 101
  FS_SLOT_GetOffHostFileList GetOffHostFileList;  // 102
  FS_SLOT_PerformChecks PerformChecks;  // 103
  FS_SLOT_DoCommand DoCommand;  // 104
  FS_SLOT_Reserved105 Reserved105;  // 105
  FS_SLOT_Reserved106 Reserved106;  // 106
  FS_SLOT_GetExtendedAttribFromDBLK GetExtendedAttribFromDBLK;  // 107
  FS_SLOT_Reserved108 Reserved108;  // 108
  FS_SLOT_Reserved109 Reserved109;  // 109
  FS_SLOT_GetEquivalentRealPath GetEquivalentRealPath;  // 110
  FS_SLOT_GetVirtualVolumeDetails GetVirtualVolumeDetails;  // 111
  FS_SLOT_GetLastErrorAndMessage GetLastErrorAndMessage;  // 112
  FS_SLOT_Reserved113 Reserved113;  // 113
  FS_SLOT_DirectImageInterface DirectImageInterface;  // 114
};

static_assert(sizeof(_FUNC_LIST) == 920, "_FUNC_LIST is 115 eight-byte slots");
static_assert(offsetof(_FUNC_LIST, CreateObject) == 0, "slot 0");
static_assert(offsetof(_FUNC_LIST, OpenSys) == 8, "slot 1");
static_assert(offsetof(_FUNC_LIST, InitFileSys) == 16, "slot 2");
static_assert(offsetof(_FUNC_LIST, FindDrives) == 24, "slot 3");
static_assert(offsetof(_FUNC_LIST, RemoveDLE) == 32, "slot 4");
static_assert(offsetof(_FUNC_LIST, DeInitFileSys) == 40, "slot 5");
static_assert(offsetof(_FUNC_LIST, DeviceDispName) == 48, "slot 6");
static_assert(offsetof(_FUNC_LIST, GetVolName) == 56, "slot 7");
static_assert(offsetof(_FUNC_LIST, SizeofVolName) == 64, "slot 8");
static_assert(offsetof(_FUNC_LIST, SizeofDevName) == 72, "slot 9");
static_assert(offsetof(_FUNC_LIST, InitMakeData) == 80, "slot 10");
static_assert(offsetof(_FUNC_LIST, IsBlkComplete) == 88, "slot 11");
static_assert(offsetof(_FUNC_LIST, CompleteBLK) == 96, "slot 12");
static_assert(offsetof(_FUNC_LIST, DupBlk) == 104, "slot 13");
static_assert(offsetof(_FUNC_LIST, ReleaseBlk) == 112, "slot 14");
static_assert(offsetof(_FUNC_LIST, AttachToDLE) == 120, "slot 15");
static_assert(offsetof(_FUNC_LIST, DetachDLE) == 128, "slot 16");
static_assert(offsetof(_FUNC_LIST, ProcessDDB) == 136, "slot 17");
static_assert(offsetof(_FUNC_LIST, GetCurrentDDB) == 144, "slot 18");
static_assert(offsetof(_FUNC_LIST, GetCurrentPath) == 152, "slot 19");
static_assert(offsetof(_FUNC_LIST, ChangeDir) == 160, "slot 20");
static_assert(offsetof(_FUNC_LIST, ChangeDirUp) == 168, "slot 21");
static_assert(offsetof(_FUNC_LIST, CreateObj) == 176, "slot 22");
static_assert(offsetof(_FUNC_LIST, OpenObj) == 184, "slot 23");
static_assert(offsetof(_FUNC_LIST, SeekObj) == 192, "slot 24");
static_assert(offsetof(_FUNC_LIST, ReadObj) == 200, "slot 25");
static_assert(offsetof(_FUNC_LIST, WriteObj) == 208, "slot 26");
static_assert(offsetof(_FUNC_LIST, CloseObj) == 216, "slot 27");
static_assert(offsetof(_FUNC_LIST, DeleteObj) == 224, "slot 28");
static_assert(offsetof(_FUNC_LIST, GetObjInfo) == 232, "slot 29");
static_assert(offsetof(_FUNC_LIST, FindFirstObj) == 240, "slot 30");
static_assert(offsetof(_FUNC_LIST, FindNextObj) == 248, "slot 31");
static_assert(offsetof(_FUNC_LIST, PushMinDDB) == 256, "slot 32");
static_assert(offsetof(_FUNC_LIST, PopMinDDB) == 264, "slot 33");
static_assert(offsetof(_FUNC_LIST, GetSpecialDBLKS) == 272, "slot 34");
static_assert(offsetof(_FUNC_LIST, ModName) == 280, "slot 35");
static_assert(offsetof(_FUNC_LIST, GetOSName) == 288, "slot 36");
static_assert(offsetof(_FUNC_LIST, GetCDateDBLK) == 296, "slot 37");
static_assert(offsetof(_FUNC_LIST, GetMDateDBLK) == 304, "slot 38");
static_assert(offsetof(_FUNC_LIST, ModBDateDBLK) == 312, "slot 39");
static_assert(offsetof(_FUNC_LIST, ModADateDBLK) == 320, "slot 40");
static_assert(offsetof(_FUNC_LIST, GetDisplaySizeDBLK) == 328, "slot 41");
static_assert(offsetof(_FUNC_LIST, ModAttrib1DBLK) == 336, "slot 42");
static_assert(offsetof(_FUNC_LIST, ModAttrib2DBLK) == 344, "slot 43");
static_assert(offsetof(_FUNC_LIST, GetFileVerFDB) == 352, "slot 44");
static_assert(offsetof(_FUNC_LIST, GetObjTypeDBLK) == 360, "slot 45");
static_assert(offsetof(_FUNC_LIST, SizeofName) == 368, "slot 46");
static_assert(offsetof(_FUNC_LIST, SizeofOSName) == 376, "slot 47");
static_assert(offsetof(_FUNC_LIST, SizeofOSInfo) == 384, "slot 48");
static_assert(offsetof(_FUNC_LIST, GetOS_InfoDBLK) == 392, "slot 49");
static_assert(offsetof(_FUNC_LIST, GetActualSizeDBLK) == 400, "slot 50");
static_assert(offsetof(_FUNC_LIST, InitializeGOS) == 408, "slot 51");
static_assert(offsetof(_FUNC_LIST, CreateGenFDB) == 416, "slot 52");
static_assert(offsetof(_FUNC_LIST, CreateGenDDB) == 424, "slot 53");
static_assert(offsetof(_FUNC_LIST, CreateDBLK) == 432, "slot 54");
static_assert(offsetof(_FUNC_LIST, ChangeIntoDDB) == 440, "slot 55");
static_assert(offsetof(_FUNC_LIST, SpecExcludeObj) == 448, "slot 56");
static_assert(offsetof(_FUNC_LIST, FindObjClose) == 456, "slot 57");
static_assert(offsetof(_FUNC_LIST, Reserved58) == 464, "slot 58");
static_assert(offsetof(_FUNC_LIST, GeneratedErrorLog) == 472, "slot 59");
static_assert(offsetof(_FUNC_LIST, GetDBInfoDBLK) == 480, "slot 60");
static_assert(offsetof(_FUNC_LIST, SizeofDBInfoDBLK) == 488, "slot 61");
static_assert(offsetof(_FUNC_LIST, PrePostProc) == 496, "slot 62");
static_assert(offsetof(_FUNC_LIST, CreateTempDLE) == 504, "slot 63");
static_assert(offsetof(_FUNC_LIST, Reserved64) == 512, "slot 64");
static_assert(offsetof(_FUNC_LIST, Reserved65) == 520, "slot 65");
static_assert(offsetof(_FUNC_LIST, MakePushDBLK) == 528, "slot 66");
static_assert(offsetof(_FUNC_LIST, CloseSys) == 536, "slot 67");
static_assert(offsetof(_FUNC_LIST, AddChildren) == 544, "slot 68");
static_assert(offsetof(_FUNC_LIST, GetMachineName) == 552, "slot 69");
static_assert(offsetof(_FUNC_LIST, GetLastErrorMessage) == 560, "slot 70");
static_assert(offsetof(_FUNC_LIST, SetLastErrorMessage) == 568, "slot 71");
static_assert(offsetof(_FUNC_LIST, GetFinalSay) == 576, "slot 72");
static_assert(offsetof(_FUNC_LIST, SetFinalSay) == 584, "slot 73");
static_assert(offsetof(_FUNC_LIST, GetBackupPriority) == 592, "slot 74");
static_assert(offsetof(_FUNC_LIST, EnumExcludedFiles) == 600, "slot 75");
static_assert(offsetof(_FUNC_LIST, SizeofVolumeQbdsInfoInVCB) == 608, "slot 76");
static_assert(offsetof(_FUNC_LIST, GetVolumeQbdsInfoFromVCB) == 616, "slot 77");
static_assert(offsetof(_FUNC_LIST, Reserved78) == 624, "slot 78");
static_assert(offsetof(_FUNC_LIST, Reserved79) == 632, "slot 79");
static_assert(offsetof(_FUNC_LIST, CompareFileNames) == 640, "slot 80");
static_assert(offsetof(_FUNC_LIST, Reserved81) == 648, "slot 81");
static_assert(offsetof(_FUNC_LIST, GetMountPointType) == 656, "slot 82");
static_assert(offsetof(_FUNC_LIST, GetSpecRestoreObjects) == 664, "slot 83");
static_assert(offsetof(_FUNC_LIST, Reserved84) == 672, "slot 84");
static_assert(offsetof(_FUNC_LIST, Reserved85) == 680, "slot 85");
static_assert(offsetof(_FUNC_LIST, GetHardLinkPathAndName) == 688, "slot 86");
static_assert(offsetof(_FUNC_LIST, EnumDependentVolumes) == 696, "slot 87");
static_assert(offsetof(_FUNC_LIST, AddToSnapshotSet) == 704, "slot 88");
static_assert(offsetof(_FUNC_LIST, SnapshotNotification) == 712, "slot 89");
static_assert(offsetof(_FUNC_LIST, GetExtendedErrorInfo) == 720, "slot 90");
static_assert(offsetof(_FUNC_LIST, Reserved91) == 728, "slot 91");
static_assert(offsetof(_FUNC_LIST, EnumSpecFiles) == 736, "slot 92");
static_assert(offsetof(_FUNC_LIST, GetVolb) == 744, "slot 93");
static_assert(offsetof(_FUNC_LIST, GenericInfo) == 752, "slot 94");
static_assert(offsetof(_FUNC_LIST, Reserved95) == 760, "slot 95");
static_assert(offsetof(_FUNC_LIST, FillOutDBLK) == 768, "slot 96");
static_assert(offsetof(_FUNC_LIST, GetShortNameFromDBLK) == 776, "slot 97");
static_assert(offsetof(_FUNC_LIST, GetMountPointInfo) == 784, "slot 98");
static_assert(offsetof(_FUNC_LIST, GetLocalDeviceName) == 792, "slot 99");
static_assert(offsetof(_FUNC_LIST, GetDeviceTime) == 800, "slot 100");
static_assert(offsetof(_FUNC_LIST, ResolveDevName) == 808, "slot 101");
static_assert(offsetof(_FUNC_LIST, GetOffHostFileList) == 816, "slot 102");
static_assert(offsetof(_FUNC_LIST, PerformChecks) == 824, "slot 103");
static_assert(offsetof(_FUNC_LIST, DoCommand) == 832, "slot 104");
static_assert(offsetof(_FUNC_LIST, Reserved105) == 840, "slot 105");
static_assert(offsetof(_FUNC_LIST, Reserved106) == 848, "slot 106");
static_assert(offsetof(_FUNC_LIST, GetExtendedAttribFromDBLK) == 856, "slot 107");
static_assert(offsetof(_FUNC_LIST, Reserved108) == 864, "slot 108");
static_assert(offsetof(_FUNC_LIST, Reserved109) == 872, "slot 109");
static_assert(offsetof(_FUNC_LIST, GetEquivalentRealPath) == 880, "slot 110");
static_assert(offsetof(_FUNC_LIST, GetVirtualVolumeDetails) == 888, "slot 111");
static_assert(offsetof(_FUNC_LIST, GetLastErrorAndMessage) == 896, "slot 112");
static_assert(offsetof(_FUNC_LIST, Reserved113) == 904, "slot 113");
static_assert(offsetof(_FUNC_LIST, DirectImageInterface) == 912, "slot 114");

// The slot with the given number, for code that walks the table as an array.
inline void* FS_FuncListSlot(_FUNC_LIST const& table, unsigned slot) {
  static_assert(sizeof(void*) == 8, "slots are eight bytes");
  void* value = nullptr;
  if (slot < FS_FUNC_LIST_SLOTS)
    std::memcpy(&value, reinterpret_cast<unsigned char const*>(&table) + slot * 8u, 8u);
  return value;
}
