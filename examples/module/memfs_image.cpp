// The image file (its format is in memfs.h). Loading reads the whole file
// and treats it as hostile: each length is checked against the limits and
// against the bytes the file still holds before anything is allocated, and
// the nesting is bounded, so no file makes the module crash, recurse without
// end or take more memory than the file's size and the limits allow.
// Saving writes a temporary file beside the image (made anew, never one
// found there), flushes it to the disk and renames it over the image, then
// flushes the directory: after a crash the image is the old tree or the
// new one. The image keeps the permissions it had; a new one is 0600,
// since a tree may hold anything a restore put in it.
#include <fcntl.h>
#include <libgen.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <random>

#include "memfs.h"

namespace memfs {
namespace {

constexpr char kMagic[8] = {'Q', 'B', 'M', 'E', 'M', 'F', 'S', '\n'};
constexpr std::uint32_t kVersion = 1;
constexpr std::uint8_t kKindDirectory = 1;
constexpr std::uint8_t kKindFile = 2;
constexpr std::uint64_t kHeaderBytes = sizeof kMagic + sizeof kVersion;
constexpr std::uint64_t kDateBytes = 2 + 2 + 5 + 4;
// A node without its data: kind, name, three dates, two words, display
// size, and the larger of an entry count and a data size.
constexpr std::uint64_t kMaxNodeBytes = 1 + 4 + 4 * MEMFS_MAX_NAME_CHARS + 3 * kDateBytes + 4 + 4 + 8 + 8;
// The least an entry takes: a one-character name and an entry count.
constexpr std::uint64_t kMinNodeBytes = 1 + 4 + 4 + 3 * kDateBytes + 4 + 4 + 8 + 4;
constexpr mode_t kNewImageMode = 0600;
constexpr mode_t kPermissionBits = 07777;
// The largest image a tree within the limits gives: a larger file is
// refused before it is read.
constexpr std::uint64_t kMaxImageBytes = kHeaderBytes + MEMFS_MAX_NODES * kMaxNodeBytes + MEMFS_MAX_TREE_BYTES;

// ---- reading ----------------------------------------------------------------

class Reader {
 public:
  explicit Reader(std::string const& bytes) : bytes_(bytes) {}

  bool failed() const { return !why_.empty(); }
  std::string const& why() const { return why_; }
  bool at_end() const { return at_ == bytes_.size(); }
  std::size_t left() const { return bytes_.size() - at_; }
  std::size_t offset() const { return at_; }

  bool fail(std::string why) {
    if (why_.empty()) why_ = std::move(why) + " (at byte " + std::to_string(at_) + ")";
    return false;
  }

  template <typename T>
  bool number(T& out, char const* what) {
    if (left() < sizeof(T)) return fail(std::string("is cut short in ") + what);
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < sizeof(T); ++i)
      value |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes_[at_ + i])) << (8 * i);
    at_ += sizeof(T);
    out = static_cast<T>(value);
    return true;
  }

  bool bytes(std::size_t n, std::string& out, char const* what) {
    if (left() < n) return fail(std::string("is cut short in ") + what);
    out.assign(bytes_, at_, n);
    at_ += n;
    return true;
  }

  bool magic() {
    if (left() < sizeof kMagic || std::memcmp(bytes_.data(), kMagic, sizeof kMagic) != 0)
      return fail("is not a memfs image (no memfs magic at its start)");
    at_ += sizeof kMagic;
    return true;
  }

 private:
  std::string const& bytes_;
  std::size_t at_ = 0;
  std::string why_;
};

bool read_date(Reader& in, _DATE_TIME& d) {
  d = _DATE_TIME{};
  if (!in.number(d.date_valid, "a date") || !in.number(d.year, "a date") || !in.number(d.month, "a date") ||
      !in.number(d.day, "a date") || !in.number(d.hour, "a date") || !in.number(d.minute, "a date") ||
      !in.number(d.second, "a date") || !in.number(d.ticks, "a date"))
    return false;
  if (!memfs_valid_date(d)) return in.fail("holds a date out of range");
  // The weekday is not stored: a date is given out as it was taken.
  if (d.date_valid != 0) {
    d.date_valid = 1;
    d.day_of_week = memfs_weekday(d);
  }
  return true;
}

struct Loader {
  Reader& in;
  std::uint64_t nodes = 0, bytes = 0;

  // Reads one node; `depth` counts the directories above it.
  bool node(Node& out, std::size_t depth, bool root) {
    if (++nodes > MEMFS_MAX_NODES) return in.fail("holds more than the most objects memfs keeps");
    std::uint8_t kind = 0;
    std::uint32_t chars = 0;
    if (!in.number(kind, "an object's kind")) return false;
    if (kind != kKindDirectory && kind != kKindFile) return in.fail("holds an object of unknown kind");
    out.directory = kind == kKindDirectory;
    if (!in.number(chars, "a name's length")) return false;
    if (chars > MEMFS_MAX_NAME_CHARS) return in.fail("holds a name longer than memfs allows");
    if (in.left() / 4 < chars) return in.fail("is cut short in a name");
    out.name.resize(chars);
    for (std::uint32_t i = 0; i < chars; ++i) {
      std::uint32_t c = 0;
      in.number(c, "a name");
      if (c > 0x10FFFFu) return in.fail("holds a name with a character that is no Unicode character");
      out.name[i] = static_cast<wchar_t>(c);
    }
    if (root ? !out.name.empty() || !out.directory : !memfs_valid_name(out.name))
      return in.fail(root ? "has a root that is not an unnamed directory" : "holds a name memfs cannot serve");
    if (!read_date(in, out.cdate) || !read_date(in, out.mdate) || !read_date(in, out.adate)) return false;
    if (!in.number(out.attrib1, "an attribute word") || !in.number(out.attrib2, "an attribute word") ||
        !in.number(out.display_size, "a display size"))
      return false;
    if (!out.directory) {
      std::uint64_t size = 0;
      if (!in.number(size, "a file's size")) return false;
      if (size > MEMFS_MAX_FILE_BYTES) return in.fail("holds a file larger than memfs keeps");
      if ((bytes += size) > MEMFS_MAX_TREE_BYTES) return in.fail("holds more data than memfs keeps");
      std::string data;
      if (!in.bytes(static_cast<std::size_t>(size), data, "a file's data")) return false;
      out.data = std::make_shared<std::string const>(std::move(data));
      return true;
    }
    std::uint32_t count = 0;
    if (!in.number(count, "a directory's entry count")) return false;
    if (count > 0 && depth + 1 > MEMFS_MAX_DEPTH) return in.fail("nests directories deeper than memfs allows");
    // A count beyond what the rest of the file or the limits can hold is
    // refused before anything is reserved for it: nested directories that
    // each claim millions of entries must not each reserve room for them.
    if (count > in.left() / kMinNodeBytes) return in.fail("is cut short (an entry count larger than the file holds)");
    if (count > MEMFS_MAX_NODES - nodes) return in.fail("holds more than the most objects memfs keeps");
    out.children.reserve(count);
    std::set<std::wstring> seen;
    for (std::uint32_t i = 0; i < count; ++i) {
      auto child = std::make_shared<Node>();
      if (!node(*child, depth + 1, false)) return false;
      if (!seen.insert(child->name).second) return in.fail("holds two entries of the same name in a directory");
      out.children.push_back(std::move(child));
    }
    return true;
  }
};

// ---- writing ----------------------------------------------------------------

template <typename T>
void put(std::string& out, T value) {
  auto const v = static_cast<std::uint64_t>(value);
  for (std::size_t i = 0; i < sizeof(T); ++i) out.push_back(static_cast<char>((v >> (8 * i)) & 0xFF));
}

void put_date(std::string& out, _DATE_TIME const& d) {
  put(out, d.date_valid);
  put(out, d.year);
  put(out, d.month);
  put(out, d.day);
  put(out, d.hour);
  put(out, d.minute);
  put(out, d.second);
  put(out, d.ticks);
}

// Depth first, with an explicit stack: the depth of a tree restored into
// memfs is bounded by the archive, not by this module.
void encode(std::string& out, Node const& root) {
  std::vector<Node const*> todo{&root};
  while (!todo.empty()) {
    Node const& n = *todo.back();
    todo.pop_back();
    put(out, n.directory ? kKindDirectory : kKindFile);
    put(out, static_cast<std::uint32_t>(n.name.size()));
    for (wchar_t const c : n.name) put(out, static_cast<std::uint32_t>(c));
    put_date(out, n.cdate);
    put_date(out, n.mdate);
    put_date(out, n.adate);
    put(out, n.attrib1);
    put(out, n.attrib2);
    put(out, n.display_size);
    if (n.directory) {
      put(out, static_cast<std::uint32_t>(n.children.size()));
      for (auto it = n.children.rbegin(); it != n.children.rend(); ++it) todo.push_back(it->get());
    } else {
      put(out, static_cast<std::uint64_t>(n.data->size()));
      out += *n.data;
    }
  }
}

std::string temporary_name(std::string const& path) {
  std::random_device random;
  char suffix[24];
  std::snprintf(suffix, sizeof suffix, ".tmp%08x", static_cast<unsigned>(random()));
  return path + suffix;
}

bool write_all(int fd, std::string const& bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    ssize_t const n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += static_cast<std::size_t>(n);
  }
  return true;
}

// Flushes the directory holding `path`, so that a rename in it lasts.
bool sync_directory_of(std::string const& path) {
  std::string copy = path;
  int const fd = ::open(dirname(&copy[0]), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return false;
  bool const synced = ::fsync(fd) == 0;
  ::close(fd);
  return synced;
}

// Writes the temporary file; false with `why` (the file is then removed).
bool write_temporary(std::string const& temporary, std::string const& bytes, mode_t mode, std::string& why) {
  int const fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kNewImageMode);
  if (fd < 0) {
    why = "its temporary file '" + temporary + "' cannot be made: " + std::strerror(errno);
    return false;
  }
  char const* failed = nullptr;
  if (::fchmod(fd, mode) != 0) failed = "could not take the image's permissions";
  else if (!write_all(fd, bytes)) failed = "could not be written";
  else if (::fsync(fd) != 0) failed = "could not be flushed to the disk";
  int const error = errno;
  if (::close(fd) != 0 && failed == nullptr) failed = "could not be written";
  if (failed == nullptr) return true;
  ::unlink(temporary.c_str());
  why = "its temporary file '" + temporary + "' " + failed + ": " + std::strerror(error);
  return false;
}

// Reads the whole file; false with `why`.
bool read_image_file(int fd, std::string& bytes, std::string& why) {
  struct stat st {};
  if (fstat(fd, &st) != 0) {
    why = std::string("cannot be read: ") + std::strerror(errno);
    return false;
  }
  // A FIFO would block the start for ever, a device could be endless.
  if (!S_ISREG(st.st_mode)) {
    why = "is not a regular file";
    return false;
  }
  if (static_cast<std::uint64_t>(st.st_size) > kMaxImageBytes) {
    why = "is larger than any image memfs writes";
    return false;
  }
  bytes.resize(static_cast<std::size_t>(st.st_size));
  std::size_t got = 0;
  while (got < bytes.size()) {
    ssize_t const n = ::read(fd, &bytes[got], bytes.size() - got);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      why = std::string("cannot be read: ") + std::strerror(errno);
      return false;
    }
    if (n == 0) break;  // shrank while read: the reader then finds it cut short
    got += static_cast<std::size_t>(n);
  }
  bytes.resize(got);
  return true;
}

}  // namespace

FS_STATUS memfs_load_image(std::string const& path, NodePtr& root, std::string& why) {
  try {
    int const fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
      if (errno == ENOENT) return FS_STATUS_NONE;
      why = std::string("cannot be opened: ") + std::strerror(errno);
      return FS_ERR_INIT_FAILED;
    }
    std::string bytes;
    bool const read = read_image_file(fd, bytes, why);
    ::close(fd);
    if (!read) return FS_ERR_INIT_FAILED;
    Reader in(bytes);
    std::uint32_t version = 0;
    auto tree = std::make_shared<Node>();
    Loader loader{in};
    if (in.magic() && in.number(version, "the version") &&
        (version == kVersion || in.fail("is of image version " + std::to_string(version) +
                                        ", which this memfs does not read")) &&
        loader.node(*tree, 0, true) && (in.at_end() || in.fail("goes on after the tree's end"))) {
      root = std::move(tree);
      return FS_SUCCESS;
    }
    why = in.why();
    return FS_ERR_INIT_FAILED;
  } catch (std::bad_alloc const&) {
    why = "does not fit in memory";
    return FS_ERR_INIT_FAILED;
  } catch (std::exception const& e) {
    why = std::string("cannot be read: ") + e.what();
    return FS_ERR_INIT_FAILED;
  }
}

bool memfs_save_image(std::string const& path, Node const& root, std::string& why) {
  std::string temporary;
  try {
    std::string bytes(kMagic, sizeof kMagic);
    put(bytes, kVersion);
    encode(bytes, root);
    struct stat old {};
    mode_t const mode = ::stat(path.c_str(), &old) == 0 ? (old.st_mode & kPermissionBits) : kNewImageMode;
    temporary = temporary_name(path);
    if (!write_temporary(temporary, bytes, mode, why)) return false;
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
      why = std::string("the new image could not replace the old one: ") + std::strerror(errno);
      ::unlink(temporary.c_str());
      return false;
    }
    if (!sync_directory_of(path)) {
      why = std::string("the image's directory could not be flushed to the disk: ") + std::strerror(errno);
      return false;
    }
    return true;
  } catch (std::exception const& e) {
    if (!temporary.empty()) ::unlink(temporary.c_str());
    why = std::string("the image could not be built: ") + e.what();
    return false;
  }
}

}  // namespace memfs
