// libqbfs_adapterfs_module.so: a test module that serves its objects only
// through an adapter class. Its table fills what starts the module and
// finds its element (InitFileSys, DeInitFileSys, FindDrives, RemoveDLE) and
// OpenSys, which installs the adapter on every new handle; every walking,
// block and object operation reaches the adapter or nothing. The tools'
// tests prove with it that a job never needs a table slot.
//
//   adapterfs_tree.cpp     the fixed tree, with a date and attribute word per object
//   adapterfs_table.cpp    the entry point "GetTable", the element, OpenSys
//   adapterfs_walk.cpp     the adapter: attach, directories, listings, blocks
//   adapterfs_read.cpp     the adapter: reading a file as one data stream
//
// Setting ADAPTERFS_FAIL_READ to an object's path below the element (e.g.
// "src/main.c") makes reading that file fail after its first unit, so the
// tests can watch a backup meet a module's read error; ADAPTERFS_FAIL_ENTER
// naming a directory makes entering it fail. ADAPTERFS_CHANGE
// serves one object changed (adapterfs_tree.cpp says how).
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <qbfsys/fs_fsh_gen.h>
#include <qbfsys/qbfsys.h>

namespace adapterfs {

// Not the posix module's (7) nor the example module's (40).
constexpr unsigned ADAPTERFS_INDEX = 41;
constexpr std::uint32_t ADAPTERFS_SUBTYPE = 1;
constexpr wchar_t ADAPTERFS_DELIMITER = L'/';
constexpr wchar_t ADAPTERFS_DEVICE_NAME[] = L"adapterfs:";
// The module delivers at most this many bytes a call and asks the layer
// for this much room (it stages for callers that offer less).
constexpr std::uint32_t ADAPTERFS_READ_UNIT = 8u * 1024u;
constexpr char ADAPTERFS_FAIL_READ_VARIABLE[] = "ADAPTERFS_FAIL_READ";
constexpr char ADAPTERFS_FAIL_ENTER_VARIABLE[] = "ADAPTERFS_FAIL_ENTER";
constexpr char ADAPTERFS_CHANGE_VARIABLE[] = "ADAPTERFS_CHANGE";

// One object of the tree. Dates are UTC.
struct Node {
  std::wstring name;
  bool directory;
  _DATE_TIME mdate;
  std::uint32_t attrib1;
  std::uint32_t attrib2;
  std::string data;            // a file's contents
  std::vector<Node> children;  // a directory's entries
};

// The tree served, built once; its root is the element itself.
Node const& adapterfs_root();

// A name of the tree as bytes (the tree's names are ASCII).
std::string adapterfs_narrow(std::wstring const& name);

// The adapter installed on each handle of the module. It keeps the handle's
// walking state itself and is deleted by CloseSys (FS_FshGen's), after it
// let go of what it holds. Block operations it does not override are
// FS_FshGen's generic ones: its blocks have the generic layout.
class Adapter final : public FS_FshGen {
 public:
  FS_STATUS AttachToDLE(FSYS_HAND_STRUCT* fsh, GENERIC_DLE* dle, wchar_t* user, wchar_t* password) override;
  FS_STATUS DetachDLE(FSYS_HAND_STRUCT* fsh, void* arg, void** result) override;
  FS_STATUS CloseSys(FSYS_HAND_STRUCT* fsh) override;

  FS_STATUS ChangeDir(FSYS_HAND_STRUCT* fsh, wchar_t* path, short size) override;
  FS_STATUS ChangeDirUp(FSYS_HAND_STRUCT* fsh) override;
  FS_STATUS ChangeIntoDDB(FSYS_HAND_STRUCT* fsh, DBLK* blk) override;
  FS_STATUS GetCurrentPath(FSYS_HAND_STRUCT* fsh, wchar_t* path, short* size) override;
  FS_STATUS GetCurrentDDB(FSYS_HAND_STRUCT* fsh, DBLK* blk) override;
  FS_STATUS FindFirstObj(FSYS_HAND_STRUCT* fsh, DBLK* blk, wchar_t* spec, unsigned short flags) override;
  FS_STATUS FindNextObj(FSYS_HAND_STRUCT* fsh, DBLK* blk) override;
  FS_STATUS FindObjClose(FSYS_HAND_STRUCT* fsh, DBLK* blk) override;
  FS_STATUS ReleaseBlk(FSYS_HAND_STRUCT* fsh, DBLK* blk) override;
  FS_STATUS GetObjTypeDBLK(FSYS_HAND_STRUCT* fsh, DBLK* blk, OBJECT_TYPE* type) override;

  FS_STATUS OpenObj(FSYS_HAND_STRUCT* fsh, _FILE_HAND_STRUCT** out, DBLK* blk, OPEN_MODE mode) override;
  FS_STATUS ReadObj(_FILE_HAND_STRUCT* obj, unsigned char* buffer, unsigned int* size, unsigned int* need,
                    STREAM_INFO* stream) override;
  FS_STATUS CloseObj(_FILE_HAND_STRUCT* obj, void** arg, void** result) override;

 private:
  // The entry a block describes in the current directory; null when none.
  Node const* entry_of(DBLK const* blk) const;
  // The current directory's path below the element, '/'-separated.
  std::string current_path() const;
  FS_STATUS fill_block(FSYS_HAND_STRUCT* fsh, DBLK* blk, Node const& node);
  void release_name(FSYS_HAND_STRUCT* fsh, DBLK* blk);
  void let_go();

  // From the root to the current directory, each with the next entry of
  // its listing.
  struct Level {
    Node const* dir;
    std::size_t cursor;
    std::wstring spec;  // what the listing hands out ("*": everything)
  };
  std::vector<Level> path_;
  std::vector<void const*> names_;  // name elements this adapter put in blocks
  bool attached_ = false;
};

}  // namespace adapterfs
