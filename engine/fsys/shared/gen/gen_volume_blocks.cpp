// The generic file system's volume-level answers: it keeps no device-name
// tree and writes no per-volume data into volume control blocks, and its
// objects are never links.
#include <qbfsys/gen.h>

FS_STATUS STUB_InitGOS(FSYS_HAND_STRUCT*, _GOS*) { return FS_SUCCESS; }

FS_STATUS GEN_SizeofVolumeQbdsInfoInVCB(FSYS_HAND_STRUCT*, _ZRTSCB*) { return FS_SUCCESS; }

FS_STATUS GEN_GetVolumeQbdsInfoFromVCB(FSYS_HAND_STRUCT*, _ZRTSCB*, unsigned char*) {
  return FS_SUCCESS;
}

FS_STATUS GEN_GetVolb(FSYS_HAND_STRUCT*, DBLK*) { return FS_ERR_UNIMPLEMENTED; }

FS_STATUS GEN_GetObjectLinkTarget(FSYS_HAND_STRUCT*, DBLK*, wchar_t* target, unsigned int* size) {
  if (size != nullptr) {
    if (target != nullptr && *size >= sizeof(wchar_t)) target[0] = L'\0';
    *size = 0;
  }
  return FS_SUCCESS;
}
