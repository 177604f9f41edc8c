// Fuzzes FS_ReadObj and FS_WriteObj against a module whose every answer
// (minimum sizes, how much it delivers or takes, errors, headers) and the
// caller's room sizes come from the fuzz input.
//
// Checked on every run: no read delivers more than its room; the bytes the
// caller reads are exactly the bytes the module delivered, in order; the
// bytes the module receives are exactly the bytes the caller's writes
// consumed, in order; no sanitizer report, no leak.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "fuzz_input.h"
#include <qbfsys/file_hand.h>
#include <qbfsys/handles.h>
#include <qbfsys/stream_info.h>

namespace {

using qbfuzz::Input;

Input* g_in = nullptr;
std::vector<unsigned char> g_delivered;  // what the module handed out
std::vector<unsigned char> g_received;   // what the module took
std::uint32_t g_counter = 0;

void check(bool ok) {
  if (!ok) std::abort();
}

FS_STATUS answer_status() {
  switch (g_in->take(1) % 8) {
    case 0: return 0xE0001234;            // an error
    case 1: return FS_STATUS_OBJ_DEFERRED;
    case 2: return 0x20000001;            // some positive status
    default: return FS_SUCCESS;
  }
}

FS_STATUS module_read(_FILE_HAND_STRUCT*, unsigned char* buffer, unsigned int* size, unsigned int* need,
                      STREAM_INFO* header) {
  std::uint32_t const room = *size;
  std::uint32_t n = g_in->take(2) % 5000;
  if (n > room && g_in->take(1) % 4 != 0) n = room;  // now and then a module that overruns
  std::uint32_t const written = n < room ? n : room;
  for (std::uint32_t i = 0; i < written; ++i) buffer[i] = static_cast<unsigned char>(g_counter++);
  if (g_in->take(1) % 5 == 0) header->id = STRM_GENERIC_DATA;
  *size = n;
  *need = g_in->take(2) % 20000;
  FS_STATUS const status = g_in->done() ? FS_ERR_OBJ_NO_DATA : answer_status();
  // What the caller may see: nothing beyond the room it gave.
  g_delivered.insert(g_delivered.end(), buffer, buffer + written);
  return status;
}

FS_STATUS module_write(_FILE_HAND_STRUCT*, unsigned char* data, unsigned int* size, unsigned int* need,
                       STREAM_INFO* header) {
  std::uint32_t const offered = *size;
  std::uint32_t taken = g_in->take(2) % 6000;
  if (taken > offered && g_in->take(1) % 4 != 0) taken = offered;
  if (header->id == STRM_INVALID && taken <= offered) g_received.insert(g_received.end(), data, data + taken);
  *size = taken;
  *need = g_in->take(2) % 20000;
  return answer_status();
}

FS_STATUS module_seek(_FILE_HAND_STRUCT*, unsigned int*) { return FS_SUCCESS; }
FS_STATUS module_close(_FILE_HAND_STRUCT*, void**, void**) { return FS_SUCCESS; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  Input in{data, size};
  g_in = &in;
  g_delivered.clear();
  g_received.clear();
  g_counter = 0;
  _FUNC_LIST table{};
  table.ReadObj = module_read;
  table.WriteObj = module_write;
  table.SeekObj = module_seek;
  table.CloseObj = module_close;
  FSYS_HAND_STRUCT hand{};
  hand.funcTable = &table;
  _FILE_HAND_STRUCT obj{};
  obj.fsysHand = &hand;

  bool const writing = in.take(1) % 2 == 1;
  std::vector<unsigned char> seen;
  std::vector<unsigned char> consumed;
  std::vector<unsigned char> buffer(1 << 16);
  for (int calls = 0; calls < 2000 && !in.done(); ++calls) {
    unsigned int room = in.take(2) % 9000;
    unsigned int need = 1;
    STREAM_INFO header{};
    if (!writing) {
      FS_STATUS const status = FS_ReadObj(&obj, buffer.data(), &room, &need, &header);
      (void)status;
      seen.insert(seen.end(), buffer.data(), buffer.data() + room);
      continue;
    }
    if (in.take(1) % 6 == 0) header.id = STRM_NT_SPARSE;
    if (in.take(1) % 9 == 0) {
      unsigned int position = 0;
      FS_SeekObj(&obj, &position);
      if (obj.pending == FS_STATUS_OBJ_DEFERRED) break;  // staged bytes were dropped
      continue;
    }
    for (unsigned int i = 0; i < room; ++i) buffer[i] = static_cast<unsigned char>(g_counter++);
    unsigned int const offered = room;
    FS_STATUS const status = FS_WriteObj(&obj, buffer.data(), &room, &need, &header);
    check(room <= offered);
    bool const swallowed = obj.pending == FS_STATUS_OBJ_DEFERRED && status == FS_SUCCESS &&
                           header.id == STRM_INVALID;
    // Data written while the object defers is consumed without reaching the
    // module; stop comparing there.
    if (swallowed) break;
    consumed.insert(consumed.end(), buffer.data(), buffer.data() + room);
    if (status == FS_STATUS_OBJ_DEFERRED || obj.pending == FS_STATUS_OBJ_DEFERRED) break;
  }
  FS_CloseObj(&obj, nullptr, nullptr);
  if (!writing) {
    check(seen.size() <= g_delivered.size());
    check(std::memcmp(seen.data(), g_delivered.data(), seen.size()) == 0);
  } else {
    check(g_received.size() <= consumed.size());
    check(std::memcmp(g_received.data(), consumed.data(), g_received.size()) == 0);
  }
  return 0;
}
