// The last-error record of a handle: FS_SetLastError,
// FS_AddStringToLastError and GEN_GetExtendedErrorInfo.
//
// The message list is a run of wide strings, each with its terminator, ended
// by an empty string; lastMsgLen counts the characters in use (terminators
// included, the final empty string not), lastMsgCap the bytes allocated.
//
// Choices where the interface leaves room: a null handle is refused with
// FS_ERR_INVALID_HANDLE by all three; GEN_GetExtendedErrorInfo skips null
// out-pointers and fills the others; a list that would outgrow 32-bit sizes
// is treated as memory running out.
#include <cstdlib>
#include <cwchar>
#include <limits>

#include <qbfsys/handles.h>

namespace {
constexpr std::int64_t kGrowthBytes = 1028;  // room for 256 more characters and a terminator
constexpr std::int64_t kCharBytes = static_cast<std::int64_t>(sizeof(wchar_t));

void drop_list(FSYS_HAND_STRUCT* hand) {
  std::free(hand->lastMsg);
  hand->lastMsg = nullptr;
  hand->lastMsgLen = 0;
  hand->lastMsgCap = 0;
}
}  // namespace

FS_STATUS FS_SetLastError(FSYS_HAND_STRUCT* hand, int error, FS_EXT_ERR_ACTION action,
                          unsigned int extra, wchar_t const* message) {
  if (hand == nullptr) return FS_ERR_INVALID_HANDLE;
  hand->lastError = error;
  hand->lastAction = action;
  hand->lastExtra = extra;
  drop_list(hand);
  return FS_AddStringToLastError(hand, message);
}

FS_STATUS FS_AddStringToLastError(FSYS_HAND_STRUCT* hand, wchar_t const* message) {
  if (hand == nullptr) return FS_ERR_INVALID_HANDLE;
  if (message == nullptr || message[0] == L'\0') return FS_STATUS_EXT_ERROR;

  std::int64_t const used = hand->lastMsgLen < 0 ? 0 : hand->lastMsgLen;
  std::int64_t const added = static_cast<std::int64_t>(std::wcslen(message));
  std::int64_t const length = used + added + 1;
  std::int64_t const capacity = hand->lastMsg == nullptr ? 0 : hand->lastMsgCap;
  if (capacity < length * kCharBytes + kCharBytes) {
    std::int64_t const grown = length * kCharBytes + kGrowthBytes;
    void* bigger = grown <= std::numeric_limits<std::int32_t>::max()
                       ? std::realloc(hand->lastMsg, static_cast<std::size_t>(grown))
                       : nullptr;
    if (bigger == nullptr) {
      drop_list(hand);
      return FS_ERR_NO_MEMORY;
    }
    hand->lastMsg = static_cast<wchar_t*>(bigger);
    hand->lastMsgCap = static_cast<std::int32_t>(grown);
  }
  std::wmemcpy(hand->lastMsg + used, message, static_cast<std::size_t>(added) + 1);
  hand->lastMsgLen = static_cast<std::int32_t>(length);
  hand->lastMsg[length] = L'\0';  // the list's closing empty string
  return FS_STATUS_EXT_ERROR;
}

FS_STATUS GEN_GetExtendedErrorInfo(FSYS_HAND_STRUCT* hand, FS_EXT_ERR_ACTION* action,
                                   unsigned int* extra, wchar_t** message) {
  if (hand == nullptr) return FS_ERR_INVALID_HANDLE;
  if (extra != nullptr) *extra = hand->lastExtra;
  if (message != nullptr) *message = hand->lastMsg;  // the handle keeps ownership
  if (action != nullptr) *action = hand->lastAction;
  return static_cast<FS_STATUS>(hand->lastError);
}
