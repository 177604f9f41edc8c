// Moving through the directories of an attached element: ChangeDir,
// ChangeIntoDDB, ChangeDirUp and GetCurrentPath.
//
// A change of directory keeps the levels the old and new paths share and
// opens only the new ones, each relative to the one above; the new levels
// are opened before anything is closed, so a path that cannot be entered
// leaves the handle where it was. Only the deepest POSIX_OPEN_LEVELS of
// them stay open (posix_handle_state.h), so a path of any depth can be
// entered. A directory on which another file system
// is mounted is not entered (FS_STATUS_NONE, printed): that file system is
// an element of its own, walked through its own handle, and a walk of "/"
// must not wander into /proc.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <utility>

#include "posix_dblk.h"
#include "posix_fsys.h"
#include "posix_name_codec.h"

namespace qbposix {
namespace {

constexpr short kWide = static_cast<short>(sizeof(wchar_t));
constexpr std::size_t kRootRunLength = 1;  // characters of the root's run

// Splits the layer's path form (terminated components, `size` bytes; one
// empty component is the root) into byte names.
bool split_run(wchar_t const* path, short size, std::vector<std::string>& out) {
  out.clear();
  if (path == nullptr || size < kWide || size % kWide != 0) return false;
  std::size_t const count = static_cast<std::size_t>(size / kWide);
  if (path[count - 1] != L'\0') return false;
  if (count == kRootRunLength) return true;  // one empty component: the root
  std::size_t start = 0;
  for (std::size_t i = 0; i < count; ++i) {
    if (path[i] != L'\0') continue;
    std::string name;
    if (i == start || !posix_encode_name(path + start, i - start, name) ||
        name.find('/') != std::string::npos || name == "." || name == "..")
      return false;
    out.push_back(std::move(name));
    start = i + 1;
  }
  return true;
}

// The display path of `name` below the levels kept and those opened so far.
std::wstring shown_below(PosixHandleState const& state, std::vector<PosixLevel> const& fresh,
                         std::string const& name) {
  std::wstring shown = posix_display_path(state, "");
  if (shown == L"/") shown.clear();
  for (PosixLevel const& level : fresh) shown += L"/" + posix_decode_name(level.name);
  return shown + L"/" + posix_decode_name(name);
}

void close_all(std::vector<PosixLevel>& fresh) {
  for (PosixLevel const& level : fresh)
    if (level.fd >= 0) close(level.fd);
  fresh.clear();
}

constexpr wchar_t const* kMountPointNote =
    L"another file system is mounted here; it is an element of its own and is not walked";

// Enters `names` below the current level `keep` (levels beyond it are
// dropped once the new ones are open). Each new level is checked for a
// file system of its own, unless `listed` says its listing checked it.
FS_STATUS enter(FSYS_HAND_STRUCT* fsh, PosixHandleState& state, std::size_t keep,
                std::vector<std::string> const& names, bool listed = false) {
  std::vector<PosixLevel> fresh;
  int base = state.levels[keep].fd;
  for (std::string const& name : names) {
    int const fd = posix_open_level(base, name.c_str());
    struct stat st {};
    if (fd < 0) {
      int const error = errno;
      std::wstring const shown = shown_below(state, fresh, name);
      close_all(fresh);
      return posix_report(fsh, error, shown, L"directory could not be entered");
    }
    if (!listed && fstat(fd, &st) == 0 && st.st_dev != state.root_dev) {
      posix_note(0, shown_below(state, fresh, name), kMountPointNote);
      close(fd);
      close_all(fresh);
      return FS_STATUS_NONE;
    }
    PosixLevel level;
    level.name = name;
    level.fd = fd;
    fresh.push_back(std::move(level));
    base = fd;
    // A long path keeps only its deepest levels open while it is entered.
    if (fresh.size() > POSIX_OPEN_LEVELS + 1) {
      PosixLevel& above = fresh[fresh.size() - POSIX_OPEN_LEVELS - 2];
      if (fstat(above.fd, &st) == 0) {
        above.dev = st.st_dev;
        above.ino = st.st_ino;
        close(above.fd);
        above.fd = -1;
      }
    }
  }
  // Level `keep` is open (the caller's choice), so none is opened again here.
  while (state.levels.size() > keep + 1) {
    posix_close_level(state.levels.back());
    state.levels.pop_back();
  }
  state.close_from = std::max(POSIX_FIRST_BELOW_ROOT, std::min(state.close_from, keep));
  for (PosixLevel& level : fresh) state.levels.push_back(std::move(level));
  posix_trim_levels(state);
  return FS_SUCCESS;
}

}  // namespace

FS_STATUS posix_change_dir(FSYS_HAND_STRUCT* fsh, wchar_t* path, short size) {
  PosixHandleState* state = posix_state(fsh);
  std::vector<std::string> names;
  if (state == nullptr || !split_run(path, size, names)) return FS_ERR_BAD_PARAMETER;
  std::size_t keep = 0;  // levels below the root that both paths share
  while (keep < names.size() && keep + 1 < state->levels.size() &&
         state->levels[keep + 1].name == names[keep])
    ++keep;
  if (state->levels[keep].fd < 0) keep = 0;  // closed: the path is entered from the root
  return enter(fsh, *state, keep, std::vector<std::string>(names.begin() + keep, names.end()));
}

FS_STATUS posix_change_into_ddb(FSYS_HAND_STRUCT* fsh, DBLK* blk) {
  PosixHandleState* state = posix_state(fsh);
  std::string name;
  if (state == nullptr || blk == nullptr || blk->blk_type != DBLK_KIND_DDB ||
      !posix_blk_name(blk, name))
    return FS_ERR_BAD_PARAMETER;
  // A block of the current directory's listing says whether the directory
  // was a mount point when listed; any other block is checked on entering.
  bool const listed = blk->os_info == &state->levels.back().found;
  if (listed && (blk->area.gen.attrib2 & POSIX_ATTR2_MOUNT_POINT) != 0) {
    posix_note(0, posix_display_path(*state, name), kMountPointNote);
    return FS_STATUS_NONE;
  }
  return enter(fsh, *state, state->levels.size() - 1, {name}, listed);
}

FS_STATUS posix_change_dir_up(FSYS_HAND_STRUCT* fsh) {
  PosixHandleState* state = posix_state(fsh);
  if (state == nullptr) return FS_ERR_BAD_PARAMETER;
  if (state->levels.size() <= POSIX_FIRST_BELOW_ROOT) return FS_ERR_NOT_SUPPORTED;  // at the root
  if (!posix_pop_level(*state))
    return posix_report(fsh, errno, posix_display_path(*state, ""), L"directory could not be entered again");
  return FS_SUCCESS;
}

FS_STATUS posix_get_current_path(FSYS_HAND_STRUCT* fsh, wchar_t* path, short* size) {
  PosixHandleState* state = posix_state(fsh);
  if (state == nullptr || size == nullptr || (path == nullptr && *size > 0))
    return FS_ERR_BAD_PARAMETER;
  std::wstring run;
  for (std::size_t i = POSIX_FIRST_BELOW_ROOT; i < state->levels.size(); ++i) {
    run += posix_decode_name(state->levels[i].name);
    run.push_back(L'\0');
  }
  if (run.empty()) run.push_back(L'\0');
  std::size_t const bytes = run.size() * sizeof(wchar_t);
  if (bytes > static_cast<std::size_t>(SHRT_MAX)) return FS_ERR_NAME_TOO_LONG;
  bool const fits = *size >= 0 && bytes <= static_cast<std::size_t>(*size);
  if (fits) std::memcpy(path, run.data(), bytes);
  *size = static_cast<short>(bytes);
  return fits ? FS_SUCCESS : FS_ERR_OBJ_NO_DATA;
}

}  // namespace qbposix
