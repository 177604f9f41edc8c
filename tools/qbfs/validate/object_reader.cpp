#include "object_reader.h"

#include <cstring>

#include <qbfsys/file_hand.h>

#include "isolated_check.h"
#include "layer_harness.h"
#include "stream_framing.h"

namespace qbfs::validate {
namespace {

// Room sizes a job is known to pass (single bytes, page and unit edges) and
// an upper bound for the drawn ones.
constexpr std::uint32_t kEdgeRooms[] = {1, 3, 512, 4095, 4096, 65535, 65536, 65537};
constexpr std::uint32_t kMaxDrawnRoom = 200000;
constexpr unsigned char kCanaryByte = 0xA5;
constexpr std::uint64_t kFnvPrime = 1099511628211ull;

std::uint32_t draw_room(std::mt19937_64& rng) {
  constexpr std::size_t kEdges = sizeof kEdgeRooms / sizeof kEdgeRooms[0];
  std::uint64_t const pick = rng() % (kEdges * 2);
  if (pick < kEdges) return kEdgeRooms[pick];
  return 1 + static_cast<std::uint32_t>(rng() % kMaxDrawnRoom);
}

}  // namespace

ReadOutcome read_object(FSYS_HAND_STRUCT* hand, DBLK& blk, std::string const& path,
                        std::mt19937_64& rng, StreamSink const* sink) {
  ReadOutcome out;
  note_step("reading '" + path + "'");
  _FILE_HAND_STRUCT* obj = nullptr;
  FS_STATUS const opened = FS_OpenObj(hand, &obj, &blk, FS_READ);
  if (opened == FS_STATUS_EXT_ERROR || opened == FS_ERR_OBJ_ACCESS_DENIED) {
    out.unreadable = true;
    return out;
  }
  if (opened != FS_SUCCESS || obj == nullptr) {
    out.problem = "FS_OpenObj of '" + path + "' for reading returned " + status_text(opened) +
                  (obj == nullptr && opened == FS_SUCCESS ? " without an object handle" : "") +
                  "; expected 0x00000000 and an object handle";
    return out;
  }
  StreamFraming framing;
  std::vector<unsigned char> buffer;
  while (!framing.ended() && framing.problem().empty()) {
    std::uint32_t const room = draw_room(rng);
    buffer.resize(std::size_t{room} + kCanaryBytes);
    std::memset(buffer.data() + room, kCanaryByte, kCanaryBytes);
    unsigned size = room;
    unsigned need = 0;
    STREAM_INFO header{};
    FS_STATUS const status = FS_ReadObj(obj, buffer.data(), &size, &need, &header);
    for (std::uint32_t i = 0; i < kCanaryBytes; ++i) {
      if (buffer[std::size_t{room} + i] != kCanaryByte) {
        out.problem = "reading '" + path + "' wrote past the " + std::to_string(room) +
                      " bytes of room it was given";
        break;
      }
    }
    if (!out.problem.empty()) break;
    if (obj->needSize > kMaxSaneNeed) {
      out.problem = "reading '" + path + "': the module asks for at least " +
                    std::to_string(obj->needSize) + " bytes a call; expected at most " +
                    std::to_string(kMaxSaneNeed);
      break;
    }
    std::uint32_t const delivered = status == FS_SUCCESS ? size : 0;
    if (!framing.on_read(status, header, delivered)) {
      out.problem = "reading '" + path + "': " + framing.problem();
      break;
    }
    if (header.id != 0) {
      out.streams.push_back({header.id, header.size, kFnvOffset});
      if (sink != nullptr) out.problem = (*sink)(header, nullptr, 0);
    }
    if (delivered > 0 && !out.streams.empty()) {
      ReadStream& s = out.streams.back();
      for (std::uint32_t i = 0; i < delivered; ++i) s.digest = (s.digest ^ buffer[i]) * kFnvPrime;
      out.bytes += delivered;
      if (sink != nullptr && out.problem.empty()) {
        STREAM_INFO none{};
        out.problem = (*sink)(none, buffer.data(), delivered);
      }
    }
    if (!out.problem.empty()) break;
  }
  out.unreadable = out.problem.empty() && framing.ended_with_error();
  FS_STATUS const closed = FS_CloseObj(obj, nullptr, nullptr);
  if (out.problem.empty() && closed != FS_SUCCESS && closed != FS_STATUS_EXT_ERROR)
    out.problem = "FS_CloseObj of '" + path + "' returned " + status_text(closed) +
                  "; expected 0x00000000";
  return out;
}

}  // namespace qbfs::validate
