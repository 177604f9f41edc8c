// Handle operations for jobs: the one public road from a host to the file
// system that serves a handle.
//
// Each function takes the road every layer call takes: the handle's adapter
// object when it has one, else the slot of the handle's table, else a fixed
// answer for an empty slot (FS_ERR_UNIMPLEMENTED for an operation that
// returns a status, 0 for a size). A null handle gives FS_ERR_BAD_PARAMETER
// (0 for a size) before anything is asked. A host, a tool or a test reaches a
// module through these functions and the other exported FS_ functions only:
// never through the handle's table or adapter directly, so a module served
// through an adapter class and one served through its table look the same.
//
// Naming: FS_Hand followed by the adapter operation's name (FS_FshBase), with
// the same parameters after the handle. No other exported name begins with
// FS_Hand.
//
// Threads: a handle is used by one thread at a time; different handles, also
// on the same element, may be used at once.
#pragma once
#include <qbfsys/dblk.h>
#include <qbfsys/fs_export.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>
#include <qbfsys/handles.h>

// ---- Walking ------------------------------------------------------------------
// True when the handle can walk objects: it has an adapter, or its table
// has both FindFirstObj and FindNextObj. False for a null handle.
FS_EXPORT bool FS_HandCanWalk(FSYS_HAND_STRUCT const* hand);
// The first object of the current directory whose name matches `spec` (null
// or "*": every object) into `blk`. FS_SUCCESS with the block filled;
// FS_STATUS_NONE when there is none; a module's error otherwise. The block's
// names belong to the handle: release it with FS_HandReleaseBlk.
FS_EXPORT FS_STATUS FS_HandFindFirstObj(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* spec,
                                        unsigned short flags);
// The next object of the search begun by FS_HandFindFirstObj, into `blk`
// (whose earlier names the module reuses or releases). FS_STATUS_NONE at the
// end.
FS_EXPORT FS_STATUS FS_HandFindNextObj(FSYS_HAND_STRUCT* hand, DBLK* blk);
// Ends the search begun into `blk`.
FS_EXPORT FS_STATUS FS_HandFindObjClose(FSYS_HAND_STRUCT* hand, DBLK* blk);

// ---- Directories ----------------------------------------------------------------
// Makes the directory at `path` (component form, `size` bytes with the final
// terminator) the current one.
FS_EXPORT FS_STATUS FS_HandChangeDir(FSYS_HAND_STRUCT* hand, wchar_t* path, short size);
// Enters the directory `blk` describes (found in the current directory).
FS_EXPORT FS_STATUS FS_HandChangeIntoDDB(FSYS_HAND_STRUCT* hand, DBLK* blk);
// Goes up one directory; at the element's root the module's answer says so.
FS_EXPORT FS_STATUS FS_HandChangeDirUp(FSYS_HAND_STRUCT* hand);
// The current directory in component form into `path`; `*size` holds the
// room in bytes on entry and the bytes written on return. FS_ERR_OBJ_NO_DATA
// when the room is too small.
FS_EXPORT FS_STATUS FS_HandGetCurrentPath(FSYS_HAND_STRUCT* hand, wchar_t* path, short* size);
// A block describing the current directory into `blk` (release it with
// FS_HandReleaseBlk).
FS_EXPORT FS_STATUS FS_HandGetCurrentDDB(FSYS_HAND_STRUCT* hand, DBLK* blk);

// ---- Objects ---------------------------------------------------------------------
// Makes the object `blk` describes in the current directory (`name`: null,
// or a name to use instead of the block's), with `semantics` saying what to
// do with an object that holds the name already. Its contents are written
// through FS_OpenObj, FS_WriteObj and FS_CloseObj.
FS_EXPORT FS_STATUS FS_HandCreateObj(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t const* name,
                                     RESTORE_SEMANTICS semantics);
// Removes the object `blk` describes from the current directory.
FS_EXPORT FS_STATUS FS_HandDeleteObj(FSYS_HAND_STRUCT* hand, DBLK* blk);

// ---- Blocks ----------------------------------------------------------------------
// Gives back what the module holds for `blk` (its name elements among it).
FS_EXPORT FS_STATUS FS_HandReleaseBlk(FSYS_HAND_STRUCT* hand, DBLK* blk);
// Copies `source` into `copy` with names of its own.
FS_EXPORT FS_STATUS FS_HandDupBlk(FSYS_HAND_STRUCT* hand, DBLK* source, DBLK* copy);
// Bytes of the block's OS name with its terminator (with the path when
// `withPath`), as a signed 16-bit size; 0 for a null handle or empty slot.
FS_EXPORT std::int32_t FS_HandSizeofOSName(FSYS_HAND_STRUCT* hand, DBLK* blk, bool withPath);
// Copies the OS name (FS_HandSizeofOSName bytes) into `buffer`.
FS_EXPORT FS_STATUS FS_HandGetOSName(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* buffer,
                                     bool withPath);
// The object's type.
FS_EXPORT FS_STATUS FS_HandGetObjTypeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, OBJECT_TYPE* type);
// The object's creation date into `*date` (the caller's record). A module
// that keeps no such date answers with an error or an unset date.
FS_EXPORT FS_STATUS FS_HandGetCDateDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, _DATE_TIME* date);
// The object's modification date into `*date` (the caller's record).
FS_EXPORT FS_STATUS FS_HandGetMDateDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, _DATE_TIME* date);
// Reads (direction 0) the backup date into `*date`, or writes `*date` into
// the block (any other direction).
FS_EXPORT FS_STATUS FS_HandModBDateDBLK(FSYS_HAND_STRUCT* hand, int direction, DBLK* blk,
                                        _DATE_TIME* date);
// Reads (direction 0) the access date into `*date`, or writes `*date` into
// the block (any other direction).
FS_EXPORT FS_STATUS FS_HandModADateDBLK(FSYS_HAND_STRUCT* hand, int direction, DBLK* blk,
                                        _DATE_TIME* date);
// The size the object shows a person (low 32 bits of it, as the slot gives).
FS_EXPORT FS_STATUS FS_HandGetDisplaySizeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk);
