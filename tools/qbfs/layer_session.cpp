#include "layer_session.h"

namespace qbfs {

LayerSession::LayerSession(Options const& options) {
  for (auto const& r : options.roots) root_ptrs_.push_back(r.c_str());
  root_ptrs_.push_back(nullptr);
  cfg_.drive_scan_flag = options.drive_scan ? 1u : 0u;
  cfg_.roots = options.roots.empty() ? nullptr : root_ptrs_.data();
  std::vector<wchar_t const*> names;
  for (auto const& m : options.modules) names.push_back(m.c_str());
  names.push_back(nullptr);
  status_ = FS_InitFileSys(&cfg_, ~0ull, names.data(), static_cast<unsigned>(options.modules.size()));
}

LayerSession::~LayerSession() {
  // A failed start-up has torn itself down already.
  if (usable() && !leave_running_) FS_RemoveFileSys();
}

}  // namespace qbfs
