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
// to the 100-nanosecond tick. `os_info` points at a POSIX_OS_INFO
// (qbposix/posix_os_info.h, installed), the full stat record with nanosecond
// times, which the restore uses for every
// timestamp and permission it sets.
#pragma once
#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <qbfsys/stream_ids.h>
#include <qbposix/posix_os_info.h>

namespace qbposix {

constexpr std::uint32_t POSIX_STRM_XATTRS = STRM_NT_EA;
constexpr std::uint32_t POSIX_STRM_SYMLINK = STRM_NT_REPARSE;
constexpr std::uint32_t POSIX_STRM_HARDLINK = STRM_NTFS_LINK;
constexpr std::uint32_t POSIX_STRM_SPARSE_MAP = STRM_NT_SPARSE;
constexpr std::uint32_t POSIX_STRM_DATA = STRM_GENERIC_DATA;

// The record of a stat result.
POSIX_OS_INFO posix_os_info_from_stat(struct stat const& st);

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
