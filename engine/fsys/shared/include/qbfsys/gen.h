// The generic file system (GEN): the built-in file system every index starts
// with. Its operations fill `_GENFuncTab`.
#pragma once
#include <qbfsys/fs_export.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>

// Start-up hook: succeeds and does nothing else.
FS_EXPORT FS_STATUS GEN_InitFileSys(QB_CFG* cfg);
// Shut-down hook: nothing to do.
FS_EXPORT FS_STATUS GEN_DeInitFileSys();
// The generic file system has no drives of its own: finds nothing, returns 0.
FS_EXPORT FS_STATUS GEN_FindDrives(HEAD_DLE* head, QB_CFG* cfg);
// The generic remove-DLE: unlinks the element from its parent's child queue,
// or from the head's top-level (or, for a top-level flag, second) queue, and
// frees it with everything it owns. Its children must be gone already.
FS_EXPORT FS_STATUS GEN_RemoveDLE(GENERIC_DLE* dle);
// Frees the top-level elements of file system `fsIndex` that are not
// attached, with their children, unless one of the children is attached.
FS_EXPORT void GEN_FlushDLEs(HEAD_DLE* head, unsigned char fsIndex);
