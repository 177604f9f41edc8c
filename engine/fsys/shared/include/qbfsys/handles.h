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

constexpr FS_STATUS FS_ERR_NOT_ATTACHED = 0xE000FE03;
constexpr FS_STATUS FS_ERR_INVALID_FSYS_ID = 0xE000FE18;
constexpr FS_STATUS FS_ERR_INVALID_HANDLE = 0xE000FE19;
constexpr FS_STATUS FS_ERR_ATTACH_REFUSED = 0xE000FE1A;

// Attach flag bits.
constexpr std::uint32_t FS_ATTACH_ALLOW_REMOTE = 0x04;  // keep a remote type-5 machine
constexpr std::uint32_t FS_ATTACH_NO_CHECKS = 0x20;     // skip locality and child checks

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
  std::uint8_t stateFlags;         // bit value 2: bound by an attach
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

FS_EXPORT FS_STATUS FS_OpenFileSys(FSYS_HAND_STRUCT** out, short fsysId, QB_CFG* cfg,
                                   _FUNC_LIST* table);
FS_EXPORT FS_STATUS FS_CloseFileSys(FSYS_HAND_STRUCT* hand);
FS_EXPORT FS_STATUS FS_AttachToDLE(FSYS_HAND_STRUCT** out, GENERIC_DLE* dle, QB_CFG* cfg,
                                   wchar_t* user, wchar_t* password, std::uint32_t attachFlags,
                                   std::uint16_t attachMode, void* attachContext,
                                   SnapshotVolume* snapshot, std::uint32_t attachArg,
                                   _IPC_HAND* ipc, bool attachBool);
FS_EXPORT FS_STATUS FS_DetachDLE(FSYS_HAND_STRUCT* hand, void* arg = nullptr,
                                 void** result = nullptr);
FS_EXPORT FS_STATUS FS_ReattachDLE(FSYS_HAND_STRUCT* hand, _FUNC_LIST* table, GENERIC_DLE* dle,
                                   wchar_t* user, wchar_t* password);
FS_EXPORT FS_STATUS FS_ReattachDLE(FSYS_HAND_STRUCT* hand, GENERIC_DLE* dle, wchar_t* user,
                                   wchar_t* password);
FS_EXPORT FS_STATUS FS_ReMapPath(FSYS_HAND_STRUCT* hand, wcstring& a, wcstring& b, wcstring& c);

// ---- last error and metadata ---------------------------------------------
FS_EXPORT FS_STATUS FS_SetLastError(FSYS_HAND_STRUCT* hand, int error, FS_EXT_ERR_ACTION action,
                                    unsigned int extra, wchar_t const* message);
FS_EXPORT FS_STATUS FS_AddStringToLastError(FSYS_HAND_STRUCT* hand, wchar_t const* message);
FS_EXPORT FS_STATUS GEN_GetExtendedErrorInfo(FSYS_HAND_STRUCT* hand, FS_EXT_ERR_ACTION* action,
                                             unsigned int* extra, wchar_t** message);
FS_EXPORT unsigned int FS_SetMetaDataBlob(FSYS_HAND_STRUCT* hand, void const* data,
                                          unsigned int size);
