// Attaching: the handle starts at the root of the tree. Letting go frees
// what the handle kept; the layer closes the handle itself afterwards.
#include <new>

#include "memfs.h"

namespace memfs {

HandleState* memfs_state(FSYS_HAND_STRUCT* fsh) {
  return fsh == nullptr ? nullptr : static_cast<HandleState*>(fsh->fsysData);
}

FS_STATUS memfs_attach(FSYS_HAND_STRUCT* fsh, GENERIC_DLE* dle, wchar_t*, wchar_t*) {
  if (fsh == nullptr || dle == nullptr) return FS_ERR_BAD_PARAMETER;
  delete memfs_state(fsh);  // attaching again starts over
  auto* state = new (std::nothrow) HandleState;
  fsh->fsysData = state;
  if (state == nullptr) return FS_ERR_NO_MEMORY;
  state->path.push_back({memfs_root(), 0, L"*"});
  return FS_SUCCESS;
}

FS_STATUS memfs_detach(FSYS_HAND_STRUCT* fsh, void*, void**) {
  if (fsh == nullptr) return FS_ERR_BAD_PARAMETER;
  delete memfs_state(fsh);
  fsh->fsysData = nullptr;
  return FS_SUCCESS;
}

FS_STATUS memfs_close_sys(FSYS_HAND_STRUCT* fsh) { return memfs_detach(fsh, nullptr, nullptr); }

}  // namespace memfs
