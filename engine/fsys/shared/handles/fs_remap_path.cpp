// FS_ReMapPath: path remapping is not offered by this layer; the paths are
// left as they are and the call succeeds.
#include <qbfsys/handles.h>

FS_STATUS FS_ReMapPath(FSYS_HAND_STRUCT* /*hand*/, wcstring& /*a*/, wcstring& /*b*/,
                       wcstring& /*c*/) {
  return FS_SUCCESS;
}
