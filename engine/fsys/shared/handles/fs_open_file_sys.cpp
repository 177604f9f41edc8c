// FS_OpenFileSys: creates an unattached file-system handle.
//
// Choices where the interface leaves room:
// - A null `out` is refused with FS_ERR_BAD_PARAMETER.
// - When memory runs out part-way, everything made so far is freed and `*out`
//   is left null (never pointing at freed memory).
// - The id test is signed, so a negative id is accepted; such an id has no
//   registry table, and without a given table the handle gets the generic
//   table instead of reading outside the registry.
#include <cstdlib>
#include <new>

#include <qbfsys/handles.h>
#include <qbfsys/registry.h>

#include "fs_print.h"
#include "fs_registry_access.h"

namespace {
constexpr std::uint16_t kPathBufBytes = 64;
constexpr std::uint32_t kWorkBufBytes = 65536;
constexpr std::uint16_t kScratchBytes = 64;
constexpr std::uint32_t kMetaBlobBytes = 2048;
constexpr short kMaxFsysId = 50;

void discard(FSYS_HAND_STRUCT* hand) {
  std::free(hand->pathBuf);
  std::free(hand->workBuf);
  std::free(hand->scratch);
  delete hand->attachText;
  delete hand->workText;
  std::free(hand);
}
}  // namespace

FS_STATUS FS_OpenFileSys(FSYS_HAND_STRUCT** out, short fsysId, QB_CFG* cfg, _FUNC_LIST* table) {
  if (fsysId > kMaxFsysId) return FS_ERR_INVALID_FSYS_ID;
  if (out == nullptr) {
    fsys::print_bad_parameter(3101);
    return FS_ERR_BAD_PARAMETER;
  }
  *out = nullptr;

  auto* hand = static_cast<FSYS_HAND_STRUCT*>(std::calloc(1, sizeof(FSYS_HAND_STRUCT)));
  if (hand == nullptr) return FS_ERR_NO_MEMORY;
  hand->pathBuf = static_cast<wchar_t*>(std::calloc(1, kPathBufBytes));
  if (hand->pathBuf != nullptr) hand->workBuf = static_cast<unsigned char*>(std::calloc(1, kWorkBufBytes));
  if (hand->workBuf != nullptr) hand->scratch = static_cast<unsigned char*>(std::calloc(1, kScratchBytes));
  if (hand->scratch != nullptr) hand->attachText = new (std::nothrow) wcstring();
  if (hand->attachText != nullptr) hand->workText = new (std::nothrow) wcstring();
  if (hand->workText == nullptr) {
    discard(hand);
    return FS_ERR_NO_MEMORY;
  }

  hand->workBufSize = kWorkBufBytes;
  hand->fsysId = fsysId;
  if (table != nullptr) {
    hand->funcTable = table;
  } else if (fsysId >= 0) {
    hand->funcTable = &fsys::table_of(static_cast<unsigned>(fsysId));
  } else {
    hand->funcTable = GetFuncTablePtr_GEN();
  }
  hand->pathBufSize = kPathBufBytes;
  hand->cfg = cfg;
  hand->scratchSize = kScratchBytes;
  hand->scratchUsed = 0;
  hand->metaLen = 0;

  // The blob buffer is only a head start: without it the first
  // FS_SetMetaDataBlob allocates, so a failure here is not an error.
  hand->metaBlob = static_cast<unsigned char*>(std::calloc(1, kMetaBlobBytes));
  if (hand->metaBlob != nullptr) hand->metaCap = kMetaBlobBytes;

  InitQueue(&hand->queue1);
  InitQueue(&hand->in_use_name_q);
  InitQueue(&hand->avail_name_q);

  *out = hand;
  // The handle stays the caller's whatever the file system answers.
  if (hand->funcTable->OpenSys != nullptr) return hand->funcTable->OpenSys(hand);
  return FS_SUCCESS;
}
