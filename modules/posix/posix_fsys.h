// The local POSIX file-system module (libqbposix.so): its file-system index,
// the kinds of elements it makes, and the entry points its table holds.
//
// Index. The module serves file-system index 7. Type byte 7 is what the layer
// treats as a local machine element: the child check leaves the type-7
// children of a machine alone and attaching does not take it for a remote
// machine. So this machine and every file system on it are type-7 elements,
// told apart by subtype: the machine element has subtype 1, each file-system
// (volume) element below it subtype 2.
//
// The module is loaded with dlopen by the layer's start-up. It does not link
// the layer or the host runtime: the functions of both that it calls
// (DLE_Create, DLE_Free, QB_Zprintf, the host queues and strings) are resolved
// from the host process when it is loaded.
//
// One source file per concern: posix_table.cpp (the table, start-up and
// shut-down), posix_find_drives.cpp, posix_mounts.cpp (the mount table),
// posix_dle_data.cpp (the record hung on each element), posix_remove_dle.cpp,
// posix_machine_name.cpp, posix_attach.cpp (attach, detach, close). Walking
// and data come later, in files of their own.
#pragma once
#include <cstdint>
#include <string>

#include <qbfsys/dle.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>

namespace qbposix {

constexpr unsigned FS_POSIX_INDEX = 7;
constexpr std::uint32_t POSIX_SUBTYPE_MACHINE = 1;
constexpr std::uint32_t POSIX_SUBTYPE_VOLUME = 2;
// A machine name fills at most the 256-character buffer of GetMachineName.
constexpr unsigned POSIX_MACHINE_NAME_MAX = 255;

FS_STATUS PosixInitFileSys(QB_CFG* cfg);
FS_STATUS PosixDeInitFileSys();
FS_STATUS PosixFindDrives(HEAD_DLE* head, QB_CFG* cfg);
FS_STATUS PosixRemoveDLE(GENERIC_DLE* dle);
FS_STATUS PosixAttachToDLE(FSYS_HAND_STRUCT* fsh, GENERIC_DLE* dle, wchar_t* user,
                           wchar_t* password);
FS_STATUS PosixDetachDLE(FSYS_HAND_STRUCT* fsh, void* arg, void** result);
FS_STATUS PosixCloseSys(FSYS_HAND_STRUCT* fsh);

// What a handle keeps while attached (FSYS_HAND_STRUCT::fsysData).
struct PosixHandleState {
  std::string root;  // the attached element's directory; empty for the machine
};

FS_STATUS PosixGetMachineName(GENERIC_DLE* dle, wchar_t* name, unsigned int* nameLength,
                              int reserved);

}  // namespace qbposix
