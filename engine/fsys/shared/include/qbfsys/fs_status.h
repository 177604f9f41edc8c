// Status codes of the layer: 0 success, 0x2000xxxx informational,
// 0xE000xxxx errors.
#pragma once
#include <cstdint>

using FS_STATUS = std::uint32_t;

constexpr FS_STATUS FS_SUCCESS = 0;
constexpr FS_STATUS FS_STATUS_NONE = 0x2000FE07;          // nothing of that kind
constexpr FS_STATUS FS_STATUS_NO_MORE_DLE = 0x2000FE1B;   // a DLE walk reached the end
constexpr FS_STATUS FS_BLK_COMPLETE = 0x2000FE33;         // a block or stream is complete
constexpr FS_STATUS FS_STATUS_OBJ_DEFERRED = 0x2000FFB1;  // status held back for the next call
constexpr FS_STATUS FS_ERR_NO_MEMORY = 0xE0008442;
constexpr FS_STATUS FS_ERR_NOT_SUPPORTED = 0xE00084AF;    // no such element, or not offered
constexpr FS_STATUS FS_ERR_OBJ_NO_DATA = 0xE000FE13;      // no data; or a buffer too small
constexpr FS_STATUS FS_ERR_RESOLVE_FAILED = 0xE000FE23;   // no file system resolved a name
constexpr FS_STATUS FS_ERR_NAME_TOO_LONG = 0xE000FE39;    // a name above 32767 bytes
constexpr FS_STATUS FS_ERR_DLE_UNAVAILABLE = 0xE000FE3C;
constexpr FS_STATUS FS_ERR_INIT_FAILED = 0xE000FE46;
constexpr FS_STATUS FS_ERR_PARTIAL_INIT = 0xE000FE47;
constexpr FS_STATUS FS_ERR_UNIMPLEMENTED = 0xE000FE48;
constexpr FS_STATUS FS_ERR_BAD_PARAMETER = 0xE000FE49;
constexpr FS_STATUS FS_STATUS_EXT_ERROR = 0xE000FEA9;     // details recorded on the handle
