// The tree the module serves: the sample, or what the image file holds, from
// InitFileSys on; saved back to the image at DeInitFileSys when it changed.
#include <cstdio>
#include <cstdlib>

#include "memfs.h"

namespace memfs {
namespace {

constexpr std::size_t kLargeFileBytes = 100000;

struct Tree {
  std::mutex mutex;
  NodePtr root;
  bool changed = false;
  TreeSize size;
  std::string image;  // the image file's path; empty: none
};

Tree& tree() {
  static Tree* const instance = new Tree;  // never destroyed: slots may run late in shut-down
  return *instance;
}

NodePtr node(wchar_t const* name, bool directory, std::string data = {}, std::vector<NodePtr> children = {}) {
  auto n = std::make_shared<Node>();
  n->name = name;
  n->directory = directory;
  n->cdate = n->mdate = n->adate = MEMFS_SAMPLE_DATE;
  n->display_size = data.size();
  n->data = std::make_shared<std::string const>(std::move(data));
  n->children = std::move(children);
  return n;
}

// The image's path as a terminal may show it: control characters (which a
// terminal would act on) become '?'.
std::string shown(std::string text) {
  constexpr unsigned char kFirstPrintable = 0x20, kDelete = 0x7F;
  for (char& c : text)
    if (static_cast<unsigned char>(c) < kFirstPrintable || static_cast<unsigned char>(c) == kDelete) c = '?';
  return text;
}

}  // namespace

NodePtr memfs_sample_tree() {
  std::string large(kLargeFileBytes, '\0');
  for (std::size_t i = 0; i < large.size(); ++i) large[i] = static_cast<char>('a' + i % 26);
  NodePtr docs = node(L"docs", true, {}, {node(L"guide.txt", false, "Walk, open, read, close.\n"),
                                           node(L"empty", true)});
  return node(L"", true, {},
              {node(L"README.txt", false, "Served from memory.\n"), docs, node(L"large.bin", false, large)});
}

// A module loaded by a host that never calls InitFileSys still serves the
// sample.
NodePtr memfs_root() {
  Tree& t = tree();
  std::lock_guard<std::mutex> hold(t.mutex);
  if (t.root == nullptr) {
    t.root = memfs_sample_tree();
    t.size = memfs_measure(*t.root);
  }
  return t.root;
}

std::unique_lock<std::mutex> memfs_lock() { return std::unique_lock<std::mutex>(tree().mutex); }

void memfs_mark_changed() { tree().changed = true; }

TreeSize& memfs_tree_size() { return tree().size; }

TreeSize memfs_measure(Node const& top) {
  TreeSize size;
  std::vector<Node const*> todo{&top};
  while (!todo.empty()) {
    Node const* n = todo.back();
    todo.pop_back();
    ++size.nodes;
    size.bytes += n->data->size();
    for (NodePtr const& child : n->children) todo.push_back(child.get());
  }
  return size;
}

NodePtr memfs_child(Node const& dir, std::wstring const& name) {
  for (NodePtr const& child : dir.children)
    if (child->name == name) return child;
  return nullptr;
}

bool memfs_valid_name(std::wstring const& name) {
  if (name.empty() || name.size() > MEMFS_MAX_NAME_CHARS || name == L"." || name == L"..") return false;
  for (wchar_t const c : name) {
    auto const code = static_cast<std::uint32_t>(c);
    if (c == L'\0' || c == MEMFS_DELIMITER || code > 0x10FFFFu || (code >= 0xD800u && code <= 0xDFFFu))
      return false;
  }
  return true;
}

bool memfs_valid_date(_DATE_TIME const& d) {
  constexpr unsigned kFirstYear = 1601, kLastYear = 30827;
  constexpr std::uint32_t kTicksPerSecond = 10000000;
  if (d.date_valid == 0) return true;
  return d.year >= kFirstYear && d.year <= kLastYear && d.month >= 1 && d.month <= 12 && d.day >= 1 &&
         d.day <= 31 && d.hour <= 23 && d.minute <= 59 && d.second <= 59 && d.ticks < kTicksPerSecond;
}

// We refuse to start on an image we cannot read rather than start from the
// sample: a shut-down would then write the sample over the user's tree.
FS_STATUS memfs_init(QB_CFG*) {
  Tree& t = tree();
  char const* image = std::getenv(MEMFS_IMAGE_VARIABLE);
  std::string const path = image == nullptr ? std::string() : std::string(image);
  NodePtr root;
  std::string why;
  FS_STATUS const status = path.empty() ? FS_STATUS_NONE : memfs_load_image(path, root, why);
  if (status != FS_SUCCESS && status != FS_STATUS_NONE) {
    std::fprintf(stderr, "memfs: not started: the image file '%s' %s\n", shown(path).c_str(), why.c_str());
    return status;
  }
  if (root == nullptr) root = memfs_sample_tree();
  TreeSize const size = memfs_measure(*root);
  std::lock_guard<std::mutex> hold(t.mutex);
  t.root = std::move(root);
  t.size = size;
  t.image = path;
  t.changed = false;
  return FS_SUCCESS;
}

FS_STATUS memfs_deinit() {
  Tree& t = tree();
  std::lock_guard<std::mutex> hold(t.mutex);
  FS_STATUS status = FS_SUCCESS;
  if (t.changed && !t.image.empty() && t.root != nullptr) {
    std::string why;
    status = memfs_save_image(t.image, *t.root, why);
    if (status != FS_SUCCESS)
      std::fprintf(stderr, "memfs: the tree could not be saved to the image file '%s': %s\n", shown(t.image).c_str(),
                   shown(why).c_str());
  }
  t.changed = false;
  t.image.clear();
  return status;
}

}  // namespace memfs
