// The module's entry point "GetTable" and its start-up and shut-down.
//
// One table, for index 7. Block slots that the generic file system answers
// for blocks of its layout are filled with the layer's GEN functions
// (resolved from the host process at load): every block this module makes
// or restores from has that layout.
#include <qbfsys/gen.h>
#include <qbfsys/module.h>

#include "posix_fsys.h"

namespace qbposix {

// Nothing to prepare: the module keeps no state between calls; every drive
// search reads the configuration and the mount table afresh.
FS_STATUS posix_init_file_sys(QB_CFG*) { return FS_SUCCESS; }

FS_STATUS posix_deinit_file_sys() { return FS_SUCCESS; }

}  // namespace qbposix

FS_MODULE_EXPORT int GetTable(int n, unsigned int, _FUNC_LIST* out, int* index) {
  using namespace qbposix;
  if (n != 0 || out == nullptr || index == nullptr) return 0;
  _FUNC_LIST table{};
  table.InitFileSys = &posix_init_file_sys;
  table.DeInitFileSys = &posix_deinit_file_sys;
  table.FindDrives = &posix_find_drives;
  table.RemoveDLE = &posix_remove_dle;
  table.GetMachineName = &posix_get_machine_name;
  table.AttachToDLE = &posix_attach_to_dle;
  table.DetachDLE = &posix_detach_dle;
  table.CloseSys = &posix_close_sys;
  // walking
  table.ChangeDir = &posix_change_dir;
  table.ChangeDirUp = &posix_change_dir_up;
  table.ChangeIntoDDB = &posix_change_into_ddb;
  table.GetCurrentPath = &posix_get_current_path;
  table.GetCurrentDDB = &posix_get_current_ddb;
  table.FindFirstObj = &posix_find_first_obj;
  table.FindNextObj = &posix_find_next_obj;
  table.FindObjClose = &posix_find_obj_close;
  // objects
  table.CreateObj = &posix_create_obj;
  table.OpenObj = &posix_open_obj;
  table.ReadObj = &posix_read_obj;
  table.WriteObj = &posix_write_obj;
  table.CloseObj = &posix_close_obj;
  // blocks of the generic layout
  table.ReleaseBlk = &posix_release_blk;
  table.CreateDBLK = &GEN_CreateDBLK;
  table.CreateGenFDB = &GEN_CreateFDB;
  table.CreateGenDDB = &GEN_CreateDDB;
  table.IsBlkComplete = &GEN_IsBlkComplete;
  table.DupBlk = &GEN_DupBlk;
  table.ModName = &GEN_ModName;
  table.GetOSName = &GEN_GetOSName;
  table.SizeofName = &GEN_SizeofName;
  table.SizeofOSName = &GEN_SizeofOSName;
  table.GetCDateDBLK = &GEN_GetCdateDBLK;
  table.GetMDateDBLK = &GEN_GetMdateDBLK;
  table.ModBDateDBLK = &GEN_ModBdateDBLK;
  table.ModADateDBLK = &GEN_ModAdateDBLK;
  table.GetDisplaySizeDBLK = &GEN_GetDisplaySizeDBLK;
  table.ModAttrib1DBLK = &GEN_ModAttrib1DBLK;
  table.ModAttrib2DBLK = &GEN_ModAttrib2DBLK;
  table.GetObjTypeDBLK = &GEN_GetObjTypeDBLK;
  table.SizeofOSInfo = &GEN_SizeofOSInfo;
  table.GetOS_InfoDBLK = &GEN_GetOS_InfoDBLK;
  table.GetActualSizeDBLK = &GEN_GetActualSizeDBLK;
  *out = table;
  *index = static_cast<int>(FS_POSIX_INDEX);
  return 1;
}
