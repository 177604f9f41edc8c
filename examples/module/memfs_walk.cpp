// Walking the tree: the current directory, its listing, and the blocks that
// describe what the listing finds and the current directory itself (the
// root's block has an empty name).
//
// Paths are in the layer's component form: each component ended by a NUL,
// `size` bytes with the last terminator; the root alone is one empty
// component (4 bytes). A listing hands out the entries of the current
// directory whose names match the specification (FS_CompareFileSpec, case
// sensitive; null or "*" for every entry) and ends with FS_STATUS_NONE.
#include <cstring>
#include <cwchar>

#include "memfs.h"

namespace memfs {
namespace {

constexpr std::size_t kWide = sizeof(wchar_t);

constexpr int kCaseSensitive = 1;
constexpr int kWholeName = 0;
constexpr int kClassicRules = 0;

bool matches(std::wstring spec, std::wstring name) {
  if (spec == L"*") return true;
  return FS_CompareFileSpec(&name[0], static_cast<short>(name.size() + 1), &spec[0],
                            static_cast<short>(spec.size() + 1), kCaseSensitive, kWholeName,
                            kClassicRules) == FS_SPEC_MATCH;
}

// Gives back the name element of a block this module filled before.
void release_name(FSYS_HAND_STRUCT* fsh, HandleState& state, DBLK* blk) {
  if (blk->os_name == nullptr || state.names.erase(blk->os_name) == 0) return;
  GEN_ReleaseBlk(fsh, blk);
}

// The block carries everything the node keeps but its contents.
FS_STATUS fill_block(FSYS_HAND_STRUCT* fsh, HandleState& state, DBLK* blk, Node const& node) {
  release_name(fsh, state, blk);
  char const kind = node.directory ? DBLK_KIND_DDB : DBLK_KIND_FDB;
  _CREATE_DBLK request;
  FS_SetDefaultDBLK(fsh, kind, 0, &request);
  request.dblk = blk;
  request.gen.dblk = blk;
  request.gen.display_size = node.display_size;
  // The name is in the block, never to come as a stream: a word that says
  // otherwise (an image may hold any) would leave the block unnamed.
  request.gen.media_attrib = node.attrib1 & ~DBLK_ATTR1_NAME_ENCRYPTED;
  request.gen.attrib2 = node.attrib2;
  request.gen.cdate = &node.cdate;
  request.gen.mdate = &node.mdate;
  request.gen.adate = &node.adate;
  request.gen.name_char_type = DBLK_NAME_WIDE;
  request.gen.name = node.name.c_str();
  request.gen.name_size = static_cast<std::uint16_t>((node.name.size() + 1) * kWide);
  FS_STATUS const status = GEN_CreateDBLK(fsh, static_cast<unsigned char>(kind), &request);
  if (blk->os_name != nullptr) state.names.insert(blk->os_name);
  if (status != FS_SUCCESS) return status;
  return GEN_SetObjTypeDBLK(fsh, blk, node.directory ? FS_OBJ_DIRECTORY : FS_OBJ_FILE);
}

}  // namespace

bool memfs_block_name(DBLK const* blk, std::wstring& name) {
  if (blk == nullptr || blk->os_name == nullptr || blk->os_name->buffer == nullptr) return false;
  auto const* chars = reinterpret_cast<wchar_t const*>(blk->os_name->buffer);
  name.assign(chars, wcsnlen(chars, blk->os_name->size / kWide));
  return true;
}

NodePtr memfs_entry_of(HandleState const& state, DBLK const* blk) {
  std::wstring name;
  if (state.path.empty() || !memfs_block_name(blk, name)) return nullptr;
  NodePtr const& dir = state.path.back().dir;
  for (HandleState::Created const& c : state.created)
    if (c.dir == dir && c.node->name == name) return c.node;
  return memfs_child(*dir, name);
}

FS_STATUS memfs_change_dir(FSYS_HAND_STRUCT* fsh, wchar_t* path, short size) {
  HandleState* state = memfs_state(fsh);
  if (state == nullptr || path == nullptr || size < static_cast<short>(kWide)) return FS_ERR_BAD_PARAMETER;
  std::vector<HandleState::Level> walk{{memfs_root(), 0, L"*", {}}};
  std::size_t const chars = static_cast<std::size_t>(size) / kWide;
  auto const hold = memfs_lock();
  for (std::size_t at = 0; at < chars;) {
    std::size_t const end = wcsnlen(path + at, chars - at) + at;
    if (end > at) {
      NodePtr next = memfs_child(*walk.back().dir, std::wstring(path + at, end - at));
      if (next == nullptr || !next->directory) return FS_ERR_NOT_SUPPORTED;
      walk.push_back({next, 0, L"*", {}});
    }
    at = end + 1;
  }
  state->path = walk;
  return FS_SUCCESS;
}

FS_STATUS memfs_change_into_ddb(FSYS_HAND_STRUCT* fsh, DBLK* blk) {
  HandleState* state = memfs_state(fsh);
  if (state == nullptr) return FS_ERR_BAD_PARAMETER;
  auto const hold = memfs_lock();
  NodePtr entry = memfs_entry_of(*state, blk);
  if (entry == nullptr || !entry->directory) return FS_ERR_NOT_SUPPORTED;
  state->path.push_back({entry, 0, L"*", {}});
  return FS_SUCCESS;
}

FS_STATUS memfs_change_dir_up(FSYS_HAND_STRUCT* fsh) {
  HandleState* state = memfs_state(fsh);
  if (state == nullptr) return FS_ERR_BAD_PARAMETER;
  if (state->path.size() == 1) return FS_ERR_NOT_SUPPORTED;  // at the root
  state->path.pop_back();
  return FS_SUCCESS;
}

FS_STATUS memfs_get_current_path(FSYS_HAND_STRUCT* fsh, wchar_t* path, short* size) {
  HandleState* state = memfs_state(fsh);
  if (state == nullptr || path == nullptr || size == nullptr) return FS_ERR_BAD_PARAMETER;
  std::wstring form;
  for (std::size_t i = 1; i < state->path.size(); ++i) form += state->path[i].dir->name + L'\0';
  if (form.empty()) form.push_back(L'\0');
  std::size_t const bytes = form.size() * kWide;
  if (*size < 0 || bytes > static_cast<std::size_t>(*size)) {
    *size = static_cast<short>(bytes);
    return FS_ERR_OBJ_NO_DATA;
  }
  std::memcpy(path, form.data(), bytes);
  *size = static_cast<short>(bytes);
  return FS_SUCCESS;
}

FS_STATUS memfs_get_current_ddb(FSYS_HAND_STRUCT* fsh, DBLK* blk) {
  HandleState* state = memfs_state(fsh);
  if (state == nullptr || blk == nullptr || state->path.empty()) return FS_ERR_BAD_PARAMETER;
  auto const hold = memfs_lock();
  return fill_block(fsh, *state, blk, *state->path.back().dir);
}

FS_STATUS memfs_find_first(FSYS_HAND_STRUCT* fsh, DBLK* blk, wchar_t* spec, unsigned short) {
  HandleState* state = memfs_state(fsh);
  if (state == nullptr || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  HandleState::Level& level = state->path.back();
  level.cursor = 0;
  level.spec = spec != nullptr && spec[0] != L'\0' ? spec : L"*";
  {
    auto const hold = memfs_lock();
    level.listing = level.dir->children;
  }
  return memfs_find_next(fsh, blk);
}

FS_STATUS memfs_find_next(FSYS_HAND_STRUCT* fsh, DBLK* blk) {
  HandleState* state = memfs_state(fsh);
  if (state == nullptr || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  HandleState::Level& level = state->path.back();
  auto const hold = memfs_lock();
  std::vector<NodePtr> const& entries = level.listing;
  while (level.cursor < entries.size()) {
    Node const& entry = *entries[level.cursor++];
    if (matches(level.spec, entry.name)) return fill_block(fsh, *state, blk, entry);
  }
  return FS_STATUS_NONE;
}

FS_STATUS memfs_find_close(FSYS_HAND_STRUCT* fsh, DBLK*) {
  HandleState* state = memfs_state(fsh);
  if (state != nullptr && !state->path.empty()) {
    state->path.back().cursor = 0;
    state->path.back().listing.clear();
  }
  return FS_SUCCESS;
}

// Every block of the handle comes back here: those this module filled and
// those its caller built (a restore builds them with FS_CreateGenDBLK).
// Their names all live in the handle's pool, so all are given back.
FS_STATUS memfs_release_blk(FSYS_HAND_STRUCT* fsh, DBLK* blk) {
  HandleState* state = memfs_state(fsh);
  if (state == nullptr || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  if (blk->os_name != nullptr) state->names.erase(blk->os_name);
  return GEN_ReleaseBlk(fsh, blk);
}

}  // namespace memfs
