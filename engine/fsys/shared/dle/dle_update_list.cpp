// Drive finding: DLE_UpdateList (the find_order passes) and
// DLE_UpdateSingleDriveType (one file system).

#include <qbfsys/dle.h>
#include <qbfsys/fs_init.h>
#include <qbfsys/registry.h>

#include "fs_passes.h"
#include "fs_print.h"
#include "fs_registry_access.h"

namespace {

bool has_find_drives(unsigned i) {
  return fsys::object_of(i) != nullptr || fsys::table_of(i).FindDrives != nullptr;
}

FS_STATUS find_drives(unsigned i, HEAD_DLE* head, QB_CFG* cfg) {
  if (FS_DleBase* object = fsys::object_of(i)) return object->FindDrives(head, cfg);
  return fsys::table_of(i).FindDrives(head, cfg);
}

}  // namespace

FS_STATUS DLE_UpdateList(HEAD_DLE* head, QB_CFG* cfg) {
  FS_BlockWaitForInitThreads(head, 0);
  if (head != nullptr) head->update_status = 0;
  bool scan = cfg != nullptr && cfg->drive_scan_flag != 0;
  auto eligible = [scan](unsigned i) { return scan || (i != 9 && i != 12); };
  fsys::run_passes(find_order, eligible, [&](unsigned i) {
    FS_STATUS status;
    if (cfg == nullptr || head == nullptr) {
      fsys::print_bad_parameter(2387);
      status = FS_ERR_BAD_PARAMETER;
    } else if (!has_find_drives(i)) {
      return false;
    } else {
      status = find_drives(i, head, cfg);
    }
    if (status != FS_SUCCESS) {
      QB_Zprintf(0,
                 L"Status 0x%08X returned calling FindDrives for file system %d in DLE_UpdateList",
                 status, static_cast<int>(i));
    }
    return false;  // a failing file system does not stop the others
  });
  return FS_SUCCESS;
}

FS_STATUS DLE_UpdateSingleDriveType(HEAD_DLE* head, QB_CFG* cfg, unsigned char fsIndex) {
  if (head == nullptr || cfg == nullptr || fsIndex >= FS_MAX_FSYS) {
    fsys::print_bad_parameter(2387);
    return FS_ERR_BAD_PARAMETER;
  }
  if (!has_find_drives(fsIndex)) return FS_ERR_UNIMPLEMENTED;
  return find_drives(fsIndex, head, cfg);
}
