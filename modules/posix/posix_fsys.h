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
// (DLE_Create, DLE_Free, QB_Zprintf, the host queues and strings, the GEN
// block functions, FS_SetLastError) are resolved from the host process when
// it is loaded.
//
// Files: posix_table.cpp (the table, start-up, shut-down), posix_find_drives.cpp,
// posix_mounts.cpp, posix_dle_data.cpp, posix_remove_dle.cpp,
// posix_machine_name.cpp, posix_attach.cpp (attach, detach, close);
// posix_name_codec.* (byte names in wide form), posix_streams.* (stream ids
// and records), posix_handle_state.* (directory levels, reports),
// posix_dblk.* (blocks), posix_walk.cpp and posix_find.cpp (walking),
// posix_object.h, posix_read.cpp and posix_write.cpp (object I/O),
// posix_metadata.* (extended attributes and restored metadata).
//
// Slots, not an adapter class. The module serves every handle operation
// through its _FUNC_LIST slots and leaves the handle's adapter unset. An
// adapter would have to derive from FS_FshGen, a class of the layer: the
// module would then depend on the layer's class layout and virtual table
// at build time, while it is built and loaded separately and resolves only
// plain functions of the layer at load. The table is a plain record of
// function pointers whose order is fixed, so the layer's FS_FshLegacy (or
// the layer itself) reaches each slot without the module knowing any class.
//
// What the slots do (statuses: the layer's codes; details of a failure that
// concerns one object are recorded with its path on the handle's last
// error and returned as FS_STATUS_EXT_ERROR; the walk may go on):
// - walking: FindFirstObj (spec null or "*": every object; otherwise the
//   layer's file-specification match, case-sensitive) and FindNextObj fill
//   the caller's block with the next object of the current directory ("."
//   and ".." left out) and return FS_STATUS_NONE when there is none left.
//   An entry that vanishes or cannot be examined between listing and
//   examining is printed with its path and reason and passed over. The
//   block's name element is the handle's (ReleaseBlk gives it back; a
//   later find into the same block does so itself); its OS info stays
//   valid until the next find in the same directory.
//   FindObjClose ends the listing of the current directory.
// - ChangeDir takes the path from the root as a run of terminated
//   components (the layer's path form; the root is one empty component, 4
//   bytes); ChangeIntoDDB enters a directory block found in the current
//   directory; ChangeDirUp leaves the current directory (FS_ERR_NOT_SUPPORTED
//   at the root). A directory on which another file system is mounted is
//   not entered: FS_STATUS_NONE, printed with its path. GetCurrentPath
//   gives the current path in the same form (`*size` bytes in, used out;
//   FS_ERR_OBJ_NO_DATA with the size needed when it does not fit);
//   GetCurrentDDB describes the current directory.
// - blocks: CreateDBLK builds generic blocks (GEN_CreateDBLK), and the
//   name, date, attribute, object-type and OS-info slots are the generic
//   ones; ReleaseBlk gives back a block's name. Object types: regular file
//   FS_OBJ_FILE, directory FS_OBJ_DIRECTORY, symbolic link FS_OBJ_LINK,
//   device node FS_OBJ_DEVICE, FIFO and socket FS_OBJ_GENERIC.
// - reading: OpenObj (FS_READ) opens the object named by a block of the
//   current directory; ReadObj delivers its streams (posix_streams.h), each
//   header in a call of its own, and ends with FS_ERR_OBJ_NO_DATA; it asks
//   for POSIX_IO_UNIT bytes a call through `need`. A file that shrinks
//   while read ends with FS_STATUS_EXT_ERROR; one that grows or changes is
//   delivered as far as it was when opened, and printed.
// - restoring: CreateObj makes the object a block describes in the current
//   directory (RESTORE_SKIP_EXISTING: an existing one is left and
//   FS_STATUS_NONE returned; otherwise a non-directory in the way is
//   replaced and a directory reused); OpenObj (FS_WRITE) and WriteObj take
//   its streams; CloseObj sets its metadata (extended attributes, owner and
//   group when privileged, mode with setuid, setgid and sticky bits,
//   nanosecond access and modification times). Directories get theirs at
//   detach, after their children (from the block given to CreateObj, with
//   the extended attributes written when opened). Device nodes need
//   privilege.
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

FS_STATUS posix_init_file_sys(QB_CFG* cfg);
FS_STATUS posix_deinit_file_sys();
FS_STATUS posix_find_drives(HEAD_DLE* head, QB_CFG* cfg);
FS_STATUS posix_remove_dle(GENERIC_DLE* dle);
FS_STATUS posix_attach_to_dle(FSYS_HAND_STRUCT* fsh, GENERIC_DLE* dle, wchar_t* user,
                           wchar_t* password);
FS_STATUS posix_detach_dle(FSYS_HAND_STRUCT* fsh, void* arg, void** result);
FS_STATUS posix_close_sys(FSYS_HAND_STRUCT* fsh);

FS_STATUS posix_get_machine_name(GENERIC_DLE* dle, wchar_t* name, unsigned int* nameLength,
                                 int reserved);

// The size of each read and write call the module asks for.
constexpr std::uint32_t POSIX_IO_UNIT = 64u * 1024u;

// Walking (posix_walk.cpp, posix_find.cpp).
FS_STATUS posix_change_dir(FSYS_HAND_STRUCT* fsh, wchar_t* path, short size);
FS_STATUS posix_change_dir_up(FSYS_HAND_STRUCT* fsh);
FS_STATUS posix_change_into_ddb(FSYS_HAND_STRUCT* fsh, DBLK* blk);
FS_STATUS posix_get_current_path(FSYS_HAND_STRUCT* fsh, wchar_t* path, short* size);
FS_STATUS posix_get_current_ddb(FSYS_HAND_STRUCT* fsh, DBLK* blk);
FS_STATUS posix_find_first_obj(FSYS_HAND_STRUCT* fsh, DBLK* blk, wchar_t* spec,
                               unsigned short flags);
FS_STATUS posix_find_next_obj(FSYS_HAND_STRUCT* fsh, DBLK* blk);
FS_STATUS posix_find_obj_close(FSYS_HAND_STRUCT* fsh, DBLK* blk);
FS_STATUS posix_release_blk(FSYS_HAND_STRUCT* fsh, DBLK* blk);

// Reading and restoring (posix_read.cpp, posix_write.cpp).
FS_STATUS posix_open_obj(FSYS_HAND_STRUCT* fsh, _FILE_HAND_STRUCT** out, DBLK* blk, OPEN_MODE mode);
FS_STATUS posix_read_obj(_FILE_HAND_STRUCT* hand, unsigned char* buffer, unsigned int* size,
                         unsigned int* need, STREAM_INFO* stream);
FS_STATUS posix_write_obj(_FILE_HAND_STRUCT* hand, unsigned char* buffer, unsigned int* size,
                          unsigned int* need, STREAM_INFO* stream);
FS_STATUS posix_close_obj(_FILE_HAND_STRUCT* hand, void** arg, void** result);
// A directory block without a stat record (a restore that must make a
// parent it has no description of) becomes a directory with the process's
// default permissions and owner, and no metadata is set on it later.
FS_STATUS posix_create_obj(FSYS_HAND_STRUCT* fsh, DBLK* blk, wchar_t const* name,
                           RESTORE_SEMANTICS semantics);
// Removes the object the block names from the current directory (a
// directory only when empty); a restore takes back an object it found
// damaged. Never follows a link.
FS_STATUS posix_delete_obj(FSYS_HAND_STRUCT* fsh, DBLK* blk);

}  // namespace qbposix
