// The per-handle state: levels, display paths, reports, and finishing the
// directories a restore made.
#include "posix_handle_state.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <qbfsys/handles.h>
#include <qbhost/zprintf.h>

#include "posix_metadata.h"
#include "posix_name_codec.h"

namespace qbposix {

PosixHandleState* posix_state(FSYS_HAND_STRUCT* fsh) {
  if (fsh == nullptr || fsh->fsysData == nullptr) return nullptr;
  auto* state = static_cast<PosixHandleState*>(fsh->fsysData);
  return state->levels.empty() ? nullptr : state;
}

PosixDirHold::~PosixDirHold() { close(fd); }

std::shared_ptr<PosixDirHold> posix_hold_current(PosixHandleState& state) {
  PosixLevel& level = state.levels.back();
  if (level.hold == nullptr) level.hold = std::make_shared<PosixDirHold>(level.fd);
  return level.hold;
}

void posix_close_level(PosixLevel& level) {
  if (level.made_fd >= 0) close(level.made_fd);
  if (level.hold != nullptr)
    level.hold.reset();
  else if (level.fd >= 0)
    close(level.fd);
  level.made_fd = level.fd = -1;
}

void posix_close_levels(PosixHandleState& state) {
  for (PosixLevel& level : state.levels) posix_close_level(level);
  state.levels.clear();
}

void posix_keep_made_file(PosixHandleState& state, int fd, std::string const& name) {
  PosixLevel& level = state.levels.back();
  if (level.made_fd >= 0) close(level.made_fd);
  level.made_fd = fd;
  level.made_name = name;
}

int posix_take_made_file(PosixHandleState& state, std::string const& name) {
  PosixLevel& level = state.levels.back();
  if (level.made_fd < 0 || level.made_name != name) return -1;
  int const fd = level.made_fd;
  level.made_fd = -1;
  return fd;
}

void posix_forget_made_file(PosixHandleState& state, std::string const& name) {
  int const fd = posix_take_made_file(state, name);
  if (fd >= 0) close(fd);
}

std::vector<std::string> posix_current_components(PosixHandleState const& state) {
  std::vector<std::string> out;
  for (std::size_t i = POSIX_FIRST_BELOW_ROOT; i < state.levels.size(); ++i)
    out.push_back(state.levels[i].name);
  return out;
}

std::wstring posix_display_path(PosixHandleState const& state, std::string const& name) {
  std::wstring out;
  for (std::size_t i = POSIX_FIRST_BELOW_ROOT; i < state.levels.size(); ++i)
    out += L"/" + posix_decode_name(state.levels[i].name);
  if (!name.empty()) out += L"/" + posix_decode_name(name);
  return out.empty() ? L"/" : out;
}

int posix_open_level(int base, char const* name) {
  constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
  int const fd = openat(base, name, kFlags | O_NOATIME);
  return fd >= 0 || errno != EPERM ? fd : openat(base, name, kFlags);
}

int posix_open_components(int base, std::vector<std::string> const& components) {
  int fd = fcntl(base, F_DUPFD_CLOEXEC, 0);
  for (std::string const& c : components) {
    if (fd < 0) return -1;
    int const next = openat(fd, c.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    int const saved = errno;
    close(fd);
    errno = saved;
    fd = next;
  }
  return fd;
}

bool posix_split_relative(std::string const& path, std::vector<std::string>& components) {
  components.clear();
  if (path.empty() || path.front() == '/') return false;
  std::size_t at = 0;
  while (at <= path.size()) {
    std::size_t const slash = std::min(path.find('/', at), path.size());
    std::string part = path.substr(at, slash - at);
    if (part.empty() || part == "." || part == "..") return false;
    components.push_back(std::move(part));
    at = slash + 1;
  }
  return true;
}

void posix_finish_deferred(PosixHandleState& state) {
  if (state.levels.empty()) return;
  int const root = state.levels.front().fd;
  // The directories along the path reopened last stay open: the list is in
  // the order of the walk that made it, so the next directory mostly shares
  // all but its last name with the one before, and only what differs is
  // opened (one name at a time, never following a link).
  std::vector<std::string> open_path;
  std::vector<int> open_fds;
  auto close_to = [&](std::size_t depth) {
    while (open_fds.size() > depth) {
      close(open_fds.back());
      open_fds.pop_back();
      open_path.pop_back();
    }
  };
  for (auto it = state.deferred.rbegin(); it != state.deferred.rend(); ++it) {
    std::size_t common = 0;
    while (common < open_path.size() && common < it->path.size() &&
           open_path[common] == it->path[common])
      ++common;
    close_to(common);
    int error = 0;
    for (std::size_t k = common; k < it->path.size() && error == 0; ++k) {
      int const base = open_fds.empty() ? root : open_fds.back();
      int const fd =
          openat(base, it->path[k].c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
      if (fd < 0) {
        error = errno;
        break;
      }
      open_fds.push_back(fd);
      open_path.push_back(it->path[k]);
    }
    std::wstring shown;
    for (std::string const& c : it->path) shown += L"/" + posix_decode_name(c);
    if (error != 0 || open_fds.size() != it->path.size()) {
      posix_note(error, shown, L"directory could not be reopened to set its metadata");
      continue;
    }
    int const fd = open_fds.empty() ? root : open_fds.back();
    wchar_t const* step = nullptr;
    error = posix_apply_metadata(fd, "", fd, it->info, it->xattrs, state.privileged, &step);
    if (error != 0) posix_note(error, shown, step);
  }
  close_to(0);
  state.deferred.clear();
}

FS_STATUS posix_report(FSYS_HAND_STRUCT* fsh, int error, std::wstring const& path,
                       wchar_t const* what, FS_EXT_ERR_ACTION action) {
  std::wstring text = path + L": " + what;
  if (error != 0) {
    std::string const reason = std::strerror(error);
    text += L" (" + std::wstring(reason.begin(), reason.end()) + L")";
  }
  QB_Zprintf(0, L"posix: %ls", text.c_str());
  return FS_SetLastError(fsh, error, action, 0, text.c_str());
}

void posix_note(int error, std::wstring const& path, std::wstring const& what) {
  std::wstring text = path + L": " + what;
  if (error != 0) {
    std::string const reason = std::strerror(error);
    text += L" (" + std::wstring(reason.begin(), reason.end()) + L")";
  }
  QB_Zprintf(0, L"posix: %ls", text.c_str());
}

}  // namespace qbposix
