// Status codes of the layer: 0 success, 0x2000xxxx informational,
// 0xE000xxxx errors.
//
// FS_STATUS_LIST(X) holds every code the layer defines, one row each:
// X(name, code, words). The constants (FS_SUCCESS, FS_ERR_NO_MEMORY, ...) are
// expanded from it, and so are the words and names that FS_StatusText and
// FS_StatusName give; nothing else spells the codes out. Each row holds its
// name literally, so searching for a constant (`git grep -n
// FS_ERR_OBJ_OVERRUN`) lands on its row.
#pragma once
#include <cstdint>

#include <qbfsys/fs_export.h>

using FS_STATUS = std::uint32_t;

#define FS_STATUS_LIST(X)                                                                        \
  X(FS_SUCCESS, 0x00000000, "success")                                                           \
  X(FS_STATUS_NONE, 0x2000FE07, "nothing of that kind")                                          \
  X(FS_STATUS_NO_MORE_DLE, 0x2000FE1B, "no more backup elements")                                \
  X(FS_BLK_COMPLETE, 0x2000FE33, "block complete")                                               \
  X(FS_STATUS_OBJ_DEFERRED, 0x2000FFB1, "object status held back for the next call")             \
  X(FS_ERR_NO_MEMORY, 0xE0008442, "out of memory")                                               \
  X(FS_ERR_OBJ_ACCESS_DENIED, 0xE0008485, "the object is flagged not to be opened")              \
  X(FS_ERR_NOT_SUPPORTED, 0xE00084AF, "no such element, or the operation is not offered")        \
  X(FS_ERR_NOT_ATTACHED, 0xE000FE03, "the handle is not attached")                               \
  X(FS_ERR_OBJ_NO_DATA, 0xE000FE13, "no data for the object, or a buffer too small")             \
  X(FS_ERR_INVALID_FSYS_ID, 0xE000FE18, "invalid file system index")                             \
  X(FS_ERR_INVALID_HANDLE, 0xE000FE19, "invalid handle")                                         \
  X(FS_ERR_ATTACH_REFUSED, 0xE000FE1A, "the file system refused the attach")                     \
  X(FS_ERR_RESOLVE_FAILED, 0xE000FE23, "no file system resolved the name")                       \
  X(FS_ERR_OBJ_INCOMPLETE, 0xE000FE2D, "the module took nothing from a data write")              \
  X(FS_ERR_OBJ_OVERRUN, 0xE000FE30, "the module returned or took more than offered")             \
  X(FS_ERR_NAME_TOO_LONG, 0xE000FE39, "name longer than 32767 bytes")                            \
  X(FS_ERR_DLE_UNAVAILABLE, 0xE000FE3C, "the backup element is marked unavailable")              \
  X(FS_ERR_INIT_FAILED, 0xE000FE46, "no file system initialized, or no drive found")             \
  X(FS_ERR_PARTIAL_INIT, 0xE000FE47, "some file systems failed to initialize")                   \
  X(FS_ERR_UNIMPLEMENTED, 0xE000FE48, "the operation is not implemented")                        \
  X(FS_ERR_BAD_PARAMETER, 0xE000FE49, "bad parameter")                                           \
  X(FS_STATUS_EXT_ERROR, 0xE000FEA9, "failed; the details are recorded on the handle")

#define FS_STATUS_CONSTANT_(name, code, words) constexpr FS_STATUS name = code;
FS_STATUS_LIST(FS_STATUS_CONSTANT_)
#undef FS_STATUS_CONSTANT_

// Naming: the functions below give something about a status, so their names
// are FS_Status followed by what they give (FS_StatusText, FS_StatusName).
// The layer's other entry points are FS_ followed by a verb (FS_OpenObj,
// FS_GetStrmIdString), so the two kinds of names cannot meet.

// The words for `status`, e.g. "out of memory" for FS_ERR_NO_MEMORY, for a
// host's messages. A code that FS_STATUS_LIST does not hold gives "unknown
// status". Never null; the text is static: not to be freed, valid for the
// life of the process. Any value is safe; nothing is allocated.
FS_EXPORT char const* FS_StatusText(unsigned int status);

// The name of the constant for `status`, e.g. "FS_ERR_NO_MEMORY", or null
// for a code that FS_STATUS_LIST does not hold (so a host can tell a code of
// the layer from a module's own). The text is static, as above.
FS_EXPORT char const* FS_StatusName(unsigned int status);
