// What the posix module writes into descriptor blocks and streams, and how
// it reads them back on restore. These layouts are part of the backup data:
// every multi-byte number is little-endian, every record has a fixed size.
//
// Stream ids, in the order an object delivers them (each only when it has
// something to carry):
//
//   STRM_NT_EA      "NTEA"  extended attributes, all namespaces the kernel
//                           lists (user., trusted., security., system.);
//                           POSIX ACLs travel here as system.posix_acl_access
//                           and system.posix_acl_default. Records below.
//   STRM_NT_REPARSE "NTRP"  a symbolic link's target, its bytes as stored
//                           (never followed, never terminated).
//   STRM_NTFS_LINK  "LINK"  a regular file that is a further name of a file
//                           delivered earlier by the same handle: the bytes
//                           of that file's path below the attached root,
//                           components joined by '/'. No data follows; the
//                           restore makes the link.
//   STRM_NT_SPARSE  "SPAR"  a file with holes: its map (below). The data
//                           stream that follows holds only the mapped
//                           extents, one after the other; holes are neither
//                           read nor stored.
//   STRM_GENERIC_DATA "STAN" the file's bytes (of a sparse file: its extents).
//
// These ids were taken from the shared table because each names the same
// idea on another system (extended attributes, a reparse point, a hard
// link, a sparse map, standard data), so a reader of the media can tell the
// streams apart without knowing this module.
//
// Descriptor blocks. Every block the module makes has the generic layout
// (GEN_CreateDBLK builds it, for the walk and for the restore alike), so the
// layer's generic accessors read it. Directories are kind 8, every other
// object kind 9. Attribute word 1 holds the permission and type bits of
// st_mode (they fit below the bits the layer maps); attribute word 2 holds
// POSIX_ATTR2_* flags. The modification and access dates are set in UTC,
// to the 100-nanosecond tick. `os_info` points at a POSIX_OS_INFO, the full
// stat record with nanosecond times, which the restore uses for every
// timestamp and permission it sets.
#pragma once
#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <qbfsys/stream_ids.h>

namespace qbposix {

constexpr std::uint32_t POSIX_STRM_XATTRS = STRM_NT_EA;
constexpr std::uint32_t POSIX_STRM_SYMLINK = STRM_NT_REPARSE;
constexpr std::uint32_t POSIX_STRM_HARDLINK = STRM_NTFS_LINK;
constexpr std::uint32_t POSIX_STRM_SPARSE_MAP = STRM_NT_SPARSE;
constexpr std::uint32_t POSIX_STRM_DATA = STRM_GENERIC_DATA;

// OS id of the blocks: one of the ids whose path delimiter is '/'.
constexpr std::uint8_t POSIX_OS_ID = 20;
// Version of the POSIX_OS_INFO layout (the block's os_ver).
constexpr std::uint8_t POSIX_OS_INFO_VERSION = 1;

// Attribute word 2 flags.
constexpr std::uint32_t POSIX_ATTR2_SPARSE =
    0x1;  // fewer blocks than its size needs: it may have holes
constexpr std::uint32_t POSIX_ATTR2_LINKED = 0x2;  // more than one name (st_nlink > 1)
constexpr std::uint32_t POSIX_ATTR2_MOUNT_POINT =
    0x4;  // a directory on which another file system is mounted

// The stat record of an object, as carried in its block (in the order of
// the supported x86-64 hosts, little-endian, with no padding).
struct POSIX_OS_INFO {
  std::uint32_t version;  // POSIX_OS_INFO_VERSION
  std::uint32_t mode;     // st_mode: type, setuid, setgid, sticky, permissions
  std::uint32_t uid;
  std::uint32_t gid;
  std::uint64_t nlink;
  std::uint64_t dev;  // device of the file system holding it
  std::uint64_t ino;
  std::uint64_t rdev;    // device number of a device node
  std::uint64_t size;    // st_size (a symbolic link: its target's length)
  std::uint64_t blocks;  // 512-byte blocks allocated
  std::int64_t atime_sec;
  std::int64_t mtime_sec;
  std::int64_t ctime_sec;
  std::uint32_t atime_nsec;
  std::uint32_t mtime_nsec;
  std::uint32_t ctime_nsec;
  std::uint32_t reserved;
};
static_assert(sizeof(POSIX_OS_INFO) == 104, "the OS info record is part of the backup data");
static_assert(offsetof(POSIX_OS_INFO, atime_sec) == 64, "seconds follow the sizes");
static_assert(offsetof(POSIX_OS_INFO, atime_nsec) == 88, "nanoseconds follow the seconds");

// The record of a stat result.
POSIX_OS_INFO posix_os_info_from_stat(struct stat const& st);
// True when `size` bytes at `data` are a record this module can restore
// from; `out` then holds a copy.
bool posix_os_info_read(void const* data, std::size_t size, POSIX_OS_INFO& out);

// One extended attribute. Stream layout, repeated: u32 name length, u32
// value length, the name's bytes, the value's bytes.
struct PosixXattr {
  std::string name;
  std::string value;
};
constexpr std::size_t POSIX_XATTR_HEADER_SIZE = 8;
void posix_put_xattrs(std::vector<PosixXattr> const& xattrs, std::string& out);
// False for a stream that does not parse exactly into records.
bool posix_parse_xattrs(std::string const& data, std::vector<PosixXattr>& out);

// One extent of data in a sparse file.
struct PosixExtent {
  std::uint64_t offset;
  std::uint64_t length;
};
// Sparse map layout: u64 file size, u64 extent count, then each extent's
// u64 offset and u64 length, in ascending order, not overlapping, inside the
// file size.
constexpr std::size_t POSIX_SPARSE_HEADER_SIZE = 16;
constexpr std::size_t POSIX_SPARSE_EXTENT_SIZE = 16;
void posix_put_sparse_map(std::uint64_t file_size, std::vector<PosixExtent> const& extents,
                          std::string& out);
// False for a map that is malformed (short, extents out of order,
// overlapping or beyond the file size).
bool posix_parse_sparse_map(std::string const& data, std::uint64_t& file_size,
                            std::vector<PosixExtent>& extents);

// The largest short stream (extended attributes, link targets, maps) the
// restore gathers in memory; longer ones are refused as malformed.
constexpr std::size_t POSIX_SHORT_STREAM_MAX = 16u << 20;

}  // namespace qbposix
