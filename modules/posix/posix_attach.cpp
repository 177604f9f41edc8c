// Attaching a handle to one of the module's elements, and letting go of it.
//
// Attaching a file-system element checks that its directory can be opened
// now (a file system may have gone since the tree was built) and keeps its
// path in the handle's per-file-system state; attaching the machine element
// needs nothing. A directory that cannot be opened is reported through the
// handle's last error (FS_STATUS_EXT_ERROR): the layer keeps the handle so
// the caller can read why.
#include <dirent.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <string>

#include <qbfsys/handles.h>
#include <qbhost/strings.h>

#include "posix_dle_data.h"
#include "posix_fsys.h"

namespace qbposix {
namespace {

void free_state(FSYS_HAND_STRUCT* fsh) {
  delete static_cast<PosixHandleState*>(fsh->fsysData);
  fsh->fsysData = nullptr;
}

}  // namespace

FS_STATUS PosixAttachToDLE(FSYS_HAND_STRUCT* fsh, GENERIC_DLE* dle, wchar_t*, wchar_t*) {
  if (fsh == nullptr || dle == nullptr) return FS_ERR_BAD_PARAMETER;
  PosixDleData* data = PosixDleDataOf(dle);
  if (data == nullptr) return FS_ERR_NOT_SUPPORTED;
  if (!data->path.empty()) {
    DIR* dir = opendir(data->path.c_str());
    if (dir == nullptr) {
      int error = errno;
      wcstring message;
      std::string text = data->path + ": " + std::strerror(error);
      message.assign(text.data(), text.size(), cstring::UTF8);
      return FS_SetLastError(fsh, error, FS_EXT_ERR_ACTION_SKIP, 0, message.c_str());
    }
    closedir(dir);
  }
  free_state(fsh);  // a re-attach replaces what an earlier binding kept
  auto* state = new (std::nothrow) PosixHandleState{data->path};
  if (state == nullptr) return FS_ERR_NO_MEMORY;
  fsh->fsysData = state;
  return FS_SUCCESS;
}

FS_STATUS PosixDetachDLE(FSYS_HAND_STRUCT* fsh, void*, void**) {
  if (fsh == nullptr) return FS_ERR_BAD_PARAMETER;
  free_state(fsh);
  return FS_SUCCESS;
}

FS_STATUS PosixCloseSys(FSYS_HAND_STRUCT* fsh) {
  if (fsh != nullptr) free_state(fsh);
  return FS_SUCCESS;
}

}  // namespace qbposix
