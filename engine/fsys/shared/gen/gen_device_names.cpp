// GEN_DeviceDispName, GEN_GetVolName, GEN_SizeofVolName, GEN_SizeofDevName.
#include <cwchar>

#include <qbfsys/dle.h>
#include <qbfsys/gen.h>

namespace {

constexpr unsigned short kSmallestBuffer = 24;
constexpr std::uint32_t kWideChar = sizeof(wchar_t);

wchar_t const* shown_name(GENERIC_DLE const* dle) {
  wchar_t const* name = DLE_DisplayName(dle);
  return name != nullptr ? name : L"";
}

}  // namespace

FS_STATUS GEN_DeviceDispName(GENERIC_DLE* dle, wchar_t* buffer, unsigned short bufferSize) {
  if (bufferSize < kSmallestBuffer) return FS_ERR_OBJ_NO_DATA;
  if (dle == nullptr || buffer == nullptr) return FS_ERR_BAD_PARAMETER;
  std::size_t const chars = bufferSize / kWideChar;
  std::wcsncpy(buffer, shown_name(dle), chars);
  buffer[chars - 1] = L'\0';
  return FS_SUCCESS;
}

FS_STATUS GEN_GetVolName(GENERIC_DLE* dle, wchar_t* buffer) {
  if (dle == nullptr || buffer == nullptr) return FS_ERR_BAD_PARAMETER;
  std::wcscpy(buffer, shown_name(dle));
  return FS_SUCCESS;
}

FS_STATUS GEN_SizeofVolName(GENERIC_DLE* dle) {
  if (dle == nullptr) return 0;
  return static_cast<FS_STATUS>((std::wcslen(shown_name(dle)) + 1) * kWideChar);
}

FS_STATUS GEN_SizeofDevName(GENERIC_DLE* dle) { return GEN_SizeofVolName(dle); }
