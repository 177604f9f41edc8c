// FS_FshGen: the generic file system's adapter; see the header for the
// behaviour of each form. The bodies are expanded from the `generic` column
// of the rows of qbfsys/func_slots.def; those whose column is own() are
// written out here.
#include <qbfsys/dblk.h>
#include <qbfsys/file_hand.h>
#include <qbfsys/fs_fsh_gen.h>
#include <qbfsys/gen.h>
#include <qbfsys/handles.h>
#include <qbhost/zprintf.h>

#include "fs_dispatch.h"
#include "fsh_rows.h"

namespace {

// GetBackupPriority's answer: no object of the generic file system goes
// before another.
constexpr FS_STATUS kOrdinaryPriority = 1;

constexpr int line_of(int operation) { return FS_FSHGEN_LINE_BASE + operation; }

FS_STATUS unimplemented(int line) {
  QB_Zprintf(0, L"FS_FshGen: Unimplemented function called at line number %d", line);
  return FS_ERR_UNIMPLEMENTED;
}

FS_STATUS bad_parameter(int line) {
  QB_Zprintf(0, L"FS_FshGen: Bad Parameter at line number %d", line);
  return FS_ERR_BAD_PARAMETER;
}

}  // namespace

FS_FshGen::~FS_FshGen() = default;

FS_STATUS FS_FshGen::CloseSys(FSYS_HAND_STRUCT* hand) {
  if (hand != nullptr) hand->adapter = nullptr;
  delete this;
  return FS_SUCCESS;
}

FS_STATUS FS_FshGen::GetObjTypeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, OBJECT_TYPE* type) {
  if (hand == nullptr || blk == nullptr || type == nullptr) return bad_parameter(line_of(39));
  *type = FS_OBJ_GENERIC;
  return FS_SUCCESS;
}

FS_STATUS FS_FshGen::GetHardLinkPathAndName(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* text,
                                            short* size) {
  if (hand == nullptr || blk == nullptr || text == nullptr || size == nullptr)
    return bad_parameter(line_of(67));
  *size = 0;
  return FS_SUCCESS;
}

// The other operations, one body per row. `this_line` is the operation's
// fixed line number for its messages.
#define FSH_GEN_DEFINES_returns(expr) FSH_ROW_KEEP
#define FSH_GEN_DEFINES_returns_size(expr) FSH_ROW_KEEP
#define FSH_GEN_DEFINES_unimplemented() FSH_ROW_KEEP
#define FSH_GEN_DEFINES_guarded(pointers, expr) FSH_ROW_KEEP
#define FSH_GEN_DEFINES_guarded_size(pointers, expr) FSH_ROW_KEEP
#define FSH_GEN_DEFINES_guarded_unimplemented(pointers) FSH_ROW_KEEP
#define FSH_GEN_DEFINES_own() FSH_ROW_DROP

#define FSH_GEN_BODY_returns(expr) return expr;
#define FSH_GEN_BODY_returns_size(expr) return fsys::narrow_size(expr);
#define FSH_GEN_BODY_unimplemented() return unimplemented(this_line);
#define FSH_GEN_BODY_guarded(pointers, expr) \
  if (fsys::any_null pointers) return bad_parameter(this_line);  \
  return expr;
#define FSH_GEN_BODY_guarded_size(pointers, expr) \
  if (fsys::any_null pointers) return bad_parameter(this_line);       \
  return fsys::narrow_size(expr);
#define FSH_GEN_BODY_guarded_unimplemented(pointers)            \
  if (fsys::any_null pointers) return bad_parameter(this_line); \
  return unimplemented(this_line);

#define FSH_GEN_DEFINE(op, name, result, params, args, generic) \
  FSH_GEN_DEFINES_##generic(result FS_FshGen::name params {      \
    [[maybe_unused]] constexpr int this_line = line_of(op);       \
    fsys::ignore args;                                            \
    FSH_GEN_BODY_##generic                                        \
  })
#define FS_FUNC_SLOT_OP(slot, op, slot_name, name, result, params, args, generic, legacy) \
  FSH_GEN_DEFINE(op, name, result, params, args, generic)
#define FS_FSH_OP(op, name, result, params, args, generic) \
  FSH_GEN_DEFINE(op, name, result, params, args, generic)
#include <qbfsys/func_slots_by_operation.inc>
#undef FS_FUNC_SLOT_OP
#undef FS_FSH_OP
