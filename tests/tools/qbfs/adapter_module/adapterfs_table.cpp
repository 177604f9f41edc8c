// The entry point "GetTable". The table holds what starts the module and
// finds its element, and OpenSys; nothing else. OpenSys gives every new
// handle an adapter object, which the handle owns from then on (FS_FshGen's
// CloseSys deletes it when the handle is destroyed).
#include <new>

#include "adapterfs.h"

namespace adapterfs {
namespace {

FS_STATUS init(QB_CFG*) { return FS_SUCCESS; }
FS_STATUS deinit() { return FS_SUCCESS; }

// The tree is one element at the top of the layer's tree; a second search
// finds it there already and adds nothing.
FS_STATUS find_drives(HEAD_DLE* head, QB_CFG*) {
  if (head == nullptr) return FS_ERR_BAD_PARAMETER;
  GENERIC_DLE* found = nullptr;
  if (DLE_FindByName(head, ADAPTERFS_DEVICE_NAME, static_cast<short>(ADAPTERFS_INDEX), &found, nullptr) ==
      FS_SUCCESS)
    return FS_SUCCESS;
  return DLE_Create(head, nullptr, ADAPTERFS_DEVICE_NAME, ADAPTERFS_INDEX, ADAPTERFS_SUBTYPE,
                    ADAPTERFS_DELIMITER, nullptr);
}

// The element holds nothing of the module's own: the generic removal frees it.
FS_STATUS remove_dle(GENERIC_DLE* dle) { return GEN_RemoveDLE(dle); }

// An adapter already on the handle keeps serving it: replacing it would
// leak it.
FS_STATUS open_sys(FSYS_HAND_STRUCT* fsh) {
  if (fsh == nullptr) return FS_ERR_BAD_PARAMETER;
  if (fsh->adapter != nullptr) return FS_SUCCESS;
  fsh->adapter = new (std::nothrow) Adapter;
  return fsh->adapter == nullptr ? FS_ERR_NO_MEMORY : FS_SUCCESS;
}

}  // namespace
}  // namespace adapterfs

FS_MODULE_EXPORT int GetInterfaceVersion() { return FS_MODULE_INTERFACE_VERSION; }

FS_MODULE_EXPORT int GetTable(int n, unsigned int, _FUNC_LIST* out, int* index) {
  using namespace adapterfs;
  if (n != 0 || out == nullptr || index == nullptr) return 0;
  _FUNC_LIST table{};
  table.InitFileSys = init;
  table.DeInitFileSys = deinit;
  table.FindDrives = find_drives;
  table.RemoveDLE = remove_dle;
  table.OpenSys = open_sys;
  *out = table;
  *index = static_cast<int>(ADAPTERFS_INDEX);
  return 1;
}
