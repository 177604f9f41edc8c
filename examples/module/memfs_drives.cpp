// Finding drives: the tree is one DLE at the top of the layer's tree. A
// second search finds it there already and adds nothing.
#include "memfs.h"

namespace memfs {

FS_STATUS memfs_find_drives(HEAD_DLE* head, QB_CFG*) {
  if (head == nullptr) return FS_ERR_BAD_PARAMETER;
  GENERIC_DLE* found = nullptr;
  if (DLE_FindByName(head, MEMFS_DEVICE_NAME, static_cast<short>(MEMFS_INDEX), &found, nullptr) ==
      FS_SUCCESS)
    return FS_SUCCESS;
  return DLE_Create(head, nullptr, MEMFS_DEVICE_NAME, MEMFS_INDEX, MEMFS_SUBTYPE, MEMFS_DELIMITER,
                    nullptr);
}

// The DLE holds nothing of the module's own: the generic removal frees it.
FS_STATUS memfs_remove_dle(GENERIC_DLE* dle) { return GEN_RemoveDLE(dle); }

}  // namespace memfs
