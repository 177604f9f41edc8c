// The entry point "GetTable": one table, for MEMFS_INDEX. Slots left null
// are operations the module does not offer; the layer answers those itself.
// Block slots use the generic file system's functions: the module's blocks
// have the generic layout.
#include "memfs.h"

namespace memfs {

FS_STATUS memfs_init(QB_CFG*) { return FS_SUCCESS; }
FS_STATUS memfs_deinit() { return FS_SUCCESS; }

}  // namespace memfs

FS_MODULE_EXPORT int GetInterfaceVersion() { return FS_MODULE_INTERFACE_VERSION; }

FS_MODULE_EXPORT int GetTable(int n, unsigned int, _FUNC_LIST* out, int* index) {
  using namespace memfs;
  if (n != 0 || out == nullptr || index == nullptr) return 0;
  _FUNC_LIST table{};
  table.InitFileSys = memfs_init;
  table.DeInitFileSys = memfs_deinit;
  table.FindDrives = memfs_find_drives;
  table.RemoveDLE = memfs_remove_dle;
  table.AttachToDLE = memfs_attach;
  table.DetachDLE = memfs_detach;
  table.CloseSys = memfs_close_sys;
  table.ChangeDir = memfs_change_dir;
  table.ChangeIntoDDB = memfs_change_into_ddb;
  table.ChangeDirUp = memfs_change_dir_up;
  table.GetCurrentPath = memfs_get_current_path;
  table.FindFirstObj = memfs_find_first;
  table.FindNextObj = memfs_find_next;
  table.FindObjClose = memfs_find_close;
  table.OpenObj = memfs_open;
  table.ReadObj = memfs_read;
  table.CloseObj = memfs_close_obj;
  table.ReleaseBlk = memfs_release_blk;
  table.CreateDBLK = GEN_CreateDBLK;
  table.IsBlkComplete = GEN_IsBlkComplete;
  table.DupBlk = GEN_DupBlk;
  table.GetOSName = GEN_GetOSName;
  table.SizeofName = GEN_SizeofName;
  table.SizeofOSName = GEN_SizeofOSName;
  table.GetDisplaySizeDBLK = GEN_GetDisplaySizeDBLK;
  table.GetObjTypeDBLK = GEN_GetObjTypeDBLK;
  table.GetActualSizeDBLK = GEN_GetActualSizeDBLK;
  *out = table;
  *index = static_cast<int>(MEMFS_INDEX);
  return 1;
}
