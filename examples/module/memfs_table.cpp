// The entry point "GetTable": one table, for MEMFS_INDEX. Slots left null
// are operations the module does not offer; the layer answers those itself.
// Block slots use the generic file system's functions: the module's blocks
// have the generic layout, and they carry the dates, attribute words and
// display size the slots below read. The module's own slots are wrapped
// (guarded, memfs.h) so that no exception leaves them.
#include "memfs.h"

FS_MODULE_EXPORT int GetInterfaceVersion() { return FS_MODULE_INTERFACE_VERSION; }

FS_MODULE_EXPORT int GetTable(int n, unsigned int, _FUNC_LIST* out, int* index) {
  using namespace memfs;
  if (n != 0 || out == nullptr || index == nullptr) return 0;
  _FUNC_LIST table{};
  // the module's life and its drive
  table.InitFileSys = &guarded<&memfs_init>::call;
  table.DeInitFileSys = &guarded<&memfs_deinit>::call;
  table.FindDrives = &guarded<&memfs_find_drives>::call;
  table.RemoveDLE = &guarded<&memfs_remove_dle>::call;
  table.AttachToDLE = &guarded<&memfs_attach>::call;
  table.DetachDLE = &guarded<&memfs_detach>::call;
  table.CloseSys = &guarded<&memfs_close_sys>::call;
  // walking
  table.ChangeDir = &guarded<&memfs_change_dir>::call;
  table.ChangeIntoDDB = &guarded<&memfs_change_into_ddb>::call;
  table.ChangeDirUp = &guarded<&memfs_change_dir_up>::call;
  table.GetCurrentPath = &guarded<&memfs_get_current_path>::call;
  table.GetCurrentDDB = &guarded<&memfs_get_current_ddb>::call;
  table.FindFirstObj = &guarded<&memfs_find_first>::call;
  table.FindNextObj = &guarded<&memfs_find_next>::call;
  table.FindObjClose = &guarded<&memfs_find_close>::call;
  // objects
  table.OpenObj = &guarded<&memfs_open>::call;
  table.ReadObj = &guarded<&memfs_read>::call;
  table.CloseObj = &guarded<&memfs_close_obj>::call;
  table.CreateObj = &guarded<&memfs_create_obj>::call;
  table.WriteObj = &guarded<&memfs_write>::call;
  table.DeleteObj = &guarded<&memfs_delete_obj>::call;
  // blocks of the generic layout
  table.ReleaseBlk = &guarded<&memfs_release_blk>::call;
  table.CreateDBLK = GEN_CreateDBLK;
  table.IsBlkComplete = GEN_IsBlkComplete;
  table.DupBlk = GEN_DupBlk;
  table.GetOSName = GEN_GetOSName;
  table.SizeofName = GEN_SizeofName;
  table.SizeofOSName = GEN_SizeofOSName;
  table.GetDisplaySizeDBLK = GEN_GetDisplaySizeDBLK;
  table.GetObjTypeDBLK = GEN_GetObjTypeDBLK;
  table.GetActualSizeDBLK = GEN_GetActualSizeDBLK;
  table.GetCDateDBLK = GEN_GetCdateDBLK;
  table.GetMDateDBLK = GEN_GetMdateDBLK;
  table.ModADateDBLK = GEN_ModAdateDBLK;
  table.ModBDateDBLK = GEN_ModBdateDBLK;
  table.ModAttrib1DBLK = GEN_ModAttrib1DBLK;
  table.ModAttrib2DBLK = GEN_ModAttrib2DBLK;
  *out = table;
  *index = static_cast<int>(MEMFS_INDEX);
  return 1;
}
