// Writes an archive to a file descriptor (a file or a pipe), object by
// object, in the order the layer delivers them. Output is buffered; data
// reaches the descriptor in large writes, and a large data payload goes out
// from the caller's buffer without being copied. Into a pipe the writes are
// smaller and the pipe larger, so the reading end is kept busy.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "archive_digest.h"
#include "archive_format.h"

namespace qbfs::archive {

class ArchiveWriter {
 public:
  // The writer does not own `fd`.
  explicit ArchiveWriter(int fd);
  ArchiveWriter(ArchiveWriter const&) = delete;
  ArchiveWriter& operator=(ArchiveWriter const&) = delete;

  // Every call returns false once writing failed; error() then says why.
  bool begin();
  // Starts an object: its record (number, sizes filled in here), its
  // generic description, its path (encode_path) and OS info.
  bool begin_object(ObjectRecord record, ObjectGeneric const& generic, std::string const& path,
                    void const* os_info);
  // Starts a stream of the current object; its data follows through data().
  bool begin_stream(STREAM_INFO const& header);
  bool data(void const* bytes, std::size_t size);
  // Closes the current object with its checksum stream. `source_failed`
  // marks an object whose reading failed part way.
  bool end_object(bool source_failed);
  // Writes the end-of-data record and flushes.
  bool finish();

  std::string const& error() const { return error_; }
  std::uint64_t objects() const { return objects_; }
  std::uint64_t data_bytes() const { return data_bytes_; }
  std::uint64_t bytes_written() const { return written_ + buffer_.size(); }

 private:
  bool frame(FrameKind kind, void const* payload, std::size_t size, bool covered);
  bool put(void const* bytes, std::size_t size);
  bool flush() { return flush_with(nullptr, 0); }
  // Writes what is buffered, then `size` bytes at `bytes`.
  bool flush_with(void const* bytes, std::size_t size);

  int fd_;
  std::size_t flush_at_;  // buffered bytes that make a write
  std::vector<unsigned char> buffer_;
  std::vector<unsigned char> record_;  // an object record being put together
  std::string error_;
  Sha256 object_;
  Sha256 archive_;
  std::uint64_t objects_ = 0;
  std::uint64_t data_bytes_ = 0;
  std::uint64_t written_ = 0;
  bool in_object_ = false;
};

}  // namespace qbfs::archive
