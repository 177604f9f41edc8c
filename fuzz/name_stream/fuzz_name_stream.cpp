// Fuzzes FS_FillBufferWithStream and FS_DecryptNameInStream with arbitrary
// bytes: a stream header whose size, flags and pieces come from the input,
// then the rest of the input as stream data, offered in input-chosen pieces.
//
// Checked on every run: no piece takes more than offered or more than the
// stream still wants; the gathered bytes are exactly the bytes taken, in
// order; a decrypted name fits its buffer and is terminated; a direct
// decryption with an input-chosen output capacity never writes past it.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "fuzz_input.h"
#include <qbfsys/crypt_names.h>
#include <qbfsys/dblk.h>
#include <qbfsys/handles.h>
#include <qbfsys/stream_info.h>

namespace {

using qbfuzz::Input;

void check(bool ok) {
  if (!ok) std::abort();
}

ZYM_ENCRYPTION_CONTEXT* cipher() {
  static unsigned char const key[] = "fuzzing key";
  static ZYM_ENCRYPTION_CONTEXT* const context = ZymCreateContext(key, sizeof key, nullptr, 0);
  return context;
}

void gather(Input& in) {
  FSYS_HAND_STRUCT hand{};
  hand.cryptContext = cipher();
  DBLK blk{};
  blk.strm_buffered = static_cast<std::uint16_t>(in.take(1) & 0x3);  // 1 to 3 claim bytes never gathered
  STREAM_INFO header{};
  header.id = (in.take(1) & 1) ? STRM_FILE_NAME : STRM_OS_INFO;
  header.tf_attrib = (in.take(1) & 1) ? STREAM_TF_ENCRYPTED_NAME : 0;
  header.size = in.take(3);
  std::uint32_t const piece_seed = in.take(1) | 1;

  std::vector<unsigned char> taken;
  std::uint32_t const start = blk.strm_buffered;
  FS_STATUS last = FS_SUCCESS;
  for (bool first = true; in.at < in.size; first = false) {
    std::uint32_t const piece = (piece_seed * static_cast<std::uint32_t>(taken.size() + 7)) % 97 + 1;
    std::uint32_t const offered = static_cast<std::uint32_t>(
        in.size - in.at < piece ? in.size - in.at : piece);
    std::uint32_t len = offered;
    std::uint16_t const before = blk.strm_buffered;
    std::uint32_t const size_before =
        static_cast<std::uint32_t>(first ? header.size : hand.currentStream.size);
    FS_STATUS const status = FS_FillBufferWithStream(
        &hand, &blk, const_cast<unsigned char*>(in.data + in.at), &len, first ? &header : nullptr);
    last = status;
    std::uint32_t const delta = static_cast<std::uint32_t>(blk.strm_buffered - before);
    check(delta <= offered);
    // Never beyond the stream's size (a decrypted name may shrink the size
    // afterwards, so the size before the call is the bound).
    check(delta == 0 || before + delta <= size_before);
    if (status == FS_SUCCESS || status == FS_BLK_COMPLETE) check(len == delta);
    taken.insert(taken.end(), in.data + in.at, in.data + in.at + delta);
    in.at += delta;
    if (status != FS_SUCCESS || delta == 0) break;
  }
  check(blk.strm_buffered == start + taken.size());
  if (!taken.empty()) check(std::memcmp(hand.nameBuf + start, taken.data(), taken.size()) == 0);

  STREAM_INFO* got_header = nullptr;
  unsigned char* got_data = nullptr;
  FS_GetStreamInfo(&hand, &blk, &got_header, &got_data);
  check((got_header == nullptr) == (blk.strm_buffered == 0));
  if (last == FS_BLK_COMPLETE && (header.tf_attrib & STREAM_TF_ENCRYPTED_NAME) != 0)
    check(hand.decryptedLen < hand.decryptBufCap && hand.decryptBuf[hand.decryptedLen] == 0);
  std::free(hand.nameBuf);
  std::free(hand.decryptBuf);
}

void decrypt_direct(std::uint8_t const* data, std::size_t size) {
  if (size < 2) return;
  std::uint32_t const capacity = data[0] * 4u;
  std::vector<unsigned char> out(capacity + 1, 0xAB);  // one guard byte past the capacity
  std::uint32_t produced = 0xFFFFFFFF;
  FS_STATUS const status = FS_DecryptNameInStream(cipher(), data + 1, static_cast<std::uint32_t>(size - 1),
                                                  out.data(), capacity, &produced);
  check(out[capacity] == 0xAB);
  if (status == FS_BLK_COMPLETE) check(produced < capacity && out[produced] == 0);
  ZymResetEncryptionIV(cipher());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  Input in{data, size};
  gather(in);
  decrypt_direct(data, size);
  return 0;
}
