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
