// Extended attributes and restored metadata.
//
// Objects without an open descriptor (symbolic links, FIFOs, device nodes)
// are reached for their attributes as /proc/self/fd/<dir>/<name> with the
// l-calls: the directory part is the kernel's link to the open directory and
// the last name is not followed, so the path stays short however deep the
// object lies, and a link's own attributes are the ones read and set.
#include "posix_metadata.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace qbposix {
namespace {

std::string proc_path(int dirfd, std::string const& name) {
  return "/proc/self/fd/" + std::to_string(dirfd) + "/" + name;
}

bool no_xattr_support(int error) {
  return error == ENOTSUP || error == ENOSYS;
}

// listxattr or getxattr into `out`, growing until the answer fits.
template <typename Call>
int fetch(Call call, std::string& out) {
  for (;;) {
    ssize_t const size = call(nullptr, 0);
    if (size < 0) return errno;
    out.resize(static_cast<std::size_t>(size));
    if (size == 0) return 0;  // most objects have no attributes: one call
    ssize_t const got = call(&out[0], out.size());
    if (got >= 0) {
      out.resize(static_cast<std::size_t>(got));
      return 0;
    }
    if (errno != ERANGE) return errno;  // it grew between the two calls: ask again
  }
}

}  // namespace

int posix_read_xattrs(int dirfd, std::string const& name, int fd, std::vector<PosixXattr>& out) {
  out.clear();
  std::string const path = fd >= 0 ? std::string() : proc_path(dirfd, name);
  std::string names;
  int error = fetch(
      [&](char* buf, std::size_t size) {
        return fd >= 0 ? flistxattr(fd, buf, size) : llistxattr(path.c_str(), buf, size);
      },
      names);
  if (error != 0) return no_xattr_support(error) ? 0 : error;
  for (std::size_t at = 0; at < names.size();) {
    std::string const attr = names.c_str() + at;
    at += attr.size() + 1;
    if (attr.empty()) continue;
    std::string value;
    error = fetch(
        [&](char* buf, std::size_t size) {
          return fd >= 0 ? fgetxattr(fd, attr.c_str(), buf, size)
                         : lgetxattr(path.c_str(), attr.c_str(), buf, size);
        },
        value);
    if (error == ENODATA) continue;  // removed since it was listed
    if (error != 0) return error;
    out.push_back({attr, value});
  }
  return 0;
}

int posix_apply_metadata(int dirfd, std::string const& name, int fd, POSIX_OS_INFO const& info,
                         std::vector<PosixXattr> const& xattrs, bool privileged,
                         wchar_t const** step) {
  constexpr mode_t kPermissionBits = 07777;
  int first = 0;
  auto failed = [&](wchar_t const* what) {
    if (first == 0) {
      first = errno;
      *step = what;
    }
  };
  std::string const path = fd >= 0 ? std::string() : proc_path(dirfd, name);
  bool const is_link = S_ISLNK(info.mode);

  // The owner goes first: a change of owner makes the kernel drop a
  // non-directory's security.capability, so attributes set before it would
  // be lost.
  if (privileged) {
    int const rc = fd >= 0 ? fchown(fd, info.uid, info.gid)
                           : fchownat(dirfd, name.c_str(), info.uid, info.gid, AT_SYMLINK_NOFOLLOW);
    if (rc != 0) failed(L"owner could not be set");
  }
  for (PosixXattr const& x : xattrs) {
    int const rc = fd >= 0
                       ? fsetxattr(fd, x.name.c_str(), x.value.data(), x.value.size(), 0)
                       : lsetxattr(path.c_str(), x.name.c_str(), x.value.data(), x.value.size(), 0);
    if (rc != 0) failed(L"extended attribute could not be set");
  }
  if (!is_link) {
    mode_t const mode = static_cast<mode_t>(info.mode) & kPermissionBits;
    // Not following a link: if the name was swapped for one since the
    // object was made, the change fails instead of reaching the link's target.
    int const rc = fd >= 0 ? fchmod(fd, mode)
                           : fchmodat(dirfd, name.c_str(), mode, AT_SYMLINK_NOFOLLOW);
    if (rc != 0) failed(L"mode could not be set");
  }
  struct timespec const times[2] = {{info.atime_sec, static_cast<long>(info.atime_nsec)},
                                    {info.mtime_sec, static_cast<long>(info.mtime_nsec)}};
  int const rc =
      fd >= 0 ? futimens(fd, times) : utimensat(dirfd, name.c_str(), times, AT_SYMLINK_NOFOLLOW);
  if (rc != 0) failed(L"times could not be set");
  return first;
}

}  // namespace qbposix
