// Pooled path and name buffers of a handle.
#pragma once
#include <cstddef>
#include <cstdint>

#include <qbfsys/fs_export.h>
#include <qbfsys/handles.h>
#include <qbhost/queue.h>

struct FS_NAME_Q_ELEM {
  _Q_ELEM q;                // sits in in_use_name_q or avail_name_q
  std::uint16_t capacity;   // usable bytes of the buffer
  std::uint16_t size;       // bytes of the name held
  std::uint32_t reserved;
  unsigned char* buffer;    // capacity + 20 bytes, zero-filled when allocated
};
static_assert(offsetof(FS_NAME_Q_ELEM, q) == 0, "an element pointer is its queue element");

// An element whose buffer holds at least `size` bytes, queued as in use; null
// when memory runs out or for a null handle.
FS_EXPORT FS_NAME_Q_ELEM* FS_AllocPathOrName(FSYS_HAND_STRUCT* hand, std::uint16_t size);
// Moves the element from in use to free and clears the caller's pointer.
FS_EXPORT void FS_ReleasePathOrName(FSYS_HAND_STRUCT* hand, FS_NAME_Q_ELEM** element);
// Frees every element of both queues (called when a handle closes).
FS_EXPORT void FS_FreeOSPathOrNameQueueInHand(FSYS_HAND_STRUCT* hand);
