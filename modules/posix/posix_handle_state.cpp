// The per-handle state: levels, display paths, reports, and finishing the
// directories a restore made.
#include "posix_handle_state.h"

#include <fcntl.h>
#include <unistd.h>

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>

#include <qbfsys/handles.h>
#include <qbhost/zprintf.h>

#include "posix_metadata.h"
#include "posix_name_codec.h"

namespace qbposix {

PosixHandleState* posix_state(FSYS_HAND_STRUCT* fsh) {
  if (fsh == nullptr || fsh->fsysData == nullptr) return nullptr;
  auto* state = static_cast<PosixHandleState*>(fsh->fsysData);
  return state->levels.empty() ? nullptr : state;
}

PosixDirHold::~PosixDirHold() { close(fd); }

std::shared_ptr<PosixDirHold> posix_hold_current(PosixHandleState& state) {
  PosixLevel& level = state.levels.back();
  if (level.hold == nullptr) level.hold = std::make_shared<PosixDirHold>(level.fd);
  return level.hold;
}

void posix_close_level(PosixLevel& level) {
  if (level.made_fd >= 0) close(level.made_fd);
  if (level.hold != nullptr)
    level.hold.reset();
  else if (level.fd >= 0)
    close(level.fd);
  level.made_fd = level.fd = -1;
}

void posix_close_levels(PosixHandleState& state) {
  for (PosixLevel& level : state.levels) posix_close_level(level);
  state.levels.clear();
  state.close_from = POSIX_FIRST_BELOW_ROOT;
}

namespace {

constexpr int kDirectoryFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

bool same_directory(int fd, std::uint64_t dev, std::uint64_t ino) {
  struct stat st {};
  return fstat(fd, &st) == 0 && st.st_dev == dev && st.st_ino == ino;
}

// Opens level `at` by the names of the levels from the root down to it.
int open_by_names(PosixHandleState const& state, std::size_t at) {
  std::vector<std::string> names;
  for (std::size_t i = POSIX_FIRST_BELOW_ROOT; i <= at; ++i) names.push_back(state.levels[i].name);
  return posix_open_components(state.levels.front().fd, names);
}

}  // namespace

void posix_trim_levels(PosixHandleState& state) {
  // The current level and the POSIX_OPEN_LEVELS above it stay open.
  while (state.levels.size() > state.close_from + POSIX_OPEN_LEVELS + 1) {
    PosixLevel& level = state.levels[state.close_from++];
    if (level.fd < 0 || level.listing) continue;
    struct stat st {};
    if (fstat(level.fd, &st) != 0) continue;  // kept open: it could not be found again
    level.dev = st.st_dev;
    level.ino = st.st_ino;
    posix_close_level(level);
    std::vector<char>().swap(level.entries);
  }
}

bool posix_pop_level(PosixHandleState& state) {
  std::size_t const n = state.levels.size();
  int error = 0;
  if (n > POSIX_FIRST_BELOW_ROOT && state.levels[n - 2].fd < 0) {
    PosixLevel& up = state.levels[n - 2];
    int fd = openat(state.levels[n - 1].fd, "..", kDirectoryFlags);
    if (fd >= 0 && !same_directory(fd, up.dev, up.ino)) {
      close(fd);
      fd = -1;
    }
    if (fd < 0) fd = open_by_names(state, n - 2);
    if (fd < 0) {
      error = errno;
    } else {
      up.fd = fd;
      up.read_from_start = true;
    }
  }
  posix_close_level(state.levels.back());
  state.levels.pop_back();
  state.close_from = std::max(POSIX_FIRST_BELOW_ROOT, std::min(state.close_from, state.levels.size() - 1));
  errno = error;
  return error == 0;
}

std::size_t PosixDirNodeHash::operator()(std::uint32_t i) const {
  PosixDirNode const& node = (*nodes)[i];
  return std::hash<std::string>()(node.name) ^ (std::size_t{node.parent} * 0x9E3779B97F4A7C15ull);
}

bool PosixDirNodeSame::operator()(std::uint32_t a, std::uint32_t b) const {
  PosixDirNode const& x = (*nodes)[a];
  PosixDirNode const& y = (*nodes)[b];
  return x.parent == y.parent && x.name == y.name;
}

PosixDirTree::PosixDirTree() : index(0, PosixDirNodeHash{&nodes}, PosixDirNodeSame{&nodes}) {
  nodes.emplace_back();  // the root
}

std::uint32_t posix_child_node(PosixDirTree& tree, std::uint32_t parent, std::string const& name) {
  // The candidate is appended, looked up by its index and taken back when
  // the node exists: the set finds nodes only by index.
  PosixDirNode candidate;
  candidate.name = name;
  candidate.parent = parent;
  tree.nodes.push_back(std::move(candidate));
  auto const probe = static_cast<std::uint32_t>(tree.nodes.size() - 1);
  auto const found = tree.index.find(probe);
  if (found != tree.index.end()) {
    tree.nodes.pop_back();
    return *found;
  }
  try {
    tree.index.insert(probe);
  } catch (...) {
    tree.nodes.pop_back();
    throw;
  }
  return probe;
}

std::uint32_t posix_level_node(PosixHandleState& state, std::size_t at) {
  std::vector<PosixLevel>& levels = state.levels;
  levels.front().node = 0;  // the root's
  std::size_t known = at;
  while (levels[known].node == POSIX_NO_NODE) --known;
  for (std::size_t i = known + 1; i <= at; ++i)
    levels[i].node = posix_child_node(state.dirs, levels[i - 1].node, levels[i].name);
  return levels[at].node;
}

void posix_keep_made_file(PosixHandleState& state, int fd, std::string const& name) {
  PosixLevel& level = state.levels.back();
  if (level.made_fd >= 0) close(level.made_fd);
  level.made_fd = fd;
  level.made_name = name;
}

int posix_take_made_file(PosixHandleState& state, std::string const& name) {
  PosixLevel& level = state.levels.back();
  if (level.made_fd < 0 || level.made_name != name) return -1;
  int const fd = level.made_fd;
  level.made_fd = -1;
  return fd;
}

void posix_forget_made_file(PosixHandleState& state, std::string const& name) {
  int const fd = posix_take_made_file(state, name);
  if (fd >= 0) close(fd);
}

std::vector<std::string> posix_current_components(PosixHandleState const& state) {
  std::vector<std::string> out;
  for (std::size_t i = POSIX_FIRST_BELOW_ROOT; i < state.levels.size(); ++i)
    out.push_back(state.levels[i].name);
  return out;
}

std::wstring posix_display_path(PosixHandleState const& state, std::string const& name) {
  std::wstring out;
  for (std::size_t i = POSIX_FIRST_BELOW_ROOT; i < state.levels.size(); ++i)
    out += L"/" + posix_decode_name(state.levels[i].name);
  if (!name.empty()) out += L"/" + posix_decode_name(name);
  return out.empty() ? L"/" : out;
}

int posix_open_level(int base, char const* name) {
  constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
  int const fd = openat(base, name, kFlags | O_NOATIME);
  return fd >= 0 || errno != EPERM ? fd : openat(base, name, kFlags);
}

int posix_open_components(int base, std::vector<std::string> const& components) {
  int fd = fcntl(base, F_DUPFD_CLOEXEC, 0);
  for (std::string const& c : components) {
    if (fd < 0) return -1;
    int const next = openat(fd, c.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    int const saved = errno;
    close(fd);
    errno = saved;
    fd = next;
  }
  return fd;
}

bool posix_split_relative(std::string const& path, std::vector<std::string>& components) {
  components.clear();
  if (path.empty() || path.front() == '/') return false;
  std::size_t at = 0;
  while (at <= path.size()) {
    std::size_t const slash = std::min(path.find('/', at), path.size());
    std::string part = path.substr(at, slash - at);
    if (part.empty() || part == "." || part == "..") return false;
    components.push_back(std::move(part));
    at = slash + 1;
  }
  return true;
}

namespace {

// "/a/b/c" of a node, for messages.
std::wstring node_path(PosixDirTree const& tree, std::uint32_t node) {
  std::vector<std::uint32_t> chain;
  for (; node != 0 && node != POSIX_NO_NODE; node = tree.nodes[node].parent) chain.push_back(node);
  std::wstring shown;
  for (auto it = chain.rbegin(); it != chain.rend(); ++it) shown += L"/" + posix_decode_name(tree.nodes[*it].name);
  return shown.empty() ? L"/" : shown;
}

// One directory of the walk over the tree: its node, the next of its
// children to visit, and its identity as seen on the way down.
struct WalkStep {
  std::uint32_t node;
  std::uint32_t next;
  std::uint64_t dev, ino;
};

}  // namespace

void posix_finish_deferred(PosixHandleState& state) {
  PosixDirTree& tree = state.dirs;
  if (!state.levels.empty() && tree.any_pending) {
    std::vector<PosixDirNode> const& nodes = tree.nodes;
    std::size_t const count = nodes.size();
    // Each node's children, as ranges of one array (a parent's index is
    // below its children's).
    std::vector<std::uint32_t> first(count + 1, 0), children(count);
    for (std::size_t i = 1; i < count; ++i) ++first[nodes[i].parent + 1];
    for (std::size_t i = 0; i < count; ++i) first[i + 1] += first[i];
    {
      std::vector<std::uint32_t> at(first.begin(), first.end() - 1);
      for (std::size_t i = 1; i < count; ++i) children[at[nodes[i].parent]++] = static_cast<std::uint32_t>(i);
    }
    int const root = state.levels.front().fd;
    struct stat st {};
    fstat(root, &st);
    std::vector<WalkStep> path{{0, first[0], st.st_dev, st.st_ino}};
    int fd = root;  // the directory of path.back(); owned unless it is the root
    auto let_go = [&](int held) {
      if (held >= 0 && held != root) close(held);
    };
    // The pending directories of a subtree that cannot be reached.
    auto unreachable = [&](std::uint32_t top, int error) {
      std::vector<std::uint32_t> todo{top};
      while (!todo.empty()) {
        std::uint32_t const n = todo.back();
        todo.pop_back();
        if (nodes[n].pending)
          posix_note(error, node_path(tree, n), L"directory could not be reopened to set its metadata");
        for (std::uint32_t c = first[n]; c < first[n + 1]; ++c) todo.push_back(children[c]);
      }
    };
    // Opens the directory of path.back() again by its names from the root.
    auto by_names = [&]() {
      int at = fcntl(root, F_DUPFD_CLOEXEC, 0);
      for (std::size_t k = 1; k < path.size() && at >= 0; ++k) {
        int const next = openat(at, nodes[path[k].node].name.c_str(), kDirectoryFlags);
        close(at);
        at = next;
      }
      return at;
    };
    while (!path.empty()) {
      WalkStep& top = path.back();
      if (top.next < first[top.node + 1]) {
        std::uint32_t const child = children[top.next++];
        int const down = openat(fd, nodes[child].name.c_str(), kDirectoryFlags);
        if (down < 0 || fstat(down, &st) != 0) {
          int const error = errno;
          if (down >= 0) close(down);
          unreachable(child, error);
          continue;
        }
        let_go(fd);
        fd = down;
        path.push_back({child, first[child], st.st_dev, st.st_ino});
        continue;
      }
      // Every directory below is done. The one above is opened before this
      // one's mode is set, which may forbid going through it.
      std::uint32_t const done = top.node;
      int up = root;
      if (path.size() > 2) {
        WalkStep const& above = path[path.size() - 2];
        up = openat(fd, "..", kDirectoryFlags);
        if (up >= 0 && !same_directory(up, above.dev, above.ino)) {
          close(up);
          up = -1;
        }
      }
      if (nodes[done].pending) {
        wchar_t const* step = nullptr;
        int const error =
            posix_apply_metadata(fd, "", fd, nodes[done].info, nodes[done].xattrs, state.privileged, &step);
        if (error != 0) posix_note(error, node_path(tree, done), step);
      }
      let_go(fd);
      path.pop_back();
      fd = up;
      // Going up failed: the directory above is opened by its names from the
      // root; one that cannot be is given up with what is left below it.
      while (fd < 0 && !path.empty()) {
        fd = by_names();
        if (fd >= 0) break;
        int const error = errno;
        WalkStep const lost = path.back();
        path.pop_back();
        if (nodes[lost.node].pending)
          posix_note(error, node_path(tree, lost.node), L"directory could not be reopened to set its metadata");
        for (std::uint32_t c = lost.next; c < first[lost.node + 1]; ++c) unreachable(children[c], error);
      }
    }
    let_go(fd);
  }
  for (PosixLevel& level : state.levels) level.node = POSIX_NO_NODE;
  tree.index.clear();
  tree.nodes.resize(1);
  tree.nodes.shrink_to_fit();
  tree.any_pending = false;
}

FS_STATUS posix_report(FSYS_HAND_STRUCT* fsh, int error, std::wstring const& path,
                       wchar_t const* what, FS_EXT_ERR_ACTION action) {
  std::wstring text = path + L": " + what;
  if (error != 0) {
    std::string const reason = std::strerror(error);
    text += L" (" + std::wstring(reason.begin(), reason.end()) + L")";
  }
  QB_Zprintf(0, L"posix: %ls", text.c_str());
  return FS_SetLastError(fsh, error, action, 0, text.c_str());
}

void posix_note(int error, std::wstring const& path, std::wstring const& what) {
  std::wstring text = path + L": " + what;
  if (error != 0) {
    std::string const reason = std::strerror(error);
    text += L" (" + std::wstring(reason.begin(), reason.end()) + L")";
  }
  QB_Zprintf(0, L"posix: %ls", text.c_str());
}

}  // namespace qbposix
