// The tree the module serves: the sample, or what the image file holds, from
// InitFileSys on; saved back to the image when a handle detaches (the
// caller hears of a failed save in the detach status) and at DeInitFileSys,
// each time only when it changed. A failed save is said once: the detach
// that met it tells its caller, and shut-down tries again only when the
// tree changed after that.
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
  bool failure_told = false;  // the last save failed and a caller was told; unchanged since
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

void memfs_mark_changed() {
  tree().changed = true;
  tree().failure_told = false;
}

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

std::uint8_t memfs_weekday(_DATE_TIME const& d) {
  // Days since 1970-01-01 (a Thursday) by the civil calendar, counting
  // years from March so that the leap day ends a year.
  int const y = d.year - (d.month <= 2 ? 1 : 0);
  int const era = (y >= 0 ? y : y - 399) / 400;
  int const year_of_era = y - era * 400;
  int const month_from_march = (d.month + 9) % 12;
  int const day_of_year = (153 * month_from_march + 2) / 5 + d.day - 1;
  int const day_of_era = year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year;
  long long const days = static_cast<long long>(era) * 146097 + day_of_era - 719468;
  constexpr int kThursday = 4, kDaysPerWeek = 7;
  return static_cast<std::uint8_t>(((days % kDaysPerWeek) + kDaysPerWeek + kThursday) % kDaysPerWeek);
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

bool memfs_save_if_changed(std::string& why) {
  Tree& t = tree();
  std::lock_guard<std::mutex> hold(t.mutex);
  if (!t.changed || t.image.empty() || t.root == nullptr) return true;
  std::string reason;
  if (!memfs_save_image(t.image, *t.root, reason)) {
    why = "memfs: the tree could not be saved to the image file '" + shown(t.image) + "': " + shown(reason);
    t.failure_told = true;
    return false;
  }
  t.changed = false;
  return true;
}

// At shut-down no caller is left to tell (the layer drops this status): a
// failure goes to standard error, unless a detach already told its caller.
FS_STATUS memfs_deinit() {
  Tree& t = tree();
  bool told = false;
  {
    std::lock_guard<std::mutex> hold(t.mutex);
    told = t.failure_told;
  }
  std::string why;
  bool const saved = told || memfs_save_if_changed(why);
  if (!saved) std::fprintf(stderr, "%s\n", why.c_str());
  FS_STATUS const status = saved ? FS_SUCCESS : FS_STATUS_EXT_ERROR;
  std::lock_guard<std::mutex> hold(t.mutex);
  t.changed = false;
  t.failure_told = false;
  t.image.clear();
  return status;
}

}  // namespace memfs
