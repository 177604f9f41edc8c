#include "stat_view.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstring>

namespace qbfs::archive {

bool stat_view(std::uint8_t os_id, std::vector<unsigned char> const& os_info,
                qbposix::POSIX_OS_INFO& out) {
  return os_id == qbposix::POSIX_OS_ID && qbposix::posix_os_info_read(os_info.data(), os_info.size(), out);
}

std::string mode_text(std::uint32_t mode) {
  char type = '?';
  switch (mode & S_IFMT) {
    case S_IFDIR: type = 'd'; break;
    case S_IFREG: type = '-'; break;
    case S_IFLNK: type = 'l'; break;
    case S_IFIFO: type = 'p'; break;
    case S_IFSOCK: type = 's'; break;
    case S_IFCHR: type = 'c'; break;
    case S_IFBLK: type = 'b'; break;
    default: break;
  }
  std::string text(1, type);
  char const* const rwx = "rwxrwxrwx";
  for (int bit = 0; bit < 9; ++bit) text += (mode & (0400u >> bit)) ? rwx[bit] : '-';
  if (mode & S_ISUID) text[3] = (mode & S_IXUSR) ? 's' : 'S';
  if (mode & S_ISGID) text[6] = (mode & S_IXGRP) ? 's' : 'S';
  if (mode & S_ISVTX) text[9] = (mode & S_IXOTH) ? 't' : 'T';
  return text;
}

std::string posix_differences(qbposix::POSIX_OS_INFO const& a, qbposix::POSIX_OS_INFO const& b) {
  std::string out;
  auto add = [&](std::string const& what) { out += (out.empty() ? "" : ", ") + what; };
  char text[128];
  if ((a.mode & S_IFMT) != (b.mode & S_IFMT)) {
    add("type " + mode_text(a.mode).substr(0, 1) + " in the archive, " + mode_text(b.mode).substr(0, 1) + " found");
    return out;
  }
  if ((a.mode & 07777) != (b.mode & 07777)) {
    std::snprintf(text, sizeof text, "mode %04o in the archive, %04o found", a.mode & 07777, b.mode & 07777);
    add(text);
  }
  if (a.uid != b.uid) add("owner " + std::to_string(a.uid) + " in the archive, " + std::to_string(b.uid) + " found");
  if (a.gid != b.gid) add("group " + std::to_string(a.gid) + " in the archive, " + std::to_string(b.gid) + " found");
  if (S_ISREG(a.mode) && a.size != b.size)
    add("size " + std::to_string(a.size) + " in the archive, " + std::to_string(b.size) + " found");
  if (!S_ISLNK(a.mode) && (a.mtime_sec != b.mtime_sec || a.mtime_nsec != b.mtime_nsec)) {
    std::snprintf(text, sizeof text, "modification time %lld.%09u in the archive, %lld.%09u found",
                  static_cast<long long>(a.mtime_sec), a.mtime_nsec, static_cast<long long>(b.mtime_sec), b.mtime_nsec);
    add(text);
  }
  return out;
}

}  // namespace qbfs::archive
