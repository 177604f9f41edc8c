// File-system handles: the caller's working context with one file system,
// bound to one DLE between attach and detach.
//
// The record is plain (pointers to owned buffers, no self-references)
// because both FS_ReattachDLE forms copy and swap it as one value. Fields
// after `scratchUsed` are this layer's additions for streams and encrypted
// names; `fsysData` is free for the file system's own per-handle state.
#pragma once
#include <cstdint>

#include <qbfsys/dle.h>
#include <qbfsys/fs_export.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>
#include <qbfsys/func_list.h>
#include <qbfsys/stream_info.h>
#include <qbhost/cipher.h>
#include <qbhost/queue.h>

// The statuses of handles (FS_ERR_NOT_ATTACHED, FS_ERR_INVALID_FSYS_ID,
// FS_ERR_INVALID_HANDLE, FS_ERR_ATTACH_REFUSED) are rows of FS_STATUS_LIST,
// qbfsys/fs_status.h.

// Attach flag bits.
constexpr std::uint32_t FS_ATTACH_ALLOW_REMOTE = 0x04;  // keep a remote type-5 machine
constexpr std::uint32_t FS_ATTACH_NO_CHECKS = 0x20;     // skip locality and child checks
constexpr std::uint32_t FS_ATTACH_LOW_BIT = 0x01;
// A flag word of exactly FS_ATTACH_NO_CHECKS, alone or with FS_ATTACH_LOW_BIT,
// also skips the wait for the host's initialisation threads.
constexpr bool FS_AttachSkipsInitWait(std::uint32_t flags) {
  return flags == FS_ATTACH_NO_CHECKS || flags == (FS_ATTACH_NO_CHECKS | FS_ATTACH_LOW_BIT);
}

// Handle state bits (FSYS_HAND_STRUCT::stateFlags).
constexpr std::uint8_t HAND_STATE_BOUND = 0x02;  // set by every successful binding

// The IPC handle a host may pass at attach: non-zero `failure` means the IPC
// channel was not opened.
struct _IPC_HAND {
  std::uint32_t failure;
  std::uint32_t reserved;
  void* channel;
};

struct FSYS_HAND_STRUCT {
  HEAD_DLE* head;                  // tree head of the attached DLE
  GENERIC_DLE* dle;                // attached DLE; null when not attached
  std::uint32_t attachFlags;
  std::uint16_t attachMode;
  std::uint16_t pathBufSize;       // bytes; 64 at open
  wchar_t* pathBuf;                // current path; "\" after every attach
  QB_CFG* cfg;                     // not owned
  std::int16_t fsysId;             // 0..50
  _FUNC_LIST* funcTable;           // not owned
  _Q_HEADER queue1;                // for file-system code
  _FILE_HAND_STRUCT* objHand;      // the handle's own object handle
  _Q_HEADER in_use_name_q;         // name elements in use
  _Q_HEADER avail_name_q;          // free name elements
  unsigned char* nameBuf;          // short streams gathered here
  std::uint32_t nameBufCap;
  void* attachContext;
  wcstring* attachText;            // owned
  _IPC_HAND* ipc;                  // not owned
  SnapshotVolume* snapshot;        // not owned
  std::int32_t lastError;
  FS_EXT_ERR_ACTION lastAction;
  std::uint32_t lastExtra;
  wchar_t* lastMsg;                // owned list of strings, ended by an empty one
  std::int32_t lastMsgLen;         // characters used, terminators included
  std::int32_t lastMsgCap;         // bytes
  std::uint8_t stateFlags;         // HAND_STATE_*
  wcstring* workText;              // owned
  std::uint32_t attachArg;
  FSYS_HAND_STRUCT* previousState; // pushed aside by FS_ReattachDLE
  unsigned char* workBuf;          // 65,536 bytes
  std::uint32_t workBufSize;
  FS_FshBase* adapter;             // null: dispatch through funcTable
  unsigned char* metaBlob;         // owned metadata blob
  std::uint32_t metaLen;
  std::uint32_t metaCap;
  wcstring* restoreWorkFlow;       // owned, may be null
  bool attachBool;
  unsigned char* scratch;          // 64 bytes
  std::uint16_t scratchSize;
  std::uint32_t scratchUsed;

  STREAM_INFO currentStream;       // header of the stream being gathered
  ZYM_ENCRYPTION_CONTEXT* cryptContext;  // not owned
  unsigned char* decryptBuf;       // owned decrypted-name buffer
  std::uint32_t decryptBufCap;
  std::uint32_t decryptedLen;      // length of the last decrypted name
  void* fsysData;                  // the file system's own
};

// Creates an unattached handle for file system `fsysId` (0..50) using
// `table`, or the registry's table of the id when `table` is null (the
// generic table for a negative id), and calls the table's OpenSys.
// The caller owns `*out` and destroys it with FS_CloseFileSys (or
// FS_DetachDLE once attached); it is left null when nothing was made.
// Statuses: FS_SUCCESS or OpenSys's status (the handle exists either way);
// FS_ERR_INVALID_FSYS_ID for an id above 50; FS_ERR_BAD_PARAMETER for a
// null `out`; FS_ERR_NO_MEMORY.
FS_EXPORT FS_STATUS FS_OpenFileSys(FSYS_HAND_STRUCT** out, short fsysId, QB_CFG* cfg,
                                   _FUNC_LIST* table);
// Destroys a handle and everything it owns (buffers, name pools, last-error
// list, the adapter through its CloseSys, states pushed aside by
// FS_ReattachDLE) without lowering any DLE's attach count; a bound handle's
// file system is told to detach first. Returns the close status of the
// adapter or the table's CloseSys, or FS_ERR_INVALID_HANDLE for null.
FS_EXPORT FS_STATUS FS_CloseFileSys(FSYS_HAND_STRUCT* hand);
// Creates a handle for the DLE's file system and binds it: checks the DLE's
// availability (unless FS_ATTACH_NO_CHECKS), calls the file system's attach
// (adapter first, then the table), counts the attach on the DLE and sets the
// current path to the root. On success `*out` is the caller's until
// FS_DetachDLE. Statuses: the file system's attach status (FS_SUCCESS or
// FS_STATUS_EXT_ERROR, details on the handle); FS_ERR_BAD_PARAMETER for a
// null `out` or DLE; FS_ERR_DLE_UNAVAILABLE for an unavailable DLE or an
// unreachable remote machine; FS_ERR_ATTACH_REFUSED when the IPC channel
// failed or the DLE has no file system; FS_ERR_UNIMPLEMENTED when the file
// system cannot attach. Every failure leaves `*out` null and nothing
// allocated.
FS_EXPORT FS_STATUS FS_AttachToDLE(FSYS_HAND_STRUCT** out, GENERIC_DLE* dle, QB_CFG* cfg,
                                   wchar_t* user, wchar_t* password, std::uint32_t attachFlags,
                                   std::uint16_t attachMode, void* attachContext,
                                   SnapshotVolume* snapshot, std::uint32_t attachArg,
                                   _IPC_HAND* ipc, bool attachBool);
// Unbinds the handle (and every state pushed aside by FS_ReattachDLE, newest
// first), lowers the DLE's attach count and destroys the handle. When the
// file system answers FS_STATUS_EXT_ERROR the handle stays attached and
// allocated so the caller can read its last error, then detach again.
// Returns the file system's detach status (FS_SUCCESS when it has none), or
// FS_ERR_NOT_ATTACHED for a null or unbound handle (which is still closed).
FS_EXPORT FS_STATUS FS_DetachDLE(FSYS_HAND_STRUCT* hand, void* arg = nullptr,
                                 void** result = nullptr);
// Binds the same handle pointer to another DLE, served by `table`; the old
// binding is kept as the handle's previousState so that one FS_DetachDLE
// releases both. Statuses: the file system's attach status;
// FS_ERR_INVALID_HANDLE for a null handle; FS_ERR_BAD_PARAMETER for a null
// DLE; FS_ERR_DLE_UNAVAILABLE when the DLE has no file system. On failure
// the handle is as it was.
FS_EXPORT FS_STATUS FS_ReattachDLE(FSYS_HAND_STRUCT* hand, _FUNC_LIST* table, GENERIC_DLE* dle,
                                   wchar_t* user, wchar_t* password);
// The same with the registry's table of the DLE's file system.
FS_EXPORT FS_STATUS FS_ReattachDLE(FSYS_HAND_STRUCT* hand, GENERIC_DLE* dle, wchar_t* user,
                                   wchar_t* password);
// Path remapping is not offered: the paths are left as they are and the
// call returns FS_SUCCESS.
FS_EXPORT FS_STATUS FS_ReMapPath(FSYS_HAND_STRUCT* hand, wcstring& a, wcstring& b, wcstring& c);

// ---- last error and metadata ---------------------------------------------
// Replaces the handle's last error with `error`, `action`, `extra` and a
// one-message list holding `message` (none when null). The handle owns the
// copy. Returns FS_STATUS_EXT_ERROR, so a file system can end an operation
// with `return FS_SetLastError(...)`; FS_ERR_INVALID_HANDLE; FS_ERR_NO_MEMORY
// (the list is then empty).
FS_EXPORT FS_STATUS FS_SetLastError(FSYS_HAND_STRUCT* hand, int error, FS_EXT_ERR_ACTION action,
                                    unsigned int extra, wchar_t const* message);
// Appends `message` (nothing for null or empty) to the last error's message
// list. Statuses as FS_SetLastError.
FS_EXPORT FS_STATUS FS_AddStringToLastError(FSYS_HAND_STRUCT* hand, wchar_t const* message);
// Reads the last error: the action, the extra word and the message list
// (the handle's own memory, valid until the error changes; a run of
// terminated strings ended by an empty one). Null outputs are skipped.
// Returns the recorded error, or FS_ERR_INVALID_HANDLE.
FS_EXPORT FS_STATUS GEN_GetExtendedErrorInfo(FSYS_HAND_STRUCT* hand, FS_EXT_ERR_ACTION* action,
                                             unsigned int* extra, wchar_t** message);
// Copies `size` bytes into the handle's metadata blob, which grows in
// 1,024-byte units; size 0 empties it and keeps the buffer. Returns 0, or 1
// for a null handle, null data with a non-zero size, or no memory (then the
// blob is empty).
FS_EXPORT unsigned int FS_SetMetaDataBlob(FSYS_HAND_STRUCT* hand, void const* data,
                                          unsigned int size);
