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

// Attribute words 1 and 2. Return 0.
FS_EXPORT FS_STATUS GEN_ModAttrib1DBLK(FSYS_HAND_STRUCT* hand, int direction, DBLK* blk,
                                       unsigned int* word);
FS_EXPORT FS_STATUS GEN_ModAttrib2DBLK(FSYS_HAND_STRUCT* hand, int direction, DBLK* blk,
                                       unsigned int* word);
// The display size, low 32 bits (the result is a status word); 0 for null.
FS_EXPORT FS_STATUS GEN_GetDisplaySizeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk);
// Copy the creation or modification date out. Return 0.
FS_EXPORT FS_STATUS GEN_GetCdateDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, _DATE_TIME* date);
FS_EXPORT FS_STATUS GEN_GetMdateDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, _DATE_TIME* date);
// Read or write the backup or access date. Return 0.
FS_EXPORT FS_STATUS GEN_ModBdateDBLK(FSYS_HAND_STRUCT* hand, int direction, DBLK* blk,
                                     _DATE_TIME* date);
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
// element. Returns 0, the name set-up's error (FS_ERR_NO_MEMORY,
// FS_ERR_NAME_TOO_LONG, FS_ERR_BAD_PARAMETER), or FS_ERR_BAD_PARAMETER for a
// null handle, data or destination. Whatever elements the block got stay
// with it; release them with GEN_ReleaseBlk.
FS_EXPORT FS_STATUS GEN_CreateFDB(FSYS_HAND_STRUCT* hand, _GEN_DBLK_DATA* data);
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
FS_EXPORT FS_STATUS FS_CreateGenEODB(FSYS_HAND_STRUCT* hand, _CREATE_DBLK* request);
FS_EXPORT FS_STATUS FS_CreateGenCFDB(FSYS_HAND_STRUCT* hand, _CREATE_DBLK* request);
