// Parsing the kernel's mount table and choosing the local file systems in it.
#include "posix_mounts.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <set>
#include <sstream>

namespace qbposix {
namespace {

constexpr std::size_t kMaxMountTableBytes = 64u << 20;

bool IsOctal(char c) { return c >= '0' && c <= '7'; }

// Whether `path` is `dir` or lies below it.
bool AtOrBelow(std::string const& path, std::string const& dir) {
  if (dir == "/") return !path.empty() && path[0] == '/';
  if (path.compare(0, dir.size(), dir) != 0) return false;
  return path.size() == dir.size() || path[dir.size()] == '/';
}

bool EndsWith(std::string const& text, std::string const& suffix) {
  return text.size() >= suffix.size() &&
         text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

bool IsExcludedType(std::string const& type) {
  static std::set<std::string> const kExcluded = {
      // kernel interfaces and memory-backed file systems
      "proc", "sysfs", "cgroup", "cgroup2", "devpts", "devtmpfs", "mqueue", "debugfs",
      "tracefs", "securityfs", "pstore", "bpf", "configfs", "fusectl", "hugetlbfs", "autofs",
      "binfmt_misc", "rpc_pipefs", "nsfs", "efivarfs", "selinuxfs", "nfsd", "sockfs",
      "pipefs", "anon_inodefs", "cpuset", "ramfs", "tmpfs",
      // other machines' file systems
      "nfs", "nfs4", "cifs", "smb3", "smbfs", "ceph", "glusterfs", "afs", "9p", "davfs",
      "ncpfs", "lustre",
      // userspace file systems without a local block device
      "fuse"};
  return kExcluded.count(type) != 0 || type.compare(0, 5, "fuse.") == 0;
}

// Types whose one device carries several independent trees.
bool SharesDevice(std::string const& type) { return type == "btrfs" || type == "bcachefs"; }

}  // namespace

std::string DecodeMountField(std::string const& field) {
  std::string out;
  out.reserve(field.size());
  for (std::size_t i = 0; i < field.size(); ++i) {
    if (field[i] == '\\' && i + 3 < field.size() && IsOctal(field[i + 1]) &&
        IsOctal(field[i + 2]) && IsOctal(field[i + 3])) {
      int value = (field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 + (field[i + 3] - '0');
      if (value > 0 && value <= 0377) {
        out.push_back(static_cast<char>(value));
        i += 3;
        continue;
      }
    }
    out.push_back(field[i]);
  }
  return out;
}

std::vector<MountEntry> ParseMountTable(std::string const& text) {
  std::vector<MountEntry> entries;
  std::istringstream lines(text);
  std::string line;
  while (std::getline(lines, line)) {
    std::istringstream fields(line);
    std::string device, point, type, options;
    if (!(fields >> device >> point >> type)) continue;
    if (device[0] == '#') continue;
    fields >> options;
    entries.push_back(MountEntry{DecodeMountField(device), DecodeMountField(point),
                                 DecodeMountField(type), DecodeMountField(options)});
  }
  return entries;
}

std::vector<MountEntry> LastMountPerPoint(std::vector<MountEntry> const& entries) {
  std::vector<MountEntry> kept;
  std::set<std::string> seen;
  // Walking backwards keeps each point's last entry; the result is then
  // turned back into table order.
  for (auto it = entries.rbegin(); it != entries.rend(); ++it)
    if (seen.insert(it->mount_point).second) kept.push_back(*it);
  return std::vector<MountEntry>(kept.rbegin(), kept.rend());
}

bool IsLocalFileSystem(MountEntry const& entry) {
  std::string const& point = entry.mount_point;
  std::string const& type = entry.fs_type;
  if (point.empty() || point[0] != '/') return false;
  if (AtOrBelow(point, "/proc") || AtOrBelow(point, "/sys") || AtOrBelow(point, "/dev"))
    return false;
  if (IsExcludedType(type)) return false;
  if (type == "overlay" && point != "/") return false;
  if (type == "squashfs" && (AtOrBelow(point, "/snap") || EndsWith(entry.device, ".snap")))
    return false;
  return true;
}

std::vector<MountEntry> SelectLocalFileSystems(
    std::vector<MountEntry> const& entries,
    std::function<bool(std::string const&)> const& is_directory) {
  std::vector<MountEntry> selected;
  std::set<std::pair<std::string, std::string>> devices;  // (device, type) already kept
  for (MountEntry const& entry : LastMountPerPoint(entries)) {
    if (!IsLocalFileSystem(entry)) continue;
    if (is_directory && !is_directory(entry.mount_point)) continue;
    bool device_path = !entry.device.empty() && entry.device[0] == '/';
    if (device_path && !SharesDevice(entry.fs_type) &&
        !devices.insert({entry.device, entry.fs_type}).second)
      continue;
    selected.push_back(entry);
  }
  return selected;
}

MountEntry const* FindContainingMount(std::vector<MountEntry> const& entries,
                                      std::string const& path) {
  MountEntry const* best = nullptr;
  for (MountEntry const& entry : entries) {
    if (entry.mount_point.empty() || !AtOrBelow(path, entry.mount_point)) continue;
    // The later of two equal mount points is the one on top.
    if (best == nullptr || entry.mount_point.size() >= best->mount_point.size()) best = &entry;
  }
  return best;
}

int ReadMountTableFile(char const* path, std::string* text) {
  if (path == nullptr || text == nullptr) return EINVAL;
  int fd = ::open(path, O_RDONLY | O_CLOEXEC);
  if (fd < 0) return errno;
  text->clear();
  char buffer[16384];
  int error = 0;
  for (;;) {
    ssize_t got = ::read(fd, buffer, sizeof buffer);
    if (got < 0) {
      if (errno == EINTR) continue;
      error = errno;
      break;
    }
    if (got == 0) break;
    if (text->size() + static_cast<std::size_t>(got) > kMaxMountTableBytes) {
      error = EFBIG;
      break;
    }
    text->append(buffer, static_cast<std::size_t>(got));
  }
  ::close(fd);
  if (error != 0) text->clear();
  return error;
}

}  // namespace qbposix
