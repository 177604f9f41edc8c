// check_restore (object_checks.h): files read through one handle are
// written through another into the --write directory, then read back.
#include <climits>
#include <cstdlib>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <qbfsys/create_dblk.h>
#include <qbfsys/dblk_access.h>
#include <qbfsys/file_hand.h>
#include <qbfsys/handles.h>

#include "layer_harness.h"
#include "object_checks.h"
#include "object_reader.h"
#include "stream_framing.h"
#include "tree_walk.h"

namespace qbfs::validate {
namespace {

// Room for a block's OS info copied from the source block.
constexpr std::size_t kMaxOsInfoBytes = 4096;

// The destination block for a source block, described again through the
// destination handle as a restore from media does. The block points at
// `info`, which must outlive it.
FS_STATUS describe_again(FSYS_HAND_STRUCT* src, DBLK* blk, FSYS_HAND_STRUCT* dst, DBLK* out,
                         std::wstring const& name, std::vector<unsigned char>& info) {
  info.assign(kMaxOsInfoBytes, 0);
  std::uint32_t const info_size = FS_SizeofOS_InfoInDBLK(src, blk);
  if (info_size > info.size()) return FS_ERR_BAD_PARAMETER;
  FS_GetOS_InfoFromDBLK(src, blk, info.data());
  unsigned short os_id = 0;
  unsigned short os_ver = 0;
  FS_GetOSid_verFromDBLK(src, blk, &os_id, &os_ver);
  _CREATE_DBLK req;
  FS_SetDefaultDBLK(dst, static_cast<char>(blk->blk_type), 0, &req);
  req.dblk = req.gen.dblk = out;
  req.gen.name = name.c_str();
  req.gen.name_size = static_cast<std::uint16_t>((name.size() + 1) * sizeof(wchar_t));
  req.gen.name_char_type = DBLK_NAME_WIDE;
  req.gen.os_id = static_cast<std::uint8_t>(os_id);
  req.gen.os_ver = static_cast<std::uint8_t>(os_ver);
  req.gen.os_info = info_size > 0 ? info.data() : nullptr;
  req.gen.os_info_size = static_cast<std::uint16_t>(info_size);
  req.gen.media_attrib = FS_GetAttrib1FromDBLK(src, blk);
  req.gen.attrib2 = FS_GetAttrib2FromDBLK(src, blk);
  return FS_CreateGenDBLK(dst, blk->blk_type, &req);
}

// Writes one object read from `src` as `name` into the current directory of
// `dst`. Returns a problem or empty; `streams` receives what was read.
std::string restore_one(FSYS_HAND_STRUCT* src, DBLK& blk, std::string const& path,
                        FSYS_HAND_STRUCT* dst, std::mt19937_64& rng, ReadOutcome& read) {
  auto out = std::make_unique<DBLK>();
  std::wstring const name = wide(block_name(blk));
  std::vector<unsigned char> info;
  FS_STATUS status = describe_again(src, &blk, dst, out.get(), name, info);
  if (status != FS_SUCCESS)
    return "describing '" + path + "' for the restore returned " + status_text(status);
  status = FS_HandCreateObj(dst, out.get(), nullptr, RESTORE_OVERWRITE);
  if (status != FS_SUCCESS)
    return "CreateObj of '" + path + "' returned " + status_text(status) + "; expected 0x00000000" +
           (last_error_text(dst).empty() ? "" : " (last error: " + last_error_text(dst) + ")");
  _FILE_HAND_STRUCT* obj = nullptr;
  status = FS_OpenObj(dst, &obj, out.get(), FS_WRITE);
  if (status != FS_SUCCESS || obj == nullptr)
    return "FS_OpenObj of '" + path + "' for writing returned " + status_text(status) +
           "; expected 0x00000000 and an object handle";
  StreamSink const sink = [&](STREAM_INFO const& header, unsigned char* data, std::uint32_t n) {
    unsigned need = 0;
    unsigned size = n;
    STREAM_INFO h = header;
    FS_STATUS const w = FS_WriteObj(obj, data, &size, &need, data == nullptr ? &h : nullptr);
    if (w != FS_SUCCESS && w != FS_STATUS_OBJ_DEFERRED)
      return "FS_WriteObj of '" + path + "' returned " + status_text(w) + "; expected 0x00000000";
    if (data != nullptr && size != n)
      return "FS_WriteObj of '" + path + "' took " + std::to_string(size) + " of " +
             std::to_string(n) + " bytes offered; expected all (the layer stages the rest)";
    return std::string();
  };
  read = read_object(src, blk, path, rng, &sink);
  FS_STATUS const closed = FS_CloseObj(obj, nullptr, nullptr);
  FS_HandReleaseBlk(dst, out.get());
  if (!read.problem.empty()) return read.problem;
  if (closed != FS_SUCCESS)
    return "FS_CloseObj of the restored '" + path + "' returned " + status_text(closed) +
           "; expected 0x00000000";
  return {};
}

std::string canonical(std::string const& path) {
  char resolved[PATH_MAX];
  return realpath(path.c_str(), resolved) != nullptr ? resolved : path;
}

}  // namespace

CheckResult check_restore(ValidateOptions const& options) {
  if (options.write_dir.empty()) return skipped("no --write DIR given");
  std::string const dir = canonical(options.write_dir);
  LayerHarness harness(options, wide(dir));
  std::string why_not;
  if (!ready_to_walk(harness, why_not)) return skipped(why_not);
  GENERIC_DLE* target = nullptr;
  GENERIC_DLE* source = nullptr;
  for (GENERIC_DLE* dle : harness.module_elements()) {
    bool const is_dir = dle->device_name != nullptr && narrow(dle->device_name) == dir;
    if (is_dir && target == nullptr) target = dle;
    if (!is_dir && source == nullptr && dle->child_q.q_count == 0) source = dle;
  }
  if (target == nullptr)
    return skipped("the module offers no element for " + dir + " (it takes no --root directories)");
  if (source == nullptr) return skipped("no element other than " + dir + " to restore from");
  std::string problem;
  FSYS_HAND_STRUCT* from = attach_element(harness, source, problem);
  if (from == nullptr) return failed(problem);
  FSYS_HAND_STRUCT* to = attach_element(harness, target, problem);
  if (to == nullptr) {
    FS_DetachDLE(from);
    return failed(problem);
  }
  std::mt19937_64 rng(options.seed);
  std::map<std::string, std::vector<ReadStream>> written;
  // The files of the source's root directory, flat: a restore of a tree is
  // these steps repeated in each directory.
  auto blk = std::make_unique<DBLK>();
  FS_STATUS status = FS_HandFindFirstObj(from, blk.get(), nullptr, 0);
  for (unsigned n = 0; problem.empty() && status == FS_SUCCESS && n < options.max_objects; ++n) {
    std::string const name = block_name(*blk);
    if (blk->blk_type == DBLK_KIND_FDB && !name.empty()) {
      ReadOutcome read;
      problem = restore_one(from, *blk, name, to, rng, read);
      if (problem.empty() && !read.unreadable) written[name] = read.streams;
    }
    if (problem.empty()) status = FS_HandFindNextObj(from, blk.get());
  }
  FS_HandFindObjClose(from, blk.get());
  FS_HandReleaseBlk(from, blk.get());
  // Read back what was restored and compare.
  std::size_t compared = 0;
  if (problem.empty()) {
    WalkCounts counts;
    problem = walk_tree(
        to, options.max_objects,
        [&](FSYS_HAND_STRUCT* hand, DBLK& b, std::string const& path) {
          auto it = written.find(path.substr(1));
          if (it == written.end()) return std::string();
          ReadOutcome const back = read_object(hand, b, path, rng, nullptr);
          if (!back.problem.empty()) return "reading back: " + back.problem;
          ++compared;
          if (back.streams.size() != it->second.size())
            return "restored '" + it->first + "' reads back " + std::to_string(back.streams.size()) +
                   " streams; expected the " + std::to_string(it->second.size()) + " written";
          for (std::size_t i = 0; i < back.streams.size(); ++i)
            if (!(back.streams[i] == it->second[i]))
              return "restored '" + it->first + "' differs in stream " + std::to_string(i + 1) +
                     " (" + stream_id_text(back.streams[i].id) + ", " +
                     std::to_string(back.streams[i].size) + " bytes read back; expected " +
                     stream_id_text(it->second[i].id) + ", " + std::to_string(it->second[i].size) +
                     " bytes with the same content)";
          return std::string();
        },
        counts);
  }
  FS_DetachDLE(from);
  FS_DetachDLE(to);
  if (!problem.empty()) return failed(problem);
  if (compared != written.size())
    return failed(std::to_string(written.size()) + " files were restored but " +
                  std::to_string(compared) + " were found again below " + dir);
  if (written.empty()) return skipped("the source's root directory holds no readable file");
  return passed(std::to_string(compared) + " files restored into " + dir +
                " and read back equal");
}

}  // namespace qbfs::validate
