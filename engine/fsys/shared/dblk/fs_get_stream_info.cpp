// FS_GetStreamInfo: hands back the gathered stream.
#include <qbfsys/dblk.h>
#include <qbfsys/handles.h>
#include <qbfsys/stream_info.h>

namespace {
bool is_name_stream(std::uint32_t id) { return id == STRM_PATH_NAME || id == STRM_FILE_NAME; }
}  // namespace

void FS_GetStreamInfo(FSYS_HAND_STRUCT* hand, DBLK* blk, STREAM_INFO** header,
                      unsigned char** data) {
  STREAM_INFO* out_header = nullptr;
  unsigned char* out_data = nullptr;
  if (hand != nullptr && blk != nullptr && blk->strm_buffered != 0) {
    out_header = &hand->currentStream;
    bool const decrypted = (out_header->tf_attrib & STREAM_TF_ENCRYPTED_NAME) != 0 &&
                           is_name_stream(out_header->id);
    out_data = decrypted ? hand->decryptBuf : hand->nameBuf;
  }
  if (header != nullptr) *header = out_header;
  if (data != nullptr) *data = out_data;
}
