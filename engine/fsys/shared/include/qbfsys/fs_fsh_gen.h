// FS_FshGen: the adapter class of the built-in generic file system, and the
// base of every concrete adapter.
//
// It implements all 94 operations of FS_FshBase: the block operations go to
// the generic file system (GEN_*, qbfsys/gen.h) after their pointer
// arguments were checked; the rest give fixed answers or report that they
// are not offered. The answer of each operation is the `generic` column of
// its row in qbfsys/func_slots.def. Its virtual destructor comes after the 94 operations, so
// the vtable of any class derived from it keeps FS_FshBase's slot order: a
// module may derive its own adapter from FS_FshGen (or FS_FshLegacy) and
// override what it serves.
//
// Messages (through the host's debug print, level 0), each with the fixed
// line number of the operation that printed it (FS_FSHGEN_LINE_BASE plus the
// operation's number, 1 to 94):
//   "FS_FshGen: Unimplemented function called at line number %d", then the
//   operation returns FS_ERR_UNIMPLEMENTED;
//   "FS_FshGen: Bad Parameter at line number %d" when the handle or a pointer
//   argument is null, then it returns FS_ERR_BAD_PARAMETER.
// SizeofName, SizeofOSName and GetActualSizeDBLK return a size narrowed to
// signed 16 bits. CloseSys clears the handle's adapter field and deletes the
// object (adapters are made with new and owned by the handle).
//
// The classes hold no data: all state is in the handle passed to each call.
#pragma once
#include <qbfsys/fs_export.h>
#include <qbfsys/fs_fsh_base.h>

constexpr int FS_FSHGEN_LINE_BASE = 1000;
constexpr int FS_FSHLEGACY_LINE_BASE = 2000;

// The generic adapter: fixed answers, guarded GEN operations, and
// FS_ERR_UNIMPLEMENTED for what only a file system can do (see above).
class FS_EXPORT FS_FshGen : public FS_FshBase {
 public:
  FS_FshGen() = default;

  // Every operation, in operation order; what each answers is the `generic`
  // column of its row in qbfsys/func_slots.def.
#define FS_FUNC_SLOT_OP(slot, op, slot_name, name, result, params, args, generic, legacy) \
  result name params override;
#define FS_FSH_OP(op, name, result, params, args, generic) result name params override;
#include <qbfsys/func_slots_by_operation.inc>
#undef FS_FUNC_SLOT_OP
#undef FS_FSH_OP
  virtual ~FS_FshGen();
};
