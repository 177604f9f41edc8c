#include "tree_walk.h"

#include <memory>
#include <vector>

#include <qbfsys/name_pool.h>

#include "isolated_check.h"
#include "layer_harness.h"

namespace qbfs::validate {
namespace {

// Room for the current path in the checks that compare it; a path that
// does not fit is not compared.
constexpr short kPathRoomBytes = 8192;

std::vector<wchar_t> current_path_of(FSYS_HAND_STRUCT* hand, FS_STATUS& status) {
  std::vector<wchar_t> path(static_cast<std::size_t>(kPathRoomBytes) / sizeof(wchar_t));
  short size = kPathRoomBytes;
  status = FS_HandGetCurrentPath(hand, path.data(), &size);
  path.resize(status == FS_SUCCESS && size > 0 ? static_cast<std::size_t>(size) / sizeof(wchar_t) : 0);
  return path;
}

struct Walker {
  FSYS_HAND_STRUCT* hand;
  unsigned max_objects;
  FileVisitor const& on_file;
  WalkCounts& counts;

  std::string enter(DBLK& blk, std::string const& path, unsigned depth) {
    FS_STATUS path_status = 0;
    std::vector<wchar_t> const before = current_path_of(hand, path_status);
    FS_STATUS const into = FS_HandChangeIntoDDB(hand, &blk);
    if (into == FS_STATUS_EXT_ERROR) {
      ++counts.object_errors;  // a directory that cannot be entered is the module's to report
      return {};
    }
    if (into != FS_SUCCESS)
      return "ChangeIntoDDB into '" + path + "' returned " + status_text(into) +
             "; expected 0x00000000 for a directory block the find delivered";
    std::string problem = list(path + "/", depth + 1);
    if (!problem.empty()) return problem;
    FS_STATUS const up = FS_HandChangeDirUp(hand);
    if (up != FS_SUCCESS)
      return "ChangeDirUp from '" + path + "' returned " + status_text(up) + "; expected 0x00000000";
    FS_STATUS after_status = 0;
    std::vector<wchar_t> const after = current_path_of(hand, after_status);
    if (path_status == FS_SUCCESS && after_status == FS_SUCCESS && before != after)
      return "after ChangeIntoDDB and ChangeDirUp at '" + path +
             "' GetCurrentPath differs from before; expected the same directory";
    return {};
  }

  std::string visit(DBLK& blk, std::string const& dir, unsigned depth) {
    std::string const name = block_name(blk);
    if (name.empty()) return "an object in '" + dir + "' has no name; expected every block named";
    std::string const path = dir + name;
    if (blk.blk_type == DBLK_KIND_DDB) {
      ++counts.directories;
      return depth < kMaxWalkDepth ? enter(blk, path, depth) : std::string();
    }
    if (blk.blk_type == DBLK_KIND_FDB) {
      ++counts.files;
      return on_file(hand, blk, path);
    }
    return "'" + path + "' came as a block of kind " + std::to_string(blk.blk_type) +
           "; expected a directory (8) or file (9) block";
  }

  std::string list(std::string const& dir, unsigned depth) {
    note_step("listing '" + dir + "'");
    auto blk = std::make_unique<DBLK>();
    FS_STATUS status = FS_HandFindFirstObj(hand, blk.get(), nullptr, 0);
    std::string problem;
    while (problem.empty() && (status == FS_SUCCESS || status == FS_STATUS_EXT_ERROR)) {
      if (counts.objects >= max_objects) {
        counts.capped = true;
        break;
      }
      ++counts.objects;
      if (status == FS_SUCCESS) problem = visit(*blk, dir, depth);
      else ++counts.object_errors;
      if (problem.empty()) status = FS_HandFindNextObj(hand, blk.get());
    }
    if (problem.empty() && !counts.capped && status != FS_STATUS_NONE)
      problem = "a find in '" + dir + "' returned " + status_text(status) +
                "; expected 0x00000000 for an object and FS_STATUS_NONE at the end";
    FS_HandFindObjClose(hand, blk.get());
    FS_HandReleaseBlk(hand, blk.get());
    return problem;
  }
};

}  // namespace

std::string block_name(DBLK const& blk) {
  if (blk.os_name == nullptr || blk.os_name->buffer == nullptr) return {};
  auto const* text = reinterpret_cast<wchar_t const*>(blk.os_name->buffer);
  std::size_t const max = blk.os_name->size / sizeof(wchar_t);
  std::wstring name;
  for (std::size_t i = 0; i < max && text[i] != L'\0'; ++i) name += text[i];
  return narrow(name.c_str());
}

std::string walk_tree(FSYS_HAND_STRUCT* hand, unsigned max_objects, FileVisitor const& on_file,
                      WalkCounts& counts) {
  Walker walker{hand, max_objects, on_file, counts};
  return walker.list("/", 0);
}

}  // namespace qbfs::validate
