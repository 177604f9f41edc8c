// Reading one object through the layer as a job does (FS_OpenObj, FS_ReadObj
// until the end, FS_CloseObj), with the stream framing checked on every call
// (stream_framing.h) and each stream summed up for comparison.
#pragma once
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <qbfsys/dblk.h>
#include <qbfsys/handles.h>

namespace qbfs::validate {

// A read size above this is not a minimum a module can honestly ask for.
constexpr std::uint32_t kMaxSaneNeed = 16u * 1024u * 1024u;
// Bytes after the room of each read that must come back untouched.
constexpr std::uint32_t kCanaryBytes = 64;
constexpr std::uint64_t kFnvOffset = 14695981039346656037ull;

// One stream as read: header fields and an FNV-1a digest of its data.
struct ReadStream {
  std::uint32_t id = 0;
  std::uint64_t size = 0;
  std::uint64_t digest = kFnvOffset;
  bool operator==(ReadStream const& o) const {
    return id == o.id && size == o.size && digest == o.digest;
  }
};

// Receives each header (data null) and each piece of data of an object;
// returns a problem text, or empty to go on.
using StreamSink = std::function<std::string(STREAM_INFO const&, unsigned char*, std::uint32_t)>;

struct ReadOutcome {
  std::string problem;      // the first broken expectation, or empty
  bool unreadable = false;  // open or read ended with FS_STATUS_EXT_ERROR / access denied
  std::vector<ReadStream> streams;
  std::uint64_t bytes = 0;  // data delivered
};

// Reads the object `blk` describes (its directory current on `hand`), each
// call with a room size drawn from `rng`, and hands every header and piece
// to `sink` when it is not null. `path` names the object in messages.
// Beside the framing it checks that no byte past the room is written and
// that the module's minimum read size stays within kMaxSaneNeed.
ReadOutcome read_object(FSYS_HAND_STRUCT* hand, DBLK& blk, std::string const& path,
                        std::mt19937_64& rng, StreamSink const* sink);

}  // namespace qbfs::validate
