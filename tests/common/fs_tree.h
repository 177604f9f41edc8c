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

  // Makes the whole tree; returns false on the first call that failed.
  bool make(bool huge_sparse) {
    using P = std::vector<std::string>;
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
    link({"links"}, "a", {"links", "sub"}, "b");
    link({"links"}, "a", {}, "c-top");
    symlink({}, "plain.txt", "to-plain");
    symlink({}, "no/such/target", "dangling");
    symlink({}, "\xff-odd-target", "odd-link");
    node({}, "fifo", S_IFIFO | 0640, 0);
    if (geteuid() == 0) node({}, "null-dev", S_IFCHR | 0666, makedev(1, 3));
    xattr({}, "plain.txt", "user.note", std::string("value\0with nul", 14));
    xattr({}, "plain.txt", "system.posix_acl_access", posix_acl());
    sparse({}, "sparse-small", {{8192, 4096}}, 65536);
    if (huge_sparse) sparse({}, "sparse-huge", {{0, 4096}, {1ull << 30, 8192}, {(4ull << 30) + 4096, 4096}}, kHugeSparseSize);
    P deep;
    for (int i = 0; i < kDeepLevels; ++i) {
      std::string n(kDeepNameLength, 'd');
      n.replace(0, 2, std::to_string(10 + i));
      dir(deep, n, 0755);
      deep.push_back(n);
    }
    file(deep, "deep-file", 1000);
    for (int i = 0; i < 20; ++i) {  // a random part
      P at = rng_() % 2 ? P{} : P{"links"};
      std::string n = "r" + std::to_string(i) + std::string(1, static_cast<char>(0x80 + rng_() % 0x7F));
      if (rng_() % 4 == 0) dir(at, n, 0700 | (rng_() % 0100)); else file(at, n, rng_() % 150000, 0600 | (rng_() % 0100));
    }
    if (geteuid() == 0) chown_one({"links"}, "a", 1234, 5678);
    finish();
    return ok_;
  }

 private:
  struct Made {
    std::vector<std::string> at;
    std::string name;
    mode_t mode;  // 0: keep
  };
  int at_fd(std::vector<std::string> const& at) { return open_path(root_, at); }
  void check(bool good) { ok_ = ok_ && good; }
  std::string random_bytes(std::size_t n) {
    std::string s(n, '\0');
    for (char& c : s) c = static_cast<char>(rng_());
    return s;
  }
  void file(std::vector<std::string> const& at, std::string const& name, std::size_t size, mode_t mode = 0644) {
    int d = at_fd(at), fd = openat(d, name.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
    std::string const data = random_bytes(size);
    check(fd >= 0 && write(fd, data.data(), size) == static_cast<ssize_t>(size));
    close(fd), close(d);
    made_.push_back({at, name, mode});
  }
  void dir(std::vector<std::string> const& at, std::string const& name, mode_t mode) {
    int d = at_fd(at);
    check(mkdirat(d, name.c_str(), 0700) == 0);
    close(d);
    made_.push_back({at, name, mode});
  }
  void link(std::vector<std::string> const& from, std::string const& a, std::vector<std::string> const& to, std::string const& b) {
    int f = at_fd(from), t = at_fd(to);
    check(linkat(f, a.c_str(), t, b.c_str(), 0) == 0);
    close(f), close(t);
  }
  void symlink(std::vector<std::string> const& at, std::string const& target, std::string const& name) {
    int d = at_fd(at);
    check(symlinkat(target.c_str(), d, name.c_str()) == 0);
    close(d);
    made_.push_back({at, name, 0});
  }
  void node(std::vector<std::string> const& at, std::string const& name, mode_t mode, dev_t dev) {
    int d = at_fd(at);
    check(mknodat(d, name.c_str(), mode, dev) == 0);
    close(d);
    made_.push_back({at, name, static_cast<mode_t>(mode & 07777)});
  }
  void xattr(std::vector<std::string> const& at, std::string const& name, char const* key, std::string const& value) {
    int d = at_fd(at);
    std::string const path = "/proc/self/fd/" + std::to_string(d) + "/" + name;
    check(lsetxattr(path.c_str(), key, value.data(), value.size(), 0) == 0);
    close(d);
  }
  static std::string posix_acl() {  // user::rw- user:1000:r-- group::r-- mask::r-- other::---
    std::string v;
    auto put = [&](std::uint32_t x, int n) { for (int i = 0; i < n; ++i) v.push_back(static_cast<char>(x >> (8 * i))); };
    put(2, 4);
    std::uint32_t const e[][3] = {{1, 6, ~0u}, {2, 4, 1000}, {4, 4, ~0u}, {0x10, 4, ~0u}, {0x20, 0, ~0u}};
    for (auto const& x : e) put(x[0], 2), put(x[1], 2), put(x[2], 4);
    return v;
  }
  void sparse(std::vector<std::string> const& at, std::string const& name,
              std::vector<std::pair<std::uint64_t, std::size_t>> const& data, std::uint64_t size) {
    int d = at_fd(at), fd = openat(d, name.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
    for (auto const& e : data) {
      std::string const bytes = random_bytes(e.second);
      check(pwrite(fd, bytes.data(), bytes.size(), static_cast<off_t>(e.first)) == static_cast<ssize_t>(e.second));
    }
    check(ftruncate(fd, static_cast<off_t>(size)) == 0);
    close(fd), close(d);
    made_.push_back({at, name, 0640});
  }
  void chown_one(std::vector<std::string> const& at, std::string const& name, uid_t u, gid_t g) {
    int d = at_fd(at);
    check(fchownat(d, name.c_str(), u, g, AT_SYMLINK_NOFOLLOW) == 0);
    close(d);
  }
  // Modes, then times, deepest (latest made) first: nothing made later
  // touches a directory's times afterwards. Access times lie a little in
  // the future, so no reader's access updates them (relatime).
  void finish() {
    std::time_t const now = std::time(nullptr);
    for (auto it = made_.rbegin(); it != made_.rend(); ++it) {
      int d = at_fd(it->at);
      if (it->mode != 0) check(fchmodat(d, it->name.c_str(), it->mode, 0) == 0);
      long const past = 1000000000L + static_cast<long>(rng_() % 600000000);
      struct timespec const t[2] = {{now + 600 + static_cast<long>(rng_() % 3000), static_cast<long>(rng_() % 1000000000)},
                                    {past, static_cast<long>(rng_() % 1000000000)}};
      check(utimensat(d, it->name.c_str(), t, AT_SYMLINK_NOFOLLOW) == 0);
      close(d);
    }
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
