// What an attached handle of the posix module keeps (FSYS_HAND_STRUCT::fsysData):
// the open directories from the attached root down to the current one, the
// listing in progress at each of them, the names of files with several
// links that this handle delivered, and the directories a restore still has
// to finish.
//
// Every directory is held open by descriptor and every object is reached
// relative to its directory's descriptor (openat, fstatat, mkdirat, ...), so
// no path handed to the kernel is longer than one name and paths longer than
// PATH_MAX work. A level's listing reads its own descriptor (getdents64;
// openat does not care where a directory's read position stands).
//
// Descriptors are bounded, not one per level: the root, the current level,
// the levels with a listing in progress and the POSIX_OPEN_LEVELS deepest
// levels keep theirs; a level above them lets its descriptor go and keeps
// the directory's identity (device and inode). Going up into such a level
// opens ".." of the level below and checks that identity, so a walk down
// and back up any depth costs a bounded number of descriptors and a
// constant number of calls per level. When ".." is another directory (the
// tree was moved while we were in it), the level is opened again by its
// names from the root instead, one name at a time, never following a link.
// A walk whose every level lists (a backup) still holds one descriptor per
// level: a listing's read position lives in its descriptor.
//
// Memory: a level costs about 300 bytes plus its name; a level that lists
// holds a 32 KiB buffer of entries until its listing ends or is closed.
#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_set>
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
// Levels below the current one's ancestors that keep their descriptors:
// going up through them costs no open. A deeper path closes the ones above.
constexpr std::size_t POSIX_OPEN_LEVELS = 32;
// No directory node (PosixDirNode) yet.
constexpr std::uint32_t POSIX_NO_NODE = UINT32_MAX;
struct PosixLevel {
  // A level owns descriptors: it is moved, never copied.
  PosixLevel() = default;
  PosixLevel(PosixLevel&&) = default;
  PosixLevel& operator=(PosixLevel&&) = default;
  PosixLevel(PosixLevel const&) = delete;
  PosixLevel& operator=(PosixLevel const&) = delete;

  std::string name;             // its name in the directory above (empty for the root)
  int fd = -1;                  // O_DIRECTORY descriptor, owned (through `hold` once set);
                                // -1 while the level is closed to save descriptors
  std::uint64_t dev = 0, ino = 0;  // the directory's identity, kept when `fd` is closed
  std::uint32_t node = POSIX_NO_NODE;  // its node among the restore's directories
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

// A directory of the restore: one the restore made, whose permissions,
// times and extended attributes are set only after its children were
// written (its own mode may forbid writing into it, and every child written
// changes its times), or a directory above such a one. A node holds its
// own name and its parent's index, never its path. A directory costs its
// node twice over at most (the vector of nodes grows by doubling; 168 bytes
// on x86-64), one entry of the set that finds it again by parent and name
// (under 64 bytes), its name and its extended attributes: at most
// kPosixDirNodeBound bytes plus its name and extended attributes, however
// deep it lies.
struct PosixDirNode {
  std::string name;                     // in its parent; empty for the root
  std::uint32_t parent = POSIX_NO_NODE;  // the root has none
  bool pending = false;                 // made by the restore: `info` and `xattrs` wait
  POSIX_OS_INFO info{};
  std::vector<PosixXattr> xattrs;
};
constexpr std::size_t kPosixDirNodeBound = 512;
static_assert(2 * sizeof(PosixDirNode) + 64 <= kPosixDirNodeBound, "a directory's cost as stated above");

// Finds a node by its parent and name (the set holds indexes into `nodes`).
struct PosixDirNodeHash {
  std::vector<PosixDirNode> const* nodes;
  std::size_t operator()(std::uint32_t i) const;
};
struct PosixDirNodeSame {
  std::vector<PosixDirNode> const* nodes;
  bool operator()(std::uint32_t a, std::uint32_t b) const;
};

// The restore's directories, node 0 the root; a parent's index is below
// its children's.
struct PosixDirTree {
  PosixDirTree();
  PosixDirTree(PosixDirTree const&) = delete;
  PosixDirTree& operator=(PosixDirTree const&) = delete;
  std::vector<PosixDirNode> nodes;
  std::unordered_set<std::uint32_t, PosixDirNodeHash, PosixDirNodeSame> index;
  bool any_pending = false;
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

  // Restoring: the directories waiting for their metadata, and those above them.
  PosixDirTree dirs;
  // Levels below this one are closed or listing (see the top of this file).
  std::size_t close_from = POSIX_FIRST_BELOW_ROOT;
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
// Closes the descriptors of levels above the POSIX_OPEN_LEVELS deepest
// (not the root's, not a listing one's), keeping their identity.
void posix_trim_levels(PosixHandleState& state);
// Removes the current level. When the level above is closed it is opened
// again first (".." checked against its identity, else by its names from
// the root); false with errno when that fails (the level above then stays
// closed, and every call made in it fails with EBADF).
bool posix_pop_level(PosixHandleState& state);

// The node of level `at` (made, with those of the levels above it, when
// missing). POSIX_NO_NODE when memory runs out.
std::uint32_t posix_level_node(PosixHandleState& state, std::size_t at);
// The node of the directory `name` in the directory of node `parent`, made
// when missing.
std::uint32_t posix_child_node(PosixDirTree& tree, std::uint32_t parent, std::string const& name);

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

// Applies the waiting directories' metadata, each after every directory
// below it, walking the tree of nodes with one descriptor besides the
// root's (down by name, never following a link; up by ".." checked against
// the identity seen on the way down); failures are printed with the
// directory's path and reason.
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
