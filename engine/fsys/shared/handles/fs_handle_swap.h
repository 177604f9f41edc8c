// Exchanging the whole state of two handle records, as both FS_ReattachDLE
// forms do.
#pragma once
#include <qbfsys/handles.h>

namespace fsys {

// Swaps the contents of `a` and `b` as plain values. Host queues remember the
// header that holds each element, so the elements of the three queues are
// re-pointed at the header they now sit in; otherwise a later release through
// either record would be refused or, worse, unlink from the wrong list.
void swap_handle_state(FSYS_HAND_STRUCT* a, FSYS_HAND_STRUCT* b);

}  // namespace fsys
