// Reading and changing descriptor blocks through the file system that owns
// them.
//
// The layer reads only the common header of a block and the attribute words
// of the kinds it builds itself (volume/set and corrupt-file blocks). For
// directory and file blocks it asks the handle's file system: the adapter
// object when the handle has one, else the table slots 42 ModAttrib1DBLK, 43
// ModAttrib2DBLK, 48 SizeofOSInfo and 49 GetOS_InfoDBLK. A file system that
// offers neither reads as 0. Unknown kinds read as 0 and ignore writes
// without asking anybody. A null block reads as 0 (and writes nothing).
#pragma once
#include <cstdint>

#include <qbfsys/dblk.h>
#include <qbfsys/fs_export.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>

// Attribute word 1. Kinds 1 and 11: the block's own word. Kinds 8 and 9: the
// file system's word, then mapped from `obj_flags`: DBLK_OBJ_ATTR_BIT25 adds
// DBLK_ATTR1_BIT25; for a file block DBLK_OBJ_FILE_ATTR_BIT19 adds
// DBLK_ATTR1_BIT19 and DBLK_OBJ_FILE_ATTR_BIT20 adds DBLK_ATTR1_BIT20; for a
// directory block DBLK_OBJ_DIR_ATTR_BIT19 adds DBLK_ATTR1_BIT19.
FS_EXPORT std::uint32_t FS_GetAttrib1FromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk);
// Stores attribute word 1: kinds 1 and 11 in the block, kinds 8 and 9
// through the file system unchanged. Always returns 0.
FS_EXPORT std::uint32_t FS_SetAttrib1FromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                              unsigned int value);
// Attribute word 2, with the same dispatch and no flag mapping.
FS_EXPORT std::uint32_t FS_GetAttrib2FromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk);
// Stores attribute word 2 like FS_SetAttrib1FromDBLK. Always returns 0.
FS_EXPORT std::uint32_t FS_SetAttrib2InDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned int value);

// The block's os_id and os_ver widened to 16 bits; a null output is skipped.
// Returns 0 (FS_ERR_BAD_PARAMETER for a null block).
FS_EXPORT FS_STATUS FS_GetOSid_verFromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                           unsigned short* osId, unsigned short* osVer);
// The block's os_id (data id), qbds_id and os_ver (format version), widened;
// null outputs are skipped, a null block writes nothing.
FS_EXPORT void FS_GetDataIdQbdsIdQbdsVerFromDBLK(DBLK* blk, unsigned short* dataId,
                                                 unsigned short* qbdsId,
                                                 unsigned short* qbdsVer);

// Size in bytes of the block's OS-info (QBDS) data: for kinds 8 and 9 the
// file system's signed 16-bit count, sign-extended; 0 for other kinds.
FS_EXPORT std::uint32_t FS_SizeofQbdsInfoInDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk);
// The same as FS_SizeofQbdsInfoInDBLK.
FS_EXPORT std::uint32_t FS_SizeofOS_InfoInDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk);

// Capacity offered to the file system when OS-info data is copied out.
constexpr short FS_OS_INFO_CAPACITY = 1024;

// Copies the OS-info data of a kind-8 or kind-9 block into `buffer`, which
// must hold FS_OS_INFO_CAPACITY bytes. Returns the file system's status; 0
// without touching the buffer for other kinds; FS_ERR_BAD_PARAMETER for a
// null buffer; FS_ERR_UNIMPLEMENTED when the file system offers no copy.
FS_EXPORT FS_STATUS FS_GetQbdsInfoFromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                           unsigned char* buffer);
// The same as FS_GetQbdsInfoFromDBLK.
FS_EXPORT FS_STATUS FS_GetOS_InfoFromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                          unsigned char* buffer);

// Path delimiters by OS id.
constexpr wchar_t FS_DELIMITER_COLON = L':';
constexpr wchar_t FS_DELIMITER_SLASH = L'/';
constexpr wchar_t FS_DELIMITER_IN_NAME = static_cast<wchar_t>(0xF026);  // private-use separator
constexpr wchar_t FS_DELIMITER_BACKSLASH = L'\\';

// The path delimiter of an OS id: ':' for 3, 4, 5, 21; '/' for 20, 49, 57,
// 62, 72, 85; U+F026 for 32, 38, 39, 56, 58, 64, 70, 80, 84; a backslash for
// every other id. The version is not looked at.
FS_EXPORT unsigned short FS_GetDelimiterFromOSID(unsigned short osId, unsigned short osVersion);
