// The generic file system (GEN): the built-in file system every index starts
// with. Its operations fill `_GENFuncTab`.
#pragma once
#include <qbfsys/fs_export.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/create_dblk.h>
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

// ---- GEN block fields ------------------------------------------------------
// The generic file system's answers for its own directory and file blocks
// (the per-kind area GEN_DBLK_AREA of qbfsys/dblk.h). `direction` 0 reads
// into the given record, anything else writes from it. A null handle is
// accepted (the fields live in the block); a null block or output is
// refused with FS_ERR_BAD_PARAMETER.

// Attribute word 1. Returns 0.
FS_EXPORT FS_STATUS GEN_ModAttrib1DBLK(FSYS_HAND_STRUCT* hand, int direction, DBLK* blk,
                                       unsigned int* word);
// Attribute word 2. Returns 0.
FS_EXPORT FS_STATUS GEN_ModAttrib2DBLK(FSYS_HAND_STRUCT* hand, int direction, DBLK* blk,
                                       unsigned int* word);
// The display size, low 32 bits (the result is a status word); 0 for null.
FS_EXPORT FS_STATUS GEN_GetDisplaySizeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk);
// Copies the creation date out. Returns 0.
FS_EXPORT FS_STATUS GEN_GetCdateDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, _DATE_TIME* date);
// Copies the modification date out. Returns 0.
FS_EXPORT FS_STATUS GEN_GetMdateDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, _DATE_TIME* date);
// Reads or writes the backup date. Returns 0.
FS_EXPORT FS_STATUS GEN_ModBdateDBLK(FSYS_HAND_STRUCT* hand, int direction, DBLK* blk,
                                     _DATE_TIME* date);
// Reads or writes the access date. Returns 0.
FS_EXPORT FS_STATUS GEN_ModAdateDBLK(FSYS_HAND_STRUCT* hand, int direction, DBLK* blk,
                                     _DATE_TIME* date);
// Stores file version 0. Returns 0.
FS_EXPORT FS_STATUS GEN_GetFileVerFDB(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned int* version);
// The size in bytes of the OS name element of a directory or file block; 0
// for other kinds or without a name.
FS_EXPORT FS_STATUS GEN_SizeofOSName(FSYS_HAND_STRUCT* hand, DBLK* blk, bool withPath);
// os_info_size when os_info is set, else 0.
FS_EXPORT FS_STATUS GEN_SizeofOSInfo(FSYS_HAND_STRUCT* hand, DBLK* blk);
// Copies the OS-info data into `buffer` and stores its size in `*size`
// (which holds the buffer's capacity on entry); stores 0 when there is none.
// Returns 0, or FS_ERR_OBJ_NO_DATA (nothing copied) when the capacity is
// smaller than the data.
FS_EXPORT FS_STATUS GEN_GetOS_InfoDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char* buffer,
                                       short* size);
// GEN_DBLK_ACTUAL_SIZE (336) for every block.
FS_EXPORT FS_STATUS GEN_GetActualSizeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk);
// 1: a GEN directory block needs no processing.
FS_EXPORT FS_STATUS GEN_ProcessDDB(FSYS_HAND_STRUCT* hand, DBLK* blk);
// Nothing to close. Returns 0.
FS_EXPORT FS_STATUS GEN_FindClose(FSYS_HAND_STRUCT* hand, DBLK* blk);
// No exclusion. Returns 0.
FS_EXPORT FS_STATUS GEN_SpecExcludeObj(FSYS_HAND_STRUCT* hand, DBLK* directory, DBLK* blk,
                                       unsigned int flags);
// 1 for volume/set and corrupt-file blocks and cluster blocks, else 1
// exactly when the block has its OS name; 0 for a null block.
FS_EXPORT FS_STATUS GEN_IsBlkComplete(FSYS_HAND_STRUCT* hand, DBLK* blk);
// Gathers a piece of the block's name stream (FS_FillBufferWithStream);
// when the stream completes, the gathered (or decrypted) name becomes the
// block's OS name. Returns FS_FillBufferWithStream's status until then,
// then the name set-up's status; FS_ERR_NO_MEMORY for a completed stream
// longer than 32 bits.
FS_EXPORT FS_STATUS GEN_CompleteBlk(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char* data,
                                    unsigned int* size, STREAM_INFO* header);

// ---- building, copying and releasing GEN blocks ------------------------------
// Builds a file (GEN_CreateFDB) or directory (GEN_CreateDDB) block in
// data->dblk from the creation data: the block is cleared, the common
// fields, object flags (DBLK_OBJ_*), attribute words, display size and the
// four dates are copied (a missing date reads as zero), and the name is set
// up in a pooled element of the handle unless the media attribute word has
// DBLK_ATTR1_NAME_ENCRYPTED (then the name arrives later as a name stream,
// GEN_CompleteBlk). File blocks with an extended-attribute sub-code
// (DBLK_SUBTYPE_EA_*) also get the two extended-attribute names, values,
// counters and the two extra dates; sub-code DBLK_SUBTYPE_NUMERIC copies the
// numeric record. An extended name longer than empty is kept in its own
// element. Every part is built even when a name cannot be set up. Returns 0,
// the first name set-up error among the OS name, the extended-attribute
// names and the extended name (FS_ERR_NO_MEMORY, FS_ERR_NAME_TOO_LONG,
// FS_ERR_BAD_PARAMETER), or FS_ERR_BAD_PARAMETER for a null handle, data or
// destination. Whatever elements the block got stay
// with it; release them with GEN_ReleaseBlk.
FS_EXPORT FS_STATUS GEN_CreateFDB(FSYS_HAND_STRUCT* hand, _GEN_DBLK_DATA* data);
// The same for a directory block (kind 8); statuses and ownership as above.
FS_EXPORT FS_STATUS GEN_CreateDDB(FSYS_HAND_STRUCT* hand, _GEN_DBLK_DATA* data);
// Kind 8 builds a directory block, kind 9 a file block, from request->gen;
// the destination is request->gen.dblk, or request->dblk when that is null.
// Any other kind returns 1 and builds nothing; a null request gives
// FS_ERR_BAD_PARAMETER.
FS_EXPORT FS_STATUS GEN_CreateDBLK(FSYS_HAND_STRUCT* hand, unsigned int kind,
                                   _CREATE_DBLK* request);
// Copies all 4,184 bytes of `source` into `copy` and gives the copy its own
// name elements (OS name, extended-attribute names, extended name), so the
// two blocks are released independently. Returns 0, FS_ERR_NO_MEMORY (the
// copy then holds no name elements) or FS_ERR_BAD_PARAMETER.
FS_EXPORT FS_STATUS GEN_DupBlk(FSYS_HAND_STRUCT* hand, DBLK* source, DBLK* copy);
// Releases every name element the block holds to the handle's pool and
// clears the fields. Returns 0 (FS_ERR_BAD_PARAMETER for null arguments).
FS_EXPORT FS_STATUS GEN_ReleaseBlk(FSYS_HAND_STRUCT* hand, DBLK* blk);
// The marker blocks, built into request->dblk from request->mark (unknown
// and end-of-data blocks: kind, format words, position) or request->cfdb
// (corrupt-file block: cleared first, then kind, format words, position,
// attribute words and the two 64-bit values). Return 1, as every generic
// creator of these kinds does; FS_ERR_BAD_PARAMETER for a null request or
// destination.
FS_EXPORT FS_STATUS FS_CreateGenUDB(FSYS_HAND_STRUCT* hand, _CREATE_DBLK* request);
// The end-of-data block (kind 17) from request->mark; as above.
FS_EXPORT FS_STATUS FS_CreateGenEODB(FSYS_HAND_STRUCT* hand, _CREATE_DBLK* request);
// The corrupt-file block (kind 11) from request->cfdb; as above.
FS_EXPORT FS_STATUS FS_CreateGenCFDB(FSYS_HAND_STRUCT* hand, _CREATE_DBLK* request);

// ---- names -------------------------------------------------------------------
// Where a prefixed name is recognised (see GEN_SizeofName).
constexpr std::uint8_t GEN_OSID_PREFIXED_BLANK = 32;
constexpr std::uint8_t GEN_OSID_PREFIXED_Q = 81;
constexpr std::uint32_t GEN_PREFIXED_SUBTYPE = 9;
// The size of a block's name, in bytes: 0xFFFFFFFF without an OS name element. A
// block with blk_subtype 9 whose os_id is GEN_OSID_PREFIXED_BLANK or
// GEN_OSID_PREFIXED_Q and whose os_ver is non-zero keeps a prefixed name:
// its buffer starts with a 16-bit length L and the name proper starts at
// byte (L + 3) with the two low bits cleared; the size is then the element
// size minus that offset (0 when the offset lies beyond the element).
FS_EXPORT FS_STATUS GEN_SizeofName(FSYS_HAND_STRUCT* hand, DBLK* blk, bool withPath);
// Reads the block's name into `buffer` (direction 0): the name proper of a
// prefixed name when its start lies inside the element, else the whole
// element (after printing "File name: %s\nFile name size: %d\ntsize: %d\n").
// `*size` holds the buffer's capacity in bytes on entry and the bytes copied
// on return. Writing (any other direction) is refused with
// FS_ERR_BAD_PARAMETER. Returns 0; FS_ERR_OBJ_NO_DATA when the buffer is too
// small (nothing copied) or the block has no name; FS_ERR_BAD_PARAMETER for
// null arguments.
FS_EXPORT FS_STATUS GEN_ModName(FSYS_HAND_STRUCT* hand, int direction, DBLK* blk, wchar_t* buffer,
                                short* size);
// Copies the block's OS name element, terminated, into `buffer`, which must
// hold GEN_SizeofOSName bytes. Returns 0, or FS_ERR_OBJ_NO_DATA without a
// name; FS_ERR_BAD_PARAMETER for null arguments.
FS_EXPORT FS_STATUS GEN_GetOSName(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* buffer, bool withPath);

// Builds "<device name>\<component>\...\<name>" in `out` (`outSize` bytes):
// the device name of `dle` (none without a DLE), a backslash unless the path
// is the root (pathSize 4: one empty component), each component of `path`
// (empty ones too)
// (a run of terminated components, `pathSize` bytes) followed by a
// backslash, then `name` when given. Returns 0; FS_ERR_OBJ_NO_DATA when the
// result would not fit (sizes compared as signed 16-bit values, as the media
// format does, and the exact characters written); FS_ERR_BAD_PARAMETER for a null `out` or a path that is not
// a run of terminated components.
FS_EXPORT FS_STATUS GEN_MakePath(wchar_t* out, short outSize, GENERIC_DLE* dle, wchar_t const* path,
                                 short pathSize, wchar_t const* name);

// The DLE's display name (its alternate name when DLE_NAME_FLAG_ALTERNATE is
// set and it has one, else its device name): at most bufferSize / 4
// characters, the last position always a terminator. Buffers under 24
// bytes are refused with FS_ERR_OBJ_NO_DATA.
FS_EXPORT FS_STATUS GEN_DeviceDispName(GENERIC_DLE* dle, wchar_t* buffer, unsigned short bufferSize);
// Copies the same name, terminated; the buffer must hold GEN_SizeofVolName
// bytes. Returns 0 (FS_ERR_BAD_PARAMETER for null arguments).
FS_EXPORT FS_STATUS GEN_GetVolName(GENERIC_DLE* dle, wchar_t* buffer);
// (length + 1) * 4 of that name; 0 for a null DLE.
FS_EXPORT FS_STATUS GEN_SizeofVolName(GENERIC_DLE* dle);
// The same size as GEN_SizeofVolName: a DLE's device name is shown by the
// name GEN_DeviceDispName gives. 0 for a null DLE.
FS_EXPORT FS_STATUS GEN_SizeofDevName(GENERIC_DLE* dle);

// ---- the set-copy blob ---------------------------------------------------------
// A growable byte buffer owned by whoever holds the record (free `data` with
// free()).
struct SET_COPY_BLOB {
  unsigned char* data;
  std::uint32_t length;    // bytes used
  std::uint32_t capacity;  // bytes allocated
};
// Stores `length` bytes of `data` in the blob; length 0 keeps the buffer. A
// length above the capacity replaces the buffer by one of length + 512
// bytes. Returns 0; FS_ERR_NO_MEMORY (length and capacity become 0);
// FS_ERR_BAD_PARAMETER for a null blob, or null data with a non-zero length.
FS_EXPORT FS_STATUS GEN_LoadSetCopyBlob(std::uint32_t length, void const* data, SET_COPY_BLOB* blob);

// ---- the handle and the remaining block operations -----------------------------
// Line number of GEN_OpenSys's bad-parameter message.
constexpr int GEN_OPEN_SYS_LINE = 76;
// Installs an FS_FshGeneric adapter on the handle, which then serves every
// operation through the handle's table. A handle that has an adapter
// already keeps it: chaining would need the generic object to hold the
// earlier one, and the adapter classes hold no data; replacing it would lose
// the module's object. Returns 0,
// also for a null handle (after printing "FS_FshGen: Bad Parameter at line
// number %d" with GEN_OPEN_SYS_LINE) and when memory runs out (the handle
// then goes on through its table alone).
FS_EXPORT FS_STATUS GEN_OpenSys(FSYS_HAND_STRUCT* hand);
// Clears the OS id, QBDS id and OS version of the request's creation data.
// Returns 0 (FS_ERR_BAD_PARAMETER for a null request).
FS_EXPORT FS_STATUS GEN_InitMakeData(FSYS_HAND_STRUCT* hand, short kind, _CREATE_DBLK* request);
// The object type at byte 88 of a directory or file block. Return 0
// (FS_ERR_BAD_PARAMETER for null arguments).
FS_EXPORT FS_STATUS GEN_GetObjTypeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, OBJECT_TYPE* type);
// Stores the object type at byte 88 of the block; the handle is not used.
// Returns 0 (FS_ERR_BAD_PARAMETER for a null block).
FS_EXPORT FS_STATUS GEN_SetObjTypeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, OBJECT_TYPE type);
// Copies extended-attribute name `which` (GEN_EA_NAME_1 or 2) of a file
// block with an extended-attribute sub-code into `buffer`; `*size` is the
// capacity on entry and the name's size on return. Returns 0;
// FS_ERR_NOT_SUPPORTED when the block has no such name; FS_ERR_OBJ_NO_DATA
// (with `*size` the size needed) when the buffer is too small;
// FS_ERR_BAD_PARAMETER for null arguments.
FS_EXPORT FS_STATUS GEN_GetExtendedAttribFromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                                  unsigned int which, void* buffer,
                                                  unsigned int* size);

// ---- volume-level answers --------------------------------------------------
// The generic file system keeps no device-name tree and stores nothing of
// its own in volume control blocks.

// The initialise-GOS slot of the generic table: nothing to set up. Returns 0.
FS_EXPORT FS_STATUS STUB_InitGOS(FSYS_HAND_STRUCT* hand, _GOS* gos);
// No per-volume data in a volume control block: size 0. Returns 0.
FS_EXPORT FS_STATUS GEN_SizeofVolumeQbdsInfoInVCB(FSYS_HAND_STRUCT* hand, _ZRTSCB* vcb);
// No per-volume data to copy: leaves `buffer` alone. Returns 0.
FS_EXPORT FS_STATUS GEN_GetVolumeQbdsInfoFromVCB(FSYS_HAND_STRUCT* hand, _ZRTSCB* vcb,
                                                 unsigned char* buffer);
// Without a device-name tree there is no volume block to fill:
// FS_ERR_UNIMPLEMENTED, the block untouched.
FS_EXPORT FS_STATUS GEN_GetVolb(FSYS_HAND_STRUCT* hand, DBLK* blk);
// Objects read from media through the generic file system are not links:
// `*size` (bytes, in: room of `target`) becomes 0 and `target`, when it has
// room for one character, the empty string. Returns 0; null arguments are
// skipped.
FS_EXPORT FS_STATUS GEN_GetObjectLinkTarget(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* target,
                                            unsigned int* size);
