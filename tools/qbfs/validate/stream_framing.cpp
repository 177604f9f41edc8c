#include "stream_framing.h"

#include <cwchar>

#include <qbfsys/file_hand.h>

#include "layer_harness.h"

namespace qbfs::validate {
namespace {

constexpr wchar_t kUnknownStreamName[] = L"Unknown";
constexpr unsigned kIdBytes = 4;
constexpr unsigned kBitsPerByte = 8;
constexpr std::uint32_t kByteMask = 0xFF;
constexpr char kFirstPrintable = ' ';
constexpr char kLastPrintable = '~';

}  // namespace

std::string stream_id_text(std::uint32_t id) {
  // Ids are four characters stored first-character-lowest in the word.
  std::string text;
  for (unsigned i = 0; i < kIdBytes; ++i) {
    char const c = static_cast<char>((id >> (i * kBitsPerByte)) & kByteMask);
    text += (c >= kFirstPrintable && c <= kLastPrintable) ? c : '?';
  }
  char hex[16];
  std::snprintf(hex, sizeof hex, " (0x%08X)", id);
  return "'" + text + "'" + hex;
}

bool known_stream_id(std::uint32_t id) {
  wchar_t const* name = FS_GetStrmIdString(id);
  return id != 0 && name != nullptr && std::wcscmp(name, kUnknownStreamName) != 0;
}

bool StreamFraming::fail(std::string text) {
  if (problem_.empty()) problem_ = std::move(text);
  return false;
}

std::string StreamFraming::current_name() const { return "stream " + stream_id_text(id_); }

bool StreamFraming::on_read(FS_STATUS status, STREAM_INFO const& header, std::uint32_t delivered) {
  if (!problem_.empty()) return false;
  if (ended_) return fail("a read after the object ended returned " + status_text(status));
  if (status == FS_ERR_OBJ_NO_DATA || status == FS_STATUS_EXT_ERROR) {
    if (in_stream_ && got_ != announced_ && status == FS_ERR_OBJ_NO_DATA)
      return fail(current_name() + " announced " + std::to_string(announced_) + " bytes; " +
                  std::to_string(got_) + " came before the object ended");
    ended_ = true;
    ended_with_error_ = status == FS_STATUS_EXT_ERROR;
    return true;
  }
  if (status == FS_ERR_OBJ_OVERRUN)
    return fail("the module returned more bytes than the room it was given (the layer dropped "
                "the excess: FS_ERR_OBJ_OVERRUN)");
  if (status != FS_SUCCESS)
    return fail("a read returned " + status_text(status) +
                "; expected 0 while streams come and FS_ERR_OBJ_NO_DATA at the end");
  if (header.id != 0) {
    if (in_stream_ && got_ != announced_)
      return fail(current_name() + " announced " + std::to_string(announced_) + " bytes; " +
                  std::to_string(got_) + " came before the next header");
    if (!known_stream_id(header.id))
      return fail("header with id " + stream_id_text(header.id) +
                  "; expected one of the layer's stream ids");
    in_stream_ = true;
    id_ = header.id;
    announced_ = header.size;
    got_ = 0;
    ++streams_;
    idle_ = 0;
  } else if (delivered == 0) {
    if (++idle_ > kMaxIdleReads)
      return fail(std::to_string(kMaxIdleReads) +
                  " reads in a row delivered neither a header nor data; expected progress or "
                  "FS_ERR_OBJ_NO_DATA");
    return true;
  } else if (!in_stream_) {
    return fail(std::to_string(delivered) + " bytes of data came before any stream header");
  }
  idle_ = 0;
  got_ += delivered;
  data_bytes_ += delivered;
  if (got_ > announced_)
    return fail(current_name() + " announced " + std::to_string(announced_) + " bytes; " +
                std::to_string(got_) + " came without a new header");
  return true;
}

}  // namespace qbfs::validate
