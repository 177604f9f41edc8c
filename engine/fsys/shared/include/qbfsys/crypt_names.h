// Encrypted names: names that the media carries encrypted, as a name stream
// or bare, handed to the host's name cipher (qbhost/cipher.h).
//
// A name stream is a 24-byte header followed by the encrypted name:
//
//   bytes 0..15   not read by the layer
//   bytes 16..19  payload length (u32, little-endian)
//   byte  21      flags: FS_NAME_STREAM_IV_V1 or FS_NAME_STREAM_IV_V2 say that
//                 an IV travels with the name
//   then, with an IV: a u32 IV length and the IV bytes; the payload length
//   then counts those too (4 + IV length + name)
//   then the encrypted name.
//
// The cipher context stays the host's; the layer never frees it.
#pragma once
#include <cstdint>

#include <qbfsys/dblk.h>
#include <qbfsys/dblk_names.h>
#include <qbfsys/fs_export.h>
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>
#include <qbhost/cipher.h>

constexpr std::uint32_t FS_NAME_STREAM_HEADER = 24;      // bytes before the payload
constexpr std::uint32_t FS_NAME_STREAM_LENGTH_AT = 16;   // u32 payload length
constexpr std::uint32_t FS_NAME_STREAM_FLAGS_AT = 21;    // flag byte
constexpr std::uint8_t FS_NAME_STREAM_IV_V1 = 0x04;      // IV taken as it is
constexpr std::uint8_t FS_NAME_STREAM_IV_V2 = 0x10;      // IV taken through its digest
constexpr std::uint32_t FS_NAME_STREAM_IV_LENGTH = 4;    // bytes of the IV length field

// Makes `context` the handle's cipher context for name streams (a null
// handle only resets) and resets the context's IV to its initial value.
// Returns the host's status (ZYM_OK, or ZYM_ERR_PARAMETER for a null
// context).
FS_EXPORT int FS_PrepCryptEnv(FSYS_HAND_STRUCT* hand, ZYM_ENCRYPTION_CONTEXT* context);

// Decrypts a gathered name stream of `length` bytes into `out` (capacity
// `outCapacity` bytes), terminating it with a zero byte.
// - Fewer than 24 bytes: returns 0 (incomplete), `*outLength` untouched.
// - Fewer payload bytes than the header says: `*outLength` = 24 + payload
//   length (the total the stream needs), returns 0.
// - Otherwise: with an IV flag the IV goes to ZymUpdateEncryptionIV_V1 (V1
//   flag) or ZymUpdateEncryptionIV_V2; the name is decrypted with ZymDecrypt,
//   `*outLength` is its length, returns FS_BLK_COMPLETE.
// Refused, with nothing written: FS_ERR_BAD_PARAMETER for a null context,
// buffer or `outLength`, or an IV length that runs past the payload;
// FS_ERR_OBJ_NO_DATA when `out` cannot hold the name and its terminator.
FS_EXPORT FS_STATUS FS_DecryptNameInStream(ZYM_ENCRYPTION_CONTEXT* context,
                                           unsigned char const* buffer, std::uint32_t length,
                                           unsigned char* out, std::uint32_t outCapacity,
                                           std::uint32_t* outLength);

// Decrypts a bare encrypted name of `inLength` bytes into `out` and
// terminates it; returns its length. Returns 0 (and writes only a
// terminator, when there is room) for a null argument or when `out` cannot
// hold the name and its terminator. The handle is not used.
FS_EXPORT std::uint16_t FS_SetDecryptedNameInBuf(FSYS_HAND_STRUCT* hand,
                                                 ZYM_ENCRYPTION_CONTEXT* context,
                                                 unsigned char const* in, std::uint32_t inLength,
                                                 unsigned char* out, std::uint32_t outCapacity);

// Encrypts the block's OS name, as its file system gives it (the adapter's
// SizeofOSName and GetOSName, else slots 47 and 36), without its terminating
// character, into `out`, terminates it and returns its length in bytes.
// `out` must hold the OS name's size in bytes (what SizeofOSName answers).
// Returns 0 when the file system offers no name, for a null argument, or a
// size outside 1..FS_MAX_NAME_BYTES.
FS_EXPORT std::uint16_t FS_GetEncryptedNameFromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                                    ZYM_ENCRYPTION_CONTEXT* context,
                                                    unsigned char* out);
