// FS_FshBase: the interface of a handle's adapter object.
//
// A file system may serve a handle through an object instead of its table:
// the handle's `adapter` field holds it, and every layer call on the handle
// looks there first. The 94 operations are pure and in a fixed order shared
// with modules (the operation order of qbfsys/func_slots.def, where each
// operation's row gives its signature, its slot and its contract); the
// interface declares no destructor (the concrete classes do, after the 94
// operations), so objects are destroyed through CloseSys. SizeofName,
// SizeofOSName and GetActualSizeDBLK return a size; GetRestoreWorkFlow
// returns text; every other operation returns a status.
#pragma once
#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>
#include <qbfsys/func_list.h>

class FS_FshBase {
 public:
  // One pure virtual per operation, in operation order, named as the
  // operation, e.g. FS_FshBase::FindFirstObj (rows in qbfsys/func_slots.def).
#define FS_FUNC_SLOT_OP(slot, op, slot_name, name, result, params, args, generic, legacy) \
  virtual result name params = 0;
#define FS_FSH_OP(op, name, result, params, args, generic) virtual result name params = 0;
#include <qbfsys/func_slots_by_operation.inc>
#undef FS_FUNC_SLOT_OP
#undef FS_FSH_OP

 protected:
  // Not deletable through this interface.
  FS_FshBase() = default;
  FS_FshBase(FS_FshBase const&) = default;
  FS_FshBase& operator=(FS_FshBase const&) = default;
  ~FS_FshBase() = default;
};

namespace fs_func_slots_detail {

constexpr int kOperationNumbers[] = {
#define FS_FUNC_SLOT_OP(slot, op, ...) op,
#define FS_FSH_OP(op, ...) op,
#include <qbfsys/func_slots_by_operation.inc>
#undef FS_FUNC_SLOT_OP
#undef FS_FSH_OP
};

}  // namespace fs_func_slots_detail

static_assert(sizeof(fs_func_slots_detail::kOperationNumbers) / sizeof(int) == 94,
              "one row per adapter operation");
static_assert(fs_func_slots_detail::numbered_from(fs_func_slots_detail::kOperationNumbers, 1),
              "the operation rows are numbered 1 to 94 in operation order");
