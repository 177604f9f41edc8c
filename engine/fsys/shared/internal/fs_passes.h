// The passes over an order array (find_order, resolve_order): pass p serves,
// in ascending index order, every eligible index whose entry equals p, for
// p = 1, 2, ... up to the largest entry. Passes that no index asks for are
// skipped rather than run empty, which gives the same order for any values.
#pragma once
#include <climits>
#include <cstdint>

#include <qbfsys/registry.h>

namespace fsys {

// Calls serve(i) in pass order; stops as soon as serve returns true.
template <class Eligible, class Serve>
void run_passes(std::int32_t const* order, Eligible eligible, Serve serve) {
  std::int32_t pass = 0;
  while (pass < INT_MAX) {
    std::int32_t next = INT_MAX;
    bool found = false;
    for (unsigned i = 0; i < FS_MAX_FSYS; ++i) {
      if (eligible(i) && order[i] > pass && order[i] <= next) {
        next = order[i];
        found = true;
      }
    }
    if (!found) return;
    pass = next;
    for (unsigned i = 0; i < FS_MAX_FSYS; ++i) {
      if (eligible(i) && order[i] == pass && serve(i)) return;
    }
  }
}

}  // namespace fsys
