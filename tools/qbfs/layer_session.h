// A started layer for the duration of a sub-command: FS_InitFileSys with the
// configured modules on construction, FS_RemoveFileSys on destruction.
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

 private:
  std::vector<wchar_t const*> root_ptrs_;
  QB_CFG cfg_{};
  FS_STATUS status_ = 0;
};

}  // namespace qbfs
