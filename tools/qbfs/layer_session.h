// A started layer for the duration of a sub-command: FS_InitFileSys with the
// configured modules on construction, FS_RemoveFileSys on destruction. The
// one place the tool starts the layer. `options` must outlive the session
// (the configuration points at its roots).
#pragma once
#include <string>
#include <vector>

#include <qbfsys/fs_init.h>
#include <qbhost/qb_cfg.h>

#include "commands.h"

namespace qbfs {

class LayerSession {
 public:
  explicit LayerSession(Options const& options);
  ~LayerSession();
  LayerSession(LayerSession const&) = delete;
  LayerSession& operator=(LayerSession const&) = delete;

  FS_STATUS status() const { return status_; }
  // True when at least one file system is usable (0 or a partial start-up).
  bool usable() const { return status_ == 0 || status_ == FS_ERR_PARTIAL_INIT; }
  QB_CFG* cfg() { return &cfg_; }
  // Leaves the layer running when the session ends: the validator's checks
  // run in child processes that end without shutting the layer down, so a
  // fault in shut-down is reported by the shut-down check alone.
  void leave_running() { leave_running_ = true; }

 private:
  std::vector<wchar_t const*> root_ptrs_;
  QB_CFG cfg_{};
  FS_STATUS status_ = 0;
  bool leave_running_ = false;
};

}  // namespace qbfs
