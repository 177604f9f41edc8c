// GEN_MakePath: a restore path from the media's path components.
//
// The size test keeps the media format's signed 16-bit comparison, so a
// path the format cannot describe is refused as too large rather than
// wrapped; a second test on the exact characters written keeps every write
// inside the buffer.
#include <cwchar>

#include <qbfsys/dle.h>
#include <qbfsys/gen.h>

namespace {

constexpr std::int32_t kWideChar = sizeof(wchar_t);
constexpr short kRootPathBytes = 4;  // one empty component
constexpr wchar_t kSeparator = L'\\';

std::size_t bounded_length(wchar_t const* text, std::size_t chars) {
  std::size_t n = 0;
  while (n < chars && text[n] != L'\0') ++n;
  return n;
}

}  // namespace

FS_STATUS GEN_MakePath(wchar_t* out, short outSize, GENERIC_DLE* dle, wchar_t const* path,
                       short pathSize, wchar_t const* name) {
  if (out == nullptr || pathSize < 0 || (path == nullptr && pathSize > 0) ||
      pathSize % kWideChar != 0)
    return FS_ERR_BAD_PARAMETER;
  std::size_t const path_chars = static_cast<std::size_t>(pathSize) / kWideChar;
  if (path_chars > 0 && path[path_chars - 1] != L'\0') return FS_ERR_BAD_PARAMETER;
  wchar_t const* device = dle != nullptr && dle->device_name != nullptr ? dle->device_name : L"";

  std::size_t const device_chars = std::wcslen(device);
  std::size_t const name_chars = name != nullptr ? std::wcslen(name) : 0;
  std::int32_t needed = pathSize;
  if (name != nullptr) needed += static_cast<std::int32_t>((name_chars + 1) * kWideChar);
  if (dle != nullptr) needed += static_cast<std::int32_t>((device_chars + 1) * kWideChar);
  if (static_cast<short>(needed) > outSize || needed > INT16_MAX) return FS_ERR_OBJ_NO_DATA;
  // The count above is the format's; what is written may be a character or
  // two longer (the leading backslash, the terminator without a name), and
  // must fit too.
  bool const root = pathSize == kRootPathBytes;
  std::size_t const written = device_chars + (root ? 0 : 1) + path_chars + name_chars + 1;
  if (written * kWideChar > static_cast<std::size_t>(outSize)) return FS_ERR_OBJ_NO_DATA;

  std::size_t at = 0;
  auto put = [&](wchar_t const* text, std::size_t n) {
    std::wmemcpy(out + at, text, n);
    at += n;
  };
  put(device, device_chars);
  if (!root) put(&kSeparator, 1);
  for (std::size_t i = 0; i < path_chars;) {
    std::size_t const n = bounded_length(path + i, path_chars - i);
    put(path + i, n);
    put(&kSeparator, 1);
    i += n + 1;
  }
  if (name != nullptr) put(name, name_chars);
  out[at] = L'\0';
  return FS_SUCCESS;
}
