// _FUNC_LIST: the table of a file system's entry points.
//
// 115 slots of plain function pointers (920 bytes), in a fixed order that is a
// contract with separately built modules: a module fills a table and hands it
// out through "GetTable" or "Get64BitTable", and the layer copies it by value
// into the registry entry of the file-system index the module names. A null
// slot means the file system does not offer the operation; every caller tests
// the slot before calling it. The contract of each slot is written above its
// member in _FUNC_LIST below; every slot returns an FS_STATUS unless its
// comment says otherwise.
//
// How the layer reaches a slot:
// - DLE-level slots (0, 2 to 5, 63, 68, 69, 101) are called by the registry and
//   the DLE tree. When slot 0 gives an index an FS_DleBase object, the
//   object's operation of the same role is called instead of slots 2 to 5, 63,
//   68, 69 and 101 of that index.
// - Handle-level slots are reached through the handle's adapter when it has
//   one, else straight from the handle's table. GEN_OpenSys in slot 1 installs
//   the forwarding adapter (FS_FshGeneric): its method of the same name calls
//   the slot and answers FS_ERR_UNIMPLEMENTED for a null slot, unless a slot
//   says otherwise. "Guarded" marks a slot that this adapter calls only with a
//   non-null handle and non-null pointer arguments (it answers
//   FS_ERR_BAD_PARAMETER itself otherwise). "Adapter only" marks a slot the
//   layer itself never calls: it runs when the host calls that adapter method.
//   Where the layer calls a slot itself, its comment names the caller and what
//   a null slot gives when the handle has no adapter. FS_FshGen, the adapter
//   of the generic file system, never reads the table; its fixed answers are
//   noted as "generic adapter".
//
// Conventions: wchar_t is 4 bytes; name and path sizes are in bytes and count
// the terminator; a size returned in the status word is read as a signed
// 16-bit count. A DBLK is a 4,184-byte record owned by the caller; the name
// elements it points at belong to the handle's name pool (FS_AllocPathOrName,
// FS_SetupOSPathOrNameInDBLK) and go back to it through slot 14. A module keeps
// its per-handle state in FSYS_HAND_STRUCT::fsysData. To give the caller
// details of an error, a module calls FS_SetLastError and returns
// FS_STATUS_EXT_ERROR. A module whose blocks have the generic layout can put
// the GEN_ functions into its block slots (10 to 14, 35 to 54); _GENFuncTab
// holds GEN_ functions in slots 1 to 14, 17, 35 to 54 (51: STUB_InitGOS), 56,
// 57, 76, 77, 90, 93 and 107, and null everywhere else.
//
// Slots 6 to 9 are the device and volume name operations of the generic file
// system: 6 DeviceDispName (dle, buffer, buffer size in bytes), 7 GetVolName
// (dle, buffer), 8 SizeofVolName (dle) and 9 SizeofDevName (dle), the last two
// returning a size in bytes. Slots named ReservedNN (58, 64, 65, 78, 79, 81,
// 84, 85, 91, 95, 105, 106, 108, 109, 113) have no caller in the layer; they
// keep their place so that the numbering holds. The third argument of
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
  // --- Module life ---
  // (index): called by FS_CreateDleAgent when the table enters the registry.
  // Returns the index's FS_DleBase object (a pointer, not a status), or null;
  // the registry never deletes it. Null slot: no object. Null in _GENFuncTab.
  FS_SLOT_CreateObject CreateObject;  // 0
  // --- Handles and attach ---
  // (fsh): called by FS_OpenFileSys on every new handle, before any attach;
  // its status is FS_OpenFileSys's result (non-zero fails FS_AttachToDLE).
  // GEN_OpenSys here installs the forwarding adapter. Null: FS_SUCCESS.
  FS_SLOT_OpenSys OpenSys;  // 1
  // --- Module life ---
  // (cfg, the host's, not owned): called once per index by FS_InitFileSys.
  // Non-zero puts the generic table back at the index and drops the module;
  // for "libqbdskx." start-up fails with FS_ERR_INIT_FAILED. Null: skipped.
  FS_SLOT_InitFileSys InitFileSys;  // 2
  // --- DLE level ---
  // (head, cfg): called by DLE_UpdateList in pass find_order[index] (indices 9
  // and 12 only with the drive-scan flag set). Create this file system's DLEs
  // in the tree, which owns them from then on (slot 4 frees them). Non-zero is
  // printed and the others go on. Null: skipped; DLE_UpdateSingleDriveType
  // answers FS_ERR_UNIMPLEMENTED.
  FS_SLOT_FindDrives FindDrives;  // 3
  // (dle): called by DLE_RemoveRecurse (DLE_Remove, FS_DeinitDleList) for each
  // DLE of this index, its children first: unlink the DLE from its queue and
  // free it with all it owns. Result not looked at. Null: the DLE stays.
  FS_SLOT_RemoveDLE RemoveDLE;  // 4
  // --- Module life ---
  // (): called once per index by FS_RemoveFileSys; result not looked at.
  // Null: skipped.
  FS_SLOT_DeInitFileSys DeInitFileSys;  // 5
  // --- DLE level: device and volume names (no caller in the layer) ---
  // (dle, buffer, size in bytes): GEN_DeviceDispName refuses under 24 bytes
  // with FS_ERR_OBJ_NO_DATA, else copies at most size/4 characters, terminated.
  FS_SLOT_DeviceDispName DeviceDispName;  // 6
  // (dle, buffer): GEN_GetVolName copies the same name as slot 6, unbounded.
  FS_SLOT_GetVolName GetVolName;  // 7
  // (dle): returns the size in bytes of slot 7's name; GEN: (length + 1) * 4.
  FS_SLOT_SizeofVolName SizeofVolName;  // 8
  // (dle): returns the size in bytes of the device name; GEN: as slot 8.
  FS_SLOT_SizeofDevName SizeofDevName;  // 9
  // --- Blocks and names ---
  // (fsh, short, request): adapter only, guarded. GEN_InitMakeData clears the
  // OS id, QBDS id and OS version of the request's generic data.
  FS_SLOT_InitMakeData InitMakeData;  // 10
  // (fsh, blk): adapter only, guarded. Returns non-zero when the block is
  // complete. GEN: volume, corrupt-file and cluster blocks, and blocks whose
  // os_name is set.
  FS_SLOT_IsBlkComplete IsBlkComplete;  // 11
  // (fsh, blk, data, size in/out bytes, header): adapter only, guarded. Feeds
  // a piece of the block's name stream; *size out: bytes taken. GEN: FS_SUCCESS
  // while more is wanted, FS_BLK_COMPLETE once the name is set in the block.
  FS_SLOT_CompleteBLK CompleteBLK;  // 12
  // (fsh, source, copy): adapter only, guarded. Copies the block; GEN_DupBlk
  // gives the copy name elements of its own from the handle's pool.
  FS_SLOT_DupBlk DupBlk;  // 13
  // (fsh, blk): adapter only, guarded. Gives the block's name elements back to
  // the handle's pool (GEN_ReleaseBlk).
  FS_SLOT_ReleaseBlk ReleaseBlk;  // 14
  // --- Handles and attach ---
  // (fsh, dle, user, password; both may be null): called by FS_AttachToDLE and
  // FS_ReattachDLE on the filled handle. FS_SUCCESS binds; FS_STATUS_EXT_ERROR
  // keeps the handle attached in FS_AttachToDLE (a failure for the 5-argument
  // FS_ReattachDLE); other statuses close the handle. Null:
  // FS_ERR_UNIMPLEMENTED, nothing attaches. Null in _GENFuncTab.
  FS_SLOT_AttachToDLE AttachToDLE;  // 15
  // (fsh, arg, result), passed through from FS_DetachDLE: undo the attach.
  // FS_STATUS_EXT_ERROR keeps the handle attached and allocated; otherwise the
  // layer closes it. FS_CloseFileSys calls (fsh, null, null) on a still-bound
  // handle and ignores the result. Null: the handle is detached all the same.
  FS_SLOT_DetachDLE DetachDLE;  // 16
  // --- Walking ---
  // (fsh, blk): adapter only, called unguarded. GEN_ProcessDDB returns 1.
  FS_SLOT_ProcessDDB ProcessDDB;  // 17
  // (fsh, blk): adapter only, guarded. Generic adapter: FS_ERR_UNIMPLEMENTED.
  FS_SLOT_GetCurrentDDB GetCurrentDDB;  // 18
  // (fsh, path out, size in/out): the current directory in component form
  // (each component NUL-terminated; the root is one empty component, 4 bytes).
  // *size in: room; out: bytes written; too small: FS_ERR_OBJ_NO_DATA. Called by
  // FS_GetSpecialAttribs and FS_GetAgentWarningFlag; guarded. A failure, a null
  // slot or a size above the room stops their lookup.
  FS_SLOT_GetCurrentPath GetCurrentPath;  // 19
  // (fsh, path, size in bytes with the last terminator): adapter only. Makes
  // the path, in slot 19's component form, the current directory.
  FS_SLOT_ChangeDir ChangeDir;  // 20
  // (fsh): adapter only. Makes the parent of the current directory current.
  FS_SLOT_ChangeDirUp ChangeDirUp;  // 21
  // --- Object I/O ---
  // (fsh, blk, name, semantics): adapter only; arguments passed through.
  FS_SLOT_CreateObj CreateObj;  // 22
  // (fsh, out, blk, mode): called by FS_OpenObj, except for blocks flagged not
  // to be opened. Allocate a zeroed _FILE_HAND_STRUCT (or a type derived from
  // it, the layer's fields first), set its fsysHand to fsh, store it in *out;
  // slot 27 frees it. OPEN_MODE is passed through. Null: FS_ERR_UNIMPLEMENTED.
  FS_SLOT_OpenObj OpenObj;  // 23
  // (obj, position): called by FS_SeekObj after the layer has written out
  // staged writes and dropped staged reads. Null: FS_ERR_UNIMPLEMENTED.
  FS_SLOT_SeekObj SeekObj;  // 24
  // (obj, buffer, size in/out, need in/out, header out): called by FS_ReadObj.
  // *size in: room in bytes; out: bytes delivered (more than the room:
  // FS_ERR_OBJ_OVERRUN). Fill *header (FS_InitStrmInfo) when a stream starts.
  // *need comes in as 1; set it to the least room wanted per call and the layer
  // stages reads for smaller callers. End of the object: FS_ERR_OBJ_NO_DATA with
  // *size 0; an error after data is held back for the next call. Null:
  // FS_ERR_UNIMPLEMENTED.
  FS_SLOT_ReadObj ReadObj;  // 25
  // (obj, data, size in/out, need in/out, header in): called by FS_WriteObj
  // with either a new stream header (header->id non-zero, *size 0) or data of
  // the current stream (id 0), never both. *size in: bytes offered; out: bytes
  // taken (taking more: FS_ERR_OBJ_OVERRUN; none with FS_SUCCESS and need below
  // 2: FS_ERR_OBJ_INCOMPLETE). *need: least bytes wanted per call; the layer
  // gathers that many. FS_STATUS_OBJ_DEFERRED makes the layer swallow data
  // until the next header. Null: FS_ERR_UNIMPLEMENTED.
  FS_SLOT_WriteObj WriteObj;  // 26
  // (obj, arg, result), passed through from FS_CloseObj after staged writes
  // went out and the staging buffer was freed (kept for fsh->objHand): finish
  // the object and free the _FILE_HAND_STRUCT of slot 23. A non-zero status is
  // FS_CloseObj's result. Null: FS_ERR_UNIMPLEMENTED.
  FS_SLOT_CloseObj CloseObj;  // 27
  // (fsh, blk): adapter only.
  FS_SLOT_DeleteObj DeleteObj;  // 28
  // --- Walking ---
  // (fsh, blk): adapter only.
  FS_SLOT_GetObjInfo GetObjInfo;  // 29
  // (fsh, blk out, spec, flags): adapter only. Starts a listing of the current
  // directory and fills the caller's blk with its first entry (names from the
  // handle's pool, e.g. through GEN_CreateDBLK); a module that filters matches
  // the `spec` pattern with FS_CompareFileSpec. No entry: FS_STATUS_NONE.
  FS_SLOT_FindFirstObj FindFirstObj;  // 30
  // (fsh, blk out): adapter only. The listing's next entry; end: FS_STATUS_NONE.
  FS_SLOT_FindNextObj FindNextObj;  // 31
  // (fsh, blk): adapter only.
  FS_SLOT_PushMinDDB PushMinDDB;  // 32
  // (fsh, blk): adapter only.
  FS_SLOT_PopMinDDB PopMinDDB;  // 33
  // (fsh, blk, index, flags): adapter only. Generic adapter: FS_STATUS_NONE.
  FS_SLOT_GetSpecialDBLKS GetSpecialDBLKS;  // 34
  // --- Blocks and names ---
  // (fsh, direction, blk, buffer, size in/out): adapter only, guarded.
  // Direction 0 copies the block's name; *size in: room, out: bytes copied;
  // too small or no name: FS_ERR_OBJ_NO_DATA. GEN refuses writing (direction
  // non-zero) with FS_ERR_BAD_PARAMETER.
  FS_SLOT_ModName ModName;  // 35
  // (fsh, blk, buffer, withPath): copies the OS name with its terminator; the
  // buffer holds slot 47's size. Called with withPath false by FS_OpenObj (for
  // a refused object), FS_GetSpecialAttribs, FS_GetAgentWarningFlag and
  // FS_GetEncryptedNameFromDBLK; guarded. GEN, no name: FS_ERR_OBJ_NO_DATA.
  // Null: those callers record no name or stop.
  FS_SLOT_GetOSName GetOSName;  // 36
  // --- Dates and attributes ---
  // (fsh, blk, date out): adapter only, guarded. The creation date; GEN copies
  // it from the block.
  FS_SLOT_GetCDateDBLK GetCDateDBLK;  // 37
  // (fsh, blk, date out): adapter only, guarded. The modification date.
  FS_SLOT_GetMDateDBLK GetMDateDBLK;  // 38
  // (fsh, direction, blk, date): adapter only, guarded. Direction 0 reads the
  // backup date into *date, any other writes it from *date.
  FS_SLOT_ModBDateDBLK ModBDateDBLK;  // 39
  // (fsh, direction, blk, date): adapter only, guarded. The same for the access
  // date.
  FS_SLOT_ModADateDBLK ModADateDBLK;  // 40
  // (fsh, blk): adapter only, guarded. Returns the display size (GEN: the
  // block's display size, low 32 bits).
  FS_SLOT_GetDisplaySizeDBLK GetDisplaySizeDBLK;  // 41
  // (fsh, direction, blk, word): direction 0 reads attribute word 1 into
  // *word, 1 writes it from *word. Called by FS_GetAttrib1FromDBLK and
  // FS_SetAttrib1FromDBLK for directory and file blocks (on reading, the layer
  // ORs in bits mapped from obj_flags); guarded. Null: reads 0, writes dropped.
  FS_SLOT_ModAttrib1DBLK ModAttrib1DBLK;  // 42
  // (fsh, direction, blk, word): the same for attribute word 2
  // (FS_GetAttrib2FromDBLK, FS_SetAttrib2InDBLK), without flag mapping.
  FS_SLOT_ModAttrib2DBLK ModAttrib2DBLK;  // 43
  // --- Blocks and names ---
  // (fsh, blk, version out): adapter only, unguarded. GEN stores 0.
  FS_SLOT_GetFileVerFDB GetFileVerFDB;  // 44
  // (fsh, blk, type out): adapter only, guarded. GEN reads the OBJECT_TYPE kept
  // in the block; the generic adapter stores type 8.
  FS_SLOT_GetObjTypeDBLK GetObjTypeDBLK;  // 45
  // (fsh, blk, withPath): adapter only, guarded (null arguments: 0). Returns the
  // size in bytes of the name slot 35 copies; GEN: 0xFFFFFFFF without a name.
  FS_SLOT_SizeofName SizeofName;  // 46
  // (fsh, blk, withPath): returns the size in bytes of slot 36's name, 0 when
  // there is none; read as signed 16 bits. Same callers as slot 36, withPath
  // false; guarded (null arguments: 0). Null: read as 0.
  FS_SLOT_SizeofOSName SizeofOSName;  // 47
  // (fsh, blk): returns the size in bytes of the block's OS-info data, 0 for
  // none. Called by FS_SizeofQbdsInfoInDBLK for directory and file blocks;
  // adapter method SizeofQbdsInfo, guarded. Null: 0.
  FS_SLOT_SizeofOSInfo SizeofOSInfo;  // 48
  // (fsh, blk, buffer, size in/out): copies the OS-info data; *size in: room
  // (FS_GetQbdsInfoFromDBLK gives 1,024), out: bytes copied (0 for none); too
  // small: FS_ERR_OBJ_NO_DATA. Adapter method GetQbdsInfoDBLK, guarded. Null:
  // FS_ERR_UNIMPLEMENTED.
  FS_SLOT_GetOS_InfoDBLK GetOS_InfoDBLK;  // 49
  // (fsh, blk): adapter only, unguarded. Returns the block's meaningful size in
  // bytes, read as signed 16 bits (GEN: 336).
  FS_SLOT_GetActualSizeDBLK GetActualSizeDBLK;  // 50
  // (fsh, gos): adapter only. STUB_InitGOS returns FS_SUCCESS.
  FS_SLOT_InitializeGOS InitializeGOS;  // 51
  // (fsh, data): adapter only, guarded. Builds a file block from the generic
  // creation data into data->dblk (GEN_CreateFDB; FS_ERR_NO_MEMORY when name
  // elements run out).
  FS_SLOT_CreateGenFDB CreateGenFDB;  // 52
  // (fsh, data): the same for a directory block (GEN_CreateDDB).
  FS_SLOT_CreateGenDDB CreateGenDDB;  // 53
  // (fsh, kind, request): called by FS_CreateGenDBLK (which may first convert
  // the request's dates to UTC) to build a block of that kind into the
  // request's DBLK; only the low 16 bits of the status are kept. GEN: 8 directory, 9
  // file, other kinds 1. Adapter method CreateGenDBLK, guarded. Null:
  // FS_ERR_UNIMPLEMENTED.
  FS_SLOT_CreateDBLK CreateDBLK;  // 54
  // --- Walking ---
  // (fsh, blk): adapter only. Makes the directory that blk describes current.
  FS_SLOT_ChangeIntoDDB ChangeIntoDDB;  // 55
  // (fsh, directory, blk, flags): adapter only, guarded. GEN_SpecExcludeObj
  // excludes nothing and returns FS_SUCCESS.
  FS_SLOT_SpecExcludeObj SpecExcludeObj;  // 56
  // (fsh, blk): adapter only, unguarded. Ends a listing; GEN_FindClose returns
  // FS_SUCCESS.
  FS_SLOT_FindObjClose FindObjClose;  // 57
  // --- Reserved ---
  FS_SLOT_Reserved58 Reserved58;  // 58
  // --- Errors ---
  // (fsh, log, buffer, size, needed): adapter only; arguments passed through.
  FS_SLOT_GeneratedErrorLog GeneratedErrorLog;  // 59
  // --- Blocks and names ---
  // (fsh, blk, buffer): adapter only. Generic adapter: FS_SUCCESS.
  FS_SLOT_GetDBInfoDBLK GetDBInfoDBLK;  // 60
  // (fsh, blk): adapter only. Generic adapter: FS_SUCCESS (0).
  FS_SLOT_SizeofDBInfoDBLK SizeofDBInfoDBLK;  // 61
  // --- Other handle services ---
  // (fsh, blk, prepost): adapter only. Generic adapter: FS_SUCCESS.
  FS_SLOT_PrePostProc PrePostProc;  // 62
  // --- DLE level ---
  // (cfg, name, head, kind, out): called by FS_CreateTempDLE for each index in
  // order (FS_BlowOutMachine: "\\machine", kind 49) until one returns
  // FS_SUCCESS with *out set: build a DLE for the name and store it in *out.
  // The layer removes it through slot 4 when attaching to it fails. Other
  // results let the next index try. Null: skipped.
  FS_SLOT_CreateTempDLE CreateTempDLE;  // 63
  // --- Reserved ---
  FS_SLOT_Reserved64 Reserved64;  // 64
  FS_SLOT_Reserved65 Reserved65;  // 65
  // --- Walking ---
  // (fsh, blk, size, data): adapter only; arguments passed through.
  FS_SLOT_MakePushDBLK MakePushDBLK;  // 66
  // --- Handles and attach ---
  // (fsh): called once as the handle is destroyed (FS_CloseFileSys, after slot
  // 16 when bound; also for a handle that never attached), or by the adapter's
  // CloseSys. Free per-handle state still held. Its status is FS_CloseFileSys's
  // result. Null: FS_SUCCESS.
  FS_SLOT_CloseSys CloseSys;  // 67
  // --- DLE level ---
  // (parent, cfg): called by DLE_AddChildren: add the DLE's child DLEs. The
  // result is not passed on (DLE_AddChildren returns FS_SUCCESS). Null:
  // DLE_AddChildren returns FS_ERR_NOT_SUPPORTED.
  FS_SLOT_AddChildren AddChildren;  // 68
  // (dle, name, nameLength, 0): called by FS_AttachToDLE before binding a DLE
  // that may be remote. Write the machine name into the caller's zeroed buffer
  // (room for 256 characters) and its length in characters into
  // *nameLength. FS_SUCCESS with a non-zero length lets the layer judge the
  // machine by name; otherwise, or when null, by the DLE's type.
  FS_SLOT_GetMachineName GetMachineName;  // 69
  // --- Errors ---
  // (fsh, buffer, size): adapter only. Generic adapter: FS_ERR_UNIMPLEMENTED.
  FS_SLOT_GetLastErrorMessage GetLastErrorMessage;  // 70
  // (fsh, message): adapter only. Generic adapter: FS_ERR_UNIMPLEMENTED.
  FS_SLOT_SetLastErrorMessage SetLastErrorMessage;  // 71
  // (fsh, status, code, text, text size, detail, detail size): adapter only.
  FS_SLOT_GetFinalSay GetFinalSay;  // 72
  // (fsh, status, code, text, detail): adapter only.
  FS_SLOT_SetFinalSay SetFinalSay;  // 73
  // --- Other handle services ---
  // (fsh, path, flags): adapter only. Generic adapter: 1.
  FS_SLOT_GetBackupPriority GetBackupPriority;  // 74
  // (fsh, cursor, path out, recursive out, type out): adapter only. Generic
  // adapter: FS_STATUS_NONE (nothing excluded).
  FS_SLOT_EnumExcludedFiles EnumExcludedFiles;  // 75
  // --- Volume blocks ---
  // (fsh, vcb): adapter only. GEN returns FS_SUCCESS (0): no per-volume data.
  FS_SLOT_SizeofVolumeQbdsInfoInVCB SizeofVolumeQbdsInfoInVCB;  // 76
  // (fsh, vcb, buffer): adapter only. GEN writes nothing, returns FS_SUCCESS.
  FS_SLOT_GetVolumeQbdsInfoFromVCB GetVolumeQbdsInfoFromVCB;  // 77
  // --- Reserved ---
  FS_SLOT_Reserved78 Reserved78;  // 78
  FS_SLOT_Reserved79 Reserved79;  // 79
  // --- Blocks and names ---
  // (fsh, blk, name): adapter only. Generic adapter: FS_SUCCESS.
  FS_SLOT_CompareFileNames CompareFileNames;  // 80
  // --- Reserved ---
  FS_SLOT_Reserved81 Reserved81;  // 81
  // --- Other handle services ---
  // (fsh, blk): adapter only. Generic adapter: FS_SUCCESS.
  FS_SLOT_GetMountPointType GetMountPointType;  // 82
  // (fsh, source, target, flag, more, special, index): adapter only. Generic
  // adapter: FS_STATUS_NONE.
  FS_SLOT_GetSpecRestoreObjects GetSpecRestoreObjects;  // 83
  // --- Reserved ---
  FS_SLOT_Reserved84 Reserved84;  // 84
  FS_SLOT_Reserved85 Reserved85;  // 85
  // --- Blocks and names ---
  // (fsh, blk, buffer, size in/out): adapter only, guarded. Generic adapter:
  // stores size 0 and returns FS_SUCCESS.
  FS_SLOT_GetHardLinkPathAndName GetHardLinkPathAndName;  // 86
  // --- Other handle services ---
  // (fsh, out): adapter only; appends volume names through the inserter.
  FS_SLOT_EnumDependentVolumes EnumDependentVolumes;  // 87
  // (fsh, blk, out): adapter only; appends names through the inserter.
  FS_SLOT_AddToSnapshotSet AddToSnapshotSet;  // 88
  // (fsh, type): adapter only.
  FS_SLOT_SnapshotNotification SnapshotNotification;  // 89
  // --- Errors ---
  // (fsh, action out, extra out, message out): adapter only, guarded; returns
  // the error code. GEN_GetExtendedErrorInfo hands back the handle's last error
  // (FS_SetLastError); the message list stays the handle's. Null: the adapter
  // stores FS_EXT_ERR_ACTION_NONE, 0 and null and returns FS_SUCCESS.
  FS_SLOT_GetExtendedErrorInfo GetExtendedErrorInfo;  // 90
  // --- Reserved ---
  FS_SLOT_Reserved91 Reserved91;  // 91
  // --- Other handle services ---
  // (fsh, files out): adapter only. Generic adapter: FS_SUCCESS.
  FS_SLOT_EnumSpecFiles EnumSpecFiles;  // 92
  // --- Volume blocks ---
  // (fsh, blk): adapter only, guarded. GEN_GetVolb returns FS_ERR_UNIMPLEMENTED.
  FS_SLOT_GetVolb GetVolb;  // 93
  // --- Other handle services ---
  // (fsh, kind, size, buffer): adapter only.
  FS_SLOT_GenericInfo GenericInfo;  // 94
  // --- Reserved ---
  FS_SLOT_Reserved95 Reserved95;  // 95
  // --- Blocks and names ---
  // (fsh, blk, name, flags, id): adapter only.
  FS_SLOT_FillOutDBLK FillOutDBLK;  // 96
  // (fsh, blk, name out): adapter only.
  FS_SLOT_GetShortNameFromDBLK GetShortNameFromDBLK;  // 97
  // --- Other handle services ---
  // (fsh, blk, info out): adapter only.
  FS_SLOT_GetMountPointInfo GetMountPointInfo;  // 98
  // (fsh, name out): adapter only.
  FS_SLOT_GetLocalDeviceName GetLocalDeviceName;  // 99
  // (fsh, local out, utc out): adapter only.
  FS_SLOT_GetDeviceTime GetDeviceTime;  // 100
  // --- DLE level ---
  // (cfg, devName, machineName out, kind in/out, errOut, out3, out4, max):
  // called by FS_ResolveDevName in pass resolve_order[index] (index 21 first
  // for *kind 48, 36 for 71); machineName has room for max characters.
  // FS_SUCCESS ends the search; so does an error for which
  // IsE14ResolveDeviceNameError holds (reported in *errOut); other errors let
  // the next index try. Null: skipped.
  FS_SLOT_ResolveDevName ResolveDevName;  // 101
  // --- Object I/O ---
  // (obj, first, second, operation, data type, data, size): adapter only,
  // through the object's owning handle.
  FS_SLOT_GetOffHostFileList GetOffHostFileList;  // 102
  // (obj, type, subtype): adapter only, through the object's owning handle.
  FS_SLOT_PerformChecks PerformChecks;  // 103
  // --- Other handle services ---
  // (fsh, command, in, out): adapter only; arguments passed through.
  FS_SLOT_DoCommand DoCommand;  // 104
  // --- Reserved ---
  FS_SLOT_Reserved105 Reserved105;  // 105
  FS_SLOT_Reserved106 Reserved106;  // 106
  // --- Blocks and names ---
  // (fsh, blk, which, buffer, size in/out): adapter only. GEN copies
  // extended-attribute name `which` (GEN_EA_NAME_1 or 2); *size in: room, out:
  // bytes; too small: FS_ERR_OBJ_NO_DATA with the size needed; none:
  // FS_ERR_NOT_SUPPORTED.
  FS_SLOT_GetExtendedAttribFromDBLK GetExtendedAttribFromDBLK;  // 107
  // --- Reserved ---
  FS_SLOT_Reserved108 Reserved108;  // 108
  FS_SLOT_Reserved109 Reserved109;  // 109
  // --- Other handle services ---
  // (fsh, path, flags, realPath out, error out): adapter only.
  FS_SLOT_GetEquivalentRealPath GetEquivalentRealPath;  // 110
  // --- Volume blocks ---
  // (fsh, buffer out, size out, info out): adapter only.
  FS_SLOT_GetVirtualVolumeDetails GetVirtualVolumeDetails;  // 111
  // --- Errors ---
  // (fsh, buffer, size, error out): adapter only.
  FS_SLOT_GetLastErrorAndMessage GetLastErrorAndMessage;  // 112
  // --- Reserved ---
  FS_SLOT_Reserved113 Reserved113;  // 113
  // --- Other handle services ---
  // (fsh, source, target, control, flags, first, second, buffer, size):
  // adapter only; arguments passed through.
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
