// Steps shared by the object I/O functions.
#pragma once
#include <qbfsys/file_hand.h>

namespace fsys {

// Hands the bytes waiting in a writing stage buffer to the module, as data
// of the current stream, and ends the staging. Returns 0 or the module's
// error (FS_ERR_OBJ_INCOMPLETE when it takes nothing); a deferral counts as
// success, since the module then wants no more data of the stream.
FS_STATUS flush_staged_writes(_FILE_HAND_STRUCT* obj);

}  // namespace fsys
