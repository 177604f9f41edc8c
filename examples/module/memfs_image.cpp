// The image file (its format is in memfs.h). Loading reads the whole file
// and treats it as hostile: each length is checked against the limits and
// against the bytes the file still holds before anything is allocated, and
// the nesting is bounded, so no file makes the module crash, recurse without
// end or take more memory than the file's size and the limits allow.
// Saving writes a temporary file beside the image and renames it over the
// image, so the image is always the old tree or the new one.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
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
// A node without its data: kind, name, three dates, two words, display
// size, and the larger of an entry count and a data size.
constexpr std::uint64_t kMaxNodeBytes = 1 + 4 + 4 * MEMFS_MAX_NAME_CHARS + 3 * 16 + 4 + 4 + 8 + 8;
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
  if (d.date_valid != 0) d.date_valid = 1;
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
    // Each entry takes at least its kind byte: a count beyond what is left
    // is refused before anything is reserved for it.
    if (count > in.left()) return in.fail("holds an entry count larger than the file");
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

}  // namespace

FS_STATUS memfs_load_image(std::string const& path, NodePtr& root, std::string& why) {
  try {
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
      if (errno == ENOENT) return FS_STATUS_NONE;
      why = std::string("cannot be opened: ") + std::strerror(errno);
      return FS_ERR_INIT_FAILED;
    }
    file.seekg(0, std::ios::end);
    std::streamoff const size = file.tellg();
    if (size < 0) {
      why = "cannot be read (is it a regular file?)";
      return FS_ERR_INIT_FAILED;
    }
    if (static_cast<std::uint64_t>(size) > kMaxImageBytes) {
      why = "is larger than any image memfs writes";
      return FS_ERR_INIT_FAILED;
    }
    file.seekg(0, std::ios::beg);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    if (!file.read(&bytes[0], size)) {
      why = "cannot be read";
      return FS_ERR_INIT_FAILED;
    }
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

FS_STATUS memfs_save_image(std::string const& path, Node const& root, std::string& why) {
  std::string temporary;
  try {
    std::string bytes(kMagic, sizeof kMagic);
    put(bytes, kVersion);
    encode(bytes, root);
    temporary = temporary_name(path);
    {
      std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
      if (!file) {
        why = "its temporary file '" + temporary + "' cannot be made: " + std::strerror(errno);
        return FS_ERR_INIT_FAILED;
      }
      file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
      file.close();
      if (!file) {
        std::remove(temporary.c_str());
        why = "its temporary file '" + temporary + "' could not be written";
        return FS_ERR_INIT_FAILED;
      }
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
      why = std::string("the new image could not replace the old one: ") + std::strerror(errno);
      std::remove(temporary.c_str());
      return FS_ERR_INIT_FAILED;
    }
    return FS_SUCCESS;
  } catch (std::exception const& e) {
    if (!temporary.empty()) std::remove(temporary.c_str());
    why = std::string("the image could not be built: ") + e.what();
    return FS_ERR_INIT_FAILED;
  }
}

}  // namespace memfs
