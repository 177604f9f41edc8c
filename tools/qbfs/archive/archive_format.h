// The qbfs archive: the layer's stream framing laid out in a file, so that
// a backup can be restored, listed and verified later, also by another
// program (docs/archive-format.md describes it for such readers).
//
// The archive is a header followed by frames. Every frame starts with a
// 16-byte frame header carrying a magic number, a kind, a payload length and
// a CRC-32; the CRC keeps damage local: a reader that meets a bad frame
// skips to the next frame that checks out and goes on with the next object.
// Per object: an OBJECT frame (its description record), then for each
// stream a STREAM frame (the STREAM_INFO header as the layer hands it out)
// followed by DATA frames holding exactly the stream's size, and last a
// checksum stream (STRM_CHECKSUM_DATA, a SHA-256 digest of the object).
// An END frame, the end-of-data record, closes the archive.
//
// Every number is little-endian; records have no padding.
#pragma once
#include <cstddef>
#include <cstdint>

#include <qbfsys/stream_info.h>
#include <qbhost/datetime.h>

namespace qbfs::archive {

// --- Archive header, at offset 0 ---
constexpr unsigned char kArchiveMagic[8] = {'Q', 'B', 'F', 'S', 'A', 'R', 'C', 'H'};
// Version 2 adds the generic description (ObjectGeneric) to every object
// record; readers still read version 1, whose records have none.
constexpr std::uint32_t kArchiveVersion = 2;
constexpr std::uint32_t kOldestArchiveVersion = 1;

struct ArchiveHeader {
  unsigned char magic[8];    // kArchiveMagic
  std::uint32_t version;     // kArchiveVersion
  std::uint32_t size;        // sizeof(ArchiveHeader): frames start here
  std::int64_t created;      // seconds since 1970-01-01 UTC
  std::uint32_t flags;       // 0; readers refuse other values
  std::uint32_t crc;         // CRC-32 of the 28 bytes before it
};
static_assert(sizeof(ArchiveHeader) == 32, "archive header");
static_assert(offsetof(ArchiveHeader, crc) == 28, "archive header CRC");

// --- Frames ---
constexpr std::uint32_t kFrameMagic = 0x52464251;  // "QBFR"

enum FrameKind : std::uint16_t {
  FRAME_OBJECT = 1,  // payload: ObjectRecord, ObjectGeneric (version 2), path bytes, OS info bytes
  FRAME_STREAM = 2,  // payload: one STREAM_INFO
  FRAME_DATA = 3,    // payload: bytes of the current stream
  FRAME_END = 4,     // payload: EndRecord
};

struct FrameHeader {
  std::uint32_t magic;     // kFrameMagic
  std::uint16_t kind;      // FrameKind
  std::uint16_t reserved;  // 0
  std::uint32_t length;    // payload bytes that follow
  std::uint32_t crc;       // CRC-32 of the 12 bytes before it, then of the
                           // payload, except for DATA frames (their bytes are
                           // covered by the object's digest)
};
static_assert(sizeof(FrameHeader) == 16, "frame header");

// The largest DATA payload; a stream longer than this takes several frames.
constexpr std::uint32_t kMaxDataPayload = 1u << 20;

// --- Object record ---
struct ObjectRecord {
  std::uint64_t number;        // 0, 1, 2, ... in archive order
  std::uint8_t blk_type;       // DBLK_KIND_DDB or DBLK_KIND_FDB
  std::uint8_t os_id;          // the block's os_id
  std::uint8_t os_ver;         // the block's os_ver
  std::uint8_t reserved;       // 0
  std::uint32_t attrib1;       // FS_GetAttrib1FromDBLK
  std::uint32_t attrib2;       // FS_GetAttrib2FromDBLK
  std::uint16_t path_size;     // bytes of the path that follows
  std::uint16_t os_info_size;  // bytes of OS info after the path
};
static_assert(sizeof(ObjectRecord) == 24, "object record");
static_assert(offsetof(ObjectRecord, path_size) == 20, "object record sizes");

// What the layer knows of every block, whatever module made it, so that a
// listing, a comparison or a restore through another module has the
// object's size and dates without reading the module's OS information.
// Follows the ObjectRecord in a version-2 record. Dates are the block's, as
// the layer hands them out (UTC); a date the module does not keep has
// date_valid 0.
struct ObjectGeneric {
  std::uint64_t display_size;  // the block's display size
  _DATE_TIME cdate;            // creation
  _DATE_TIME mdate;            // modification
  _DATE_TIME adate;            // access
  _DATE_TIME bdate;            // backup
};
static_assert(sizeof(ObjectGeneric) == 72, "generic description");
static_assert(offsetof(ObjectGeneric, mdate) == 24 && offsetof(ObjectGeneric, bdate) == 56,
              "generic description dates");

// The OS info of a block is at most what FS_GetOS_InfoFromDBLK copies.
constexpr std::uint16_t kMaxOsInfo = 1024;
constexpr std::uint32_t kMaxObjectPayload =
    sizeof(ObjectRecord) + sizeof(ObjectGeneric) + 0xFFFFu + kMaxOsInfo;

// --- Checksum stream, closing each object ---
constexpr std::uint32_t kDigestSize = 32;  // SHA-256
// fs_attrib of the checksum stream: the source failed while the object was
// read; the stream before the checksum may end short of its size and the
// object is not to be restored as if it were whole.
constexpr std::uint16_t kChecksumSourceFailed = 0x1;

// --- End-of-data record ---
struct EndRecord {
  std::uint64_t objects;        // object records written
  std::uint64_t data_bytes;     // stream data bytes written, checksums excluded
  unsigned char digest[kDigestSize];  // SHA-256 over the objects' digests, in order
};
static_assert(sizeof(EndRecord) == 48, "end record");

}  // namespace qbfs::archive
