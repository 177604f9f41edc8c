// Steps shared by the object I/O functions.
#pragma once
#include <qbfsys/file_hand.h>

namespace fsys {

// Hands the bytes waiting in a writing stage buffer to the module, as data
// of the current stream, and ends the staging. Returns 0, or the module's
// error (FS_ERR_OBJ_INCOMPLETE when it takes nothing, FS_ERR_OBJ_OVERRUN
// when it claims too much) with the bytes it did not take still staged, to
// be offered first by the next call. A deferral counts as success and drops
// the rest: the module wants no more data of the stream.
FS_STATUS flush_staged_writes(_FILE_HAND_STRUCT* obj);

}  // namespace fsys
