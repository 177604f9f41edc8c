// The matching engine behind FS_CompareFileSpec. Every "recursion" of the
// algorithm returns the inner result unchanged, so the engine runs it as a
// loop over one state: each step either decides the result or moves the
// state on (always consuming at least one specification character) and asks
// for another step. The mode is re-chosen from the flags at every step.
#pragma once

#include "filespec_literal.h"

namespace qbfsys {
namespace filespec {

struct MatchState {
  const wchar_t* name_start;  // the caller's name, to know what precedes `name`
  wchar_t* name;
  int name_len;
  wchar_t* spec;
  int spec_len;
  int case_sensitive;
  int partial_ok;
  int flags;
  Folder fold;
  // The name's end never moves; searches remember where its next terminator
  // is: the first one at or after `nul_from` is `nul_at` (null: none).
  const wchar_t* nul_from;
  const wchar_t* nul_at;
};

constexpr int kStepAgain = -1;  // the state moved on; run another step

inline bool is_segment_search(int flags) noexcept { return (flags & ~3) == 4; }

// One step of each mode: returns 0, 1 or 2, or kStepAgain.
int classic_step(MatchState& s) noexcept;
int segment_step(MatchState& s) noexcept;

}  // namespace filespec
}  // namespace qbfsys
