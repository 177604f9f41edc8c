// FS_FshLegacy: an adapter over a module that has only a function table.
// Each operation forwards to the slot of the handle's table (for object
// operations, the table of the object's owning handle), in the form that the
// `legacy` column of its row in qbfsys/func_slots.def names, one of three:
// - plain: forwarded as it is;
// - optional: FS_ERR_UNIMPLEMENTED when the slot is empty;
// - guarded: a null handle or pointer argument prints "FS_FshLegacy: Bad
//   Parameter at line number %d" (FS_FSHLEGACY_LINE_BASE plus the
//   operation's number) and returns FS_ERR_BAD_PARAMETER (SizeofName and
//   SizeofOSName return size 0 instead); GetExtendedErrorInfo with an empty
//   slot stores 0 into its outputs and returns 0.
// A plain or guarded operation whose slot is empty answers
// FS_ERR_UNIMPLEMENTED rather than calling through a null pointer. OpenSys
// and the seven newest operations (88 to 94) are FS_FshGen's. CloseSys calls
// the table's CloseSys (slot 67) when set, then clears the handle's adapter
// field and deletes the object; its result is the slot's (0 without one).
#pragma once
#include <qbfsys/fs_fsh_gen.h>

// The forwarding adapter: each operation goes to the handle's table slot,
// guarded or not as described above.
class FS_EXPORT FS_FshLegacy : public FS_FshGen {
 public:
  FS_FshLegacy() = default;

  // Every operation whose `legacy` column in qbfsys/func_slots.def is not
  // inherited(), in operation order.
#define FS_FSH_LEGACY_KEEP_(...) __VA_ARGS__
#define FS_FSH_LEGACY_DROP_(...)
#define FS_FSH_LEGACY_DECLARES_plain() FS_FSH_LEGACY_KEEP_
#define FS_FSH_LEGACY_DECLARES_optional() FS_FSH_LEGACY_KEEP_
#define FS_FSH_LEGACY_DECLARES_plain_size() FS_FSH_LEGACY_KEEP_
#define FS_FSH_LEGACY_DECLARES_guarded(pointers) FS_FSH_LEGACY_KEEP_
#define FS_FSH_LEGACY_DECLARES_guarded_size(pointers) FS_FSH_LEGACY_KEEP_
#define FS_FSH_LEGACY_DECLARES_own() FS_FSH_LEGACY_KEEP_
#define FS_FSH_LEGACY_DECLARES_inherited() FS_FSH_LEGACY_DROP_
#define FS_FUNC_SLOT_OP(slot, op, slot_name, name, result, params, args, generic, legacy) \
  FS_FSH_LEGACY_DECLARES_##legacy(result name params override;)
#include <qbfsys/func_slots_by_operation.inc>
#undef FS_FUNC_SLOT_OP
#undef FS_FSH_LEGACY_DECLARES_plain
#undef FS_FSH_LEGACY_DECLARES_optional
#undef FS_FSH_LEGACY_DECLARES_plain_size
#undef FS_FSH_LEGACY_DECLARES_guarded
#undef FS_FSH_LEGACY_DECLARES_guarded_size
#undef FS_FSH_LEGACY_DECLARES_own
#undef FS_FSH_LEGACY_DECLARES_inherited
#undef FS_FSH_LEGACY_KEEP_
#undef FS_FSH_LEGACY_DROP_

  ~FS_FshLegacy() override;
};
