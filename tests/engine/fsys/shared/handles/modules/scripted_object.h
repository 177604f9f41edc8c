// A scripted object for the object I/O tests, served by a module that is
// built twice: in process behind an adapter, and as a separately built .so
// behind its function table. The module's choices (minimum sizes, how much
// it delivers or takes, injected errors) come from the script's seeded
// generator; what it saw is checked against the module's own promises and
// recorded for the test to compare.
//
// Reading: the object is `streams`; the module delivers each header (with
// or without data in the same call), then the data in pieces, an injected
// error now and then, and kEndOfObject at the end. `log` records what it
// delivered, in order.
// Writing: the module appends what it receives to `received` and records a
// violation when a header comes with data, or when a data call shorter than
// its minimum is followed by more data of the same stream.
#pragma once
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <qbfsys/file_hand.h>
#include <qbfsys/handles.h>
#include <qbfsys/stream_info.h>

namespace qbtest {

constexpr FS_STATUS kEndOfObject = FS_ERR_OBJ_NO_DATA;
constexpr FS_STATUS kInjectedError = 0xE0001234;

struct ScriptStream {
  STREAM_INFO header{};
  std::vector<unsigned char> data;
};

// One event as the caller sees it: a header, data bytes or a status.
struct ScriptEvent {
  enum Kind { header, data, status } kind;
  std::uint32_t value;  // header id or status
  std::vector<unsigned char> bytes;
  bool operator==(ScriptEvent const& o) const {
    return kind == o.kind && value == o.value && bytes == o.bytes;
  }
};

// Appends data to the last event when it is data too, so pieces compare as
// one run.
inline void add_event(std::vector<ScriptEvent>& log, ScriptEvent::Kind kind, std::uint32_t value,
                      unsigned char const* bytes = nullptr, std::size_t n = 0) {
  if (kind == ScriptEvent::data) {
    if (n == 0) return;
    if (log.empty() || log.back().kind != ScriptEvent::data) log.push_back({kind, 0, {}});
    log.back().bytes.insert(log.back().bytes.end(), bytes, bytes + n);
    return;
  }
  log.push_back({kind, value, {}});
}

struct ObjectScript {
  std::vector<ScriptStream> streams;
  std::mt19937 random{1};
  std::uint32_t max_need = 1;   // minimums are drawn from 1..max_need
  int error_one_in = 0;         // reads: inject an error in one call of this many (0: never)
  // reading
  std::size_t stream = 0;
  std::size_t offset = 0;
  bool header_sent = false;
  std::vector<ScriptEvent> log;
  // writing
  std::vector<ScriptStream> received;
  bool short_call_seen = false;
  // both
  std::uint32_t need = 1;
  std::vector<std::string> violations;
  int opens = 0;
  int closes = 0;

  std::uint32_t draw_need() {
    need = (random() % 4 == 0) ? 1 : 1 + static_cast<std::uint32_t>(random() % max_need);
    return need;
  }
};

struct ScriptedFile {
  _FILE_HAND_STRUCT base;
  ObjectScript* script;
};

inline FS_STATUS scripted_open(FSYS_HAND_STRUCT* hand, _FILE_HAND_STRUCT** out, ObjectScript* s) {
  auto* file = static_cast<ScriptedFile*>(std::calloc(1, sizeof(ScriptedFile)));
  if (file == nullptr) return FS_ERR_NO_MEMORY;
  file->base.fsysHand = hand;
  file->script = s;
  ++s->opens;
  *out = &file->base;
  return FS_SUCCESS;
}

inline ObjectScript* script_of(_FILE_HAND_STRUCT* obj) {
  return reinterpret_cast<ScriptedFile*>(obj)->script;
}

inline FS_STATUS scripted_read(_FILE_HAND_STRUCT* obj, unsigned char* buffer, unsigned int* size,
                               unsigned int* need, STREAM_INFO* header) {
  ObjectScript& s = *script_of(obj);
  std::uint32_t const room = *size;
  if (room != 0 && room < s.need) s.violations.push_back("read room below the minimum");
  *size = 0;
  if (s.stream == s.streams.size()) return kEndOfObject;
  ScriptStream const& stream = s.streams[s.stream];
  bool with_data = true;
  if (!s.header_sent) {
    *header = stream.header;
    add_event(s.log, ScriptEvent::header, stream.header.id);
    s.header_sent = true;
    with_data = s.random() % 2 == 0;
  }
  std::size_t n = 0;
  if (with_data) {
    std::size_t const left = stream.data.size() - s.offset;
    n = std::min<std::size_t>({room, left, 1 + s.random() % (64 * 1024)});
    if (n > 0) std::memcpy(buffer, stream.data.data() + s.offset, n);
    add_event(s.log, ScriptEvent::data, 0, buffer, n);
    s.offset += n;
  }
  if (s.offset == stream.data.size() && (with_data || stream.data.empty())) {
    ++s.stream;
    s.offset = 0;
    s.header_sent = false;
  }
  *size = static_cast<unsigned int>(n);
  *need = s.draw_need();
  if (s.error_one_in > 0 && s.random() % static_cast<unsigned>(s.error_one_in) == 0) {
    add_event(s.log, ScriptEvent::status, kInjectedError);
    return kInjectedError;
  }
  return FS_SUCCESS;
}

inline FS_STATUS scripted_write(_FILE_HAND_STRUCT* obj, unsigned char* data, unsigned int* size,
                                unsigned int* need, STREAM_INFO* header) {
  ObjectScript& s = *script_of(obj);
  std::uint32_t const offered = *size;
  if (header == nullptr) {
    s.violations.push_back("null header");
    return FS_ERR_BAD_PARAMETER;
  }
  if (header->id != STRM_INVALID) {
    if (offered != 0) s.violations.push_back("header with data");
    s.received.push_back({*header, {}});
    s.short_call_seen = false;
    *need = s.draw_need();
    return FS_SUCCESS;
  }
  if (s.received.empty()) {
    s.violations.push_back("data before any header");
    return FS_ERR_BAD_PARAMETER;
  }
  if (s.short_call_seen) s.violations.push_back("data after a short call of the same stream");
  if (offered < s.need) s.short_call_seen = true;
  // Below the minimum only the end of a stream comes: take it all.
  std::uint32_t taken = offered;
  if (offered >= s.need && s.random() % 3 == 0) taken = 1 + static_cast<std::uint32_t>(s.random() % offered);
  auto& bytes = s.received.back().data;
  bytes.insert(bytes.end(), data, data + taken);
  *size = taken;
  *need = s.draw_need();
  return FS_SUCCESS;
}

inline FS_STATUS scripted_close(_FILE_HAND_STRUCT* obj) {
  ++script_of(obj)->closes;
  std::free(obj);
  return FS_SUCCESS;
}

}  // namespace qbtest
