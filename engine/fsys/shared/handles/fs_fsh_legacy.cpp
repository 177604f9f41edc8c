// FS_FshLegacy: forwards each operation to the table slot of the same role;
// see the header for the three forms. The bodies are expanded from the
// `legacy` column of the rows of qbfsys/func_slots.def; those whose column is
// own() are written out here.
#include <qbfsys/file_hand.h>
#include <qbfsys/fs_fsh_legacy.h>
#include <qbfsys/handles.h>
#include <qbhost/zprintf.h>

#include "fs_dispatch.h"
#include "fsh_rows.h"

namespace {

constexpr int line_of(int operation) { return FS_FSHLEGACY_LINE_BASE + operation; }

FS_STATUS bad_parameter(int line, FS_STATUS result) {
  QB_Zprintf(0, L"FS_FshLegacy: Bad Parameter at line number %d", line);
  return result;
}

_FUNC_LIST const* table_of(FSYS_HAND_STRUCT const* hand) {
  return hand == nullptr ? nullptr : hand->funcTable;
}
_FUNC_LIST const* table_of(_FILE_HAND_STRUCT const* obj) {
  return obj == nullptr ? nullptr : table_of(obj->fsysHand);
}

}  // namespace

FS_FshLegacy::~FS_FshLegacy() = default;

FS_STATUS FS_FshLegacy::CloseSys(FSYS_HAND_STRUCT* hand) {
  FS_STATUS result = FS_SUCCESS;
  if (hand != nullptr) {
    if (hand->funcTable != nullptr && hand->funcTable->CloseSys != nullptr)
      result = hand->funcTable->CloseSys(hand);
    hand->adapter = nullptr;
  }
  delete this;
  return result;
}

FS_STATUS FS_FshLegacy::GetExtendedErrorInfo(FSYS_HAND_STRUCT* hand, FS_EXT_ERR_ACTION* action,
                                             unsigned int* value, wchar_t** message) {
  if (hand == nullptr || action == nullptr || value == nullptr || message == nullptr)
    return bad_parameter(line_of(71), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetExtendedErrorInfo == nullptr) {
    *action = FS_EXT_ERR_ACTION_NONE;
    *value = 0;
    *message = nullptr;
    return FS_SUCCESS;
  }
  return table->GetExtendedErrorInfo(hand, action, value, message);  // slot 90
}

// The other operations, one body per row: the row's test when it is guarded,
// then the slot, which may be empty. `this_line` is the operation's fixed
// line number for its message.
#define FSH_LEGACY_DEFINES_plain() FSH_ROW_KEEP
#define FSH_LEGACY_DEFINES_optional() FSH_ROW_KEEP
#define FSH_LEGACY_DEFINES_plain_size() FSH_ROW_KEEP
#define FSH_LEGACY_DEFINES_guarded(pointers) FSH_ROW_KEEP
#define FSH_LEGACY_DEFINES_guarded_size(pointers) FSH_ROW_KEEP
#define FSH_LEGACY_DEFINES_inherited() FSH_ROW_DROP
#define FSH_LEGACY_DEFINES_own() FSH_ROW_DROP

#define FSH_LEGACY_TEST_plain()
#define FSH_LEGACY_TEST_optional()
#define FSH_LEGACY_TEST_plain_size()
#define FSH_LEGACY_TEST_guarded(pointers) \
  if (fsys::any_null pointers) return bad_parameter(this_line, FS_ERR_BAD_PARAMETER);
#define FSH_LEGACY_TEST_guarded_size(pointers) \
  if (fsys::any_null pointers) return bad_parameter(this_line, 0);

// What the slot's result becomes: itself, or a size narrowed to 16 bits.
#define FSH_LEGACY_RESULT_plain()
#define FSH_LEGACY_RESULT_optional()
#define FSH_LEGACY_RESULT_plain_size() fsys::narrow_size
#define FSH_LEGACY_RESULT_guarded(pointers)
#define FSH_LEGACY_RESULT_guarded_size(pointers) fsys::narrow_size

#define FS_FUNC_SLOT_OP(slot, op, slot_name, name, result, params, args, generic, legacy) \
  FSH_LEGACY_DEFINES_##legacy(result FS_FshLegacy::name params {                          \
    [[maybe_unused]] constexpr int this_line = line_of(op);                                \
    FSH_LEGACY_TEST_##legacy                                                               \
    _FUNC_LIST const* table = table_of(FSH_ROW_FIRST args);                                \
    if (table == nullptr || table->slot_name == nullptr) return FS_ERR_UNIMPLEMENTED;      \
    return FSH_LEGACY_RESULT_##legacy(table->slot_name args);                              \
  })
#include <qbfsys/func_slots_by_operation.inc>
#undef FS_FUNC_SLOT_OP
