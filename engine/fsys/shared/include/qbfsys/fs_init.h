// Start-up and shut-down of the layer.
#pragma once
#include <qbfsys/fs_export.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>

// Loads the modules named in `modules` (ended by a null pointer), merges their
// tables into the registry and initialises every file system. `mask` and
// `count` are accepted and not used. Returns 0, FS_ERR_PARTIAL_INIT when some
// file systems failed to initialise, FS_ERR_INIT_FAILED when all did (or the
// mapping-service module did); everything is then torn down.
// A module that cannot be opened is reported with the host's error code, and
// the loader's own reason goes to the "engine/fsys/shared/initfsys" trace. A
// module whose entry points throw fails alone: one that throws while handing
// out its tables is skipped (none of its tables is merged), one whose
// initialise operation throws fails that index with FS_ERR_INIT_FAILED; the
// trace names the module and the exception's message. No exception leaves
// this function or FS_RemoveFileSys.
FS_EXPORT FS_STATUS FS_InitFileSys(QB_CFG* cfg, unsigned long long mask, wchar_t const** modules,
                                   unsigned int count);
// De-initialises every file system and drops every module reference.
FS_EXPORT void FS_RemoveFileSys();
// There are no initialisation threads: returns at once.
FS_EXPORT void FS_BlockWaitForInitThreads(HEAD_DLE* head, int wait);
