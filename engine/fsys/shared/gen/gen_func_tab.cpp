// _GENFuncTab: the generic file system's table, with which every registry
// index starts. Its open slot installs an FS_FshGeneric adapter, which
// serves the handle through this table; slots without a GEN operation stay
// null.
#include <qbfsys/gen.h>
#include <qbfsys/handles.h>
#include <qbfsys/registry.h>

namespace {
_FUNC_LIST make_gen_table() {
  _FUNC_LIST t{};
  t.OpenSys = GEN_OpenSys;
  t.InitFileSys = GEN_InitFileSys;
  t.FindDrives = GEN_FindDrives;
  t.RemoveDLE = GEN_RemoveDLE;
  t.DeInitFileSys = GEN_DeInitFileSys;
  t.DeviceDispName = GEN_DeviceDispName;
  t.GetVolName = GEN_GetVolName;
  t.SizeofVolName = GEN_SizeofVolName;
  t.SizeofDevName = GEN_SizeofDevName;
  t.InitMakeData = GEN_InitMakeData;
  t.IsBlkComplete = GEN_IsBlkComplete;
  t.CompleteBLK = GEN_CompleteBlk;
  t.DupBlk = GEN_DupBlk;
  t.ReleaseBlk = GEN_ReleaseBlk;
  t.ProcessDDB = GEN_ProcessDDB;
  t.ModName = GEN_ModName;
  t.GetOSName = GEN_GetOSName;
  t.GetCDateDBLK = GEN_GetCdateDBLK;
  t.GetMDateDBLK = GEN_GetMdateDBLK;
  t.ModBDateDBLK = GEN_ModBdateDBLK;
  t.ModADateDBLK = GEN_ModAdateDBLK;
  t.GetDisplaySizeDBLK = GEN_GetDisplaySizeDBLK;
  t.ModAttrib1DBLK = GEN_ModAttrib1DBLK;
  t.ModAttrib2DBLK = GEN_ModAttrib2DBLK;
  t.GetFileVerFDB = GEN_GetFileVerFDB;
  t.GetObjTypeDBLK = GEN_GetObjTypeDBLK;
  t.SizeofName = GEN_SizeofName;
  t.SizeofOSName = GEN_SizeofOSName;
  t.SizeofOSInfo = GEN_SizeofOSInfo;
  t.GetOS_InfoDBLK = GEN_GetOS_InfoDBLK;
  t.GetActualSizeDBLK = GEN_GetActualSizeDBLK;
  t.CreateGenFDB = GEN_CreateFDB;
  t.CreateGenDDB = GEN_CreateDDB;
  t.CreateDBLK = GEN_CreateDBLK;
  t.SpecExcludeObj = GEN_SpecExcludeObj;
  t.FindObjClose = GEN_FindClose;
  t.GetExtendedErrorInfo = GEN_GetExtendedErrorInfo;
  t.GetExtendedAttribFromDBLK = GEN_GetExtendedAttribFromDBLK;
  t.InitializeGOS = STUB_InitGOS;
  t.SizeofVolumeQbdsInfoInVCB = GEN_SizeofVolumeQbdsInfoInVCB;
  t.GetVolumeQbdsInfoFromVCB = GEN_GetVolumeQbdsInfoFromVCB;
  t.GetVolb = GEN_GetVolb;
  return t;
}
}  // namespace

_FUNC_LIST _GENFuncTab = make_gen_table();
_FUNC_LIST* __func_tab_ptr_GEN = &_GENFuncTab;
