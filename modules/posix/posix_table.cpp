// The module's entry point "GetTable" and its start-up and shut-down.
//
// One table, for index 7: start-up, drives, removal, machine name, attach,
// detach and close. Walking and data slots stay empty until the module can
// walk and read; the layer answers for empty slots itself.
#include <qbfsys/module.h>

#include "posix_fsys.h"

namespace qbposix {

// Nothing to prepare: the module keeps no state between calls; every drive
// search reads the configuration and the mount table afresh.
FS_STATUS PosixInitFileSys(QB_CFG*) { return FS_SUCCESS; }

FS_STATUS PosixDeInitFileSys() { return FS_SUCCESS; }

}  // namespace qbposix

FS_MODULE_EXPORT int GetTable(int n, unsigned int, _FUNC_LIST* out, int* index) {
  if (n != 0 || out == nullptr || index == nullptr) return 0;
  _FUNC_LIST table{};
  table.InitFileSys = &qbposix::PosixInitFileSys;
  table.DeInitFileSys = &qbposix::PosixDeInitFileSys;
  table.FindDrives = &qbposix::PosixFindDrives;
  table.RemoveDLE = &qbposix::PosixRemoveDLE;
  table.GetMachineName = &qbposix::PosixGetMachineName;
  table.AttachToDLE = &qbposix::PosixAttachToDLE;
  table.DetachDLE = &qbposix::PosixDetachDLE;
  table.CloseSys = &qbposix::PosixCloseSys;
  *out = table;
  *index = static_cast<int>(qbposix::FS_POSIX_INDEX);
  return 1;
}
