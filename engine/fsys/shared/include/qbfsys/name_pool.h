// Pooled path and name buffers of a handle.
#pragma once
#include <cstddef>
#include <cstdint>

#include <qbfsys/fs_export.h>
#include <qbfsys/handles.h>
#include <qbhost/queue.h>

// A pooled name buffer. Modules reach it through DBLK.os_name, so its layout
// is part of the binary interface shared with separately built modules: the
// members come in this order with their natural alignment, pinned below.
struct FS_NAME_Q_ELEM {
  _Q_ELEM q;                // sits in in_use_name_q or avail_name_q
  std::uint16_t capacity;   // usable bytes of the buffer
  unsigned char* buffer;    // capacity + 20 bytes, zero-filled when allocated
  std::uint16_t size;       // bytes of the name held
};
static_assert(offsetof(FS_NAME_Q_ELEM, q) == 0, "an element pointer is its queue element");
static_assert(sizeof(_Q_ELEM) == 32, "the host queue link is four pointers");
static_assert(offsetof(FS_NAME_Q_ELEM, capacity) == 32, "capacity follows the queue link");
static_assert(offsetof(FS_NAME_Q_ELEM, buffer) == 40, "buffer is pointer-aligned after capacity");
static_assert(offsetof(FS_NAME_Q_ELEM, size) == 48, "size follows the buffer pointer");
static_assert(sizeof(FS_NAME_Q_ELEM) == 56, "FS_NAME_Q_ELEM is 56 bytes");

// An element whose buffer holds at least `size` bytes, queued as in use; null
// when memory runs out or for a null handle.
FS_EXPORT FS_NAME_Q_ELEM* FS_AllocPathOrName(FSYS_HAND_STRUCT* hand, std::uint16_t size);
// Moves the element from in use to free and clears the caller's pointer.
FS_EXPORT void FS_ReleasePathOrName(FSYS_HAND_STRUCT* hand, FS_NAME_Q_ELEM** element);
// Frees every element of both queues (called when a handle closes).
FS_EXPORT void FS_FreeOSPathOrNameQueueInHand(FSYS_HAND_STRUCT* hand);
