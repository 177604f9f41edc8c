// Resolving machine and device names, and expanding a machine into the tree.
#pragma once
#include <qbfsys/dle.h>
#include <qbfsys/fs_export.h>
#include <qbfsys/fs_status.h>

// Asks the file systems, in resolve_order passes, which machine `devName`
// belongs to. `kind` is a hint on entry (48: ask index 21 first, 71: index
// 36 first) and -1 after a failure; `errOut` receives a final resolver error.
// Returns 0 or FS_ERR_NOT_SUPPORTED.
FS_EXPORT FS_STATUS FS_ResolveDevName(QB_CFG* cfg, wchar_t* devName, wchar_t* machineName,
                                      int* kind, int* errOut, int* out3, int* out4,
                                      unsigned int machineNameMax);
// True for the resolver errors after which no further file system is asked.
FS_EXPORT bool IsE14ResolveDeviceNameError(long code);
// Finds, or creates and attaches, the DLE of the machine that holds `path`,
// and the path's own DLE below it.
FS_EXPORT FS_STATUS FS_BlowOutMachine(HEAD_DLE* head, QB_CFG* cfg, wchar_t* path,
                                      bool* isMachinePath, GENERIC_DLE** found);
// Has a file system build a temporary DLE for `name`: each index in turn
// (0 to 50) that offers the operation (object operation 9, else slot 63) is
// asked until one succeeds with an element. FS_ERR_NOT_SUPPORTED when none
// does; the last failure otherwise.
FS_EXPORT FS_STATUS FS_CreateTempDLE(QB_CFG* cfg, wchar_t const* name, HEAD_DLE* head, int kind,
                                     GENERIC_DLE** out);
