// Reads an archive from a file descriptor (a file or a pipe) as a sequence
// of events, checking every frame and every object's digest on the way.
//
// Damage stays local. A frame that does not check out ends the object it
// belongs to as damaged; the reader then skips to the next frame that
// checks out and starts an object or ends the archive. Sizes in the archive
// are never trusted for memory: nothing larger than one frame (1 MiB of
// data, or one object record) is held.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "archive_digest.h"
#include "archive_format.h"
#include "archive_names.h"

namespace qbfs::archive {

enum class Verdict {
  intact,         // the digest matched
  damaged,        // something in the object does not check out
  source_failed,  // intact, but its reading failed part way at backup
};

// The object being read.
struct ObjectEntry {
  std::uint64_t offset = 0;  // of its record in the archive
  ObjectRecord record{};
  std::string path;          // as stored
  Components components;     // decoded path
  std::vector<unsigned char> os_info;
  ObjectGeneric generic{};   // all zero in a version-1 archive
  bool has_generic = false;  // the record carried it (version 2)
};

enum class EventKind {
  object,      // an object begins: object()
  stream,      // a stream of it begins: `stream`
  data,        // bytes of the current stream: `data`, `size` (valid until next())
  object_end,  // the object is complete: `verdict`, `problem` when damaged
  damage,      // bytes outside any readable object, or a refused record: `problem`
  end,         // no more events: end_state()
};

struct Event {
  EventKind kind = EventKind::end;
  STREAM_INFO stream{};
  unsigned char const* data = nullptr;
  std::size_t size = 0;
  Verdict verdict = Verdict::intact;
  std::string problem;
  std::uint64_t offset = 0;  // where the damage begins
};

struct EndState {
  bool found = false;    // the end-of-data record was read
  bool damaged = false;  // some object or some bytes did not check out
  std::string problem;   // what is wrong with the archive as a whole, or empty
  std::uint64_t objects = 0;  // objects begun
  std::uint64_t data_bytes = 0;  // stream data read inside objects, checksums excluded
};

class ArchiveReader {
 public:
  // The reader does not own `fd`.
  explicit ArchiveReader(int fd);
  ArchiveReader(ArchiveReader const&) = delete;
  ArchiveReader& operator=(ArchiveReader const&) = delete;

  // Reads and checks the archive header; false with `why` when this is not
  // an archive this reader can read.
  bool open(std::string& why);
  Event next();
  ObjectEntry const& object() const { return object_; }
  EndState const& end_state() const { return summary_; }
  std::uint64_t offset() const { return base_ + begin_; }

 private:
  enum class State { between, in_object, skipping_object, done };
  std::size_t fill(std::size_t want);
  bool frame_at(std::size_t at, FrameHeader& header, bool for_resync);
  void resync(bool count_skipped);
  Event end_object(Verdict verdict, std::string problem);
  Event start_object(FrameHeader const& header);
  Event in_object(FrameHeader const& header);
  Event finish(FrameHeader const* header);
  bool flush_skipped(Event& event);

  int fd_;
  std::vector<unsigned char> buffer_;
  std::size_t begin_ = 0, end_ = 0;  // unread bytes of buffer_
  std::uint64_t base_ = 0;           // archive offset of buffer_[0]
  bool eof_ = false;
  std::uint32_t version_ = kArchiveVersion;  // of the archive being read
  State state_ = State::between;
  ObjectEntry object_;
  EndState summary_;
  Sha256 object_digest_, archive_digest_;
  bool in_stream_ = false;
  bool checksum_ = false;  // the current stream is the checksum
  STREAM_INFO stream_{};
  std::uint64_t remaining_ = 0;
  Digest stored_{};
  std::uint64_t skip_offset_ = 0, skip_bytes_ = 0;  // bytes outside objects
  Event pending_{};                                 // an event to hand out next
  bool has_pending_ = false;
};

}  // namespace qbfs::archive
