#include "archive_reader.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <qbfsys/dblk.h>
#include <qbfsys/stream_ids.h>
#include <qbposix/posix_os_info.h>

namespace qbfs::archive {
namespace {

// Room for the largest frame, a second frame header and reads of a useful size.
constexpr std::size_t kBufferSize = 2 * kMaxDataPayload + kMaxObjectPayload;

std::string at_offset(std::uint64_t offset) { return " at offset " + std::to_string(offset); }

std::string stream_name(std::uint32_t id) {
  char text[5] = {};
  std::memcpy(text, &id, 4);
  for (char& c : text)
    if (c != '\0' && (c < 0x20 || c > 0x7E)) c = '?';
  return "\"" + std::string(text) + "\"";
}

// Why the record's kind and its OS information disagree, when they are the
// posix module's stat record (the only OS information read here) and do.
std::string kinds_disagree(ObjectRecord const& record, unsigned char const* os_info) {
  qbposix::POSIX_OS_INFO info{};
  if (record.os_id != qbposix::POSIX_OS_ID || !qbposix::posix_os_info_read(os_info, record.os_info_size, info))
    return {};
  bool const directory = record.blk_type == DBLK_KIND_DDB;
  if (directory == S_ISDIR(info.mode)) return {};
  char mode[16];
  std::snprintf(mode, sizeof mode, "%o", info.mode);
  return std::string(directory ? "its kind says a directory, its OS information another type of object"
                               : "its kind says an object other than a directory, its OS information a directory") +
         " (mode " + mode + ")";
}

std::uint32_t expected_length(std::uint16_t kind) {
  switch (kind) {
    case FRAME_STREAM: return sizeof(STREAM_INFO);
    case FRAME_END: return sizeof(EndRecord);
    default: return 0;  // variable
  }
}

}  // namespace

ArchiveReader::ArchiveReader(int fd) : fd_(fd), buffer_(kBufferSize) {}

bool ArchiveReader::open(std::string& why) {
  ArchiveHeader header{};
  if (fill(sizeof header) < sizeof header) {
    why = "it is too short to be an archive";
    return false;
  }
  std::memcpy(&header, buffer_.data() + begin_, sizeof header);
  if (std::memcmp(header.magic, kArchiveMagic, sizeof header.magic) != 0) {
    why = "it is not a qbfs archive";
    return false;
  }
  if (header.crc != header_crc(header)) {
    why = "its header is damaged";
    return false;
  }
  if (header.version < kOldestArchiveVersion || header.version > kArchiveVersion ||
      header.size != sizeof header || header.flags != 0) {
    why = "it is an archive of version " + std::to_string(header.version) +
          ", this reader knows versions " + std::to_string(kOldestArchiveVersion) + " to " +
          std::to_string(kArchiveVersion);
    return false;
  }
  version_ = header.version;
  begin_ += sizeof header;
  return true;
}

std::size_t ArchiveReader::fill(std::size_t want) {
  if (end_ - begin_ >= want || eof_) return end_ - begin_;
  if (buffer_.size() - begin_ < want || begin_ > buffer_.size() / 2) {
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    base_ += begin_;
    end_ -= begin_;
    begin_ = 0;
  }
  while (end_ - begin_ < want && !eof_) {
    ssize_t const n = ::read(fd_, buffer_.data() + end_, buffer_.size() - end_);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      eof_ = true;  // a read error ends the archive where it stands
      break;
    }
    end_ += static_cast<std::size_t>(n);
  }
  return end_ - begin_;
}

bool ArchiveReader::frame_at(std::size_t at, FrameHeader& header, bool for_resync) {
  if (fill(at + sizeof header) < at + sizeof header) return false;
  std::memcpy(&header, buffer_.data() + begin_ + at, sizeof header);
  if (header.magic != kFrameMagic || header.reserved != 0 || header.kind < FRAME_OBJECT ||
      header.kind > FRAME_END)
    return false;
  if (for_resync && header.kind != FRAME_OBJECT && header.kind != FRAME_END) return false;
  std::uint32_t const fixed = expected_length(header.kind);
  if (fixed != 0 && header.length != fixed) return false;
  if (header.kind == FRAME_OBJECT &&
      (header.length < sizeof(ObjectRecord) || header.length > kMaxObjectPayload))
    return false;
  if (header.kind == FRAME_DATA && (header.length == 0 || header.length > kMaxDataPayload))
    return false;
  std::size_t const whole = at + sizeof header + header.length;
  if (fill(whole) < whole) return false;
  if (header.kind == FRAME_DATA) return frame_crc(header, nullptr, 0) == header.crc;
  return frame_crc(header, buffer_.data() + begin_ + at + sizeof header, header.length) == header.crc;
}

void ArchiveReader::resync(bool count_skipped) {
  std::uint64_t const from = offset();
  std::uint64_t skipped = 0;
  constexpr unsigned char kLead = kFrameMagic & 0xFF;
  std::size_t at = 1;  // the frame at 0 did not check out
  for (;;) {
    if (at > kMaxDataPayload) {  // keep the scan well inside the buffer
      begin_ += at;
      skipped += at;
      at = 0;
    }
    std::size_t const have = fill(at + sizeof(FrameHeader));
    if (have < at + sizeof(FrameHeader)) {
      at = have;  // the archive ends: the rest is skipped
      break;
    }
    auto const* start = buffer_.data() + begin_;
    std::size_t const last = have - sizeof(FrameHeader);
    void const* hit = std::memchr(start + at, kLead, last + 1 - at);
    if (hit == nullptr) {
      at = last + 1;
      continue;
    }
    at = static_cast<std::size_t>(static_cast<unsigned char const*>(hit) - start);
    FrameHeader header{};
    if (frame_at(at, header, true)) break;
    ++at;
  }
  begin_ += at;
  skipped += at;
  if (count_skipped && skipped > 0) {
    if (skip_bytes_ == 0) skip_offset_ = from;
    skip_bytes_ += skipped;
  }
}

bool ArchiveReader::flush_skipped(Event& event) {
  if (skip_bytes_ == 0) return false;
  event = Event{};
  event.kind = EventKind::damage;
  event.offset = skip_offset_;
  event.problem = std::to_string(skip_bytes_) + " bytes" + at_offset(skip_offset_) +
                  " belong to no readable object";
  summary_.damaged = true;
  skip_bytes_ = 0;
  return true;
}

Event ArchiveReader::end_object(Verdict verdict, std::string problem) {
  Event event;
  event.kind = EventKind::object_end;
  event.verdict = verdict;
  event.problem = std::move(problem);
  event.offset = object_.offset;
  in_stream_ = checksum_ = false;
  state_ = verdict == Verdict::damaged ? State::skipping_object : State::between;
  if (verdict == Verdict::damaged) summary_.damaged = true;
  return event;
}

Event ArchiveReader::start_object(FrameHeader const& header) {
  unsigned char const* payload = buffer_.data() + begin_ + sizeof header;
  Event event;
  event.offset = offset();
  ++summary_.objects;
  ObjectRecord record{};
  std::memcpy(&record, payload, sizeof record);
  // A version-2 record carries the generic description after the record.
  bool const has_generic = version_ >= 2;
  std::size_t const fixed = sizeof record + (has_generic ? sizeof(ObjectGeneric) : 0);
  std::string why;
  if (header.length < fixed || fixed + record.path_size + record.os_info_size != header.length ||
      record.os_info_size > kMaxOsInfo) {
    why = "its sizes do not add up";
  } else if (record.blk_type != DBLK_KIND_DDB && record.blk_type != DBLK_KIND_FDB) {
    why = "its kind " + std::to_string(record.blk_type) + " is not a directory or a file";
  }
  std::string path(reinterpret_cast<char const*>(payload) + fixed, why.empty() ? record.path_size : 0);
  Components components;
  if (why.empty() && !decode_path(path, components, why)) why = "\"" + display_path(path) + "\": " + why;
  // We refuse a record whose kind and OS information disagree: a restore
  // decides by the kind, the module makes what the OS information says.
  if (why.empty()) {
    why = kinds_disagree(record, payload + fixed + record.path_size);
    if (!why.empty()) why = "\"" + display_path(path) + "\": " + why;
  }
  if (!why.empty()) {
    begin_ += sizeof header + header.length;
    state_ = State::skipping_object;
    summary_.damaged = true;
    event.kind = EventKind::damage;
    event.problem = "the object record" + at_offset(event.offset) + " is refused: " + why;
    return event;
  }
  object_.offset = event.offset;
  object_.record = record;
  object_.path = std::move(path);
  object_.components = std::move(components);
  unsigned char const* info = payload + fixed + record.path_size;
  object_.os_info.assign(info, info + record.os_info_size);
  object_.generic = ObjectGeneric{};
  object_.has_generic = has_generic;
  if (has_generic) std::memcpy(&object_.generic, payload + sizeof record, sizeof object_.generic);
  object_digest_.reset();
  object_digest_.add(payload, header.length);
  begin_ += sizeof header + header.length;
  state_ = State::in_object;
  in_stream_ = checksum_ = false;
  remaining_ = 0;
  event.kind = EventKind::object;
  return event;
}

Event ArchiveReader::in_object(FrameHeader const& header) {
  unsigned char const* payload = buffer_.data() + begin_ + sizeof header;
  std::uint64_t const at = offset();
  if (header.kind == FRAME_OBJECT || header.kind == FRAME_END) {
    Event event = end_object(Verdict::damaged, "the object is not closed by its checksum");
    state_ = State::between;  // the frame that follows starts afresh
    return event;
  }
  begin_ += sizeof header + header.length;
  if (header.kind == FRAME_STREAM) {
    STREAM_INFO stream{};
    std::memcpy(&stream, payload, sizeof stream);
    bool const failed_close = stream.id == STRM_CHECKSUM_DATA && (stream.fs_attrib & kChecksumSourceFailed);
    if (checksum_) return end_object(Verdict::damaged, "a stream follows its checksum");
    if (in_stream_ && remaining_ > 0 && !failed_close)
      return end_object(Verdict::damaged, "stream " + stream_name(stream_.id) + " ends " +
                                              std::to_string(remaining_) + " bytes short of its size");
    if (stream.id == STRM_INVALID) return end_object(Verdict::damaged, "a stream header" + at_offset(at) + " has no id");
    in_stream_ = true;
    stream_ = stream;
    remaining_ = stream.size;
    if (stream.id == STRM_CHECKSUM_DATA) {
      checksum_ = true;
      if (stream.size != kDigestSize) return end_object(Verdict::damaged, "its checksum stream has a wrong size");
      return next();
    }
    object_digest_.add(&stream, sizeof stream);
    Event event;
    event.kind = EventKind::stream;
    event.stream = stream;
    return event;
  }
  // A DATA frame.
  if (!in_stream_ || header.length > remaining_)
    return end_object(Verdict::damaged, "data" + at_offset(at) + " runs beyond its stream's size");
  if (checksum_) {
    std::memcpy(stored_.data() + (kDigestSize - remaining_), payload, header.length);
    remaining_ -= header.length;
    if (remaining_ > 0) return next();
    Digest const computed = object_digest_.finish();
    if (computed != stored_)
      return end_object(Verdict::damaged, "its checksum does not match: its data or headers were altered");
    archive_digest_.add(stored_.data(), stored_.size());
    return end_object((stream_.fs_attrib & kChecksumSourceFailed) ? Verdict::source_failed : Verdict::intact, {});
  }
  remaining_ -= header.length;
  summary_.data_bytes += header.length;
  object_digest_.add(payload, header.length);
  Event event;
  event.kind = EventKind::data;
  event.stream = stream_;
  event.data = payload;
  event.size = header.length;
  return event;
}

Event ArchiveReader::finish(FrameHeader const* header) {
  if (header != nullptr) {
    EndRecord record{};
    std::memcpy(&record, buffer_.data() + begin_ + sizeof *header, sizeof record);
    begin_ += sizeof *header + header->length;
    summary_.found = true;
    Digest const chain = archive_digest_.finish();
    if (record.objects != summary_.objects) {
      summary_.problem = "the end-of-data record counts " + std::to_string(record.objects) +
                     " objects, the archive holds " + std::to_string(summary_.objects);
    } else if (!summary_.damaged && record.data_bytes != summary_.data_bytes) {
      // Checked only when every object was read whole: a damaged one has
      // lost data frames, and is reported already.
      summary_.problem = "the end-of-data record counts " + std::to_string(record.data_bytes) +
                         " data bytes, the archive holds " + std::to_string(summary_.data_bytes);
    } else if (!summary_.damaged && std::memcmp(chain.data(), record.digest, chain.size()) != 0) {
      summary_.problem = "the objects do not add up to the end-of-data record: one is missing, "
                     "repeated or out of order";
    } else if (fill(1) > 0) {
      summary_.problem = "there is data after the end-of-data record";
    }
  } else {
    summary_.problem = "the archive ends without its end-of-data record: it is truncated";
  }
  if (!summary_.problem.empty()) summary_.damaged = true;
  state_ = State::done;
  Event event;
  event.kind = EventKind::end;
  if (flush_skipped(pending_)) {
    std::swap(event, pending_);
    has_pending_ = true;
  }
  return event;
}

Event ArchiveReader::next() {
  if (has_pending_) {
    has_pending_ = false;
    return pending_;
  }
  for (;;) {
    if (state_ == State::done) return Event{};
    std::size_t const have = fill(sizeof(FrameHeader));
    if (have == 0) {
      if (state_ == State::in_object)
        return end_object(Verdict::damaged, "the archive ends inside this object");
      return finish(nullptr);
    }
    FrameHeader header{};
    if (!frame_at(0, header, false)) {
      std::uint64_t const at = offset();
      std::size_t const left = end_ - begin_;
      bool const cut = eof_ && (left < sizeof header ||
                                (header.magic == kFrameMagic && left < sizeof header + header.length));
      if (state_ == State::in_object) {
        Event event = end_object(Verdict::damaged, cut ? "the archive ends inside this object"
                                                       : "its frame" + at_offset(at) + " is damaged");
        resync(false);
        state_ = State::between;
        return event;
      }
      resync(state_ == State::between);
      state_ = State::between;
      continue;
    }
    if (state_ == State::in_object) return in_object(header);
    if (header.kind == FRAME_OBJECT) {
      Event event = start_object(header);
      Event damage;
      if (flush_skipped(damage)) {
        pending_ = event;
        has_pending_ = true;
        return damage;
      }
      return event;
    }
    if (header.kind == FRAME_END) return finish(&header);
    // A stream or data frame outside an object: the rest of a damaged one,
    // or stray bytes.
    if (state_ == State::between) {
      if (skip_bytes_ == 0) skip_offset_ = offset();
      skip_bytes_ += sizeof header + header.length;
    }
    begin_ += sizeof header + header.length;
  }
}

}  // namespace qbfs::archive
