// The adapter's handle side: attaching, the current directory, listings
// and the blocks that describe what they find.
//
// Paths are in the layer's component form: each component ended by a NUL,
// `size` bytes with the last terminator; the root alone is one empty
// component. A listing hands out the entries of the current directory whose
// names match its specification (FS_CompareFileSpec, case sensitive; null or
// "*" for every entry) and ends with FS_STATUS_NONE.
//
// Blocks are built by the generic creator from a request that carries the
// object's name, display size, attribute words and modification date, so the
// generic block operations (FS_FshGen's) read them back. Dates are UTC and
// go to the creator directly, not through FS_CreateGenDBLK, so nothing
// converts them.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "adapterfs.h"

namespace adapterfs {
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

Node const* child_named(Node const& dir, std::wstring const& name) {
  for (Node const& child : dir.children)
    if (child.name == name) return &child;
  return nullptr;
}

}  // namespace

FS_STATUS Adapter::AttachToDLE(FSYS_HAND_STRUCT* fsh, GENERIC_DLE* dle, wchar_t*, wchar_t*) {
  if (fsh == nullptr || dle == nullptr) return FS_ERR_BAD_PARAMETER;
  path_.assign(1, Level{&adapterfs_root(), 0, L"*"});
  attached_ = true;
  return FS_SUCCESS;
}

FS_STATUS Adapter::DetachDLE(FSYS_HAND_STRUCT* fsh, void*, void**) {
  if (fsh == nullptr) return FS_ERR_BAD_PARAMETER;
  let_go();
  return FS_SUCCESS;
}

FS_STATUS Adapter::CloseSys(FSYS_HAND_STRUCT* fsh) {
  let_go();
  return FS_FshGen::CloseSys(fsh);  // deletes this object
}

// Name elements still in blocks belong to the handle's pool, which the
// layer empties as the handle goes; only the walking state is ours.
void Adapter::let_go() {
  path_.clear();
  names_.clear();
  attached_ = false;
}

Node const* Adapter::entry_of(DBLK const* blk) const {
  if (path_.empty() || blk == nullptr || blk->os_name == nullptr || blk->os_name->buffer == nullptr) return nullptr;
  auto const* name = reinterpret_cast<wchar_t const*>(blk->os_name->buffer);
  std::size_t const chars = blk->os_name->size / kWide;
  return child_named(*path_.back().dir, std::wstring(name, wcsnlen(name, chars)));
}

std::string Adapter::current_path() const {
  std::string path;
  for (std::size_t i = 1; i < path_.size(); ++i) path += (i > 1 ? "/" : "") + adapterfs_narrow(path_[i].dir->name);
  return path;
}

void Adapter::release_name(FSYS_HAND_STRUCT* fsh, DBLK* blk) {
  if (blk->os_name == nullptr) return;
  auto const at = std::find(names_.begin(), names_.end(), static_cast<void const*>(blk->os_name));
  if (at == names_.end()) return;
  names_.erase(at);
  GEN_ReleaseBlk(fsh, blk);
}

FS_STATUS Adapter::fill_block(FSYS_HAND_STRUCT* fsh, DBLK* blk, Node const& node) {
  release_name(fsh, blk);
  char const kind = node.directory ? DBLK_KIND_DDB : DBLK_KIND_FDB;
  _CREATE_DBLK request;
  FS_SetDefaultDBLK(fsh, kind, 0, &request);
  request.dblk = blk;
  request.gen.dblk = blk;
  request.gen.display_size = node.data.size();
  request.gen.media_attrib = node.attrib1;
  request.gen.attrib2 = node.attrib2;
  request.gen.mdate = &node.mdate;
  request.gen.name_char_type = DBLK_NAME_WIDE;
  request.gen.name = node.name.c_str();
  request.gen.name_size = static_cast<std::uint16_t>((node.name.size() + 1) * kWide);
  FS_STATUS const status = GEN_CreateDBLK(fsh, static_cast<unsigned char>(kind), &request);
  if (blk->os_name != nullptr) names_.push_back(blk->os_name);
  if (status != FS_SUCCESS) return status;
  return GEN_SetObjTypeDBLK(fsh, blk, node.directory ? FS_OBJ_DIRECTORY : FS_OBJ_FILE);
}

FS_STATUS Adapter::ChangeDir(FSYS_HAND_STRUCT* fsh, wchar_t* path, short size) {
  if (fsh == nullptr || !attached_ || path == nullptr || size < static_cast<short>(kWide))
    return FS_ERR_BAD_PARAMETER;
  std::vector<Level> walk{{&adapterfs_root(), 0, L"*"}};
  std::size_t const chars = static_cast<std::size_t>(size) / kWide;
  for (std::size_t at = 0; at < chars;) {
    std::size_t const end = wcsnlen(path + at, chars - at) + at;
    if (end > at) {
      Node const* next = child_named(*walk.back().dir, std::wstring(path + at, end - at));
      if (next == nullptr || !next->directory) return FS_ERR_NOT_SUPPORTED;
      walk.push_back({next, 0, L"*"});
    }
    at = end + 1;
  }
  path_ = walk;
  return FS_SUCCESS;
}

// The directory named by ADAPTERFS_FAIL_ENTER cannot be entered, as one
// whose device went away between its listing and its walk.
FS_STATUS Adapter::ChangeIntoDDB(FSYS_HAND_STRUCT* fsh, DBLK* blk) {
  if (fsh == nullptr || !attached_) return FS_ERR_BAD_PARAMETER;
  Node const* entry = entry_of(blk);
  if (entry == nullptr || !entry->directory) return FS_ERR_NOT_SUPPORTED;
  std::string const dir = current_path();
  std::string const path = (dir.empty() ? "" : dir + "/") + adapterfs_narrow(entry->name);
  char const* failing = std::getenv(ADAPTERFS_FAIL_ENTER_VARIABLE);
  if (failing != nullptr && path == failing) return FS_ERR_NOT_SUPPORTED;
  path_.push_back({entry, 0, L"*"});
  return FS_SUCCESS;
}

FS_STATUS Adapter::ChangeDirUp(FSYS_HAND_STRUCT* fsh) {
  if (fsh == nullptr || !attached_) return FS_ERR_BAD_PARAMETER;
  if (path_.size() == 1) return FS_ERR_NOT_SUPPORTED;  // at the root
  path_.pop_back();
  return FS_SUCCESS;
}

FS_STATUS Adapter::GetCurrentPath(FSYS_HAND_STRUCT* fsh, wchar_t* path, short* size) {
  if (fsh == nullptr || !attached_ || path == nullptr || size == nullptr) return FS_ERR_BAD_PARAMETER;
  std::wstring form;
  for (std::size_t i = 1; i < path_.size(); ++i) form += path_[i].dir->name + L'\0';
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

FS_STATUS Adapter::GetCurrentDDB(FSYS_HAND_STRUCT* fsh, DBLK* blk) {
  if (fsh == nullptr || !attached_ || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  return fill_block(fsh, blk, *path_.back().dir);
}

FS_STATUS Adapter::FindFirstObj(FSYS_HAND_STRUCT* fsh, DBLK* blk, wchar_t* spec, unsigned short) {
  if (fsh == nullptr || !attached_ || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  Level& level = path_.back();
  level.cursor = 0;
  level.spec = spec != nullptr && spec[0] != L'\0' ? spec : L"*";
  return FindNextObj(fsh, blk);
}

FS_STATUS Adapter::FindNextObj(FSYS_HAND_STRUCT* fsh, DBLK* blk) {
  if (fsh == nullptr || !attached_ || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  Level& level = path_.back();
  std::vector<Node> const& entries = level.dir->children;
  while (level.cursor < entries.size()) {
    Node const& entry = entries[level.cursor++];
    if (matches(level.spec, entry.name)) return fill_block(fsh, blk, entry);
  }
  return FS_STATUS_NONE;
}

FS_STATUS Adapter::FindObjClose(FSYS_HAND_STRUCT* fsh, DBLK*) {
  if (fsh == nullptr) return FS_ERR_BAD_PARAMETER;
  if (!path_.empty()) path_.back().cursor = 0;
  return FS_SUCCESS;
}

FS_STATUS Adapter::ReleaseBlk(FSYS_HAND_STRUCT* fsh, DBLK* blk) {
  if (fsh == nullptr || blk == nullptr) return FS_ERR_BAD_PARAMETER;
  release_name(fsh, blk);
  return FS_SUCCESS;
}

// FS_FshGen answers "generic" for every block; this module's blocks carry
// their type, set as they are filled.
FS_STATUS Adapter::GetObjTypeDBLK(FSYS_HAND_STRUCT* fsh, DBLK* blk, OBJECT_TYPE* type) {
  if (fsh == nullptr || blk == nullptr || type == nullptr) return FS_ERR_BAD_PARAMETER;
  return GEN_GetObjTypeDBLK(fsh, blk, type);
}

}  // namespace adapterfs
