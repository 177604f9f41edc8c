#include "archive_writer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>

#include <qbfsys/stream_ids.h>

namespace qbfs::archive {
namespace {

// Data is handed to a file in writes of about this size.
constexpr std::size_t kFileFlushAt = 4u << 20;
// Into a pipe, writes of this size into a pipe of kPipeBytes: the reader
// gets data while the writer goes on, where a pipe of the usual 64 KiB
// filled by 4 MiB writes would have each side mostly waiting for the other.
constexpr std::size_t kPipeFlushAt = 256u << 10;
constexpr int kPipeBytes = 1 << 20;  // the kernel's usual limit for an unprivileged process
// A data payload at least this large is written from where it lies.
constexpr std::size_t kDirectPayload = 64u << 10;

}  // namespace

ArchiveWriter::ArchiveWriter(int fd) : fd_(fd), flush_at_(kFileFlushAt) {
  struct stat st {};
  if (fstat(fd, &st) == 0 && S_ISFIFO(st.st_mode)) {
    flush_at_ = kPipeFlushAt;
    fcntl(fd, F_SETPIPE_SZ, kPipeBytes);  // a smaller pipe only costs speed
  }
  buffer_.reserve(flush_at_ + kDirectPayload + kMaxObjectPayload);
}

bool ArchiveWriter::begin() {
  ArchiveHeader header{};
  std::memcpy(header.magic, kArchiveMagic, sizeof header.magic);
  header.version = kArchiveVersion;
  header.size = sizeof header;
  header.created = static_cast<std::int64_t>(std::time(nullptr));
  header.crc = header_crc(header);
  return put(&header, sizeof header);
}

bool ArchiveWriter::begin_object(ObjectRecord record, ObjectGeneric const& generic,
                                 std::string const& path, void const* os_info) {
  if (path.size() > 0xFFFFu || record.os_info_size > kMaxOsInfo) {
    error_ = "the object's path or OS information is too long for the archive";
    return false;
  }
  record.number = objects_;
  record.path_size = static_cast<std::uint16_t>(path.size());
  std::vector<unsigned char>& payload = record_;
  std::size_t const fixed = sizeof record + sizeof generic;
  payload.resize(fixed + path.size() + record.os_info_size);
  std::memcpy(payload.data(), &record, sizeof record);
  std::memcpy(payload.data() + sizeof record, &generic, sizeof generic);
  std::memcpy(payload.data() + fixed, path.data(), path.size());
  if (record.os_info_size > 0)
    std::memcpy(payload.data() + fixed + path.size(), os_info, record.os_info_size);
  object_.reset();
  object_.add(payload.data(), payload.size());
  in_object_ = true;
  ++objects_;
  return frame(FRAME_OBJECT, payload.data(), payload.size(), true);
}

bool ArchiveWriter::begin_stream(STREAM_INFO const& header) {
  object_.add(&header, sizeof header);
  return frame(FRAME_STREAM, &header, sizeof header, true);
}

bool ArchiveWriter::data(void const* bytes, std::size_t size) {
  auto const* at = static_cast<unsigned char const*>(bytes);
  object_.add(at, size);
  data_bytes_ += size;
  while (size > 0) {
    std::size_t const piece = size < kMaxDataPayload ? size : kMaxDataPayload;
    if (!frame(FRAME_DATA, at, piece, false)) return false;
    at += piece;
    size -= piece;
  }
  return true;
}

bool ArchiveWriter::end_object(bool source_failed) {
  Digest const digest = object_.finish();
  archive_.add(digest.data(), digest.size());
  STREAM_INFO checksum{};
  checksum.id = STRM_CHECKSUM_DATA;
  checksum.fs_attrib = source_failed ? kChecksumSourceFailed : 0;
  checksum.size = digest.size();
  in_object_ = false;
  return frame(FRAME_STREAM, &checksum, sizeof checksum, true) &&
         frame(FRAME_DATA, digest.data(), digest.size(), false);
}

bool ArchiveWriter::finish() {
  if (in_object_ && !end_object(true)) return false;
  EndRecord end{};
  end.objects = objects_;
  end.data_bytes = data_bytes_;
  Digest const digest = archive_.finish();
  std::memcpy(end.digest, digest.data(), digest.size());
  return frame(FRAME_END, &end, sizeof end, true) && flush();
}

bool ArchiveWriter::frame(FrameKind kind, void const* payload, std::size_t size, bool covered) {
  FrameHeader header{};
  header.magic = kFrameMagic;
  header.kind = kind;
  header.length = static_cast<std::uint32_t>(size);
  header.crc = frame_crc(header, covered ? payload : nullptr, size);
  if (kind == FRAME_DATA && size >= kDirectPayload) {
    if (!error_.empty()) return false;
    auto const* at = reinterpret_cast<unsigned char const*>(&header);
    buffer_.insert(buffer_.end(), at, at + sizeof header);
    return flush_with(payload, size);
  }
  return put(&header, sizeof header) && put(payload, size);
}

bool ArchiveWriter::put(void const* bytes, std::size_t size) {
  if (!error_.empty()) return false;
  auto const* at = static_cast<unsigned char const*>(bytes);
  buffer_.insert(buffer_.end(), at, at + size);
  return buffer_.size() < flush_at_ || flush();
}

bool ArchiveWriter::flush_with(void const* bytes, std::size_t size) {
  if (!error_.empty()) return false;
  iovec parts[2] = {{buffer_.data(), buffer_.size()}, {const_cast<void*>(bytes), size}};
  iovec* part = parts;
  int count = size > 0 ? 2 : 1;
  std::size_t left = buffer_.size() + size;
  while (left > 0) {
    ssize_t const n = ::writev(fd_, part, count);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      error_ = std::strerror(n < 0 ? errno : EIO);
      return false;
    }
    auto done = static_cast<std::size_t>(n);
    written_ += done;
    left -= done;
    for (; count > 0 && done >= part->iov_len; --count, ++part) done -= part->iov_len;
    if (count > 0) {
      part->iov_base = static_cast<unsigned char*>(part->iov_base) + done;
      part->iov_len -= done;
    }
  }
  buffer_.clear();
  return true;
}

}  // namespace qbfs::archive
