// FS_FillBufferWithStream: gathers a short stream piece by piece.
//
// The gathered count lives in the block (16 bits), the bytes in the handle's
// name buffer, which grows to exactly what the stream needs so far. Two
// things differ from a plain append, both so that nothing is lost or
// silently altered:
// - when the buffer cannot grow, the old buffer and what it holds are kept,
//   so the caller may offer the same piece again;
// - a stream longer than the 16-bit count can follow, or a block that claims
//   more gathered bytes than the stream has or the handle holds, is refused before anything is
//   copied, instead of wrapping the count and mixing up the name.
// The decrypted-name buffer is grown here too, to the gathered size plus a
// terminator: the cipher keeps a name's length, so that always suffices.
#include <cstdlib>
#include <cstring>

#include <qbfsys/crypt_names.h>
#include <qbfsys/dblk.h>
#include <qbfsys/handles.h>
#include <qbfsys/stream_info.h>

namespace {

constexpr std::uint32_t kLongestGathered = 0xFFFF;  // what strm_buffered can count

bool grow(unsigned char*& buffer, std::uint32_t& capacity, std::uint32_t needed) {
  if (needed <= capacity && buffer != nullptr) return true;
  void* grown = std::realloc(buffer, needed);
  if (grown == nullptr) return false;
  buffer = static_cast<unsigned char*>(grown);
  capacity = needed;
  return true;
}

FS_STATUS decrypt_gathered(FSYS_HAND_STRUCT* hand, std::uint32_t gathered) {
  if (!grow(hand->decryptBuf, hand->decryptBufCap, gathered + 1)) return FS_ERR_NO_MEMORY;
  FS_STATUS const status =
      FS_DecryptNameInStream(hand->cryptContext, hand->nameBuf, gathered, hand->decryptBuf,
                             hand->decryptBufCap, &hand->decryptedLen);
  if (status == FS_SUCCESS || status == FS_BLK_COMPLETE) hand->currentStream.size = hand->decryptedLen;
  return status;
}

}  // namespace

FS_STATUS FS_FillBufferWithStream(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char* data,
                                  unsigned int* len, STREAM_INFO* header) {
  if (hand == nullptr || blk == nullptr || len == nullptr) return FS_ERR_BAD_PARAMETER;
  if (header != nullptr && header->id != STRM_INVALID) hand->currentStream = *header;

  std::uint32_t const offered = *len;
  if (offered == 0) return FS_SUCCESS;
  *len = 0;
  if (data == nullptr) return FS_ERR_BAD_PARAMETER;

  std::uint32_t const size = static_cast<std::uint32_t>(hand->currentStream.size);
  std::uint32_t const buffered = blk->strm_buffered;
  if (size > kLongestGathered) return FS_ERR_NAME_TOO_LONG;
  // A block may only claim bytes that were gathered into this handle.
  if (buffered > size || buffered > hand->nameBufCap || (buffered > 0 && hand->nameBuf == nullptr))
    return FS_ERR_BAD_PARAMETER;

  std::uint32_t const want = size - buffered;
  std::uint32_t const take = want < offered ? want : offered;
  if (take > 0) {
    if (!grow(hand->nameBuf, hand->nameBufCap, buffered + take)) {
      *len = take;
      return FS_ERR_NO_MEMORY;
    }
    std::memcpy(hand->nameBuf + buffered, data, take);
  }
  blk->strm_buffered = static_cast<std::uint16_t>(buffered + take);
  *len = take;

  if (blk->strm_buffered != size) return FS_SUCCESS;
  if ((hand->currentStream.tf_attrib & STREAM_TF_ENCRYPTED_NAME) == 0) return FS_BLK_COMPLETE;
  return decrypt_gathered(hand, size);
}
