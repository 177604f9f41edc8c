// Restoring objects: CreateObj, OpenObj for FS_WRITE, WriteObj, and the
// metadata set when a restored object is closed.
//
// CreateObj makes what can be made from the block alone: a directory, an
// empty regular file, a FIFO, a socket or a device node. A symbolic link
// is made when its target stream arrives; a further name of a file already
// restored replaces the empty file CreateObj made when its link stream
// arrives, so a group of hard links holds one copy of the data.
//
// Streams the module does not know are taken and dropped, so media written
// by a later version still restores what this one understands.
//
// A block whose kind (directory or not) and stat record's type disagree is
// refused by CreateObj and OpenObj: a host decides what to do with an
// object (keep a directory, delete a damaged file) by its kind, while the
// object made would follow the stat record.
//
// The directories restored wait for their metadata until the handle lets
// go (PosixDirTree in posix_handle_state.h: a node each, never a path).
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <cwchar>

#include <qbfsys/handles.h>
#include <qbfsys/stream_info.h>

#include "posix_dblk.h"
#include "posix_fsys.h"
#include "posix_metadata.h"
#include "posix_name_codec.h"
#include "posix_object.h"

namespace qbposix {
namespace {

constexpr mode_t kPrivateFile = 0600;
constexpr mode_t kPrivateDir = 0700;
constexpr mode_t kDefaultDir = 0777;  // less the process umask
constexpr unsigned kNoMinimum = 1;  // `need`: any amount will do

bool is_short_stream(std::uint32_t id) {
  return id == POSIX_STRM_XATTRS || id == POSIX_STRM_SYMLINK || id == POSIX_STRM_HARDLINK ||
         id == POSIX_STRM_SPARSE_MAP;
}

// Clears the way for a new object `name` of type `type` in `dirfd`.
// Returns 0, EEXIST when a directory is to be reused, or an errno.
int clear_way(int dirfd, std::string const& name, mode_t type) {
  struct stat st {};
  if (fstatat(dirfd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0)
    return errno == ENOENT ? 0 : errno;
  if (S_ISDIR(st.st_mode) && S_ISDIR(type)) return EEXIST;
  int const flags = S_ISDIR(st.st_mode) ? AT_REMOVEDIR : 0;
  return unlinkat(dirfd, name.c_str(), flags) == 0 ? 0 : errno;
}

// Makes the object; a regular file's descriptor, open for writing, goes to
// `*file`. Returns 0 or an errno (EEXIST when the name is taken).
int make_object(int dirfd, std::string const& name, POSIX_OS_INFO const& info, bool privileged,
                int* file) {
  char const* n = name.c_str();
  mode_t const type = static_cast<mode_t>(info.mode) & S_IFMT;
  switch (type) {
    case S_IFDIR: return mkdirat(dirfd, n, kPrivateDir) == 0 ? 0 : errno;
    case S_IFREG:
      *file = openat(dirfd, n, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kPrivateFile);
      return *file >= 0 ? 0 : errno;
    case S_IFIFO:
    case S_IFSOCK: return mknodat(dirfd, n, type | kPrivateFile, 0) == 0 ? 0 : errno;
    case S_IFCHR:
    case S_IFBLK:
      if (!privileged) return EPERM;
      return mknodat(dirfd, n, type | kPrivateFile, static_cast<dev_t>(info.rdev)) == 0 ? 0 : errno;
    case S_IFLNK: return 0;  // made when its target arrives
    default: return EINVAL;
  }
}

FS_STATUS fail(PosixObject& obj, int error, wchar_t const* what) {
  FS_STATUS const status = posix_report(obj.fsysHand, error, posix_object_path(obj), what);
  if (obj.failure == FS_SUCCESS) obj.failure = status;
  return status;
}

FS_STATUS make_symlink(PosixObject& obj, std::string const& target) {
  // Only an object described as a link may become one: the metadata set at
  // close for any other type (its mode) would follow the new link out of
  // the restore root.
  if (!S_ISLNK(obj.info.mode))
    return fail(obj, EINVAL, L"symbolic link target given for an object that is not a link");
  if (target.empty() || target.find('\0') != std::string::npos)
    return fail(obj, EINVAL, L"symbolic link target is malformed");
  if (symlinkat(target.c_str(), obj.dirfd, obj.name.c_str()) != 0) {
    if (errno != EEXIST || clear_way(obj.dirfd, obj.name, S_IFLNK) != 0 ||
        symlinkat(target.c_str(), obj.dirfd, obj.name.c_str()) != 0)
      return fail(obj, errno, L"symbolic link could not be made");
  }
  return FS_SUCCESS;
}

FS_STATUS make_hard_link(PosixObject& obj, std::string const& target) {
  PosixHandleState* state = posix_state(obj.fsysHand);
  std::vector<std::string> parts;
  if (state == nullptr || !posix_split_relative(target, parts))
    return fail(obj, EINVAL, L"hard link target is malformed");
  std::string const last = parts.back();
  parts.pop_back();
  int const from = posix_open_components(state->levels.front().fd, parts);
  if (from < 0) return fail(obj, errno, L"hard link target's directory could not be opened");
  if (obj.fd >= 0) {
    close(obj.fd);
    obj.fd = -1;
  }
  unlinkat(obj.dirfd, obj.name.c_str(), 0);  // the empty file CreateObj made
  int const rc = linkat(from, last.c_str(), obj.dirfd, obj.name.c_str(), 0);
  int const error = errno;
  close(from);
  if (rc != 0) return fail(obj, error, L"hard link could not be made");
  obj.linked = true;
  return FS_SUCCESS;
}

FS_STATUS complete_short_stream(PosixObject& obj) {
  switch (obj.in_id) {
    case POSIX_STRM_XATTRS:
      if (!posix_parse_xattrs(obj.in_bytes, obj.xattrs))
        return fail(obj, EINVAL, L"extended-attribute stream is malformed");
      return FS_SUCCESS;
    case POSIX_STRM_SPARSE_MAP:
      if (!posix_parse_sparse_map(obj.in_bytes, obj.sparse_size, obj.extents))
        return fail(obj, EINVAL, L"sparse map is malformed");
      obj.sparse = true;
      return FS_SUCCESS;
    case POSIX_STRM_SYMLINK: return make_symlink(obj, obj.in_bytes);
    default: return make_hard_link(obj, obj.in_bytes);
  }
}

// Writes `n` data bytes at the place the stream's position maps to.
FS_STATUS write_data(PosixObject& obj, unsigned char const* data, std::uint64_t n) {
  if (obj.fd < 0) return fail(obj, EBADF, L"data arrived for an object that holds none");
  while (n > 0) {
    std::uint64_t at = obj.in_received;
    std::uint64_t room = n;
    if (obj.sparse) {
      while (obj.extent < obj.extents.size() &&
             obj.extent_offset == obj.extents[obj.extent].length) {
        ++obj.extent;
        obj.extent_offset = 0;
      }
      if (obj.extent == obj.extents.size())
        return fail(obj, EINVAL, L"data goes beyond the sparse map");
      PosixExtent const& e = obj.extents[obj.extent];
      at = e.offset + obj.extent_offset;
      room = std::min(n, e.length - obj.extent_offset);
    }
    ssize_t const put = pwrite(obj.fd, data, room, static_cast<off_t>(at));
    if (put < 0) {
      if (errno == EINTR) continue;
      return fail(obj, errno, L"could not be written");
    }
    std::uint64_t const done = static_cast<std::uint64_t>(put);
    obj.in_received += done;
    obj.extent_offset += done;
    data += done;
    n -= done;
  }
  return FS_SUCCESS;
}

// A stream this module acts on must have arrived whole before the next
// header or the close; a short one (damaged media) is reported, and what
// arrived of a short data stream stays written.
void check_stream_ended(PosixObject& obj) {
  bool const known = is_short_stream(obj.in_id) || obj.in_id == POSIX_STRM_DATA;
  if (known && obj.in_received < obj.in_size)
    fail(obj, EINVAL, L"stream ended before its announced size");
  obj.in_id = STRM_INVALID;
}

// True when the block's kind and its stat record say the same: a
// directory, or any other object.
bool kinds_agree(DBLK const* blk, POSIX_OS_INFO const& info) {
  return (blk->blk_type == DBLK_KIND_DDB) == S_ISDIR(info.mode);
}

constexpr wchar_t const* kKindsDisagree =
    L"its block says one kind of object and its stat record another; not restored";

FS_STATUS create_plain_directory(FSYS_HAND_STRUCT* fsh, PosixHandleState const& state, std::string const& name) {
  // Nothing in the way is removed: with no description of its own, this
  // directory has no claim on the name over what a restore put there.
  // The path for a message is put together only for a failure: it costs
  // as much as the path is deep.
  int const dirfd = posix_current_fd(state);
  struct stat st {};
  if (fstatat(dirfd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0)
    return S_ISDIR(st.st_mode) ? FS_SUCCESS
                               : posix_report(fsh, ENOTDIR, posix_display_path(state, name),
                                              L"another object holds the name of a directory to be made");
  int const error = mkdirat(dirfd, name.c_str(), kDefaultDir) == 0 ? 0 : errno;
  return error == 0 ? FS_SUCCESS : posix_report(fsh, error, posix_display_path(state, name), L"could not be created");
}

}  // namespace

FS_STATUS posix_delete_obj(FSYS_HAND_STRUCT* fsh, DBLK* blk) {
  PosixHandleState* state = posix_state(fsh);
  std::string name;
  if (state == nullptr || blk == nullptr || !posix_blk_name(blk, name)) return FS_ERR_BAD_PARAMETER;
  int const dirfd = posix_current_fd(*state);
  posix_forget_made_file(*state, name);
  struct stat st {};
  if (fstatat(dirfd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0)
    return errno == ENOENT ? FS_SUCCESS : posix_report(fsh, errno, posix_display_path(*state, name), L"could not be removed");
  if (unlinkat(dirfd, name.c_str(), S_ISDIR(st.st_mode) ? AT_REMOVEDIR : 0) != 0)
    return posix_report(fsh, errno, posix_display_path(*state, name), L"could not be removed");
  return FS_SUCCESS;
}

FS_STATUS posix_create_obj(FSYS_HAND_STRUCT* fsh, DBLK* blk, wchar_t const* name,
                           RESTORE_SEMANTICS semantics) {
  PosixHandleState* state = posix_state(fsh);
  std::string bytes;
  bool const named = name != nullptr
                         ? posix_encode_name(name, std::wcslen(name), bytes) && !bytes.empty() &&
                               bytes.find('/') == std::string::npos && bytes != "." && bytes != ".."
                         : posix_blk_name(blk, bytes);
  POSIX_OS_INFO info{};
  if (state == nullptr || !named) return FS_ERR_BAD_PARAMETER;
  auto shown = [&] { return posix_display_path(*state, bytes); };  // for reports only
  if (!posix_restore_info(blk, info) && blk->blk_type == DBLK_KIND_DDB)
    return create_plain_directory(fsh, *state, bytes);
  if (!posix_restore_info(blk, info))
    return posix_report(fsh, EINVAL, shown(), L"block carries no stat record to restore from");
  if (!kinds_agree(blk, info)) return posix_report(fsh, EINVAL, shown(), kKindsDisagree);
  int const dirfd = posix_current_fd(*state);
  struct stat st {};
  if (semantics == RESTORE_SKIP_EXISTING &&
      fstatat(dirfd, bytes.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0)
    return FS_STATUS_NONE;
  posix_forget_made_file(*state, bytes);
  // Made first, and the way cleared only when the name is taken: a restore
  // into an empty directory then costs no look-up per object.
  int file = -1;
  int error = make_object(dirfd, bytes, info, state->privileged, &file);
  if (error == EEXIST) {
    error = clear_way(dirfd, bytes, static_cast<mode_t>(info.mode));
    if (error != 0 && error != EEXIST)
      return posix_report(fsh, error, shown(), L"object in the way could not be removed");
    // EEXIST: an existing directory is reused.
    if (error == 0) error = make_object(dirfd, bytes, info, state->privileged, &file);
    else error = 0;
  }
  if (error == EPERM && !state->privileged && (S_ISCHR(info.mode) || S_ISBLK(info.mode)))
    return posix_report(fsh, error, shown(), L"device node needs privilege to be restored");
  if (error != 0) return posix_report(fsh, error, shown(), L"could not be created");
  if (S_ISDIR(info.mode)) {
    // Its metadata waits for detach, whether or not it is opened for its
    // attributes.
    std::uint32_t const parent = posix_level_node(*state, state->levels.size() - 1);
    PosixDirNode& node = state->dirs.nodes[posix_child_node(state->dirs, parent, bytes)];
    node.pending = true;
    node.info = info;
    node.xattrs.clear();
    state->dirs.any_pending = true;
  }
  // The new file stays open for the OpenObj that follows, so that one
  // neither looks the name up again nor can be sent elsewhere by a name
  // swapped in between.
  if (file >= 0) posix_keep_made_file(*state, file, bytes);
  return FS_SUCCESS;
}

FS_STATUS posix_open_write(FSYS_HAND_STRUCT* fsh, PosixObject& obj, DBLK* blk) {
  PosixHandleState& state = *posix_state(fsh);
  if (!posix_blk_name(blk, obj.name)) return FS_ERR_BAD_PARAMETER;
  if (!posix_restore_info(blk, obj.info, true))
    return posix_report(fsh, EINVAL, posix_object_path(obj),
                        L"block carries no stat record to restore from");
  if (!kinds_agree(blk, obj.info)) return posix_report(fsh, EINVAL, posix_object_path(obj), kKindsDisagree);
  if (S_ISDIR(obj.info.mode))
    obj.node = posix_child_node(state.dirs, posix_level_node(state, state.levels.size() - 1), obj.name);
  obj.dir = posix_hold_current(state);
  obj.dirfd = obj.dir->fd;
  if (S_ISREG(obj.info.mode)) {
    obj.fd = posix_take_made_file(state, obj.name);
    if (obj.fd < 0) obj.fd = openat(obj.dirfd, obj.name.c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC);
    if (obj.fd < 0)
      return posix_report(fsh, errno, posix_object_path(obj), L"could not be opened for writing");
  }
  return FS_SUCCESS;
}

FS_STATUS posix_write_obj(_FILE_HAND_STRUCT* hand, unsigned char* buffer, unsigned int* size,
                          unsigned int* need, STREAM_INFO* stream) {
  if (hand == nullptr || size == nullptr || need == nullptr || (buffer == nullptr && *size > 0))
    return FS_ERR_BAD_PARAMETER;
  PosixObject& obj = *posix_object(hand);
  if (!obj.busy || obj.mode != FS_WRITE) return FS_ERR_BAD_PARAMETER;
  *need = kNoMinimum;
  if (stream != nullptr && stream->id != STRM_INVALID) {
    check_stream_ended(obj);
    obj.in_id = stream->id;
    obj.in_size = stream->size;
    obj.in_received = 0;
    obj.in_bytes.clear();
    obj.extent = 0;
    obj.extent_offset = 0;
    *size = 0;
    if (is_short_stream(obj.in_id) && obj.in_size > POSIX_SHORT_STREAM_MAX)
      return fail(obj, EFBIG, L"metadata stream is too large");
    if (obj.in_id == POSIX_STRM_DATA) *need = POSIX_IO_UNIT;
    if (is_short_stream(obj.in_id) && obj.in_size == 0) return complete_short_stream(obj);
    return FS_SUCCESS;
  }
  if (obj.in_id == STRM_INVALID) return FS_ERR_BAD_PARAMETER;
  std::uint64_t n = obj.in_size - obj.in_received;
  if (n > *size) n = *size;
  *size = static_cast<unsigned int>(n);
  if (obj.in_id == POSIX_STRM_DATA) {
    *need = POSIX_IO_UNIT;
    return write_data(obj, buffer, n);
  }
  obj.in_received += n;
  if (!is_short_stream(obj.in_id)) return FS_SUCCESS;  // unknown stream: dropped
  // One refused at its header as too large is dropped too, so its announced
  // size cannot make the restore gather it in memory and act on it.
  if (obj.in_size > POSIX_SHORT_STREAM_MAX) return FS_SUCCESS;
  obj.in_bytes.append(reinterpret_cast<char const*>(buffer), n);
  return obj.in_received == obj.in_size ? complete_short_stream(obj) : FS_SUCCESS;
}

FS_STATUS posix_finish_write(PosixObject& obj) {
  PosixHandleState* state = posix_state(obj.fsysHand);
  if (state == nullptr) return FS_ERR_BAD_PARAMETER;
  check_stream_ended(obj);
  if (obj.linked) return obj.failure;  // the file's metadata came with its first name
  if (S_ISDIR(obj.info.mode)) {
    if (obj.node >= state->dirs.nodes.size()) return FS_ERR_BAD_PARAMETER;
    PosixDirNode& node = state->dirs.nodes[obj.node];
    node.pending = true;
    node.info = obj.info;
    node.xattrs = std::move(obj.xattrs);
    state->dirs.any_pending = true;
    return obj.failure;
  }
  if (obj.sparse && obj.fd >= 0 && ftruncate(obj.fd, static_cast<off_t>(obj.sparse_size)) != 0)
    fail(obj, errno, L"could not be given its size");
  wchar_t const* step = nullptr;
  int const error = posix_apply_metadata(obj.dirfd, obj.name, obj.fd, obj.info, obj.xattrs,
                                         state->privileged, &step);
  if (error != 0) fail(obj, error, step);
  return obj.failure;
}

}  // namespace qbposix
