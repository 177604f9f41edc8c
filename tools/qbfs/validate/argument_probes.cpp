// check_null_arguments (object_checks.h): each probe is a call a job makes
// with an argument at its edge, on a handle attached to the first target.
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <qbfsys/dblk.h>
#include <qbfsys/handles.h>

#include "isolated_check.h"
#include "layer_harness.h"
#include "object_checks.h"

namespace qbfs::validate {
namespace {

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
  FS_STATUS const status = FS_HandGetCurrentPath(hand, canary, &size);
  if (status == FS_ERR_UNIMPLEMENTED) return {};
  if (status != FS_ERR_OBJ_NO_DATA || size <= 0)
    return "GetCurrentPath with 0 bytes of room returned " + status_text(status) + " and size " +
           std::to_string(size) + "; expected FS_ERR_OBJ_NO_DATA and the size needed";
  if (canary[0] != L'\x7f') return "GetCurrentPath with 0 bytes of room wrote into the buffer";
  return {};
}

std::string probe_find_all(FSYS_HAND_STRUCT* hand, std::uint64_t) {
  auto blk = std::make_unique<DBLK>();
  FS_STATUS const status = FS_HandFindFirstObj(hand, blk.get(), nullptr, 0);
  FS_HandFindObjClose(hand, blk.get());
  FS_HandReleaseBlk(hand, blk.get());
  if (status != FS_SUCCESS && status != FS_STATUS_NONE && status != FS_STATUS_EXT_ERROR)
    return "FindFirstObj with a null specification (every object) returned " + status_text(status) +
           "; expected 0x00000000 or FS_STATUS_NONE";
  return {};
}

std::string probe_find_nothing(FSYS_HAND_STRUCT* hand, std::uint64_t seed) {
  auto blk = std::make_unique<DBLK>();
  std::wstring spec = L"qbfs-validate-no-such-object-" + std::to_wstring(seed);
  FS_STATUS const status = FS_HandFindFirstObj(hand, blk.get(), spec.data(), 0);
  FS_HandFindObjClose(hand, blk.get());
  FS_HandReleaseBlk(hand, blk.get());
  if (status == FS_SUCCESS)
    return "FindFirstObj with a specification that matches nothing delivered an object; "
           "expected FS_STATUS_NONE";
  return expect_known("FindFirstObj with a specification that matches nothing", status);
}

std::string probe_next_past_end(FSYS_HAND_STRUCT* hand, std::uint64_t) {
  auto blk = std::make_unique<DBLK>();
  FS_STATUS status = FS_HandFindFirstObj(hand, blk.get(), nullptr, 0);
  for (unsigned n = 0; n < kDefaultMaxObjects * kDefaultMaxObjects && status == FS_SUCCESS; ++n)
    status = FS_HandFindNextObj(hand, blk.get());
  std::string problem;
  if (status == FS_STATUS_NONE) {
    FS_STATUS const again = FS_HandFindNextObj(hand, blk.get());
    if (again == FS_SUCCESS)
      problem = "FindNextObj after the end delivered an object; expected FS_STATUS_NONE again";
    else
      problem = expect_known("FindNextObj after the end", again);
  }
  FS_HandFindObjClose(hand, blk.get());
  FS_HandReleaseBlk(hand, blk.get());
  return problem;
}

std::string probe_up_at_root(FSYS_HAND_STRUCT* hand, std::uint64_t) {
  FS_STATUS const status = FS_HandChangeDirUp(hand);
  if (status == FS_ERR_UNIMPLEMENTED) return {};
  if (status == FS_SUCCESS) return "ChangeDirUp at the attached root returned 0x00000000; expected an error";
  return expect_known("ChangeDirUp at the root", status);
}

std::string probe_change_to_missing(FSYS_HAND_STRUCT* hand, std::uint64_t seed) {
  // The path form: terminated components from the root.
  std::wstring path = L"qbfs-validate-no-such-directory-" + std::to_wstring(seed);
  path.push_back(L'\0');
  auto const bytes = static_cast<short>(path.size() * sizeof(wchar_t));
  FS_STATUS const status = FS_HandChangeDir(hand, path.data(), bytes);
  if (status == FS_ERR_UNIMPLEMENTED) return {};
  if (status == FS_SUCCESS)
    return "ChangeDir to a directory that does not exist returned 0x00000000; expected an error";
  std::string const problem = expect_known("ChangeDir to a missing directory", status);
  // Back to the root for the probes that follow.
  wchar_t root[2] = {L'\0', L'\0'};
  FS_HandChangeDir(hand, root, static_cast<short>(sizeof(wchar_t)));
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

}  // namespace

CheckResult check_null_arguments(ValidateOptions const& options) {
  LayerHarness harness(options);
  std::string why_not;
  if (!ready_to_walk(harness, why_not)) return skipped(why_not);
  GENERIC_DLE* dle = harness.attach_targets().front();
  std::string problem;
  FSYS_HAND_STRUCT* hand = attach_element(harness, dle, problem);
  if (hand == nullptr) return failed(problem);
  std::string problems;
  for (Probe const& p : kProbes) {
    note_step(std::string("probe: ") + p.what);
    std::string const found = p.run(hand, options.seed);
    if (!found.empty()) problems += (problems.empty() ? "" : "; ") + found;
  }
  FS_DetachDLE(hand);
  if (!problems.empty()) return failed(problems);
  return passed(std::to_string(sizeof kProbes / sizeof kProbes[0]) + " probes on " +
                element_name(dle));
}

}  // namespace qbfs::validate
