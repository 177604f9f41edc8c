#include "layer_harness.h"

#include <cstdio>
#include <cstring>
#include <cwchar>

#include <qbfsys/file_hand.h>
#include <qbfsys/fs_fsh_base.h>
#include <qbfsys/fs_init.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/registry.h>
#include <qbhost/strings.h>

#include "isolated_check.h"

namespace qbfs::validate {
namespace {

void collect(_Q_HEADER const& list, std::vector<unsigned> const& indices,
             std::vector<GENERIC_DLE*>& out) {
  for (_Q_ELEM* e = list.q_head; e != nullptr; e = e->q_next) {
    auto* dle = reinterpret_cast<GENERIC_DLE*>(e);
    for (unsigned index : indices) {
      if (DLE_FsysIndex(dle) == index) {
        out.push_back(dle);
        break;
      }
    }
    collect(dle->child_q, indices, out);
  }
}

}  // namespace

std::wstring wide(std::string const& text) { return wcstring::from_utf8(text.data(), text.size()); }

std::string narrow(wchar_t const* text) { return text ? wcstring(text).to_utf8() : std::string(); }

std::string status_text(FS_STATUS status) {
  char text[64];
  if (char const* name = FS_StatusName(status)) {
    std::snprintf(text, sizeof text, "0x%08X (%s)", status, name);
    return text;
  }
  std::snprintf(text, sizeof text, "0x%08X", status);
  return text;
}

bool known_status(FS_STATUS status) { return FS_StatusName(status) != nullptr; }

std::string element_name(GENERIC_DLE const* dle) {
  return dle != nullptr && dle->device_name != nullptr ? "'" + narrow(dle->device_name) + "'"
                                                       : "(unnamed element)";
}

std::string last_error_text(FSYS_HAND_STRUCT const* hand) {
  std::string text;
  if (hand == nullptr || hand->lastMsg == nullptr) return text;
  for (wchar_t const* m = hand->lastMsg; *m != L'\0'; m += std::wcslen(m) + 1)
    text += (text.empty() ? "" : "; ") + narrow(m);
  return text;
}

LayerHarness::LayerHarness(ValidateOptions const& options, std::wstring const& extra_root)
    : options_(options) {
  layer_options_.modules = {wide(options.module)};
  layer_options_.roots = options.roots;
  if (!extra_root.empty()) layer_options_.roots.push_back(extra_root);
  layer_options_.drive_scan = options.drive_scan;
  note_step("start-up (FS_InitFileSys: the module's GetTable and InitFileSys)");
  layer_ = std::make_unique<LayerSession>(layer_options_);
  layer_->leave_running();
  for (unsigned i = 0; i < FS_MAX_FSYS; ++i)
    if (dlls[i] && dlls[i]->name == layer_options_.modules.front()) indices_.push_back(i);
}

FS_STATUS LayerHarness::find_drives() {
  note_step("finding drives (FS_InitDleList: the module's FindDrives)");
  return FS_InitDleList(&head_, layer_->cfg());
}

std::vector<GENERIC_DLE*> LayerHarness::module_elements() const {
  std::vector<GENERIC_DLE*> out;
  if (head_ != nullptr) collect(head_->dle_q, indices_, out);
  return out;
}

std::vector<GENERIC_DLE*> LayerHarness::attach_targets() const {
  std::vector<GENERIC_DLE*> out;
  for (GENERIC_DLE* dle : module_elements()) {
    if (out.size() >= options_.max_elements) break;
    if (dle->child_q.q_count == 0) out.push_back(dle);
  }
  return out;
}

FSYS_HAND_STRUCT* attach_element(LayerHarness& harness, GENERIC_DLE* dle, std::string& problem) {
  note_step("attach to " + element_name(dle));
  FSYS_HAND_STRUCT* hand = nullptr;
  FS_STATUS const status = FS_AttachToDLE(&hand, dle, harness.cfg(), nullptr, nullptr, 0, 0,
                                          nullptr, nullptr, 0, nullptr, false);
  if (status == FS_SUCCESS) return hand;
  problem = "attach to " + element_name(dle) + " returned " + status_text(status) +
            "; expected 0x00000000";
  if (hand != nullptr) FS_DetachDLE(hand);
  return nullptr;
}

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
  FSYS_HAND_STRUCT* hand = attach_element(harness, targets.front(), problem);
  if (hand == nullptr) {
    why_not = "attaching fails (see attach-detach)";
    return false;
  }
  bool const walks = FS_HandCanWalk(hand);
  FS_DetachDLE(hand);
  if (!walks) why_not = "the module offers no walking slots (FindFirstObj, FindNextObj)";
  return walks;
}


}  // namespace qbfs::validate
