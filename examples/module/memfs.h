// libqbmemfs.so: a small file-system module that keeps a tree in memory.
// It starts with a built-in sample tree, takes restored objects, and can
// keep its tree in an image file between processes. It shows what a module
// consists of:
//
//   memfs_table.cpp   the entry point "GetTable" and the table it fills
//   memfs_drives.cpp  finding drives: one DLE for the tree; removing it
//   memfs_attach.cpp  attaching a handle to the DLE and letting go
//   memfs_walk.cpp    walking: directories, find-first/next, blocks
//   memfs_read.cpp    opening an object and reading it as typed streams
//   memfs_write.cpp   restoring: creating, writing and deleting objects
//   memfs_tree.cpp    the tree itself: the sample, start-up and shut-down
//   memfs_image.cpp   the image file: loading and saving the tree
//
// The module serves file-system index MEMFS_INDEX. Its DLE has that type
// byte (the layer finds a DLE's file system by it), so nothing else of the
// layer treats it as a machine or volume of another kind. It links neither
// the layer nor the host runtime: DLE_Create, the GEN block functions and
// the rest are resolved from the process that loads it.
//
// What an object keeps. Every node has a name, a kind (directory or file),
// three dates (creation, modification, access; _DATE_TIME in UTC, a date
// with date_valid 0 is "not known"), the two attribute words and the
// display size a block carries. Blocks the module hands out carry all of
// them, so FS_HandGetMDateDBLK and the rest answer from the block. A
// restored object takes them from the generic fields of the block the
// restore built: the module never reads another module's OS information,
// so an object of any module restores the same way. The dates are the
// block's and nothing else: adding an entry to a directory leaves the
// directory's dates as they are, so no directory waits for the detach to
// get its metadata.
//
// Streams. A file keeps one stream, its data (STRM_GENERIC_DATA). A restore
// that offers a stream of another id is refused at that stream's header
// (FS_STATUS_EXT_ERROR, the handle's message names the object and the id),
// because the module could not give it back as what it was; a directory
// takes no stream at all. The object is then reported failed by the host,
// not restored with part of what it held.
//
// Concurrency. One mutex guards the tree: any number of handles may be
// used from different threads at once. A handle's own state (its current
// directory, its listing) and an open object's are not guarded: each
// handle, and each open object, is used by one thread at a time.
// Nodes are shared: a node removed or replaced while a handle stands in it
// or holds it open lives on, detached, until that handle lets go, so no
// handle ever reaches freed memory. A file a restore creates is built
// off the tree and put in (in place of an entry of its name) only when it
// is closed without failure, so a reader sees the old contents or the new
// ones, and a restore that fails an object leaves the old one as it was.
// A listing hands out the entries its directory held when it started.
// A directory removed while a handle stands in it takes no new entries.
//
// Persistence. When the environment variable QBMEMFS_IMAGE names a file,
// InitFileSys loads the tree from it (a missing file: the sample tree).
// The tree is written back at every detach that finds it changed, and at
// DeInitFileSys when it changed since, through a temporary file (flushed to
// the disk, the old image's permissions kept, 0600 for a new one) renamed
// over the image, so a reader never finds half an image. A failed save at a
// detach is that detach's error (FS_STATUS_EXT_ERROR, the handle's message
// says why) and is said once: shut-down does not try again unless the tree
// changed after it. Two processes that change the tree at once do not
// merge: the last to detach wins. Anything but a regular file is refused.
// A file that is not an image this module wrote, or is damaged,
// makes InitFileSys fail: the module says why on standard error and the
// layer drops it; the file is left as it is. The image format, all numbers
// little-endian:
//
//   image   := magic "QBMEMFS\n" (8 bytes), u32 version (1), node (the root,
//              a directory with an empty name), and nothing after it
//   node    := u8 kind (1 directory, 2 file)
//              u32 name length in characters, then each character as u32
//              3 x date (creation, modification, access)
//              u32 attribute word 1, u32 attribute word 2, u64 display size
//              directory: u32 entry count, then each entry as a node
//              file:      u64 data size, then the data
//   date    := u16 date_valid, u16 year, u8 month, u8 day, u8 hour,
//              u8 minute, u8 second, u32 ticks (100 ns within the second);
//              the weekday is not stored: loading computes it from the date
//
// Loading checks every field against the limits below before it allocates
// anything, and refuses names the walk could not serve (empty, with '/' or
// NUL, "." or "..", two alike in one directory, characters that are not
// Unicode scalar values) and dates whose fields are out of range.
#pragma once
#include <cstdint>
#include <memory>
#include <mutex>
#include <new>
#include <set>
#include <string>
#include <vector>

#include <qbfsys/qbfsys.h>

namespace memfs {

constexpr unsigned MEMFS_INDEX = 40;
constexpr std::uint32_t MEMFS_SUBTYPE = 1;
constexpr wchar_t MEMFS_DELIMITER = L'/';
constexpr wchar_t MEMFS_DEVICE_NAME[] = L"memfs:";
// The module reads in units of this size (the layer stages for callers
// that ask for less).
constexpr std::uint32_t MEMFS_READ_UNIT = 16u * 1024u;
// The environment variable naming the image file.
constexpr char MEMFS_IMAGE_VARIABLE[] = "QBMEMFS_IMAGE";

// Limits of the tree, for restores and image files alike: a tree in memory
// must not be made to take the whole machine by one hostile archive or
// image, and every tree a restore can make saves to an image that loads
// again. A name counts characters; a file's data is held whole.
constexpr std::size_t MEMFS_MAX_NAME_CHARS = 255;
constexpr std::uint64_t MEMFS_MAX_FILE_BYTES = 256ull * 1024 * 1024;
constexpr std::uint64_t MEMFS_MAX_TREE_BYTES = 1024ull * 1024 * 1024;  // all files' data together
constexpr std::size_t MEMFS_MAX_DEPTH = 256;       // directories below the root
constexpr std::uint64_t MEMFS_MAX_NODES = 100000;  // the root included

// The dates every object of the sample tree has: 2001-02-03 04:05:06 UTC.
constexpr _DATE_TIME MEMFS_SAMPLE_DATE{1, 2001, 2, 3, 4, 5, 6, 6, 0, 0};

// One object of the tree.
struct Node {
  std::wstring name;
  bool directory = false;
  _DATE_TIME cdate{}, mdate{}, adate{};  // UTC; date_valid 0: not known
  std::uint32_t attrib1 = 0, attrib2 = 0;
  std::uint64_t display_size = 0;
  // A file's contents, never changed in place: a restore puts new
  // contents in, so a reader keeps the contents it opened.
  std::shared_ptr<std::string const> data = std::make_shared<std::string const>();
  std::vector<std::shared_ptr<Node>> children;     // a directory's entries
  // False once the node is deleted or replaced: it no longer counts in
  // the tree's size (a handle may still hold it).
  bool in_tree = true;
};
using NodePtr = std::shared_ptr<Node>;

// The tree served. Every read or change of a node reachable from the root
// holds the mutex (memfs_lock).
NodePtr memfs_root();
std::unique_lock<std::mutex> memfs_lock();
// Records that the tree differs from what was loaded, so it is saved at
// the next detach or shut-down. Called with the lock held.
void memfs_mark_changed();
// Saves the tree to the image file when it changed since it was loaded or
// last saved (and an image is named). True when nothing needed saving or
// the save succeeded; false with `why` in words. Takes the lock itself.
bool memfs_save_if_changed(std::string& why);
// How much the tree holds: its objects, the root included, and the bytes
// of all its files' data (MEMFS_MAX_NODES and MEMFS_MAX_TREE_BYTES bound
// them). memfs_tree_size is called with the lock held.
struct TreeSize {
  std::uint64_t nodes = 0, bytes = 0;
};
TreeSize& memfs_tree_size();
TreeSize memfs_measure(Node const& top);

// The sample tree: a few text files, an empty directory and one file
// larger than the read unit, every object dated MEMFS_SAMPLE_DATE.
NodePtr memfs_sample_tree();
// The entry of `dir` named `name`; null when none. Called with the lock held.
NodePtr memfs_child(Node const& dir, std::wstring const& name);
// True for a name an entry may have (see the image format's rules).
bool memfs_valid_name(std::wstring const& name);
// True for a date whose fields are in range, or that is not set.
bool memfs_valid_date(_DATE_TIME const& date);
// The weekday of a valid set date (0 Sunday .. 6 Saturday).
std::uint8_t memfs_weekday(_DATE_TIME const& date);

// The image file. Loading: FS_SUCCESS with the tree in `root`; FS_STATUS_NONE
// when the file does not exist (`root` untouched); FS_ERR_INIT_FAILED with
// `why` in words when it cannot be read, is no regular file or is no valid
// image. Saving: true, or false with `why` (the old image is then left as
// it was). Neither throws.
FS_STATUS memfs_load_image(std::string const& path, NodePtr& root, std::string& why);
bool memfs_save_image(std::string const& path, Node const& root, std::string& why);

// What an attached handle keeps (FSYS_HAND_STRUCT::fsysData).
struct HandleState {
  // From the root to the current directory, each with the next entry of
  // its listing: a caller may enter a directory it found, list it, come
  // back up and go on with the listing above.
  struct Level {
    NodePtr dir;
    std::size_t cursor;
    std::wstring spec;  // what the listing hands out ("*": everything)
    // The entries at find-first: another handle's deletions do not make
    // the listing skip any.
    std::vector<NodePtr> listing;
  };
  std::vector<Level> path;
  std::set<void const*> names;     // name elements this module put in blocks
  // Files created by CreateObj and not yet put in the tree (they are at
  // the first close without failure); DeleteObj of one drops it.
  struct Created {
    NodePtr dir, node;
  };
  std::vector<Created> created;
};
HandleState* memfs_state(FSYS_HAND_STRUCT* fsh);

// The name a block carries; false when it has none.
bool memfs_block_name(DBLK const* blk, std::wstring& name);
// The entry a block describes, in the current directory; null when none.
// A file this handle created there and has not yet put in is found first.
// Called with the lock held.
NodePtr memfs_entry_of(HandleState const& state, DBLK const* blk);

// An object opened by OpenObj: the layer's fields first, then the module's.
struct OpenFile : _FILE_HAND_STRUCT {
  NodePtr node;
  NodePtr dir;  // writing a created file: the directory it goes into
  OPEN_MODE mode = FS_READ;
  // reading
  std::shared_ptr<std::string const> contents;
  bool header_sent = false;
  std::size_t offset = 0;
  // writing: the data gathered, given to the node at close
  bool data_started = false;
  bool failed = false;  // a stream was refused: nothing is put in, ever
  std::string written;
};

// Every slot is wrapped so that no exception leaves it: running out of
// memory is FS_ERR_NO_MEMORY, anything else FS_ERR_BAD_PARAMETER.
template <auto Slot>
struct guarded;
template <typename... Args, FS_STATUS (*Slot)(Args...)>
struct guarded<Slot> {
  static FS_STATUS call(Args... args) noexcept {
    try {
      return Slot(args...);
    } catch (std::bad_alloc const&) {
      return FS_ERR_NO_MEMORY;
    } catch (...) {
      return FS_ERR_BAD_PARAMETER;
    }
  }
};

FS_STATUS memfs_init(QB_CFG* cfg);
FS_STATUS memfs_deinit();
FS_STATUS memfs_find_drives(HEAD_DLE* head, QB_CFG* cfg);
FS_STATUS memfs_remove_dle(GENERIC_DLE* dle);
FS_STATUS memfs_attach(FSYS_HAND_STRUCT* fsh, GENERIC_DLE* dle, wchar_t* user, wchar_t* password);
FS_STATUS memfs_detach(FSYS_HAND_STRUCT* fsh, void* arg, void** result);
FS_STATUS memfs_close_sys(FSYS_HAND_STRUCT* fsh);

FS_STATUS memfs_change_dir(FSYS_HAND_STRUCT* fsh, wchar_t* path, short size);
FS_STATUS memfs_change_into_ddb(FSYS_HAND_STRUCT* fsh, DBLK* blk);
FS_STATUS memfs_change_dir_up(FSYS_HAND_STRUCT* fsh);
FS_STATUS memfs_get_current_path(FSYS_HAND_STRUCT* fsh, wchar_t* path, short* size);
FS_STATUS memfs_get_current_ddb(FSYS_HAND_STRUCT* fsh, DBLK* blk);
FS_STATUS memfs_find_first(FSYS_HAND_STRUCT* fsh, DBLK* blk, wchar_t* spec, unsigned short flags);
FS_STATUS memfs_find_next(FSYS_HAND_STRUCT* fsh, DBLK* blk);
FS_STATUS memfs_find_close(FSYS_HAND_STRUCT* fsh, DBLK* blk);
FS_STATUS memfs_release_blk(FSYS_HAND_STRUCT* fsh, DBLK* blk);

FS_STATUS memfs_open(FSYS_HAND_STRUCT* fsh, _FILE_HAND_STRUCT** out, DBLK* blk, OPEN_MODE mode);
FS_STATUS memfs_read(_FILE_HAND_STRUCT* hand, unsigned char* buffer, unsigned int* size,
                     unsigned int* need, STREAM_INFO* stream);
FS_STATUS memfs_close_obj(_FILE_HAND_STRUCT* hand, void** arg, void** result);

FS_STATUS memfs_create_obj(FSYS_HAND_STRUCT* fsh, DBLK* blk, wchar_t const* name,
                           RESTORE_SEMANTICS semantics);
FS_STATUS memfs_write(_FILE_HAND_STRUCT* hand, unsigned char* buffer, unsigned int* size,
                      unsigned int* need, STREAM_INFO* stream);
FS_STATUS memfs_delete_obj(FSYS_HAND_STRUCT* fsh, DBLK* blk);
// Gives the data written to the node, and puts a created file in the tree
// in place of an entry of its name; called by CloseObj with the lock held.
// FS_SUCCESS (nothing changes after a refused stream), or
// FS_STATUS_EXT_ERROR when the tree has no room left for it (writers that
// ran side by side) or its directory is gone; the tree is then unchanged.
FS_STATUS memfs_finish_write(OpenFile& file);

}  // namespace memfs
