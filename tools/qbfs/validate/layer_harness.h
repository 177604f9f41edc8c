// The layer started with the module under test alone, as a check's child
// process sees it: start-up, the DLE tree, the elements the module made and
// the calls a job makes on an attached handle (adapter first, then slot).
//
// Nothing is torn down at the end: the child ends with _exit. Checks that
// measure leaks tear down what they measure themselves.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include <qbfsys/dle.h>
#include <qbfsys/handle_ops.h>
#include <qbfsys/handles.h>
#include <qbhost/qb_cfg.h>

#include "../commands.h"
#include "../layer_session.h"
#include "validate_options.h"

namespace qbfs::validate {

class LayerHarness {
 public:
  // Starts the layer (FS_InitFileSys) with the module and the options'
  // roots; `extra_root`, when not empty, is offered as a further root.
  explicit LayerHarness(ValidateOptions const& options, std::wstring const& extra_root = {});
  LayerHarness(LayerHarness const&) = delete;
  LayerHarness& operator=(LayerHarness const&) = delete;

  FS_STATUS start_status() const { return layer_->status(); }
  // The file-system indices whose table came from the module and survived
  // start-up.
  std::vector<unsigned> const& indices() const { return indices_; }
  QB_CFG* cfg() { return layer_->cfg(); }

  // Builds the DLE tree (FS_InitDleList) and returns its status.
  FS_STATUS find_drives();
  HEAD_DLE* head() const { return head_; }
  // Every element of the tree served by one of indices(), depth first.
  std::vector<GENERIC_DLE*> module_elements() const;
  // The elements a job attaches to: module elements without children, at
  // most options.max_elements of them.
  std::vector<GENERIC_DLE*> attach_targets() const;

 private:
  ValidateOptions const& options_;
  Options layer_options_;  // what the layer is started with; outlives layer_
  std::unique_ptr<LayerSession> layer_;
  std::vector<unsigned> indices_;
  HEAD_DLE* head_ = nullptr;
};

// Attaches to `dle` as a job does (flags 0); on failure `problem` says why
// (the status) and null is returned with nothing left attached.
FSYS_HAND_STRUCT* attach_element(LayerHarness& harness, GENERIC_DLE* dle, std::string& problem);
// Finds the drives and tells whether the module can be walked (an element to
// attach to, attaching works, walking slots); `why_not` is the skip reason
// otherwise.
bool ready_to_walk(LayerHarness& harness, std::string& why_not);

// The module's file name in the wide form the layer keeps.
std::wstring wide(std::string const& text);
// A wide text in UTF-8, for messages.
std::string narrow(wchar_t const* text);
// "0x%08X (NAME)" for the layer's statuses, "0x%08X" for others.
std::string status_text(FS_STATUS status);
// True for a status the layer defines (a row of FS_STATUS_LIST, qbfsys/fs_status.h).
bool known_status(FS_STATUS status);
// The element's device name for messages.
std::string element_name(GENERIC_DLE const* dle);
// The messages recorded as the handle's last error, joined by "; ".
std::string last_error_text(FSYS_HAND_STRUCT const* hand);

}  // namespace qbfs::validate
