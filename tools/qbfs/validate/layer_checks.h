// Checks that start the layer with the module alone and use it the way the
// agent does: start-up, finding drives, attaching and detaching, shutting
// down. Each is meant to run in a child process (isolated_check.h) and
// repeats the steps before it in that child.
#pragma once
#include "check_result.h"
#include "validate_options.h"

namespace qbfs::validate {

// Heap bytes a run of attach/detach cycles may leave behind without being
// called a leak: one-time caches of the layer or the C library.
constexpr std::size_t kLeakSlackBytes = 256;

// start-up: FS_InitFileSys returns 0 and every index the module delivered
// keeps its table (its InitFileSys succeeded).
CheckResult check_start_up(ValidateOptions const& options);
// find-drives: FS_InitDleList returns 0 and the module added at least one
// element, each with a device name. Skipped without a FindDrives slot.
CheckResult check_find_drives(ValidateOptions const& options);
// attach-detach: every attach target attaches (0) and detaches (0)
// options.attach_cycles times, leaving its attach count at 0.
CheckResult check_attach_detach(ValidateOptions const& options);
// attach-leaks: the same cycles, run twice; the second round must leave the
// heap and the open descriptors as it found them (host counters,
// qbhost/heap_counters.h). The first round fills whatever fills once: the
// layer's and the allocator's caches, lazily built tables. A leak grows in
// both rounds.
CheckResult check_attach_leaks(ValidateOptions const& options);
// shut-down: FS_DeinitDleList frees the tree through the module and
// FS_RemoveFileSys de-initialises it, both returning.
CheckResult check_shut_down(ValidateOptions const& options);

}  // namespace qbfs::validate
