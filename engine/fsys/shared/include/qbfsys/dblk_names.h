// Names in descriptor blocks: the OS path or name of a block and the two
// extended-attribute names of a GEN file block, each held in a pooled name
// element of the handle (qbfsys/name_pool.h).
//
// The handle owns the elements; a block only points at them. Release a
// block's names through the same handle before the block is dropped, or
// they stay in use until the handle closes (which reports them).
#pragma once
#include <cstdint>

#include <qbfsys/dblk.h>
#include <qbfsys/fs_export.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>

// The largest name a block holds, in bytes (after widening).
constexpr std::uint32_t FS_MAX_NAME_BYTES = 32767;

// Gives the block a new name element holding `name` (`size` bytes) and
// stores it in blk->os_name.
// - A null name or size 0 is the empty wide name: four zero bytes.
// - `allocSize` is the element's size; 0 means the name's size.
// - When blk->name_char_type is DBLK_NAME_NARROW the name is narrow text
//   (UTF-8): it is widened to 4-byte characters, the name and allocation
//   sizes count four times, and name_char_type becomes DBLK_NAME_WIDE.
// - The element's `size` is the allocation size; bytes beyond the name are
//   zero.
// A name element the block had before is not released here; release it
// first. Statuses: FS_SUCCESS; FS_ERR_NAME_TOO_LONG when the name's byte
// count (after widening) exceeds FS_MAX_NAME_BYTES; FS_ERR_BAD_PARAMETER for
// a null handle or block, or an allocation size smaller than the name (the
// name would not fit; refused rather than cut) or above FS_MAX_NAME_BYTES;
// FS_ERR_NO_MEMORY.
FS_EXPORT FS_STATUS FS_SetupOSPathOrNameInDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                               unsigned char* name, std::uint16_t size,
                                               std::uint16_t allocSize);
// Releases the block's name element to the handle's pool and clears
// blk->os_name. Nothing happens for a null handle or block or an unset name.
FS_EXPORT void FS_ReleaseOSPathOrNameInDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk);

// Which extended-attribute name of a GEN file block.
constexpr std::uint16_t GEN_EA_NAME_1 = 1;
constexpr std::uint16_t GEN_EA_NAME_2 = 2;

// The same as FS_SetupOSPathOrNameInDBLK for extended-attribute name
// `which` (GEN_EA_NAME_1 or GEN_EA_NAME_2) of a GEN block: the element goes
// to blk->area.gen.ext.ea.ea_name1 or ea_name2. When both `size` and
// `allocSize` are 0 the field is set to null and FS_SUCCESS returned. Any
// other `which` builds the element, returns the status of building it and
// stores it nowhere: it stays in the handle's in-use queue until the pools are
// freed when the handle closes. Statuses: those of FS_SetupOSPathOrNameInDBLK.
FS_EXPORT FS_STATUS FS_SetupExtendedAttribNameInGenDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                                        unsigned char* name, std::uint16_t size,
                                                        std::uint16_t which,
                                                        std::uint16_t allocSize);
// Releases extended-attribute name `which` when the block has it; other
// values of `which` do nothing.
FS_EXPORT void FS_ReleaseExtendedAttribNameInGenDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                                     std::uint16_t which);
