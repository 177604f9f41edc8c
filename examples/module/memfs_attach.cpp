// Attaching: the handle starts at the root of the tree. Letting go frees
// what the handle kept; the layer closes the handle itself afterwards.
#include <new>
#include <string>

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
  state->path.push_back({memfs_root(), 0, L"*", {}});
  return FS_SUCCESS;
}

// A job that changed the tree (a restore) learns here, from the status of
// its detach, whether the change reached the image: at shut-down the
// layer has no caller left to tell. A failed save is FS_STATUS_EXT_ERROR
// with the reason as the handle's message; the layer then keeps the handle
// attached for the caller to read it, and the caller's second detach finds
// the handle's state gone and only lets go.
FS_STATUS memfs_detach(FSYS_HAND_STRUCT* fsh, void*, void**) {
  if (fsh == nullptr) return FS_ERR_BAD_PARAMETER;
  HandleState* state = memfs_state(fsh);
  if (state == nullptr) return FS_SUCCESS;  // detached before: saved, or told why not
  delete state;
  fsh->fsysData = nullptr;
  std::string why;
  if (memfs_save_if_changed(why)) return FS_SUCCESS;
  std::wstring const text(why.begin(), why.end());
  return FS_SetLastError(fsh, static_cast<int>(FS_ERR_NOT_SUPPORTED), FS_EXT_ERR_ACTION_NONE, 0, text.c_str());
}

// Closing runs after the detach (which saved): it only frees what is left.
FS_STATUS memfs_close_sys(FSYS_HAND_STRUCT* fsh) {
  if (fsh == nullptr) return FS_ERR_BAD_PARAMETER;
  delete memfs_state(fsh);
  fsh->fsysData = nullptr;
  return FS_SUCCESS;
}

}  // namespace memfs
