// FS_InitStrmInfo and the exported last_stream_size.
#include <qbfsys/stream_info.h>

std::uint32_t last_stream_size = 0;

void FS_InitStrmInfo(STREAM_INFO* header, unsigned int id, unsigned short fsAttrib,
                     unsigned int size) {
  if (header == nullptr) return;
  header->id = id;
  header->fs_attrib = fsAttrib;
  header->tf_attrib = 0;
  header->size = size;
  header->encr_word = 0;
  header->cmpr_word = 0;
}
