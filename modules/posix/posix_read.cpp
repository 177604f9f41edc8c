// Reading an object as streams: OpenObj for FS_READ, ReadObj, and CloseObj
// for either direction.
//
// Everything but the file's data is gathered when the object is opened (its
// extended attributes, link target, sparse map), so each stream's size is
// known before its header goes out. The data stream's size is the file's
// size when it was listed: a file that grows meanwhile is delivered as it
// was then and printed, as is one that was replaced or changed (seen by one
// stat once its data was read); one that shrinks cannot fill its promised
// stream and ends with FS_STATUS_EXT_ERROR, its path and the reason on the
// handle.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#include <qbfsys/handles.h>
#include <qbfsys/stream_info.h>

#include "posix_dblk.h"
#include "posix_fsys.h"
#include "posix_metadata.h"
#include "posix_object.h"

namespace qbposix {
namespace {

constexpr std::uint64_t kBlockBytes = 512;  // unit of st_blocks

constexpr int kFileFlags = O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

int open_noatime(int dirfd, char const* name, int flags) {
  // O_NOATIME keeps a backup from touching access times; the kernel grants
  // it to the owner and to privileged callers only.
  int fd = openat(dirfd, name, flags | O_NOATIME);
  if (fd < 0 && errno == EPERM) fd = openat(dirfd, name, flags);
  return fd;
}

FS_STATUS report_open(FSYS_HAND_STRUCT* fsh, PosixObject const& obj, int error) {
  return posix_report(
      fsh, error, posix_object_path(obj),
      error == ENOENT ? L"vanished before it could be read" : L"could not be opened");
}

// The extents of data of a file of `size` bytes, found with SEEK_DATA and
// SEEK_HOLE. A file whose blocks cover its size has no holes, and one on a
// file system that cannot say is read whole.
std::vector<PosixExtent> data_extents(int fd, POSIX_OS_INFO const& info) {
  std::uint64_t const size = info.size;
  if (size == 0) return {};
  if (info.blocks * kBlockBytes >= size) return {{0, size}};
  std::vector<PosixExtent> extents;
  off_t at = 0;
  while (static_cast<std::uint64_t>(at) < size) {
    off_t const data = lseek(fd, at, SEEK_DATA);
    if (data < 0) {
      if (errno == ENXIO) break;  // only a hole is left
      return {{0, size}};
    }
    off_t hole = lseek(fd, data, SEEK_HOLE);
    if (hole < 0 || static_cast<std::uint64_t>(hole) > size) hole = static_cast<off_t>(size);
    if (hole > data)
      extents.push_back(
          {static_cast<std::uint64_t>(data), static_cast<std::uint64_t>(hole - data)});
    at = hole;
  }
  return extents;
}

bool is_whole(std::vector<PosixExtent> const& extents, std::uint64_t size) {
  return size == 0 || (extents.size() == 1 && extents[0].offset == 0 && extents[0].length == size);
}

std::string join_path(std::vector<std::string> const& components, std::string const& name) {
  std::string out;
  for (std::string const& c : components) out += c + "/";
  return out + name;
}

int read_link(int dirfd, std::string const& name, std::string& target) {
  constexpr std::size_t kFirstGuess = 256;
  target.resize(kFirstGuess);
  for (;;) {
    ssize_t const n = readlinkat(dirfd, name.c_str(), &target[0], target.size());
    if (n < 0) return errno;
    if (static_cast<std::size_t>(n) < target.size()) {
      target.resize(static_cast<std::size_t>(n));
      return 0;
    }
    target.resize(target.size() * 2);
  }
}

void add_stream(PosixObject& obj, std::uint32_t id, std::string bytes) {
  std::uint64_t const size = bytes.size();
  obj.streams.push_back({id, size, std::move(bytes), false});
}

// Prints what happened to a file while its data was read.
void check_after_data(PosixObject& obj) {
  struct stat st {};
  if (fstat(obj.fd, &st) != 0) return;
  if (st.st_ino != obj.info.ino || st.st_dev != obj.info.dev) {
    posix_note(0, posix_object_path(obj),
               L"was replaced after it was listed; the file found when opened was read");
  } else if (static_cast<std::uint64_t>(st.st_size) > obj.info.size) {
    posix_note(0, posix_object_path(obj),
               L"grew from " + std::to_wstring(obj.info.size) + L" to " +
                   std::to_wstring(st.st_size) + L" bytes while being read; the first " +
                   std::to_wstring(obj.info.size) + L" bytes were kept");
  } else if (st.st_mtim.tv_sec != obj.info.mtime_sec ||
             static_cast<std::uint32_t>(st.st_mtim.tv_nsec) != obj.info.mtime_nsec) {
    posix_note(0, posix_object_path(obj),
               L"changed after it was listed; the copy may mix old and new data");
  }
}

FS_STATUS plan_regular(PosixHandleState& state, PosixObject& obj) {
  if (obj.info.nlink > 1) {
    auto const key = std::make_pair(obj.info.dev, obj.info.ino);
    auto const found = state.first_links.find(key);
    if (found != state.first_links.end()) {
      add_stream(obj, POSIX_STRM_HARDLINK, found->second);
      return FS_SUCCESS;
    }
    state.first_links.emplace(key, join_path(posix_current_components(state), obj.name));
  }
  obj.extents = data_extents(obj.fd, obj.info);
  std::uint64_t data_bytes = 0;
  for (PosixExtent const& e : obj.extents) data_bytes += e.length;
  if (!is_whole(obj.extents, obj.info.size)) {
    std::string map;
    posix_put_sparse_map(obj.info.size, obj.extents, map);
    add_stream(obj, POSIX_STRM_SPARSE_MAP, std::move(map));
  }
  if (data_bytes > 0) obj.streams.push_back({POSIX_STRM_DATA, data_bytes, {}, true});
  return FS_SUCCESS;
}

// Delivers up to `room` bytes of the data stream from the file.
FS_STATUS read_data(PosixObject& obj, unsigned char* buffer, std::uint32_t room,
                    unsigned int* size) {
  PosixOutStream const& s = obj.streams[obj.current];
  PosixExtent const& e = obj.extents[obj.extent];
  std::uint64_t want = e.length - obj.extent_offset;
  if (want > room) want = room;
  ssize_t got = 0;
  do {
    got = pread(obj.fd, buffer, want, static_cast<off_t>(e.offset + obj.extent_offset));
  } while (got < 0 && errno == EINTR);
  if (got < 0)
    return posix_report(obj.fsysHand, errno, posix_object_path(obj), L"could not be read");
  if (got == 0 && want > 0) {
    std::wstring const what = L"shrank while being read: " + std::to_wstring(obj.offset) + L" of " +
                              std::to_wstring(s.size) +
                              L" bytes were read before its end; the copy is incomplete";
    return posix_report(obj.fsysHand, 0, posix_object_path(obj), what.c_str());
  }
  std::uint64_t const n = static_cast<std::uint64_t>(got);
  obj.offset += n;
  obj.extent_offset += n;
  if (obj.extent_offset == e.length) {
    ++obj.extent;
    obj.extent_offset = 0;
  }
  *size = static_cast<unsigned int>(n);
  if (obj.offset == s.size) check_after_data(obj);
  return FS_SUCCESS;
}

}  // namespace

FS_STATUS posix_open_read(FSYS_HAND_STRUCT* fsh, PosixObject& obj, DBLK* blk) {
  PosixHandleState& state = *posix_state(fsh);
  if (!posix_blk_name(blk, obj.name)) return FS_ERR_BAD_PARAMETER;
  int const dirfd = posix_current_fd(state);
  char const* name = obj.name.c_str();
  // The stat record the listing took is the plan: one more stat per object
  // would cost as much as reading a small file. What changed since is found
  // when the data has been read (check_after_data) or by the open itself.
  // A block without that record (not from a listing) is examined now.
  bool const listed = posix_blk_info(blk, obj.info);
  if (!listed) {
    struct stat st {};
    if (fstatat(dirfd, name, &st, AT_SYMLINK_NOFOLLOW) != 0) return report_open(fsh, obj, errno);
    obj.info = posix_os_info_from_stat(st);
  }
  if (S_ISREG(obj.info.mode)) {
    // O_NOFOLLOW and O_NONBLOCK keep a link or FIFO put in its place from
    // being followed or waited on; reading such an object fails with its
    // reason.
    obj.fd = open_noatime(dirfd, name, kFileFlags);
    if (obj.fd < 0) return report_open(fsh, obj, errno);
  }
  std::vector<PosixXattr> xattrs;
  int const error = posix_read_xattrs(dirfd, obj.name, obj.fd, xattrs);
  if (error != 0)
    return posix_report(fsh, error, posix_object_path(obj),
                        L"extended attributes could not be read");
  if (!xattrs.empty()) {
    std::string bytes;
    posix_put_xattrs(xattrs, bytes);
    add_stream(obj, POSIX_STRM_XATTRS, std::move(bytes));
  }
  if (S_ISLNK(obj.info.mode)) {
    std::string target;
    if (int const e = read_link(dirfd, obj.name, target))
      return posix_report(fsh, e, posix_object_path(obj), L"link target could not be read");
    add_stream(obj, POSIX_STRM_SYMLINK, std::move(target));
  }
  return S_ISREG(obj.info.mode) ? plan_regular(state, obj) : FS_SUCCESS;
}

FS_STATUS posix_open_obj(FSYS_HAND_STRUCT* fsh, _FILE_HAND_STRUCT** out, DBLK* blk,
                         OPEN_MODE mode) {
  if (out != nullptr) *out = nullptr;
  if (posix_state(fsh) == nullptr || out == nullptr || blk == nullptr || !dblk_is_object(blk))
    return FS_ERR_BAD_PARAMETER;
  if (mode != FS_READ && mode != FS_WRITE) return FS_ERR_NOT_SUPPORTED;
  PosixObject* obj = posix_object_acquire(fsh);
  if (obj == nullptr) return FS_ERR_NO_MEMORY;
  obj->mode = mode;
  FS_STATUS const status =
      mode == FS_READ ? posix_open_read(fsh, *obj, blk) : posix_open_write(fsh, *obj, blk);
  if (status != FS_SUCCESS) {
    posix_object_release(obj);
    return status;
  }
  *out = obj;
  return FS_SUCCESS;
}

FS_STATUS posix_read_obj(_FILE_HAND_STRUCT* hand, unsigned char* buffer, unsigned int* size,
                         unsigned int* need, STREAM_INFO* stream) {
  if (hand == nullptr || size == nullptr || need == nullptr || stream == nullptr ||
      (buffer == nullptr && *size > 0))
    return FS_ERR_BAD_PARAMETER;
  PosixObject& obj = *posix_object(hand);
  if (!obj.busy || obj.mode != FS_READ) return FS_ERR_BAD_PARAMETER;
  *need = POSIX_IO_UNIT;
  std::uint32_t const room = *size;
  *size = 0;
  while (obj.current < obj.streams.size() && obj.header_sent &&
         obj.offset == obj.streams[obj.current].size) {
    ++obj.current;
    obj.header_sent = false;
    obj.offset = 0;
  }
  if (obj.current == obj.streams.size()) return FS_ERR_OBJ_NO_DATA;
  PosixOutStream const& s = obj.streams[obj.current];
  if (!obj.header_sent) {
    std::memset(stream, 0, offsetof(STREAM_INFO, tail));
    stream->id = s.id;
    stream->size = s.size;
    obj.header_sent = true;
  }
  // The header's first data, and the object's end with its last data, go
  // out in the same call: a small file costs the caller one call.
  FS_STATUS status = FS_SUCCESS;
  if (s.from_file && obj.offset < s.size && room > 0) {
    status = read_data(obj, buffer, room, size);
  } else {
    std::uint64_t const n = std::min<std::uint64_t>(s.size - obj.offset, room);
    if (n > 0) std::memcpy(buffer, s.bytes.data() + obj.offset, n);
    obj.offset += n;
    *size = static_cast<unsigned int>(n);
  }
  bool const last = obj.current + 1 == obj.streams.size() && obj.offset == s.size;
  if (status == FS_SUCCESS && last && *size > 0) {
    obj.current = obj.streams.size();
    return FS_ERR_OBJ_NO_DATA;
  }
  return status;
}

FS_STATUS posix_close_obj(_FILE_HAND_STRUCT* hand, void**, void**) {
  if (hand == nullptr) return FS_ERR_BAD_PARAMETER;
  PosixObject* obj = posix_object(hand);
  if (obj->fsysHand == nullptr || !obj->busy) return FS_ERR_BAD_PARAMETER;
  FS_STATUS const status = obj->mode == FS_WRITE ? posix_finish_write(*obj) : FS_SUCCESS;
  posix_object_release(obj);
  return status;
}

}  // namespace qbposix
