// FS_DecryptNameInStream: decrypts a gathered name stream.
//
// Every length in the stream comes from the media and is checked against
// the bytes present and the room in the output before the cipher sees it:
// lengths are compared in 64 bits so that a length near 4 GiB cannot wrap
// into a small one. The IV is only installed once the stream is known to
// fit, so a refused stream leaves the cipher context as it was.
#include <cstring>

#include <qbfsys/crypt_names.h>

namespace {

std::uint32_t read_u32(unsigned char const* at) {
  std::uint32_t value = 0;
  std::memcpy(&value, at, sizeof value);  // little-endian on every supported machine
  return value;
}

}  // namespace

FS_STATUS FS_DecryptNameInStream(ZYM_ENCRYPTION_CONTEXT* context, unsigned char const* buffer,
                                 std::uint32_t length, unsigned char* out,
                                 std::uint32_t outCapacity, std::uint32_t* outLength) {
  if (context == nullptr || buffer == nullptr || outLength == nullptr) return FS_ERR_BAD_PARAMETER;
  if (length < FS_NAME_STREAM_HEADER) return FS_SUCCESS;

  std::uint64_t const declared = read_u32(buffer + FS_NAME_STREAM_LENGTH_AT);
  std::uint64_t const total = FS_NAME_STREAM_HEADER + declared;
  if (length < total) {
    if (total > UINT32_MAX) return FS_ERR_BAD_PARAMETER;
    *outLength = static_cast<std::uint32_t>(total);
    return FS_SUCCESS;
  }

  std::uint8_t const flags = buffer[FS_NAME_STREAM_FLAGS_AT];
  bool const has_iv = (flags & (FS_NAME_STREAM_IV_V1 | FS_NAME_STREAM_IV_V2)) != 0;
  unsigned char const* payload = buffer + FS_NAME_STREAM_HEADER;
  std::uint64_t payload_size = declared;
  unsigned char const* iv = nullptr;
  std::uint32_t iv_size = 0;
  if (has_iv) {
    std::uint64_t const iv_at = FS_NAME_STREAM_HEADER + FS_NAME_STREAM_IV_LENGTH;
    if (length < iv_at) return FS_ERR_BAD_PARAMETER;
    iv_size = read_u32(buffer + FS_NAME_STREAM_HEADER);
    if (iv_at + iv_size > length) return FS_ERR_BAD_PARAMETER;
    iv = buffer + iv_at;
    payload = iv + iv_size;
    payload_size = length - iv_at - iv_size;
  }
  if (out == nullptr || payload_size + 1 > outCapacity) return FS_ERR_OBJ_NO_DATA;

  if (has_iv) {
    if (flags & FS_NAME_STREAM_IV_V1) {
      ZymUpdateEncryptionIV_V1(context, iv, iv_size);
    } else {
      ZymUpdateEncryptionIV_V2(context, iv, iv_size);
    }
  }
  std::uint32_t produced = 0;
  ZymDecrypt(context, payload, static_cast<std::uint32_t>(payload_size), out, outCapacity,
             &produced);
  if (produced >= outCapacity) produced = outCapacity - 1;  // the host promised otherwise
  out[produced] = 0;
  *outLength = produced;
  return FS_BLK_COMPLETE;
}
