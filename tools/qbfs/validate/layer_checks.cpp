#include "layer_checks.h"

#include <string>
#include <vector>

#include <qbfsys/fs_init.h>
#include <qbfsys/handles.h>
#include <qbfsys/registry.h>
#include <qbhost/heap_counters.h>

#include "isolated_check.h"
#include "layer_harness.h"

namespace qbfs::validate {
namespace {

// One attach and detach as a job does them, with flags 0.
std::string attach_once(LayerHarness& harness, GENERIC_DLE* dle) {
  note_step("attach to " + element_name(dle));
  FSYS_HAND_STRUCT* hand = nullptr;
  FS_STATUS const attached = FS_AttachToDLE(&hand, dle, harness.cfg(), nullptr, nullptr, 0, 0,
                                            nullptr, nullptr, 0, nullptr, false);
  if (attached != FS_SUCCESS) {
    std::string text = "attach to " + element_name(dle) + " returned " + status_text(attached) +
                       "; expected 0x00000000";
    if (hand != nullptr) {
      std::string const why = last_error_text(hand);
      if (!why.empty()) text += " (last error: " + why + ")";
      FS_DetachDLE(hand);
    }
    return text;
  }
  note_step("detach from " + element_name(dle));
  FS_STATUS const detached = FS_DetachDLE(hand);
  if (detached != FS_SUCCESS)
    return "detach from " + element_name(dle) + " returned " + status_text(detached) +
           "; expected 0x00000000";
  if (dle->attach_count != 0)
    return "after detach " + element_name(dle) + " still counts " +
           std::to_string(dle->attach_count) + " attached handle(s); expected 0";
  return {};
}

// Starts the layer and finds the drives; `why_not` says what stopped it.
bool started_with_elements(LayerHarness& harness, std::string& why_not) {
  if (harness.indices().empty()) {
    why_not = "start-up left no file system of the module";
    return false;
  }
  harness.find_drives();
  if (harness.attach_targets().empty()) {
    why_not = "the module found no element to attach to";
    return false;
  }
  return true;
}

// Whether the module's handles attach to `dle`. A module attaches through
// its table's AttachToDLE or through the adapter its OpenSys puts on every
// new handle, and only the layer sees the adapter: we ask it with one attach,
// which it answers with FS_ERR_UNIMPLEMENTED when neither attaches.
bool attaches(LayerHarness& harness, GENERIC_DLE* dle) {
  note_step("attach to " + element_name(dle));
  FSYS_HAND_STRUCT* hand = nullptr;
  FS_STATUS const status = FS_AttachToDLE(&hand, dle, harness.cfg(), nullptr, nullptr, 0, 0, nullptr,
                                          nullptr, 0, nullptr, false);
  if (hand != nullptr) FS_DetachDLE(hand);
  return status != FS_ERR_UNIMPLEMENTED;
}

// Starts the layer, finds the drives and makes sure the module attaches;
// `why_not` says what stopped it.
bool attachable_elements(LayerHarness& harness, std::string& why_not) {
  if (!started_with_elements(harness, why_not)) return false;
  if (attaches(harness, harness.attach_targets().front())) return true;
  why_not = "the module does not attach (no AttachToDLE slot, and no adapter of its handles attaches)";
  return false;
}

}  // namespace

CheckResult check_start_up(ValidateOptions const& options) {
  LayerHarness harness(options);
  if (harness.start_status() != FS_SUCCESS)
    return failed("FS_InitFileSys returned " + status_text(harness.start_status()) +
                  "; expected 0x00000000 (a module whose InitFileSys fails is dropped)");
  if (harness.indices().empty())
    return failed("start-up succeeded but no index is served by the module; expected the "
                  "indices its tables name");
  std::string indices;
  for (unsigned i : harness.indices()) indices += (indices.empty() ? "" : ", ") + std::to_string(i);
  return passed("serving index " + indices);
}

CheckResult check_find_drives(ValidateOptions const& options) {
  LayerHarness harness(options);
  if (harness.indices().empty()) return skipped("start-up left no file system of the module");
  _FUNC_LIST* tables = nullptr;
  get_func_tabs(&tables);
  bool finds = false;
  for (unsigned index : harness.indices())
    finds = finds || tables[index].FindDrives != nullptr || get_DLE_fsysObjPtr(index) != nullptr;
  if (!finds) return skipped("the module has no FindDrives slot");
  FS_STATUS const status = harness.find_drives();
  std::vector<GENERIC_DLE*> const elements = harness.module_elements();
  if (status != FS_SUCCESS)
    return failed("FS_InitDleList returned " + status_text(status) + "; expected 0x00000000");
  if (elements.empty())
    return failed("FindDrives added no element of the module's index; expected at least one "
                  "(give --root DIR to a module that offers directories)");
  for (GENERIC_DLE const* dle : elements)
    if (dle->device_name == nullptr || dle->device_name[0] == L'\0')
      return failed("an element of the module has no device name; expected every element named");
  return passed(std::to_string(elements.size()) + " element(s), first " +
                element_name(elements.front()));
}

CheckResult check_attach_detach(ValidateOptions const& options) {
  LayerHarness harness(options);
  std::string why_not;
  if (!attachable_elements(harness, why_not)) return skipped(why_not);
  std::vector<GENERIC_DLE*> const targets = harness.attach_targets();
  for (unsigned cycle = 0; cycle < options.attach_cycles; ++cycle) {
    for (GENERIC_DLE* dle : targets) {
      std::string const problem = attach_once(harness, dle);
      if (!problem.empty()) return failed("cycle " + std::to_string(cycle + 1) + ": " + problem);
    }
  }
  return passed(std::to_string(options.attach_cycles) + " cycles on " +
                std::to_string(targets.size()) + " element(s)");
}

CheckResult check_attach_leaks(ValidateOptions const& options) {
  LayerHarness harness(options);
  std::string why_not;
  if (!attachable_elements(harness, why_not)) return skipped(why_not);
  std::vector<GENERIC_DLE*> const targets = harness.attach_targets();
  for (unsigned cycle = 0; cycle < options.attach_cycles; ++cycle)
    for (GENERIC_DLE* dle : targets)
      if (!attach_once(harness, dle).empty()) return skipped("attach or detach fails (see attach-detach)");
  std::size_t const heap_before = qbhost::heap_bytes_in_use();
  std::size_t const fds_before = qbhost::open_descriptors();
  for (unsigned cycle = 0; cycle < options.attach_cycles; ++cycle)
    for (GENERIC_DLE* dle : targets)
      if (!attach_once(harness, dle).empty()) return skipped("attach or detach fails (see attach-detach)");
  std::size_t const heap_after = qbhost::heap_bytes_in_use();
  std::size_t const fds_after = qbhost::open_descriptors();
  std::size_t const cycles = std::size_t{options.attach_cycles} * targets.size();
  if (fds_after > fds_before)
    return failed(std::to_string(fds_after - fds_before) + " file descriptor(s) more open after " +
                  std::to_string(cycles) + " attach/detach cycles; expected none");
  if (heap_after > heap_before + kLeakSlackBytes) {
    std::size_t const grown = heap_after - heap_before;
    return failed("the heap grew by " + std::to_string(grown) + " bytes over " +
                  std::to_string(cycles) + " attach/detach cycles (about " +
                  std::to_string(grown / (cycles == 0 ? 1 : cycles)) +
                  " per cycle); expected no growth: something an attach allocates is not freed "
                  "at detach");
  }
  return passed(std::to_string(cycles) + " cycles: heap " +
                (heap_after >= heap_before ? "+" + std::to_string(heap_after - heap_before)
                                           : "-" + std::to_string(heap_before - heap_after)) +
                " bytes, descriptors unchanged");
}

CheckResult check_shut_down(ValidateOptions const& options) {
  LayerHarness harness(options);
  if (harness.indices().empty()) return skipped("start-up left no file system of the module");
  harness.find_drives();
  note_step("freeing the tree (FS_DeinitDleList: the module's RemoveDLE)");
  FS_DeinitDleList(harness.head());
  note_step("shutting down (FS_RemoveFileSys: the module's DeInitFileSys)");
  FS_RemoveFileSys();
  for (unsigned index : harness.indices())
    if (dlls[index])
      return failed("after FS_RemoveFileSys index " + std::to_string(index) +
                    " still holds the module; expected every module reference dropped");
  return passed("tree freed and file systems de-initialised");
}

}  // namespace qbfs::validate
