// Start-up, shut-down and drive finding of the generic file system.
#include <qbfsys/gen.h>

FS_STATUS GEN_InitFileSys(QB_CFG*) { return FS_SUCCESS; }

FS_STATUS GEN_DeInitFileSys() { return FS_SUCCESS; }

FS_STATUS GEN_FindDrives(HEAD_DLE*, QB_CFG*) { return FS_SUCCESS; }
