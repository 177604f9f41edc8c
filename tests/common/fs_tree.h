// Real directory trees for tests: a seeded generator that makes every kind
// of object a backup must carry, and an independent snapshot and comparer
// that look at trees only through the kernel (no code of the layer or the
// module), for round-trip checks.
//
// Everything is made and read relative to directory descriptors, so the
// deep chain (a path longer than PATH_MAX) works like the rest.
#pragma once
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <ctime>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace qbtest {

constexpr std::uint64_t kHugeSparseSize = (5ull << 30) + 12345;  // above 4 GiB
constexpr int kDeepLevels = 22;
constexpr std::size_t kDeepNameLength = 200;  // 22 levels of 200: beyond PATH_MAX

inline int open_path(int base, std::vector<std::string> const& parts) {
  int fd = dup(base);
  for (std::string const& p : parts) {
    int next = openat(fd, p.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    close(fd);
    if ((fd = next) < 0) return -1;
  }
  return fd;
}

// ---- making a tree ----------------------------------------------------------

class TreeMaker {
 public:
  TreeMaker(int root, std::uint32_t seed) : root_(root), rng_(seed) {}

  // Makes the whole tree; false when a call failed (errno tells which).
  bool make(bool huge_sparse) {
    char const* names[] = {"plain.txt", "caf\xc3\xa9", "\xff\xfe-bad", "a\nnewline", "back\\slash",
                           "wild*card?", "-leading-dash", "cut-\xe2\x82", "\xed\xa0\x80surrogate",
                           "\xc0\xafoverlong"};
    for (char const* n : names) file({}, n, rng_() % 3 == 0 ? 0 : rng_() % 300000);
    file({}, "empty", 0);
    dir({}, "empty-dir", 0755);
    dir({}, "ro-dir", 0555);
    file({"ro-dir"}, "inside", 5000);
    file({}, "setuid", 100, 04755);
    dir({}, "setgid-dir", 02775);
    dir({}, "sticky-dir", 01777);
    dir({}, "links", 0755);
    dir({"links"}, "sub", 0750);
    file({"links"}, "a", 70000);
    in({"links"}, [](int d) { return linkat(d, "a", d, "sub/b", 0) == 0 && linkat(d, "a", d, "../c-top", 0) == 0; });
    for (char const* target : {"plain.txt", "no/such/target", "\xff-odd-target"})
      made({}, std::string("to-") + target[0], 0, [&](int d, char const* n) { return symlinkat(target, d, n) == 0; });
    made({}, "fifo", 0640, [](int d, char const* n) { return mkfifoat(d, n, 0600) == 0; });
    if (geteuid() == 0)
      made({}, "null-dev", 0666, [](int d, char const* n) { return mknodat(d, n, S_IFCHR | 0600, makedev(1, 3)) == 0; });
    in({}, [](int d) {
      std::string const p = "/proc/self/fd/" + std::to_string(d) + "/plain.txt", acl = posix_acl();
      return lsetxattr(p.c_str(), "user.note", "value\0with nul", 14, 0) == 0 &&
             lsetxattr(p.c_str(), "system.posix_acl_access", acl.data(), acl.size(), 0) == 0;
    });
    sparse("sparse-small", {{8192, 4096}}, 65536);
    if (huge_sparse) sparse("sparse-huge", {{0, 4096}, {1ull << 30, 8192}, {(4ull << 30) + 4096, 4096}}, kHugeSparseSize);
    std::vector<std::string> deep;
    for (int i = 0; i < kDeepLevels; ++i) {
      std::string const n = std::to_string(10 + i) + std::string(kDeepNameLength - 2, 'd');
      dir(deep, n, 0755);
      deep.push_back(n);
    }
    file(deep, "deep-file", 1000);
    for (int i = 0; i < 20; ++i) {  // a random part
      std::vector<std::string> at = rng_() % 2 ? std::vector<std::string>{} : std::vector<std::string>{"links"};
      std::string const n = "r" + std::to_string(i) + static_cast<char>(0x80 + rng_() % 0x7F);
      mode_t const mode = 0700 | static_cast<mode_t>(rng_() % 0100);
      if (rng_() % 4 == 0) dir(at, n, mode); else file(at, n, rng_() % 150000, mode & ~0100);
    }
    if (geteuid() == 0) in({"links"}, [](int d) { return fchownat(d, "a", 1234, 5678, 0) == 0; });
    finish();
    return ok_;
  }

 private:
  using Path = std::vector<std::string>;
  struct Made {
    Path at;
    std::string name;
    mode_t mode;  // 0: leave as made
  };
  template <typename F>
  void in(Path const& at, F f) {
    int d = open_path(root_, at);
    ok_ = ok_ && d >= 0 && f(d);
    close(d);
  }
  template <typename F>
  void made(Path const& at, std::string const& name, mode_t mode, F f) {
    in(at, [&](int d) { return f(d, name.c_str()); });
    made_.push_back({at, name, mode});
  }
  void file(Path const& at, std::string const& name, std::size_t size, mode_t mode = 0644) {
    write_at(at, name, {{0, size}}, size, mode);
  }
  void dir(Path const& at, std::string const& name, mode_t mode) {
    made(at, name, mode, [](int d, char const* n) { return mkdirat(d, n, 0700) == 0; });
  }
  void sparse(std::string const& name, std::vector<std::pair<std::uint64_t, std::size_t>> const& data, std::uint64_t size) {
    write_at({}, name, data, size, 0640);
  }
  // A file of `size` bytes holding random data at `data`, holes elsewhere.
  void write_at(Path const& at, std::string const& name, std::vector<std::pair<std::uint64_t, std::size_t>> const& data,
                std::uint64_t size, mode_t mode) {
    made(at, name, mode, [&](int d, char const* n) {
      int fd = openat(d, n, O_WRONLY | O_CREAT | O_EXCL, 0600);
      bool good = fd >= 0 && ftruncate(fd, static_cast<off_t>(size)) == 0;
      for (auto const& e : data) {
        std::string bytes(e.second, '\0');
        for (char& c : bytes) c = static_cast<char>(rng_());
        good = good && pwrite(fd, bytes.data(), e.second, static_cast<off_t>(e.first)) == static_cast<ssize_t>(e.second);
      }
      close(fd);
      return good;
    });
  }
  static std::string posix_acl() {  // user::rw- user:1000:r-- group::r-- mask::r-- other::---
    std::string v;
    auto put = [&](std::uint32_t x, int n) { for (int i = 0; i < n; ++i) v.push_back(static_cast<char>(x >> (8 * i))); };
    put(2, 4);
    std::uint32_t const e[][3] = {{1, 6, ~0u}, {2, 4, 1000}, {4, 4, ~0u}, {0x10, 4, ~0u}, {0x20, 0, ~0u}};
    for (auto const& x : e) put(x[0], 2), put(x[1], 2), put(x[2], 4);
    return v;
  }
  // Modes, then times, deepest (latest made) first: nothing made later
  // touches a directory's times afterwards. Access times lie a little in
  // the future, so no reader's access updates them (relatime).
  void finish() {
    std::time_t const now = std::time(nullptr);
    for (auto it = made_.rbegin(); it != made_.rend(); ++it)
      in(it->at, [&](int d) {
        long const past = 1000000000L + static_cast<long>(rng_() % 600000000);
        struct timespec const t[2] = {{now + 600 + static_cast<long>(rng_() % 3000), static_cast<long>(rng_() % 1000000000)},
                                      {past, static_cast<long>(rng_() % 1000000000)}};
        return (it->mode == 0 || fchmodat(d, it->name.c_str(), it->mode, 0) == 0) &&
               utimensat(d, it->name.c_str(), t, AT_SYMLINK_NOFOLLOW) == 0;
      });
  }

  int root_;
  std::mt19937 rng_;
  std::vector<Made> made_;
  bool ok_ = true;
};

// ---- looking at a tree ------------------------------------------------------

struct TreeEntry {
  struct stat st {};
  std::string target;                          // symbolic link
  std::map<std::string, std::string> xattrs;
  std::vector<std::pair<std::uint64_t, std::uint64_t>> extents;  // data (not holes) of a file
  std::uint64_t hash = 0;                      // FNV-1a over the data extents
  std::string link_group;                      // the paths sharing its inode, joined
};
using TreeSnapshot = std::map<std::string, TreeEntry>;

// Every object below `root` by its path (bytes, '/'-joined). Stats are
// taken before any content is read, and files are read with O_NOATIME.
inline TreeSnapshot snapshot_tree(std::string const& root) {
  TreeSnapshot out;
  std::vector<std::pair<std::string, std::vector<std::string>>> todo{{"", {}}};
  int const top = open(root.c_str(), O_RDONLY | O_DIRECTORY);
  while (!todo.empty()) {
    auto [prefix, parts] = todo.back();
    todo.pop_back();
    int d = open_path(top, parts);
    DIR* listing = fdopendir(openat(d, ".", O_RDONLY | O_DIRECTORY | O_NOATIME));
    while (dirent* e = listing ? readdir(listing) : nullptr) {
      std::string const n = e->d_name;
      if (n == "." || n == "..") continue;
      TreeEntry& t = out[prefix + n];
      fstatat(d, n.c_str(), &t.st, AT_SYMLINK_NOFOLLOW);
      if (S_ISDIR(t.st.st_mode)) {
        auto sub = parts;
        sub.push_back(n);
        todo.push_back({prefix + n + "/", sub});
      }
    }
    if (listing) closedir(listing);
    for (auto it = out.lower_bound(prefix); it != out.end() && it->first.compare(0, prefix.size(), prefix) == 0; ++it) {
      std::string const n = it->first.substr(prefix.size());
      if (n.find('/') != std::string::npos) continue;
      TreeEntry& t = it->second;
      std::string const proc = "/proc/self/fd/" + std::to_string(d) + "/" + n;
      char names[4096], value[65536];
      ssize_t const len = llistxattr(proc.c_str(), names, sizeof names);
      for (ssize_t i = 0; i < len; i += static_cast<ssize_t>(std::string(names + i).size()) + 1) {
        ssize_t v = lgetxattr(proc.c_str(), names + i, value, sizeof value);
        t.xattrs[names + i] = std::string(value, v > 0 ? static_cast<std::size_t>(v) : 0);
      }
      if (S_ISLNK(t.st.st_mode)) {
        char buf[PATH_MAX];
        ssize_t r = readlinkat(d, n.c_str(), buf, sizeof buf);
        t.target.assign(buf, r > 0 ? static_cast<std::size_t>(r) : 0);
      }
      if (!S_ISREG(t.st.st_mode)) continue;
      int fd = openat(d, n.c_str(), O_RDONLY | O_NOATIME);
      t.hash = 14695981039346656037ull;
      for (off_t at = 0; at < t.st.st_size;) {
        off_t data = lseek(fd, at, SEEK_DATA), hole = data < 0 ? -1 : lseek(fd, data, SEEK_HOLE);
        if (data < 0) break;
        t.extents.push_back({static_cast<std::uint64_t>(data), static_cast<std::uint64_t>(hole - data)});
        for (off_t p = data; p < hole;) {
          ssize_t r = pread(fd, value, std::min<off_t>(sizeof value, hole - p), p);
          if (r <= 0) break;
          for (ssize_t i = 0; i < r; ++i) t.hash = (t.hash ^ static_cast<unsigned char>(value[i])) * 1099511628211ull;
          p += r;
        }
        at = hole;
      }
      close(fd);
    }
    close(d);
  }
  close(top);
  std::map<std::pair<dev_t, ino_t>, std::string> groups;
  for (auto& [path, t] : out)
    if (!S_ISDIR(t.st.st_mode) && t.st.st_nlink > 1) groups[{t.st.st_dev, t.st.st_ino}] += path + "|";
  for (auto& [path, t] : out)
    if (!S_ISDIR(t.st.st_mode) && t.st.st_nlink > 1) t.link_group = groups[{t.st.st_dev, t.st.st_ino}];
  return out;
}

// Differences between two snapshots, one line each; empty when the trees
// hold the same objects with the same type, mode, owner, size, device,
// times to the nanosecond, link target, link group, attributes, holes and
// data.
inline std::vector<std::string> compare_trees(TreeSnapshot const& a, TreeSnapshot const& b) {
  std::vector<std::string> diffs;
  for (auto const& [path, x] : a)
    if (!b.count(path)) diffs.push_back(path + ": missing");
  for (auto const& [path, y] : b) {
    auto it = a.find(path);
    if (it == a.end()) { diffs.push_back(path + ": unexpected"); continue; }
    TreeEntry const& x = it->second;
    auto differs = [&](char const* what, bool same) { if (!same) diffs.push_back(path + ": " + what); };
    differs("mode", x.st.st_mode == y.st.st_mode);
    differs("owner", x.st.st_uid == y.st.st_uid && x.st.st_gid == y.st.st_gid);
    differs("size", S_ISDIR(x.st.st_mode) || x.st.st_size == y.st.st_size);
    differs("device", x.st.st_rdev == y.st.st_rdev);
    differs("mtime", x.st.st_mtim.tv_sec == y.st.st_mtim.tv_sec && x.st.st_mtim.tv_nsec == y.st.st_mtim.tv_nsec);
    differs("atime", x.st.st_atim.tv_sec == y.st.st_atim.tv_sec && x.st.st_atim.tv_nsec == y.st.st_atim.tv_nsec);
    differs("link target", x.target == y.target);
    differs("link group", x.link_group == y.link_group);
    differs("xattrs", x.xattrs == y.xattrs);
    differs("holes", x.extents == y.extents);
    differs("data", x.hash == y.hash);
  }
  return diffs;
}

}  // namespace qbtest
