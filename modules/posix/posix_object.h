// The posix module's open-object record: _FILE_HAND_STRUCT first (the
// layer's fields), then what reading or restoring one object needs.
//
// The first record made for a handle becomes the handle's own object
// handle (objHand) and is reused for every later object while it is free:
// its staging buffer (which the layer sizes to the module's 64 KiB unit)
// then outlives single objects instead of being allocated and zeroed for
// each. Further records are made with new (the layer's fields start
// zeroed) and deleted at close; objHand is deleted when the handle lets go.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <qbfsys/file_hand.h>

#include "posix_handle_state.h"
#include "posix_streams.h"

namespace qbposix {

// One stream of an object being read: a short one carried in `bytes`, or
// the data stream, read from the file through `extents`.
struct PosixOutStream {
  std::uint32_t id;
  std::uint64_t size;
  std::string bytes;  // the whole stream, unless it is the data stream
  bool from_file;
};

struct PosixObject : _FILE_HAND_STRUCT {
  bool busy = false;  // open now (matters for the reused objHand)
  OPEN_MODE mode = FS_READ;
  int fd = -1;                     // the object itself, when it has one open
  int dirfd = -1;                  // the directory it lies in (restoring), kept open by `dir`
  std::shared_ptr<PosixDirHold> dir;
  std::string name;                // its name there
  std::uint32_t node = POSIX_NO_NODE;  // restoring a directory: its node (PosixDirTree)
  POSIX_OS_INFO info{};            // reading: as opened; restoring: as described

  // Reading.
  std::vector<PosixOutStream> streams;
  std::size_t current = 0;  // the stream being delivered
  bool header_sent = false;
  std::uint64_t offset = 0;          // bytes of the current stream delivered
  std::vector<PosixExtent> extents;  // where the data stream's bytes lie in the file
  std::size_t extent = 0;            // extent being read
  std::uint64_t extent_offset = 0;

  // Restoring.
  std::uint32_t in_id = 0;  // the stream being received; 0 before the first
  std::uint64_t in_size = 0;
  std::uint64_t in_received = 0;
  std::string in_bytes;  // a short stream gathered so far
  std::vector<PosixXattr> xattrs;
  bool sparse = false;
  std::uint64_t sparse_size = 0;
  bool linked = false;             // made as a further name of a file already restored
  FS_STATUS failure = FS_SUCCESS;  // the first failure, returned again at close
};

inline PosixObject* posix_object(_FILE_HAND_STRUCT* hand) {
  return static_cast<PosixObject*>(hand);
}

// A free record for a new object of `fsh` (its objHand when free), or null
// when memory runs out. posix_object_release gives it back: descriptors
// closed, objHand kept for the next object, any other record deleted.
PosixObject* posix_object_acquire(FSYS_HAND_STRUCT* fsh);
void posix_object_release(PosixObject* obj);
// Deletes the handle's objHand (and its staging buffer) when it has one.
void posix_object_drop_own(FSYS_HAND_STRUCT* fsh);

// The object's path below the root, for messages; objects are reported
// while the handle is still in the object's directory.
std::wstring posix_object_path(PosixObject const& obj);

// Opening for reading and for restoring (posix_read.cpp, posix_write.cpp).
FS_STATUS posix_open_read(FSYS_HAND_STRUCT* fsh, PosixObject& obj, DBLK* blk);
FS_STATUS posix_open_write(FSYS_HAND_STRUCT* fsh, PosixObject& obj, DBLK* blk);
// Finishing a restored object: its metadata (posix_write.cpp).
FS_STATUS posix_finish_write(PosixObject& obj);

}  // namespace qbposix
