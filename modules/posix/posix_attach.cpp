// Attaching a handle to one of the module's elements, and letting go of it.
//
// Attaching a file-system element opens its directory now (a file system
// may have gone since the tree was built); that descriptor is the root
// every later call works below. Attaching the machine element needs
// nothing, and such a handle can neither walk nor read. A directory that
// cannot be opened is reported through the handle's last error
// (FS_STATUS_EXT_ERROR): the layer keeps the handle so the caller can read
// why.
//
// Letting go finishes what a restore left for the end: the directories it
// made get their permissions and times, deepest first.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <string>

#include <qbfsys/handles.h>
#include <qbhost/strings.h>

#include "posix_dle_data.h"
#include "posix_fsys.h"
#include "posix_handle_state.h"
#include "posix_object.h"

namespace qbposix {
namespace {

void free_state(FSYS_HAND_STRUCT* fsh) {
  posix_object_drop_own(fsh);
  auto* state = static_cast<PosixHandleState*>(fsh->fsysData);
  if (state != nullptr) {
    posix_finish_deferred(*state);
    posix_close_levels(*state);
  }
  delete state;
  fsh->fsysData = nullptr;
}

}  // namespace

FS_STATUS posix_attach_to_dle(FSYS_HAND_STRUCT* fsh, GENERIC_DLE* dle, wchar_t*, wchar_t*) {
  if (fsh == nullptr || dle == nullptr) return FS_ERR_BAD_PARAMETER;
  PosixDleData* data = posix_dle_data_of(dle);
  if (data == nullptr) return FS_ERR_NOT_SUPPORTED;
  int root = -1;
  if (!data->path.empty()) {
    // The root as configured may itself be reached through a link.
    root = open(data->path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOATIME);
    if (root < 0 && errno == EPERM)
      root = open(data->path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (root < 0) {
      int error = errno;
      wcstring message;
      std::string text = data->path + ": " + std::strerror(error);
      message.assign(text.data(), text.size(), cstring::UTF8);
      return FS_SetLastError(fsh, error, FS_EXT_ERR_ACTION_SKIP, 0, message.c_str());
    }
  }
  free_state(fsh);  // a re-attach replaces what an earlier binding kept
  auto* state = new (std::nothrow) PosixHandleState();
  if (state == nullptr) {
    if (root >= 0) close(root);
    return FS_ERR_NO_MEMORY;
  }
  state->root = data->path;
  struct stat st {};
  if (root >= 0 && fstat(root, &st) == 0) state->root_dev = st.st_dev;
  state->privileged = geteuid() == 0;
  if (root >= 0) {
    PosixLevel level;
    level.fd = root;
    state->levels.push_back(std::move(level));
  }
  fsh->fsysData = state;
  return FS_SUCCESS;
}

FS_STATUS posix_detach_dle(FSYS_HAND_STRUCT* fsh, void*, void**) {
  if (fsh == nullptr) return FS_ERR_BAD_PARAMETER;
  free_state(fsh);
  return FS_SUCCESS;
}

FS_STATUS posix_close_sys(FSYS_HAND_STRUCT* fsh) {
  if (fsh != nullptr) free_state(fsh);
  return FS_SUCCESS;
}

}  // namespace qbposix
