// The module's entry point "GetTable" and its start-up and shut-down.
//
// One table, for index 7. Block slots that the generic file system answers
// for blocks of its layout are filled with the layer's GEN functions
// (resolved from the host process at load): every block this module makes
// or restores from has that layout.
#include <new>

#include <qbfsys/gen.h>
#include <qbfsys/module.h>

#include "posix_fsys.h"

namespace qbposix {
namespace {

// Every slot of the module is entered through this guard: the module uses
// the standard containers, and no exception may reach the layer, which is
// not built to unwind through a table call. Running out of memory is
// FS_ERR_NO_MEMORY; any other exception (a length beyond what a container
// holds) is input the module cannot take, FS_ERR_BAD_PARAMETER.
template <auto Slot>
struct guarded;
template <typename... Args, FS_STATUS (*Slot)(Args...)>
struct guarded<Slot> {
  static FS_STATUS call(Args... args) noexcept {
    try {
      return Slot(args...);
    } catch (std::bad_alloc const&) {
      return FS_ERR_NO_MEMORY;
    } catch (...) {
      return FS_ERR_BAD_PARAMETER;
    }
  }
};

}  // namespace

// Nothing to prepare: the module keeps no state between calls; every drive
// search reads the configuration and the mount table afresh.
FS_STATUS posix_init_file_sys(QB_CFG*) { return FS_SUCCESS; }

FS_STATUS posix_deinit_file_sys() { return FS_SUCCESS; }

}  // namespace qbposix

FS_MODULE_EXPORT int GetInterfaceVersion() { return FS_MODULE_INTERFACE_VERSION; }

FS_MODULE_EXPORT int GetTable(int n, unsigned int, _FUNC_LIST* out, int* index) {
  using namespace qbposix;
  if (n != 0 || out == nullptr || index == nullptr) return 0;
  _FUNC_LIST table{};
  table.InitFileSys = &guarded<&posix_init_file_sys>::call;
  table.DeInitFileSys = &guarded<&posix_deinit_file_sys>::call;
  table.FindDrives = &guarded<&posix_find_drives>::call;
  table.RemoveDLE = &guarded<&posix_remove_dle>::call;
  table.GetMachineName = &guarded<&posix_get_machine_name>::call;
  table.AttachToDLE = &guarded<&posix_attach_to_dle>::call;
  table.DetachDLE = &guarded<&posix_detach_dle>::call;
  table.CloseSys = &guarded<&posix_close_sys>::call;
  // walking
  table.ChangeDir = &guarded<&posix_change_dir>::call;
  table.ChangeDirUp = &guarded<&posix_change_dir_up>::call;
  table.ChangeIntoDDB = &guarded<&posix_change_into_ddb>::call;
  table.GetCurrentPath = &guarded<&posix_get_current_path>::call;
  table.GetCurrentDDB = &guarded<&posix_get_current_ddb>::call;
  table.FindFirstObj = &guarded<&posix_find_first_obj>::call;
  table.FindNextObj = &guarded<&posix_find_next_obj>::call;
  table.FindObjClose = &guarded<&posix_find_obj_close>::call;
  // objects
  table.CreateObj = &guarded<&posix_create_obj>::call;
  table.OpenObj = &guarded<&posix_open_obj>::call;
  table.ReadObj = &guarded<&posix_read_obj>::call;
  table.WriteObj = &guarded<&posix_write_obj>::call;
  table.CloseObj = &guarded<&posix_close_obj>::call;
  table.DeleteObj = &guarded<&posix_delete_obj>::call;
  // blocks of the generic layout
  table.ReleaseBlk = &guarded<&posix_release_blk>::call;
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
