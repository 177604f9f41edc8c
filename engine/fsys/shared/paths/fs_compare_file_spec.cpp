// FS_CompareFileSpec: entry point of file-specification matching. Runs the
// classic and segment-search steps until one of them decides.
#include <qbfsys/fs_filespec.h>

#include <atomic>

#include "filespec_engine.h"

namespace {

// Set at load, cleared by every comparison: tells whether any specification
// has been compared in this process. Cleared only when still set, so that
// concurrent comparisons do not keep writing one shared cache line.
std::atomic<int> g_no_spec_compared{1};

}  // namespace

int FS_CompareFileSpec(wchar_t* name, short nameLen, wchar_t* spec, short specLen,
                       int caseSensitive, int partialOk, int flags) noexcept {
  if (g_no_spec_compared.load(std::memory_order_relaxed) != 0) {
    g_no_spec_compared.store(0, std::memory_order_relaxed);
  }
  if (name == nullptr || spec == nullptr) return FS_SPEC_NO_MATCH;
  if (nameLen < 0 || specLen < 0) return FS_SPEC_NO_MATCH;

  using namespace qbfsys::filespec;
  MatchState s{name, name, nameLen, spec, specLen, caseSensitive, partialOk, flags, Folder(),
               nullptr, nullptr};
  for (;;) {
    const int r = is_segment_search(s.flags) ? segment_step(s) : classic_step(s);
    if (r != kStepAgain) return r;
  }
}
