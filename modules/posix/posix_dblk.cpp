// Filling and reading the module's descriptor blocks.
#include "posix_dblk.h"

#include <unistd.h>

#include <ctime>
#include <cwchar>

#include <qbfsys/create_dblk.h>
#include <qbfsys/gen.h>
#include <qbfsys/name_pool.h>

#include "posix_name_codec.h"

namespace qbposix {
namespace {

constexpr int kTmYearBase = 1900;
constexpr int kFirstDateYear = 1601;  // the earliest year a _DATE_TIME holds
constexpr long kNanosPerTick = 100;
constexpr std::uint32_t kModeBits = 0xFFFF;
constexpr std::uint64_t kBlockBytes = 512;  // unit of st_blocks

_DATE_TIME utc_date(std::int64_t seconds, std::uint32_t nanos) {
  _DATE_TIME date{};
  std::time_t const t = static_cast<std::time_t>(seconds);
  struct tm parts {};
  if (gmtime_r(&t, &parts) == nullptr || parts.tm_year + kTmYearBase < kFirstDateYear) return date;
  date.date_valid = 1;
  date.year = static_cast<std::uint16_t>(parts.tm_year + kTmYearBase);
  date.month = static_cast<std::uint8_t>(parts.tm_mon + 1);
  date.day = static_cast<std::uint8_t>(parts.tm_mday);
  date.hour = static_cast<std::uint8_t>(parts.tm_hour);
  date.minute = static_cast<std::uint8_t>(parts.tm_min);
  date.second = static_cast<std::uint8_t>(parts.tm_sec);
  date.day_of_week = static_cast<std::uint8_t>(parts.tm_wday);
  date.ticks = static_cast<std::uint32_t>(nanos / kNanosPerTick);
  return date;
}

// Seconds and nanoseconds since 1970 of a UTC date; false when not set.
bool utc_seconds(_DATE_TIME const& date, std::int64_t& seconds, std::uint32_t& nanos) {
  constexpr std::uint32_t kTicksPerSecond = 10000000;
  if (date.date_valid == 0 || date.month < 1 || date.month > 12 || date.day < 1 || date.day > 31 ||
      date.hour > 23 || date.minute > 59 || date.second > 60 || date.ticks >= kTicksPerSecond)
    return false;
  struct tm parts {};
  parts.tm_year = date.year - kTmYearBase;
  parts.tm_mon = date.month - 1;
  parts.tm_mday = date.day;
  parts.tm_hour = date.hour;
  parts.tm_min = date.minute;
  parts.tm_sec = date.second;
  std::time_t const t = timegm(&parts);
  if (t == static_cast<std::time_t>(-1) && date.year != 1969) return false;
  seconds = static_cast<std::int64_t>(t);
  nanos = date.ticks * static_cast<std::uint32_t>(kNanosPerTick);
  return true;
}

}  // namespace

OBJECT_TYPE posix_object_type(std::uint32_t mode) {
  switch (mode & S_IFMT) {
    case S_IFREG: return FS_OBJ_FILE;
    case S_IFDIR: return FS_OBJ_DIRECTORY;
    case S_IFLNK: return FS_OBJ_LINK;
    case S_IFCHR:
    case S_IFBLK: return FS_OBJ_DEVICE;
    default: return FS_OBJ_GENERIC;
  }
}

void posix_release_name(FSYS_HAND_STRUCT* fsh, PosixHandleState& state, DBLK* blk) {
  auto const it = state.names.find(blk->os_name);
  if (it == state.names.end()) return;
  state.names.erase(it);
  GEN_ReleaseBlk(fsh, blk);
}

FS_STATUS posix_fill_dblk(FSYS_HAND_STRUCT* fsh, PosixHandleState& state, DBLK* blk,
                          std::string const& name, struct stat const& st, POSIX_OS_INFO& storage) {
  posix_release_name(fsh, state, blk);
  storage = posix_os_info_from_stat(st);
  bool const dir = S_ISDIR(st.st_mode);
  std::uint8_t const kind = dir ? DBLK_KIND_DDB : DBLK_KIND_FDB;
  std::wstring const wide = posix_decode_name(name);
  _DATE_TIME const mdate = utc_date(storage.mtime_sec, storage.mtime_nsec);
  _DATE_TIME const adate = utc_date(storage.atime_sec, storage.atime_nsec);

  _CREATE_DBLK request;
  FS_SetDefaultDBLK(fsh, static_cast<char>(kind), 0, &request);
  request.dblk = blk;
  _GEN_DBLK_DATA& gen = request.gen;
  gen.dblk = blk;
  gen.os_id = POSIX_OS_ID;
  gen.os_ver = POSIX_OS_INFO_VERSION;
  gen.display_size = dir ? 0 : storage.size;
  gen.media_attrib = storage.mode & kModeBits;
  bool const file = S_ISREG(st.st_mode);
  gen.attrib2 =
      (file && st.st_nlink > 1 ? POSIX_ATTR2_LINKED : 0u) |
      (file && storage.blocks * kBlockBytes < storage.size ? POSIX_ATTR2_SPARSE : 0u) |
      (dir && static_cast<std::uint64_t>(st.st_dev) != state.root_dev ? POSIX_ATTR2_MOUNT_POINT
                                                                      : 0u);
  gen.name_char_type = DBLK_NAME_WIDE;
  gen.os_info = &storage;
  gen.os_info_size = sizeof storage;
  gen.name = wide.c_str();
  gen.name_size = static_cast<std::uint16_t>((wide.size() + 1) * sizeof(wchar_t));
  if (mdate.date_valid != 0) gen.mdate = &mdate;
  if (adate.date_valid != 0) gen.adate = &adate;
  FS_STATUS const status = GEN_CreateDBLK(fsh, kind, &request);
  if (blk->os_name != nullptr) state.names.insert(blk->os_name);
  if (status != FS_SUCCESS) return status;
  return GEN_SetObjTypeDBLK(fsh, blk, posix_object_type(storage.mode));
}

bool posix_blk_name(DBLK const* blk, std::string& bytes) {
  if (blk == nullptr || blk->os_name == nullptr || blk->os_name->buffer == nullptr) return false;
  auto const* wide = reinterpret_cast<wchar_t const*>(blk->os_name->buffer);
  std::size_t const max = blk->os_name->size / sizeof(wchar_t);
  std::size_t length = 0;
  while (length < max && wide[length] != L'\0') ++length;
  // One component only: a name that would reach another directory is refused.
  return length > 0 && posix_encode_name(wide, length, bytes) &&
         bytes.find('/') == std::string::npos && bytes != "." && bytes != "..";
}

bool posix_blk_info(DBLK const* blk, POSIX_OS_INFO& info) {
  return blk != nullptr && dblk_is_object(blk) &&
         posix_os_info_read(blk->os_info, blk->os_info_size, info);
}

}  // namespace qbposix

namespace qbposix {

bool posix_restore_info(DBLK const* blk, POSIX_OS_INFO& info, bool plain_directory_too) {
  constexpr std::uint32_t kGenericDirMode = S_IFDIR | 0755;
  constexpr std::uint32_t kGenericFileMode = S_IFREG | 0644;
  if (blk == nullptr || !dblk_is_object(blk)) return false;
  if (posix_blk_info(blk, info)) return true;
  // A block under this module's own id without a record it can read is
  // damaged or forged: refused, not filled in with defaults.
  if (blk->os_id == POSIX_OS_ID) return false;
  bool const directory = blk->blk_type == DBLK_KIND_DDB;
  if (directory && !plain_directory_too && (blk->os_info == nullptr || blk->os_info_size == 0))
    return false;
  info = POSIX_OS_INFO{};
  info.version = POSIX_OS_INFO_VERSION;
  info.mode = directory ? kGenericDirMode : kGenericFileMode;
  info.uid = static_cast<std::uint32_t>(geteuid());
  info.gid = static_cast<std::uint32_t>(getegid());
  info.nlink = 1;
  struct timespec now {};
  clock_gettime(CLOCK_REALTIME, &now);
  info.mtime_sec = info.atime_sec = info.ctime_sec = now.tv_sec;
  info.mtime_nsec = info.atime_nsec = info.ctime_nsec = static_cast<std::uint32_t>(now.tv_nsec);
  utc_seconds(blk->area.gen.mdate, info.mtime_sec, info.mtime_nsec);
  if (!utc_seconds(blk->area.gen.adate, info.atime_sec, info.atime_nsec)) {
    info.atime_sec = info.mtime_sec;
    info.atime_nsec = info.mtime_nsec;
  }
  return true;
}

}  // namespace qbposix
