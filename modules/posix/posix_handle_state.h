// What an attached handle of the posix module keeps (FSYS_HAND_STRUCT::fsysData):
// the open directories from the attached root down to the current one, the
// listing in progress at each of them, the names of files with several
// links that this handle delivered, and the directories a restore still has
// to finish.
//
// Every directory is held open by descriptor and every object is reached
// relative to its directory's descriptor (openat, fstatat, mkdirat, ...), so
// no path handed to the kernel is longer than one name and paths longer than
// PATH_MAX work. One descriptor is held per level; a level's listing reads
// that same descriptor (getdents64; openat does not care where a
// directory's read position stands).
#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <qbfsys/dblk.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>

#include "posix_streams.h"

namespace qbposix {

// A level's directory descriptor once an object is restored in it: the
// level and the objects open in it share it, and the last to let go closes
// it, so an object outlives its level without a descriptor of its own.
struct PosixDirHold {
  explicit PosixDirHold(int descriptor) : fd(descriptor) {}
  ~PosixDirHold();
  PosixDirHold(PosixDirHold const&) = delete;
  PosixDirHold& operator=(PosixDirHold const&) = delete;
  int const fd;
};

// One directory of the current path; levels[0] is the attached root, and
// the path below the root starts at levels[POSIX_FIRST_BELOW_ROOT].
constexpr std::size_t POSIX_FIRST_BELOW_ROOT = 1;
struct PosixLevel {
  // A level owns descriptors: it is moved, never copied.
  PosixLevel() = default;
  PosixLevel(PosixLevel&&) = default;
  PosixLevel& operator=(PosixLevel&&) = default;
  PosixLevel(PosixLevel const&) = delete;
  PosixLevel& operator=(PosixLevel const&) = delete;

  std::string name;             // its name in the directory above (empty for the root)
  int fd = -1;                  // O_DIRECTORY descriptor, owned (through `hold` once set)
  std::shared_ptr<PosixDirHold> hold;  // set when an object is restored here
  bool listing = false;         // a find is in progress here
  bool read_from_start = true;  // the descriptor's read position is still at the start
  std::vector<char> entries;    // directory entries read and not yet looked at
  std::size_t entry_at = 0, entries_end = 0;
  std::wstring spec;      // what the listing looks for; empty: everything
  POSIX_OS_INFO found{};  // OS info of the object the listing found last
  // Restoring: the regular file CreateObj made here last, still open, for
  // the OpenObj that usually follows (-1 when there is none). Owned; closed
  // with the level.
  int made_fd = -1;
  std::string made_name;
};

// A directory made by the restore whose permissions, times and extended
// attributes are set only after its children were written: its own mode
// may forbid writing into it, and every child written changes its times.
struct PosixDeferredDir {
  std::vector<std::string> path;  // components below the root
  POSIX_OS_INFO info{};
  std::vector<PosixXattr> xattrs;
};

struct PosixHandleState {
  std::string root;                // the attached element's directory
  std::uint64_t root_dev = 0;      // the file system it lies on
  std::vector<PosixLevel> levels;  // root first; empty for the machine element
  bool privileged = false;         // running as root: owners and device nodes are restored

  // The current directory's OS info (GetCurrentDDB). Blocks point at this
  // or at their level's `found` until the next call that fills them.
  POSIX_OS_INFO current_info{};
  // Name elements this module put into caller blocks; one found in a block
  // again is released before the block is refilled.
  std::set<FS_NAME_Q_ELEM*> names;

  // Reading: the first path (below the root, '/'-joined bytes) of every
  // file with several links that was delivered, by (device, inode).
  std::map<std::pair<std::uint64_t, std::uint64_t>, std::string> first_links;

  // Restoring: directories waiting for their metadata, in creation order.
  std::vector<PosixDeferredDir> deferred;
};

// The handle's state, or null when the handle is not attached to a
// file-system element of this module.
PosixHandleState* posix_state(FSYS_HAND_STRUCT* fsh);

// Shares the current level's descriptor with an object restored in it.
std::shared_ptr<PosixDirHold> posix_hold_current(PosixHandleState& state);
// Closes what a level holds open: its descriptor (unless an object still
// shares it) and the file it made.
void posix_close_level(PosixLevel& level);
// Closes every level's descriptor.
void posix_close_levels(PosixHandleState& state);

// Keeps `fd`, a regular file just made as `name` in the current
// directory, for posix_take_made_file (one at a time; a former one is closed).
void posix_keep_made_file(PosixHandleState& state, int fd, std::string const& name);
// The descriptor kept for `name` in the current directory, handed over to
// the caller; -1 when none is kept. Only a file made in the directory the
// handle is still in is handed over: leaving a level closes its file.
int posix_take_made_file(PosixHandleState& state, std::string const& name);
// Forgets (closes) the file kept for `name` in the current directory.
void posix_forget_made_file(PosixHandleState& state, std::string const& name);

// The descriptor of the current directory (-1 when there is none).
inline int posix_current_fd(PosixHandleState const& state) {
  return state.levels.empty() ? -1 : state.levels.back().fd;
}

// The current directory's components below the root.
std::vector<std::string> posix_current_components(PosixHandleState const& state);

// "/a/b/name" for messages: the path below the root, decoded for display
// (bytes that are not UTF-8 appear as their escape characters).
std::wstring posix_display_path(PosixHandleState const& state, std::string const& name);

// Opens the directory `name` in `base` as a level: never following a
// symbolic link, and with O_NOATIME where the kernel allows it, so listing
// it leaves its access time alone. Returns the descriptor, or -1 with errno.
int posix_open_level(int base, char const* name);

// Opens the directory `components` below `base` one name at a time, never
// following a symbolic link. Returns the descriptor, or -1 with errno set.
int posix_open_components(int base, std::vector<std::string> const& components);

// Splits a '/'-joined path below the root into components; false when it is
// empty, absolute, or holds an empty, "." or ".." component.
bool posix_split_relative(std::string const& path, std::vector<std::string>& components);

// Applies the deferred directories' metadata, deepest (latest made) first;
// failures are printed with the directory's path and reason.
void posix_finish_deferred(PosixHandleState& state);

// Records the module's failure on the handle: "<path>: <what> (<reason>)"
// as the last error with action `action`, printed too. Returns
// FS_STATUS_EXT_ERROR (or FS_ERR_NO_MEMORY when the text could not be kept).
FS_STATUS posix_report(FSYS_HAND_STRUCT* fsh, int error, std::wstring const& path,
                       wchar_t const* what, FS_EXT_ERR_ACTION action = FS_EXT_ERR_ACTION_SKIP);
// Prints a note about `path` that does not stop the object: "posix:
// <path>: <what> (<reason>)", the reason left out when `error` is 0.
void posix_note(int error, std::wstring const& path, std::wstring const& what);

}  // namespace qbposix
