// Building and parsing the module's stream records and its OS info.
// Numbers are stored little-endian byte by byte, so the layouts do not
// depend on the host's byte order or on struct padding.
#include "posix_streams.h"

#include <cstring>

namespace qbposix {
namespace {

constexpr unsigned kBitsPerByte = 8;
constexpr std::uint64_t kByteMask = 0xFF;
// Offsets of the second field of an extended-attribute record header, of
// a sparse map's header and of an extent.
constexpr std::size_t kXattrValueLengthAt = 4;
constexpr std::size_t kSparseCountAt = 8;
constexpr std::size_t kExtentLengthAt = 8;

template <typename T>
void put_le(std::string& out, T value) {
  char bytes[sizeof(T)];
  for (std::size_t i = 0; i < sizeof(T); ++i)
    bytes[i] =
        static_cast<char>((static_cast<std::uint64_t>(value) >> (kBitsPerByte * i)) & kByteMask);
  out.append(bytes, sizeof(T));
}

template <typename T>
T get_le(char const* p) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < sizeof(T); ++i)
    value |= static_cast<std::uint64_t>(static_cast<unsigned char>(p[i])) << (kBitsPerByte * i);
  return static_cast<T>(value);
}

}  // namespace

POSIX_OS_INFO posix_os_info_from_stat(struct stat const& st) {
  POSIX_OS_INFO info{};
  info.version = POSIX_OS_INFO_VERSION;
  info.mode = st.st_mode;
  info.uid = st.st_uid;
  info.gid = st.st_gid;
  info.nlink = st.st_nlink;
  info.dev = st.st_dev;
  info.ino = st.st_ino;
  info.rdev = st.st_rdev;
  info.size = static_cast<std::uint64_t>(st.st_size);
  info.blocks = static_cast<std::uint64_t>(st.st_blocks);
  info.atime_sec = st.st_atim.tv_sec;
  info.mtime_sec = st.st_mtim.tv_sec;
  info.ctime_sec = st.st_ctim.tv_sec;
  info.atime_nsec = static_cast<std::uint32_t>(st.st_atim.tv_nsec);
  info.mtime_nsec = static_cast<std::uint32_t>(st.st_mtim.tv_nsec);
  info.ctime_nsec = static_cast<std::uint32_t>(st.st_ctim.tv_nsec);
  return info;
}

void posix_put_xattrs(std::vector<PosixXattr> const& xattrs, std::string& out) {
  out.clear();
  for (PosixXattr const& x : xattrs) {
    put_le(out, static_cast<std::uint32_t>(x.name.size()));
    put_le(out, static_cast<std::uint32_t>(x.value.size()));
    out += x.name;
    out += x.value;
  }
}

bool posix_parse_xattrs(std::string const& data, std::vector<PosixXattr>& out) {
  out.clear();
  std::size_t at = 0;
  while (at < data.size()) {
    if (data.size() - at < POSIX_XATTR_HEADER_SIZE) return false;
    std::uint64_t const name_len = get_le<std::uint32_t>(data.data() + at);
    std::uint64_t const value_len = get_le<std::uint32_t>(data.data() + at + kXattrValueLengthAt);
    at += POSIX_XATTR_HEADER_SIZE;
    if (name_len == 0 || name_len + value_len > data.size() - at) return false;
    out.push_back({data.substr(at, name_len), data.substr(at + name_len, value_len)});
    at += name_len + value_len;
  }
  return true;
}

void posix_put_sparse_map(std::uint64_t file_size, std::vector<PosixExtent> const& extents,
                          std::string& out) {
  out.clear();
  put_le(out, file_size);
  put_le(out, static_cast<std::uint64_t>(extents.size()));
  for (PosixExtent const& e : extents) {
    put_le(out, e.offset);
    put_le(out, e.length);
  }
}

bool posix_parse_sparse_map(std::string const& data, std::uint64_t& file_size,
                            std::vector<PosixExtent>& extents) {
  extents.clear();
  if (data.size() < POSIX_SPARSE_HEADER_SIZE) return false;
  file_size = get_le<std::uint64_t>(data.data());
  std::uint64_t const count = get_le<std::uint64_t>(data.data() + kSparseCountAt);
  if (count != (data.size() - POSIX_SPARSE_HEADER_SIZE) / POSIX_SPARSE_EXTENT_SIZE ||
      (data.size() - POSIX_SPARSE_HEADER_SIZE) % POSIX_SPARSE_EXTENT_SIZE != 0)
    return false;
  std::uint64_t end = 0;
  for (std::uint64_t i = 0; i < count; ++i) {
    char const* p = data.data() + POSIX_SPARSE_HEADER_SIZE + i * POSIX_SPARSE_EXTENT_SIZE;
    PosixExtent const e{get_le<std::uint64_t>(p), get_le<std::uint64_t>(p + kExtentLengthAt)};
    if (e.offset < end || e.length > file_size || e.offset > file_size - e.length) return false;
    end = e.offset + e.length;
    extents.push_back(e);
  }
  return true;
}

}  // namespace qbposix
