// The posix module's OS information: the record it puts in every descriptor
// block it makes (DBLK.os_info, with os_id POSIX_OS_ID and os_ver
// POSIX_OS_INFO_VERSION) and that travels with the block onto backup media.
//
// This header is a contract for other programs: a tool that lists, compares
// or restores the module's objects reads the record through
// posix_os_info_read, without the module. The layout never changes under
// the same version: a new layout gets a new version, and readers refuse
// versions they do not know.
//
// Layout (104 bytes, little-endian, no padding; offsets pinned below): u32
// version, u32 mode (st_mode: type, set-user-id, set-group-id, sticky and
// permission bits), u32 uid, u32 gid, u64 nlink, u64 dev, u64 ino, u64 rdev,
// u64 size, u64 blocks (512-byte units), i64 atime, mtime and ctime seconds,
// u32 atime, mtime and ctime nanoseconds, u32 reserved (0).
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qbposix {

// OS id of the module's blocks: one of the ids whose path delimiter is '/'.
constexpr std::uint8_t POSIX_OS_ID = 20;
// Version of the POSIX_OS_INFO layout (the block's os_ver).
constexpr std::uint8_t POSIX_OS_INFO_VERSION = 1;

// Attribute word 2 flags of the module's blocks.
constexpr std::uint32_t POSIX_ATTR2_SPARSE = 0x1;       // fewer blocks than its size needs
constexpr std::uint32_t POSIX_ATTR2_LINKED = 0x2;       // more than one name (st_nlink > 1)
constexpr std::uint32_t POSIX_ATTR2_MOUNT_POINT = 0x4;  // another file system is mounted on it

struct POSIX_OS_INFO {
  std::uint32_t version;  // POSIX_OS_INFO_VERSION
  std::uint32_t mode;     // st_mode
  std::uint32_t uid;
  std::uint32_t gid;
  std::uint64_t nlink;
  std::uint64_t dev;     // device of the file system holding it
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
static_assert(offsetof(POSIX_OS_INFO, mode) == 4 && offsetof(POSIX_OS_INFO, uid) == 8 &&
                  offsetof(POSIX_OS_INFO, gid) == 12,
              "identity words come first");
static_assert(offsetof(POSIX_OS_INFO, nlink) == 16 && offsetof(POSIX_OS_INFO, dev) == 24 &&
                  offsetof(POSIX_OS_INFO, ino) == 32 && offsetof(POSIX_OS_INFO, rdev) == 40 &&
                  offsetof(POSIX_OS_INFO, size) == 48 && offsetof(POSIX_OS_INFO, blocks) == 56,
              "the 64-bit counts follow");
static_assert(offsetof(POSIX_OS_INFO, atime_sec) == 64 && offsetof(POSIX_OS_INFO, mtime_sec) == 72 &&
                  offsetof(POSIX_OS_INFO, ctime_sec) == 80,
              "seconds follow the sizes");
static_assert(offsetof(POSIX_OS_INFO, atime_nsec) == 88 && offsetof(POSIX_OS_INFO, mtime_nsec) == 92 &&
                  offsetof(POSIX_OS_INFO, ctime_nsec) == 96 && offsetof(POSIX_OS_INFO, reserved) == 100,
              "nanoseconds follow the seconds");

// True when `size` bytes at `data` are a record of this version with
// nanosecond fields below one second; `out` then holds a copy. The supported
// hosts are little-endian x86-64, so the bytes are the record.
inline bool posix_os_info_read(void const* data, std::size_t size, POSIX_OS_INFO& out) {
  constexpr std::uint32_t kNanosPerSecond = 1000000000;
  if (data == nullptr || size != sizeof(POSIX_OS_INFO)) return false;
  std::memcpy(&out, data, sizeof out);
  return out.version == POSIX_OS_INFO_VERSION && out.atime_nsec < kNanosPerSecond &&
         out.mtime_nsec < kNanosPerSecond && out.ctime_nsec < kNanosPerSecond;
}

}  // namespace qbposix
