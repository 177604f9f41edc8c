#include "object_checks.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <functional>
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
#include "stream_framing.h"
#include "tree_walk.h"

namespace qbfs::validate {
namespace {

// Room sizes a job is known to pass (single bytes, page and unit edges) and
// an upper bound for the drawn ones.
constexpr std::uint32_t kEdgeRooms[] = {1, 3, 512, 4095, 4096, 65535, 65536, 65537};
constexpr std::uint32_t kMaxDrawnRoom = 200000;
constexpr unsigned char kCanaryByte = 0xA5;
constexpr std::uint64_t kFnvOffset = 14695981039346656037ull;
constexpr std::uint64_t kFnvPrime = 1099511628211ull;
// GetCurrentPath output room for the boundary probe (bytes).
constexpr short kPathProbeRoom = 4096;
constexpr std::size_t kMaxOsInfoBytes = 4096;

// One stream as read: header fields and an FNV-1a digest of its data.
struct ReadStream {
  std::uint32_t id = 0;
  std::uint64_t size = 0;
  std::uint64_t digest = kFnvOffset;
  bool operator==(ReadStream const& o) const {
    return id == o.id && size == o.size && digest == o.digest;
  }
};

// Receives each header (data null) and each piece of data of an object.
using StreamSink = std::function<std::string(STREAM_INFO const&, unsigned char*, std::uint32_t)>;

struct ReadOutcome {
  std::string problem;
  bool unreadable = false;  // open or read ended with FS_STATUS_EXT_ERROR / access denied
  std::vector<ReadStream> streams;
  std::uint64_t bytes = 0;
};

std::uint32_t draw_room(std::mt19937_64& rng) {
  constexpr std::size_t kEdges = sizeof kEdgeRooms / sizeof kEdgeRooms[0];
  std::uint64_t const pick = rng() % (kEdges * 2);
  if (pick < kEdges) return kEdgeRooms[pick];
  return 1 + static_cast<std::uint32_t>(rng() % kMaxDrawnRoom);
}

ReadOutcome read_object(FSYS_HAND_STRUCT* hand, DBLK& blk, std::string const& path,
                        std::mt19937_64& rng, StreamSink const* sink) {
  ReadOutcome out;
  _FILE_HAND_STRUCT* obj = nullptr;
  FS_STATUS const opened = FS_OpenObj(hand, &obj, &blk, FS_READ);
  if (opened == FS_STATUS_EXT_ERROR || opened == FS_ERR_OBJ_ACCESS_DENIED) {
    out.unreadable = true;
    return out;
  }
  if (opened != FS_SUCCESS || obj == nullptr) {
    out.problem = "FS_OpenObj of '" + path + "' for reading returned " + status_text(opened) +
                  (obj == nullptr && opened == FS_SUCCESS ? " without an object handle" : "") +
                  "; expected 0x00000000 and an object handle";
    return out;
  }
  StreamFraming framing;
  std::vector<unsigned char> buffer;
  while (!framing.ended() && framing.problem().empty()) {
    std::uint32_t const room = draw_room(rng);
    buffer.resize(std::size_t{room} + kCanaryBytes);
    std::memset(buffer.data() + room, kCanaryByte, kCanaryBytes);
    unsigned size = room;
    unsigned need = 0;
    STREAM_INFO header{};
    FS_STATUS const status = FS_ReadObj(obj, buffer.data(), &size, &need, &header);
    for (std::uint32_t i = 0; i < kCanaryBytes; ++i) {
      if (buffer[std::size_t{room} + i] != kCanaryByte) {
        out.problem = "reading '" + path + "' wrote past the " + std::to_string(room) +
                      " bytes of room it was given";
        break;
      }
    }
    if (!out.problem.empty()) break;
    if (obj->needSize > kMaxSaneNeed) {
      out.problem = "reading '" + path + "': the module asks for at least " +
                    std::to_string(obj->needSize) + " bytes a call; expected at most " +
                    std::to_string(kMaxSaneNeed);
      break;
    }
    std::uint32_t const delivered = status == FS_SUCCESS ? size : 0;
    if (!framing.on_read(status, header, delivered)) {
      out.problem = "reading '" + path + "': " + framing.problem();
      break;
    }
    if (header.id != 0) {
      out.streams.push_back({header.id, header.size, kFnvOffset});
      if (sink != nullptr) out.problem = (*sink)(header, nullptr, 0);
    }
    if (delivered > 0 && !out.streams.empty()) {
      ReadStream& s = out.streams.back();
      for (std::uint32_t i = 0; i < delivered; ++i) s.digest = (s.digest ^ buffer[i]) * kFnvPrime;
      out.bytes += delivered;
      if (sink != nullptr && out.problem.empty()) {
        STREAM_INFO none{};
        out.problem = (*sink)(none, buffer.data(), delivered);
      }
    }
    if (!out.problem.empty()) break;
  }
  out.unreadable = out.problem.empty() && framing.ended_with_error();
  FS_STATUS const closed = FS_CloseObj(obj, nullptr, nullptr);
  if (out.problem.empty() && closed != FS_SUCCESS && closed != FS_STATUS_EXT_ERROR)
    out.problem = "FS_CloseObj of '" + path + "' returned " + status_text(closed) +
                  "; expected 0x00000000";
  return out;
}

// Attaches to `dle`; on failure `problem` says why and null is returned.
FSYS_HAND_STRUCT* attach(LayerHarness& harness, GENERIC_DLE* dle, std::string& problem) {
  FSYS_HAND_STRUCT* hand = nullptr;
  FS_STATUS const status = FS_AttachToDLE(&hand, dle, harness.cfg(), nullptr, nullptr, 0, 0,
                                          nullptr, nullptr, 0, nullptr, false);
  if (status == FS_SUCCESS) return hand;
  problem = "attach to " + element_name(dle) + " returned " + status_text(status);
  if (hand != nullptr) FS_DetachDLE(hand);
  return nullptr;
}

// Starts the layer, finds drives, and tells whether the module can be
// walked; `why_not` is the skip reason otherwise.
bool ready_to_walk(LayerHarness& harness, std::string& why_not) {
  if (harness.indices().empty()) {
    why_not = "start-up left no file system of the module";
    return false;
  }
  harness.find_drives();
  std::vector<GENERIC_DLE*> const targets = harness.attach_targets();
  if (targets.empty()) {
    why_not = "the module found no element to attach to";
    return false;
  }
  std::string problem;
  FSYS_HAND_STRUCT* hand = attach(harness, targets.front(), problem);
  if (hand == nullptr) {
    why_not = "attaching fails (see attach-detach)";
    return false;
  }
  bool const walks = job::can_walk(hand);
  FS_DetachDLE(hand);
  if (!walks) why_not = "the module offers no walking slots (FindFirstObj, FindNextObj)";
  return walks;
}

std::string counts_text(WalkCounts const& c) {
  std::string text = std::to_string(c.objects) + " objects (" + std::to_string(c.directories) +
                     " directories, " + std::to_string(c.files) + " files)";
  if (c.object_errors > 0) text += ", " + std::to_string(c.object_errors) + " reported unreadable";
  if (c.capped) text += ", stopped at the object limit";
  return text;
}

// Walks every attach target, calling `on_file` for each file.
CheckResult walk_targets(ValidateOptions const& options, LayerHarness& harness,
                         FileVisitor const& on_file, WalkCounts& total) {
  for (GENERIC_DLE* dle : harness.attach_targets()) {
    std::string problem;
    FSYS_HAND_STRUCT* hand = attach(harness, dle, problem);
    if (hand == nullptr) return failed(problem);
    WalkCounts counts;
    problem = walk_tree(hand, options.max_objects, on_file, counts);
    FS_DetachDLE(hand);
    if (!problem.empty()) return failed(element_name(dle) + ": " + problem);
    total.objects += counts.objects;
    total.directories += counts.directories;
    total.files += counts.files;
    total.object_errors += counts.object_errors;
    total.capped = total.capped || counts.capped;
  }
  return passed({});
}

// ---- null and boundary arguments -------------------------------------------

struct Probe {
  char const* what;
  std::function<std::string(FSYS_HAND_STRUCT*, std::uint64_t seed)> run;
};

std::string expect_known(char const* what, FS_STATUS status) {
  return known_status(status) ? std::string()
                              : std::string(what) + " returned " + status_text(status) +
                                    ", which is not a status of the layer";
}

std::string probe_path_no_room(FSYS_HAND_STRUCT* hand, std::uint64_t) {
  wchar_t canary[2] = {L'\x7f', L'\x7f'};
  short size = 0;
  FS_STATUS const status = job::current_path(hand, canary, &size);
  if (status == FS_ERR_UNIMPLEMENTED) return {};
  if (status != FS_ERR_OBJ_NO_DATA || size <= 0)
    return "GetCurrentPath with 0 bytes of room returned " + status_text(status) + " and size " +
           std::to_string(size) + "; expected FS_ERR_OBJ_NO_DATA and the size needed";
  if (canary[0] != L'\x7f') return "GetCurrentPath with 0 bytes of room wrote into the buffer";
  return {};
}

std::string probe_find_all(FSYS_HAND_STRUCT* hand, std::uint64_t) {
  auto blk = std::make_unique<DBLK>();
  FS_STATUS const status = job::find_first(hand, blk.get(), nullptr);
  job::find_close(hand, blk.get());
  job::release_blk(hand, blk.get());
  if (status != FS_SUCCESS && status != FS_STATUS_NONE && status != FS_STATUS_EXT_ERROR)
    return "FindFirstObj with a null specification (every object) returned " + status_text(status) +
           "; expected 0x00000000 or FS_STATUS_NONE";
  return {};
}

std::string probe_find_nothing(FSYS_HAND_STRUCT* hand, std::uint64_t seed) {
  auto blk = std::make_unique<DBLK>();
  std::wstring spec = L"qbfs-validate-no-such-object-" + std::to_wstring(seed);
  FS_STATUS const status = job::find_first(hand, blk.get(), spec.data());
  job::find_close(hand, blk.get());
  job::release_blk(hand, blk.get());
  if (status == FS_SUCCESS)
    return "FindFirstObj with a specification that matches nothing delivered an object; "
           "expected FS_STATUS_NONE";
  return expect_known("FindFirstObj with a specification that matches nothing", status);
}

std::string probe_next_past_end(FSYS_HAND_STRUCT* hand, std::uint64_t) {
  auto blk = std::make_unique<DBLK>();
  FS_STATUS status = job::find_first(hand, blk.get(), nullptr);
  for (unsigned n = 0; n < kDefaultMaxObjects * kDefaultMaxObjects && status == FS_SUCCESS; ++n)
    status = job::find_next(hand, blk.get());
  std::string problem;
  if (status == FS_STATUS_NONE) {
    FS_STATUS const again = job::find_next(hand, blk.get());
    if (again == FS_SUCCESS)
      problem = "FindNextObj after the end delivered an object; expected FS_STATUS_NONE again";
    else
      problem = expect_known("FindNextObj after the end", again);
  }
  job::find_close(hand, blk.get());
  job::release_blk(hand, blk.get());
  return problem;
}

std::string probe_up_at_root(FSYS_HAND_STRUCT* hand, std::uint64_t) {
  FS_STATUS const status = job::change_up(hand);
  if (status == FS_ERR_UNIMPLEMENTED) return {};
  if (status == FS_SUCCESS) return "ChangeDirUp at the attached root returned 0x00000000; expected an error";
  return expect_known("ChangeDirUp at the root", status);
}

std::string probe_change_to_missing(FSYS_HAND_STRUCT* hand, std::uint64_t seed) {
  // The path form: terminated components from the root.
  std::wstring path = L"qbfs-validate-no-such-directory-" + std::to_wstring(seed);
  path.push_back(L'\0');
  auto const bytes = static_cast<short>(path.size() * sizeof(wchar_t));
  FS_STATUS const status = job::change_dir(hand, path.data(), bytes);
  if (status == FS_ERR_UNIMPLEMENTED) return {};
  if (status == FS_SUCCESS)
    return "ChangeDir to a directory that does not exist returned 0x00000000; expected an error";
  std::string const problem = expect_known("ChangeDir to a missing directory", status);
  // Back to the root for the probes that follow.
  wchar_t root[2] = {L'\0', L'\0'};
  job::change_dir(hand, root, static_cast<short>(sizeof(wchar_t)));
  return problem;
}

Probe const kProbes[] = {
    {"GetCurrentPath, no room", probe_path_no_room},
    {"FindFirstObj, null specification", probe_find_all},
    {"FindFirstObj, nothing matches", probe_find_nothing},
    {"FindNextObj past the end", probe_next_past_end},
    {"ChangeDirUp at the root", probe_up_at_root},
    {"ChangeDir to a missing directory", probe_change_to_missing},
};

// ---- restore ------------------------------------------------------------------

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
  status = job::create_obj(dst, out.get(), RESTORE_OVERWRITE);
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
  job::release_blk(dst, out.get());
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

CheckResult check_null_arguments(ValidateOptions const& options) {
  LayerHarness harness(options);
  std::string why_not;
  if (!ready_to_walk(harness, why_not)) return skipped(why_not);
  GENERIC_DLE* dle = harness.attach_targets().front();
  std::string problem;
  FSYS_HAND_STRUCT* hand = attach(harness, dle, problem);
  if (hand == nullptr) return failed(problem);
  std::string problems;
  for (Probe const& p : kProbes) {
    std::string const found = p.run(hand, options.seed);
    if (!found.empty()) problems += (problems.empty() ? "" : "; ") + found;
  }
  FS_DetachDLE(hand);
  if (!problems.empty()) return failed(problems);
  return passed(std::to_string(sizeof kProbes / sizeof kProbes[0]) + " probes on " +
                element_name(dle));
}

CheckResult check_walk(ValidateOptions const& options) {
  LayerHarness harness(options);
  std::string why_not;
  if (!ready_to_walk(harness, why_not)) return skipped(why_not);
  WalkCounts total;
  CheckResult result = walk_targets(
      options, harness,
      [](FSYS_HAND_STRUCT*, DBLK&, std::string const&) { return std::string(); }, total);
  if (result.outcome == Outcome::passed) result.detail = counts_text(total);
  return result;
}

CheckResult check_read_framing(ValidateOptions const& options) {
  LayerHarness harness(options);
  std::string why_not;
  if (!ready_to_walk(harness, why_not)) return skipped(why_not);
  std::mt19937_64 rng(options.seed);
  unsigned read = 0;
  unsigned unreadable = 0;
  std::size_t streams = 0;
  std::uint64_t bytes = 0;
  WalkCounts total;
  CheckResult result = walk_targets(
      options, harness,
      [&](FSYS_HAND_STRUCT* hand, DBLK& blk, std::string const& path) {
        ReadOutcome const r = read_object(hand, blk, path, rng, nullptr);
        if (r.unreadable) ++unreadable;
        else ++read;
        streams += r.streams.size();
        bytes += r.bytes;
        return r.problem;
      },
      total);
  if (result.outcome != Outcome::passed) return result;
  if (total.files == 0) return skipped("the walk found no file to read (" + counts_text(total) + ")");
  return passed(std::to_string(read) + " files read (" + std::to_string(streams) + " streams, " +
                std::to_string(bytes) + " bytes)" +
                (unreadable > 0 ? ", " + std::to_string(unreadable) + " reported unreadable" : ""));
}

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
  FSYS_HAND_STRUCT* from = attach(harness, source, problem);
  if (from == nullptr) return failed(problem);
  FSYS_HAND_STRUCT* to = attach(harness, target, problem);
  if (to == nullptr) {
    FS_DetachDLE(from);
    return failed(problem);
  }
  std::mt19937_64 rng(options.seed);
  std::map<std::string, std::vector<ReadStream>> written;
  // The files of the source's root directory, flat: a restore of a tree is
  // these steps repeated in each directory.
  auto blk = std::make_unique<DBLK>();
  FS_STATUS status = job::find_first(from, blk.get(), nullptr);
  for (unsigned n = 0; problem.empty() && status == FS_SUCCESS && n < options.max_objects; ++n) {
    std::string const name = block_name(*blk);
    if (blk->blk_type == DBLK_KIND_FDB && !name.empty()) {
      ReadOutcome read;
      problem = restore_one(from, *blk, name, to, rng, read);
      if (problem.empty() && !read.unreadable) written[name] = read.streams;
    }
    if (problem.empty()) status = job::find_next(from, blk.get());
  }
  job::find_close(from, blk.get());
  job::release_blk(from, blk.get());
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
