// libqbmemfs.so: a small file-system module that serves a fixed tree held
// in memory. It shows what a module consists of:
//
//   memfs_table.cpp   the entry point "GetTable" and the table it fills
//   memfs_drives.cpp  finding drives: one DLE for the tree; removing it
//   memfs_attach.cpp  attaching a handle to the DLE and letting go
//   memfs_walk.cpp    walking: directories, find-first/next, blocks
//   memfs_read.cpp    reading an object as typed streams
//   memfs_tree.cpp    the tree itself
//
// The module serves file-system index MEMFS_INDEX. Its DLE has that type
// byte (the layer finds a DLE's file system by it), so nothing else of the
// layer treats it as a machine or volume of another kind. It links neither
// the layer nor the host runtime: DLE_Create, the GEN block functions and
// the rest are resolved from the process that loads it.
#pragma once
#include <cstdint>
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

// One object of the tree.
struct Node {
  std::wstring name;
  bool directory;
  std::string data;            // a file's contents
  std::vector<Node> children;  // a directory's entries
};

// The tree served, built once.
Node const& memfs_root();

// What an attached handle keeps (FSYS_HAND_STRUCT::fsysData).
struct HandleState {
  // From the root to the current directory, each with the next entry of
  // its listing: a caller may enter a directory it found, list it, come
  // back up and go on with the listing above.
  struct Level {
    Node const* dir;
    std::size_t cursor;
    std::wstring spec;  // what the listing hands out ("*": everything)
  };
  std::vector<Level> path;
  std::set<void const*> names;     // name elements this module put in blocks
};
HandleState* memfs_state(FSYS_HAND_STRUCT* fsh);

// The entry a block describes, in the current directory; null when none.
Node const* memfs_entry_of(HandleState const& state, DBLK const* blk);

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
FS_STATUS memfs_find_first(FSYS_HAND_STRUCT* fsh, DBLK* blk, wchar_t* spec, unsigned short flags);
FS_STATUS memfs_find_next(FSYS_HAND_STRUCT* fsh, DBLK* blk);
FS_STATUS memfs_find_close(FSYS_HAND_STRUCT* fsh, DBLK* blk);
FS_STATUS memfs_release_blk(FSYS_HAND_STRUCT* fsh, DBLK* blk);

FS_STATUS memfs_open(FSYS_HAND_STRUCT* fsh, _FILE_HAND_STRUCT** out, DBLK* blk, OPEN_MODE mode);
FS_STATUS memfs_read(_FILE_HAND_STRUCT* hand, unsigned char* buffer, unsigned int* size,
                     unsigned int* need, STREAM_INFO* stream);
FS_STATUS memfs_close_obj(_FILE_HAND_STRUCT* hand, void** arg, void** result);

}  // namespace memfs
