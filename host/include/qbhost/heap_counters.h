// Counters of the process's own resources that a host (or a tool playing
// one) reads before and after a stretch of work to see whether the work
// gave back what it took: heap bytes in use and open file descriptors.
//
// The numbers are process-wide and cover every library in the process, so
// a difference only means something across a stretch during which nothing
// else in the process allocates or opens on its own.
#pragma once
#include <cstddef>

#include <qbhost/export.h>

namespace qbhost {

// Bytes the process's heap allocator holds for live allocations. Under the
// address sanitizer these are the sanitizer allocator's own counts, which
// include every malloc, calloc, realloc and operator new.
QBHOST_API std::size_t heap_bytes_in_use();

// Number of file descriptors open in the process; 0 when they cannot be
// counted (no /proc/self/fd).
QBHOST_API std::size_t open_descriptors();

}  // namespace qbhost
