// Follows what FS_ReadObj delivers for one object, call by call, and says
// where the stream framing breaks: data before any header, a stream whose
// data does not add up to the size its header announced, an id that is not
// a stream id, a status outside the reading protocol, or calls that go on
// delivering nothing.
#pragma once
#include <cstdint>
#include <string>

#include <qbfsys/fs_status.h>
#include <qbfsys/stream_info.h>

namespace qbfs::validate {

// Consecutive calls that deliver neither a header nor data after which the
// object is taken to make no progress.
constexpr unsigned kMaxIdleReads = 1000;

class StreamFraming {
 public:
  // One FS_ReadObj result: its status, the header it filled (id 0: none)
  // and the bytes it delivered. Returns false once the framing is broken;
  // problem() then says how (expected and got).
  bool on_read(FS_STATUS status, STREAM_INFO const& header, std::uint32_t delivered);
  // The object ended: FS_ERR_OBJ_NO_DATA after complete streams, or
  // FS_STATUS_EXT_ERROR (the module could not go on with this object).
  bool ended() const { return ended_; }
  bool ended_with_error() const { return ended_with_error_; }
  std::string const& problem() const { return problem_; }
  unsigned streams() const { return streams_; }
  std::uint64_t data_bytes() const { return data_bytes_; }

 private:
  bool fail(std::string text);
  std::string current_name() const;

  bool in_stream_ = false;
  std::uint32_t id_ = 0;
  std::uint64_t announced_ = 0;
  std::uint64_t got_ = 0;
  unsigned idle_ = 0;
  unsigned streams_ = 0;
  std::uint64_t data_bytes_ = 0;
  bool ended_ = false;
  bool ended_with_error_ = false;
  std::string problem_;
};

// The four-character form of a stream id ("STAN"), for messages.
std::string stream_id_text(std::uint32_t id);
// True when the layer's table of stream ids knows `id`.
bool known_stream_id(std::uint32_t id);

}  // namespace qbfs::validate
