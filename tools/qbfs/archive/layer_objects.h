// The layer as the archive commands use it: a started layer that offers
// directories as roots with a handle attached to each, and the few steps
// on objects that backup, restore and verify share.
#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <qbfsys/qbfsys.h>

#include "../commands.h"
#include "../layer_session.h"
#include "archive_format.h"
#include "archive_names.h"

namespace qbfs::archive {

// A directory or an element named on the command line (a backup's SRC, a
// restore's -C, a verify's --against): an existing directory is offered to
// the modules as a root; any other text names an element of the tree.
struct Place {
  std::string text;       // as given
  bool directory = false;
  std::string resolved;   // the directory's real path
  std::size_t root = 0;   // the directory's index among the session's roots
};
// The place `text` names. A directory is appended to `roots`; 0, or 1
// after "<command>: cannot use the directory ..." when a directory's real
// path cannot be had.
int place_of(char const* command, std::string const& text, std::vector<std::string>& roots, Place& out);

// Starts the layer with `roots` (absolute directory paths) as the modules'
// roots and builds the tree. Besides the roots, any element of the tree can
// be looked up by name (find_element) and attached.
class RootSession {
 public:
  RootSession(Options const& options, std::vector<std::string> const& roots);
  ~RootSession();
  RootSession(RootSession const&) = delete;
  RootSession& operator=(RootSession const&) = delete;

  // Empty when the layer started and the tree was built; else why not.
  std::string const& error() const { return error_; }
  // The element of root `i`, or null when no module offered it.
  GENERIC_DLE* dle(std::size_t i) const;
  // A handle attached to root `i`; null with `why` filled when that fails.
  // The caller detaches it (FS_DetachDLE).
  FSYS_HAND_STRUCT* attach(std::size_t i, std::string& why);
  // The element of the tree named `name`, or null: the first whose device
  // name (as `qbfs tree --brief` prints it) is `name`, else the first whose
  // simple or alternate name is. The session owns it.
  GENERIC_DLE* find_element(std::wstring const& name) const;
  // A handle attached to `element` (of this session's tree); null with
  // `why` filled when that fails. The caller detaches it (FS_DetachDLE).
  FSYS_HAND_STRUCT* attach_element(GENERIC_DLE* element, std::string& why);
  // The element of `place`: the root's, or the one named by its text; null
  // when there is none.
  GENERIC_DLE* element_of(Place const& place) const;
  // A handle attached to `place`'s element; null with `why` filled when
  // there is none ("it is neither a directory nor an element ...") or it
  // cannot be attached. The caller detaches it (FS_DetachDLE).
  FSYS_HAND_STRUCT* attach_place(Place const& place, std::string& why);

 private:
  Options options_;
  std::unique_ptr<LayerSession> layer_;
  HEAD_DLE* head_ = nullptr;
  std::vector<std::wstring> roots_;
  std::string error_;
};

// The name an element's objects are stored under in an archive: its simple
// name when it has one, else the last '/'-separated component of its device
// name (trailing '/' ignored). Empty when neither gives a name.
std::wstring element_base_name(GENERIC_DLE const* element);

// What the layer knows of every block (display size, the four dates), asked
// through the handle; a date the module does not give stays unset.
ObjectGeneric generic_description(FSYS_HAND_STRUCT* hand, DBLK* blk);
// The object's name (no path) as the file system gives it.
std::wstring object_name(FSYS_HAND_STRUCT* hand, DBLK* blk);
// The handle's last error in words (escaped for the terminal: a module's
// text quotes names as they are), else `status` in words.
std::string failure_text(FSYS_HAND_STRUCT* hand, FS_STATUS status);
// Builds a block of `hand` for an object named `name` described by
// `record`, `generic` (null: none, as in a version-1 archive) and `os_info`
// (which must outlive the block), as a restore does: through
// FS_CreateGenDBLK, so the target's module gets the generic fields to fall
// back on when the OS information is another module's.
FS_STATUS make_block(FSYS_HAND_STRUCT* hand, ObjectRecord const& record, ObjectGeneric const* generic,
                     std::wstring const& name, std::vector<unsigned char>& os_info, DBLK* out);
// A directory block named `name` with nothing else known of it.
FS_STATUS make_plain_directory(FSYS_HAND_STRUCT* hand, std::wstring const& name, DBLK* out);
// The kind of block (DBLK_KIND_DDB, DBLK_KIND_FDB, ...) the file system
// gives the object `name` of the handle's current directory as it is now;
// 0 when there is none.
int kind_of(FSYS_HAND_STRUCT* hand, std::wstring const& name);

// Moves a handle between directories below its root by name, the way the
// archive's objects come (depth first). Goes back to the root when destroyed.
// Keeps one name per level of the current directory, nothing per directory
// left behind.
class HandleCursor {
 public:
  explicit HandleCursor(FSYS_HAND_STRUCT* hand) : hand_(hand) {}
  ~HandleCursor();
  HandleCursor(HandleCursor const&) = delete;
  HandleCursor& operator=(HandleCursor const&) = delete;

  // Makes `dir` (components below the root) the current directory. With
  // `create`, a missing directory is made as a plain one and `created` is
  // told its path: the first `depth` components of `dir`; an object of
  // another kind in its place is left alone (the path fails). False with
  // `why` when a directory cannot be entered, and `*failed_depth` (when
  // given) set to the number of components up to the one that failed.
  // Costs a constant number of calls per name that differs from the
  // current directory's path: below a directory it made, it makes the
  // next one without first trying to enter it (a failure to enter is
  // reported with the whole path, which a deep path would pay per level).
  bool go_to(Components const& dir, bool create, std::string& why,
             std::function<void(Components const& dir, std::size_t depth)> const& created = nullptr) {
    return go_to(dir, dir.size(), create, why, created, nullptr);
  }
  // The same for the first `depth` components of `path` (an object's
  // directory without a copy of its path).
  bool go_to(Components const& path, std::size_t depth, bool create, std::string& why,
             std::function<void(Components const& dir, std::size_t depth)> const& created = nullptr,
             std::size_t* failed_depth = nullptr);

 private:
  FSYS_HAND_STRUCT* hand_;
  Components current_;
};

// Decodes a string the layer handed out (UTF-8 for display).
std::string narrow(std::wstring const& text);
std::wstring widen(std::string const& text);

}  // namespace qbfs::archive
