// Restoring into the tree: CreateObj makes (or replaces) an entry of the
// current directory from a block, OpenObj for FS_WRITE takes its data
// stream through WriteObj, CloseObj puts the data in, DeleteObj removes an
// entry again.
//
// A directory goes into the tree at CreateObj. A file is built off the tree
// (HandleState::created) and goes in, in place of an entry of its name, at
// the first CloseObj that saw no refused stream: a restore that fails the
// object, and then deletes it, leaves the entry that was there untouched.
//
// The entry takes the generic fields of the block: its kind, name, the
// three dates, the two attribute words and the display size. A file whose
// block gives no display size gets its data's size at close. Whatever a
// restore may make is within the limits of memfs.h, so the image saved
// afterwards always loads again; a date out of range is kept as "not known"
// for the same reason.
//
// An existing entry of the name: a directory over a directory is reused
// (it takes the block's fields, keeps its entries); anything else is
// replaced, but a directory that still holds entries is not, because that
// would drop a whole subtree for one object. RESTORE_SKIP_EXISTING leaves
// an existing entry alone and answers FS_STATUS_NONE.
#include <algorithm>
#include <cstdio>

#include "memfs.h"

namespace memfs {
namespace {

constexpr unsigned kAnyAmount = 1;  // `need`: the module takes any amount

FS_STATUS refuse(FSYS_HAND_STRUCT* fsh, std::wstring const& name, std::wstring const& what) {
  std::wstring const text = L"memfs: '" + name + L"': " + what;
  return FS_SetLastError(fsh, static_cast<int>(FS_ERR_NOT_SUPPORTED), FS_EXT_ERR_ACTION_SKIP, 0, text.c_str());
}

// The weekday is computed and the reserved word cleared as loading the
// image does, so a date reads the same before and after a reload.
_DATE_TIME kept_date(_DATE_TIME const& date) {
  if (!memfs_valid_date(date) || date.date_valid == 0) return _DATE_TIME{};
  _DATE_TIME kept = date;
  kept.date_valid = 1;
  kept.day_of_week = memfs_weekday(kept);
  kept.reserved = 0;
  return kept;
}

void take_fields(Node& node, DBLK const& blk) {
  GEN_DBLK_AREA const& gen = blk.area.gen;
  node.cdate = kept_date(gen.cdate);
  node.mdate = kept_date(gen.mdate);
  node.adate = kept_date(gen.adate);
  node.attrib1 = gen.attrib1;
  node.attrib2 = gen.attrib2;
  node.display_size = node.directory ? 0 : gen.display_size;
}

std::wstring number(std::uint32_t value) {
  wchar_t text[16];
  std::swprintf(text, sizeof text / sizeof text[0], L"0x%08X", value);
  return text;
}

// True when the tree has room for `bytes` of data in place of the node's.
// Called with the lock held.
bool room_for(Node const& node, std::uint64_t bytes) {
  std::uint64_t const others = memfs_tree_size().bytes - (node.in_tree ? node.data->size() : 0);
  return bytes <= MEMFS_MAX_TREE_BYTES && others <= MEMFS_MAX_TREE_BYTES - bytes;
}

// A stream id in words: its four characters (in memory order, as the ids
// are made) when they are all printable, then its number.
std::wstring stream_text(std::uint32_t id) {
  constexpr std::uint32_t kFirstPrintable = 0x20, kLastPrintable = 0x7E;
  std::wstring chars;
  for (int i = 0; i < 4; ++i) {
    std::uint32_t const c = (id >> (8 * i)) & 0xFF;
    if (c < kFirstPrintable || c > kLastPrintable) return L"stream " + number(id);
    chars.push_back(static_cast<wchar_t>(c));
  }
  return L"stream " + chars + L" (" + number(id) + L")";
}

}  // namespace

FS_STATUS memfs_create_obj(FSYS_HAND_STRUCT* fsh, DBLK* blk, wchar_t const* name, RESTORE_SEMANTICS semantics) {
  HandleState* state = memfs_state(fsh);
  if (state == nullptr || state->path.empty() || blk == nullptr || !dblk_is_object(blk)) return FS_ERR_BAD_PARAMETER;
  std::wstring wanted;
  if (name != nullptr) wanted = name;
  else if (!memfs_block_name(blk, wanted)) return FS_ERR_BAD_PARAMETER;
  if (!memfs_valid_name(wanted)) return refuse(fsh, wanted, L"memfs cannot keep an object of this name");
  bool const directory = blk->blk_type == DBLK_KIND_DDB;

  auto const hold = memfs_lock();
  NodePtr const& dir_ptr = state->path.back().dir;
  Node& dir = *dir_ptr;
  // Another handle removed the directory this one stands in: an entry
  // made there would be counted in the tree but never saved.
  if (!dir.in_tree) return refuse(fsh, wanted, L"the directory it would go into was removed");
  std::vector<NodePtr>& entries = dir.children;
  auto in_the_way = entries.end();
  for (auto it = entries.begin(); it != entries.end(); ++it)
    if ((*it)->name == wanted) in_the_way = it;
  if (in_the_way != entries.end()) {
    Node& old = **in_the_way;
    if (semantics == RESTORE_SKIP_EXISTING) return FS_STATUS_NONE;
    if (old.directory && directory) {
      take_fields(old, *blk);
      memfs_mark_changed();
      return FS_SUCCESS;
    }
    if (old.directory && !old.children.empty())
      return refuse(fsh, wanted, L"a directory that holds entries is in the way");
  } else {
    if (state->path.size() > MEMFS_MAX_DEPTH) return refuse(fsh, wanted, L"directories nest deeper than memfs allows");
    if (memfs_tree_size().nodes >= MEMFS_MAX_NODES)
      return refuse(fsh, wanted, L"memfs holds as many objects as it keeps");
  }
  auto made = std::make_shared<Node>();
  made->name = wanted;
  made->directory = directory;
  take_fields(*made, *blk);
  if (!directory) {
    made->in_tree = false;
    auto& created = state->created;
    created.erase(std::remove_if(created.begin(), created.end(),
                                 [&](HandleState::Created const& c) { return c.dir == dir_ptr && c.node->name == wanted; }),
                  created.end());
    created.push_back({dir_ptr, std::move(made)});
    return FS_SUCCESS;
  }
  if (in_the_way != entries.end()) {
    memfs_tree_size().bytes -= (*in_the_way)->data->size();
    (*in_the_way)->in_tree = false;
    *in_the_way = std::move(made);
  } else {
    entries.push_back(std::move(made));
    ++memfs_tree_size().nodes;
  }
  memfs_mark_changed();
  return FS_SUCCESS;
}

FS_STATUS memfs_write(_FILE_HAND_STRUCT* hand, unsigned char* buffer, unsigned int* size, unsigned int* need,
                      STREAM_INFO* stream) {
  if (hand == nullptr || size == nullptr || need == nullptr || (buffer == nullptr && *size > 0))
    return FS_ERR_BAD_PARAMETER;
  auto& file = static_cast<OpenFile&>(*hand);
  if (file.mode != FS_WRITE || file.node == nullptr) return FS_ERR_BAD_PARAMETER;
  Node const& node = *file.node;  // its name and kind never change
  *need = kAnyAmount;
  if (stream != nullptr && stream->id != STRM_INVALID) {
    *size = 0;
    // A refused stream fails the object: a later data stream is not taken.
    if (file.failed) return refuse(file.fsysHand, node.name, L"an earlier stream was refused; nothing more is taken");
    file.failed = true;  // until the stream is taken
    if (node.directory)
      return refuse(file.fsysHand, node.name, L"a directory keeps no stream (" + stream_text(stream->id) + L")");
    if (stream->id != STRM_GENERIC_DATA)
      return refuse(file.fsysHand, node.name,
                    L"memfs keeps only a file's data; " + stream_text(stream->id) + L" is refused");
    if (file.data_started) return refuse(file.fsysHand, node.name, L"a file has one data stream; a second is refused");
    if (stream->size > MEMFS_MAX_FILE_BYTES)
      return refuse(file.fsysHand, node.name, L"the file is larger than memfs keeps");
    file.failed = false;
    file.data_started = true;
    return FS_SUCCESS;
  }
  if (!file.data_started || file.failed) return FS_ERR_BAD_PARAMETER;
  char const* why = nullptr;
  if (*size > MEMFS_MAX_FILE_BYTES - file.written.size()) {
    why = "the file is larger than memfs keeps";
  } else {
    auto const hold = memfs_lock();
    if (!room_for(node, file.written.size() + *size)) why = "memfs holds as much data as it keeps";
  }
  if (why != nullptr) {
    file.failed = true;
    *size = 0;
    return refuse(file.fsysHand, node.name, std::wstring(why, why + std::char_traits<char>::length(why)));
  }
  file.written.append(reinterpret_cast<char const*>(buffer), *size);
  return FS_SUCCESS;
}

namespace {

// True while the file is created and not yet put in (an object opened twice
// is put in by its first close; a deleted one is dropped).
bool still_created(OpenFile const& file) {
  HandleState const* state = memfs_state(file.fsysHand);
  if (state == nullptr) return false;
  return std::any_of(state->created.begin(), state->created.end(),
                     [&](HandleState::Created const& c) { return c.node == file.node; });
}

// Puts a created file in its directory, in place of an entry of its name.
// Called with the lock held.
FS_STATUS put_in_tree(OpenFile& file) {
  Node& node = *file.node;
  Node& dir = *file.dir;
  if (!dir.in_tree) return refuse(file.fsysHand, node.name, L"the directory it would go into was removed");
  std::vector<NodePtr>& entries = dir.children;
  auto const old = std::find_if(entries.begin(), entries.end(), [&](NodePtr const& e) { return e->name == node.name; });
  TreeSize& tree = memfs_tree_size();
  std::uint64_t const old_bytes = old != entries.end() ? (*old)->data->size() : 0;
  if (old != entries.end() && (*old)->directory && !(*old)->children.empty())
    return refuse(file.fsysHand, node.name, L"a directory that holds entries is in the way");
  if (old == entries.end() && tree.nodes >= MEMFS_MAX_NODES)
    return refuse(file.fsysHand, node.name, L"memfs holds as many objects as it keeps");
  std::uint64_t const others = tree.bytes - old_bytes;
  if (file.written.size() > MEMFS_MAX_TREE_BYTES || others > MEMFS_MAX_TREE_BYTES - file.written.size())
    return refuse(file.fsysHand, node.name, L"memfs holds as much data as it keeps");

  node.data = std::make_shared<std::string const>(std::move(file.written));
  if (node.display_size == 0) node.display_size = node.data->size();
  node.in_tree = true;
  tree.bytes = others + node.data->size();
  if (old != entries.end()) {
    (*old)->in_tree = false;
    *old = file.node;
  } else {
    entries.push_back(file.node);
    ++tree.nodes;
  }
  if (HandleState* state = memfs_state(file.fsysHand)) {
    auto& created = state->created;
    created.erase(std::remove_if(created.begin(), created.end(),
                                 [&](HandleState::Created const& c) { return c.node == file.node; }),
                  created.end());
  }
  file.dir = nullptr;
  memfs_mark_changed();
  return FS_SUCCESS;
}

}  // namespace

FS_STATUS memfs_finish_write(OpenFile& file) {
  if (file.failed || file.node->directory) return FS_SUCCESS;
  if (file.dir != nullptr && still_created(file)) return put_in_tree(file);
  if (!file.data_started) return FS_SUCCESS;
  Node& node = *file.node;
  // Writers side by side each saw room for their own data alone.
  if (!room_for(node, file.written.size()))
    return refuse(file.fsysHand, node.name, L"memfs holds as much data as it keeps");
  TreeSize& tree = memfs_tree_size();
  if (node.in_tree) tree.bytes = tree.bytes - node.data->size() + file.written.size();
  node.data = std::make_shared<std::string const>(std::move(file.written));
  if (node.display_size == 0) node.display_size = node.data->size();
  memfs_mark_changed();
  return FS_SUCCESS;
}

FS_STATUS memfs_delete_obj(FSYS_HAND_STRUCT* fsh, DBLK* blk) {
  HandleState* state = memfs_state(fsh);
  std::wstring name;
  if (state == nullptr || state->path.empty() || !memfs_block_name(blk, name)) return FS_ERR_BAD_PARAMETER;
  auto const hold = memfs_lock();
  // A file created and not put in (its restore failed): dropping it is all
  // there is to do; the entry of its name stays as it was.
  NodePtr const& dir = state->path.back().dir;
  auto& created = state->created;
  auto const pending = std::find_if(created.begin(), created.end(), [&](HandleState::Created const& c) {
    return c.dir == dir && c.node->name == name;
  });
  if (pending != created.end()) {
    created.erase(pending);
    return FS_SUCCESS;
  }
  std::vector<NodePtr>& entries = dir->children;
  for (auto it = entries.begin(); it != entries.end(); ++it) {
    if ((*it)->name != name) continue;
    if ((*it)->directory && !(*it)->children.empty())
      return refuse(fsh, name, L"a directory that holds entries is not deleted");
    memfs_tree_size().bytes -= (*it)->data->size();
    --memfs_tree_size().nodes;
    (*it)->in_tree = false;
    entries.erase(it);
    memfs_mark_changed();
    return FS_SUCCESS;
  }
  return FS_SUCCESS;  // gone already: what was asked holds
}

}  // namespace memfs
