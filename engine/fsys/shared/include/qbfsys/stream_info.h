// STREAM_INFO: the header that introduces each stream of an object's data.
// Part of the backup data format: 32 bytes, fixed layout.
#pragma once
#include <cstddef>
#include <cstdint>

struct STREAM_INFO {
  std::uint32_t id;         // four-character stream id
  std::uint16_t fs_attrib;  // set by the file system that produced the stream
  std::uint16_t tf_attrib;  // as stored by the data format; 0x40: an encrypted name
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
