// STREAM_INFO: the header that introduces each stream of an object's data,
// and the small operations on headers and short streams.
//
// The header is part of the backup data format: 32 bytes, fixed layout.
// Short streams (path and file names, possibly encrypted) are gathered piece
// by piece into the handle's name buffer with FS_FillBufferWithStream and
// handed back with FS_GetStreamInfo; the handle owns that buffer and the
// decrypted-name buffer and frees them when it closes.
#pragma once
#include <cstddef>
#include <cstdint>

#include <qbfsys/fs_export.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>
#include <qbfsys/stream_ids.h>

struct STREAM_INFO {
  std::uint32_t id;         // STRM_*
  std::uint16_t fs_attrib;  // set by the file system that produced the stream
  std::uint16_t tf_attrib;  // as stored by the data format (STREAM_TF_*)
  std::uint64_t size;       // length of the stream's data in bytes
  std::uint16_t encr_word;  // cleared on initialisation
  std::uint16_t reserved;
  std::uint32_t cmpr_word;  // cleared on initialisation
  unsigned char tail[8];    // copied with the header, never initialised
};

static_assert(sizeof(STREAM_INFO) == 32, "STREAM_INFO is 32 bytes");
static_assert(offsetof(STREAM_INFO, id) == 0, "id");
static_assert(offsetof(STREAM_INFO, fs_attrib) == 4, "fs_attrib");
static_assert(offsetof(STREAM_INFO, tf_attrib) == 6, "tf_attrib");
static_assert(offsetof(STREAM_INFO, size) == 8, "size");
static_assert(offsetof(STREAM_INFO, encr_word) == 16, "encr_word");
static_assert(offsetof(STREAM_INFO, cmpr_word) == 20, "cmpr_word");
static_assert(offsetof(STREAM_INFO, tail) == 24, "tail");

// tf_attrib: the stream holds an encrypted name (qbfsys/crypt_names.h).
constexpr std::uint16_t STREAM_TF_ENCRYPTED_NAME = 0x40;

// Characters of every display name of FS_GetStrmIdString (blank-padded).
constexpr std::size_t FS_STRM_NAME_WIDTH = 25;

// Exported for the host and the modules; the layer never reads or writes it.
extern "C" FS_EXPORT std::uint32_t last_stream_size;

// Sets id, fs_attrib and size (widened) and clears tf_attrib, encr_word and
// cmpr_word; `tail` and the reserved word are left as they are. A null
// header is ignored.
FS_EXPORT void FS_InitStrmInfo(STREAM_INFO* header, unsigned int id, unsigned short fsAttrib,
                               unsigned int size);

// The display name of a stream id, blank-padded to FS_STRM_NAME_WIDTH
// characters ("STRM_INVALID" for 0), or "Unknown" for an id not in the table.
// The text is static: never freed, valid for the life of the process.
FS_EXPORT wchar_t const* FS_GetStrmIdString(unsigned int id);

// Gathers one piece of a short stream into the handle's name buffer.
//
// A header whose id is not 0 starts a new stream (it is copied into the
// handle's current header); a null header or id 0 continues the current
// one. `*len` offers that many bytes at `data`; on return it holds the
// number taken, which is never more than the stream still wants. The count
// gathered so far is blk->strm_buffered.
//
// Statuses:
// - 0: the bytes were taken and the stream wants more (or nothing was offered);
// - FS_BLK_COMPLETE: the stream is complete. If its header has
//   STREAM_TF_ENCRYPTED_NAME the gathered name was decrypted
//   (FS_DecryptNameInStream with the handle's cipher context) and the status
//   is the decryption's; the current header's size becomes the decrypted
//   length;
// - FS_ERR_NO_MEMORY: the buffer could not grow; `*len` is what would have
//   been taken, nothing was taken and the bytes gathered before are kept;
// - FS_ERR_NAME_TOO_LONG: the stream is longer than the 16-bit gathered
//   count can follow (above 65,535 bytes); nothing taken;
// - FS_ERR_BAD_PARAMETER: a null handle, block or `len`, null data with a
//   non-zero offer, or a block that claims more gathered bytes than the
//   stream has or the handle's name buffer holds; nothing taken.
FS_EXPORT FS_STATUS FS_FillBufferWithStream(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                            unsigned char* data, unsigned int* len,
                                            STREAM_INFO* header);

// Hands back the stream gathered so far: the handle's current header and
// the name buffer, or the decrypted-name buffer for an encrypted path or
// file name (STRM_PATH_NAME, STRM_FILE_NAME). Both outputs are null when
// nothing was gathered (or for a null handle or block). The pointers stay
// the handle's; they are valid until the next stream is gathered.
FS_EXPORT void FS_GetStreamInfo(FSYS_HAND_STRUCT* hand, DBLK* blk, STREAM_INFO** header,
                                unsigned char** data);
