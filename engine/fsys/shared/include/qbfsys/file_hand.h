// _FILE_HAND_STRUCT and object I/O: opening, reading, writing, seeking and
// closing one object (a file, a database item) through its file system.
//
// The layer stands between the caller's transfer sizes and the module's: a
// module may ask, through the `need` argument, for at least that many bytes
// in each following read or write call, and the layer stages data in a
// buffer of its own so the caller may pass any amount. Data moves as typed
// streams: a call carries either a new stream header or data of the current
// stream, never both at once towards the module.
//
// Ownership: the record is made by the module's open operation (modules
// extend it by placing it first in a larger record of their own, allocated
// zeroed) and released by the module's close. The staging buffer belongs to
// the layer: FS_CloseObj frees it, except on the handle's own object handle
// (`objHand`), whose buffer lives until FS_DetachDLE.
#pragma once
#include <cstddef>
#include <cstdint>

#include <qbfsys/fs_export.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>

// The statuses of object I/O (FS_ERR_OBJ_ACCESS_DENIED, FS_ERR_OBJ_INCOMPLETE,
// FS_ERR_OBJ_OVERRUN) are rows of FS_STATUS_LIST, qbfsys/fs_status.h.

// Staging buffers grow in whole units of this many bytes.
constexpr std::uint32_t FS_STAGE_UNIT = 4096;

// Which way the staging buffer is used.
enum FS_STAGE_MODE : std::uint32_t {
  FS_STAGE_IDLE = 0,
  FS_STAGE_READING = 1,  // stagePos/stageCount: undelivered bytes
  FS_STAGE_WRITING = 2,  // stagePos: bytes collected; stageCount: bytes to collect
};

struct _FILE_HAND_STRUCT {
  FSYS_HAND_STRUCT* fsysHand;  // the handle through which the object was opened
  unsigned char* stageBuf;     // staging buffer, owned by the layer; null until needed
  std::uint32_t stageCap;      // capacity of stageBuf in bytes
  std::uint32_t stagePos;      // reading: next undelivered byte; writing: bytes collected
  std::uint32_t stageCount;    // reading: undelivered bytes; writing: bytes to collect (0: no staging)
  std::uint32_t needSize;      // reading: the minimum read size the module last asked for
  std::uint64_t pending;       // a status held back for the next call (0: none)
  FS_STAGE_MODE stageMode;     // how the staged bytes are to be read
  std::uint32_t reserved;
};
static_assert(offsetof(_FILE_HAND_STRUCT, fsysHand) == 0, "the owning handle comes first");
static_assert(offsetof(_FILE_HAND_STRUCT, pending) == 32, "pending");
static_assert(sizeof(_FILE_HAND_STRUCT) == 48, "modules place their own fields after these");

// obj_flags of an object that is not to be opened, and the top-five-bit
// values that say how the refusal is reported.
constexpr std::uint32_t DBLK_OBJ_NO_OPEN = 0x00000200;
constexpr std::uint32_t DBLK_OBJ_DENIAL_MASK = 0xF8000000;
constexpr std::uint32_t DBLK_OBJ_DENIAL_RECORDED = 0xC8000000;  // name recorded as the last error
constexpr std::uint32_t DBLK_OBJ_DENIAL_PLAIN = 0xA8000000;

// Opens the object described by `blk` through the handle's file system
// (adapter, else slot 23), which sets `*out`. An object whose obj_flags has
// DBLK_OBJ_NO_OPEN is not opened: FS_ERR_OBJ_ACCESS_DENIED, or, when its
// top bits are DBLK_OBJ_DENIAL_RECORDED, FS_STATUS_EXT_ERROR with the
// object's name recorded as the handle's last error (action 7, extra
// 16032). Statuses otherwise: the module's; FS_ERR_BAD_PARAMETER for a null
// handle, `out` or block; FS_ERR_UNIMPLEMENTED when the file system cannot
// open objects.
FS_EXPORT FS_STATUS FS_OpenObj(FSYS_HAND_STRUCT* hand, _FILE_HAND_STRUCT** out, DBLK* blk,
                               OPEN_MODE mode);

// Reads the next piece of the object: either a stream header (header->id
// non-zero, *size 0 or the data that came with it) or data of the current
// stream. `*size` is the room at `buffer` on entry and the bytes delivered
// on return; `*need` is handed back as 1. Statuses: 0 (also for an
// informational status of the module: a module ends an object with an error
// status such as FS_ERR_OBJ_NO_DATA); the module's error (an error that came
// with data is held back and returned, with no data, by the first read after
// that data was delivered);
// FS_ERR_OBJ_OVERRUN when the module returned more than it was given room
// for (the excess is dropped); FS_ERR_NO_MEMORY; FS_ERR_BAD_PARAMETER for a
// null argument or an unowned object handle.
FS_EXPORT FS_STATUS FS_ReadObj(_FILE_HAND_STRUCT* obj, unsigned char* buffer, unsigned int* size,
                               unsigned int* need, STREAM_INFO* header);

// Writes a piece of the object: a stream header (header->id non-zero), data
// of the current stream, or both (then the module sees the header alone
// first, and the caller's header id is cleared). `*size` is the count
// offered on entry and consumed on return; bytes the module is not ready
// for wait in the staging buffer and count as consumed. Staged bytes are
// handed over before the next header and at FS_CloseObj, so a stream's last
// call may be shorter than the module's minimum. Statuses: 0;
// FS_STATUS_OBJ_DEFERRED from the module, after which data-only writes
// return 0 until a header comes; FS_ERR_OBJ_NO_DATA for neither data nor
// header; FS_ERR_OBJ_INCOMPLETE when the module took nothing; FS_ERR_OBJ_OVERRUN
// when it claimed more than offered (printed); FS_ERR_NO_MEMORY; the
// module's error; FS_ERR_BAD_PARAMETER for a null argument.
FS_EXPORT FS_STATUS FS_WriteObj(_FILE_HAND_STRUCT* obj, unsigned char* data, unsigned int* size,
                                unsigned int* need, STREAM_INFO* header);

// Drops staged read data and asks the module to seek (adapter, else slot
// 24). Returns the module's status; FS_ERR_BAD_PARAMETER for a null or
// unowned object handle.
FS_EXPORT FS_STATUS FS_SeekObj(_FILE_HAND_STRUCT* obj, unsigned int* position);

// Hands over staged write data, frees the staging buffer (not on the
// handle's own objHand) and closes the object through the module (adapter,
// else slot 27), which releases the record. Returns the module's status, or
// the hand-over's error when the close itself succeeded; 0 for a null or
// unowned object handle.
FS_EXPORT FS_STATUS FS_CloseObj(_FILE_HAND_STRUCT* obj, void** arg, void** result);

// Zeroes the first `size` bytes of the record (the module's record size)
// and keeps the staging buffer and its capacity. Nothing for a null record.
FS_EXPORT void FS_ResetHand(_FILE_HAND_STRUCT* obj, unsigned int size);
