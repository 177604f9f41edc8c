// Bare encrypted names and the cipher set-up of a handle: FS_PrepCryptEnv,
// FS_SetDecryptedNameInBuf, FS_GetEncryptedNameFromDBLK.
//
// The cipher's own results are not looked at: the lengths are checked
// before the call, and the produced length is what the caller gets.
#include <cstdlib>

#include <qbfsys/crypt_names.h>
#include <qbfsys/handles.h>

#include "fs_dispatch.h"

namespace {

constexpr std::uint32_t kLongestBareName = 0xFFFF;  // the result is a 16-bit length
constexpr std::int32_t kTerminatorBytes = sizeof(wchar_t);
constexpr bool kNameOnly = false;                   // no path in front of the name

void terminate_empty(unsigned char* out, std::uint32_t capacity) {
  if (out != nullptr && capacity > 0) out[0] = 0;
}

}  // namespace

int FS_PrepCryptEnv(FSYS_HAND_STRUCT* hand, ZYM_ENCRYPTION_CONTEXT* context) {
  if (hand != nullptr) hand->cryptContext = context;
  return ZymResetEncryptionIV(context);
}

std::uint16_t FS_SetDecryptedNameInBuf(FSYS_HAND_STRUCT* /*hand*/, ZYM_ENCRYPTION_CONTEXT* context,
                                       unsigned char const* in, std::uint32_t inLength,
                                       unsigned char* out, std::uint32_t outCapacity) {
  if (context == nullptr || (in == nullptr && inLength > 0) || out == nullptr ||
      inLength > kLongestBareName || std::uint64_t{inLength} + 1 > outCapacity) {
    terminate_empty(out, outCapacity);
    return 0;
  }
  std::uint32_t produced = 0;
  ZymDecrypt(context, in, inLength, out, outCapacity, &produced);
  if (produced > inLength) produced = inLength;
  out[produced] = 0;
  return static_cast<std::uint16_t>(produced);
}

std::uint16_t FS_GetEncryptedNameFromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                          ZYM_ENCRYPTION_CONTEXT* context, unsigned char* out) {
  if (hand == nullptr || blk == nullptr || context == nullptr || out == nullptr) return 0;
  // Sizes travel as signed 16-bit values.
  std::int32_t const size = static_cast<std::int16_t>(fsys::dispatch(
      hand, &FS_FshBase::SizeofOSName, &_FUNC_LIST::SizeofOSName, FS_STATUS{0}, blk, kNameOnly));
  if (size < kTerminatorBytes || static_cast<std::uint32_t>(size) > FS_MAX_NAME_BYTES) return 0;

  // Room for the name and a spare terminator, zeroed, whatever the file
  // system writes.
  auto* name = static_cast<wchar_t*>(
      std::calloc(static_cast<std::size_t>(size) / sizeof(wchar_t) + 2, sizeof(wchar_t)));
  if (name == nullptr) return 0;
  FS_STATUS const got = fsys::dispatch(hand, &FS_FshBase::GetOSName, &_FUNC_LIST::GetOSName,
                                       FS_ERR_UNIMPLEMENTED, blk, name, kNameOnly);
  if (got != FS_SUCCESS) {
    std::free(name);
    return 0;
  }

  std::uint32_t const text = static_cast<std::uint32_t>(size - kTerminatorBytes);
  std::uint32_t produced = 0;
  ZymEncrypt(context, reinterpret_cast<unsigned char const*>(name), text, out, text, &produced);
  std::free(name);
  if (produced > text) produced = text;
  out[produced] = 0;
  return static_cast<std::uint16_t>(produced);
}
