// _FUNC_LIST: the table of a file system's entry points.
//
// 115 slots of plain function pointers (920 bytes), in a fixed order that is a
// contract with separately built modules: a module fills a table and hands it
// out through "GetTable" or "Get64BitTable", and the layer copies it by value
// into the registry entry of the file-system index the module names. A null
// slot means the file system does not offer the operation; every caller tests
// the slot before calling it. The slots, their types and the contract of each
// are written once, as the rows of qbfsys/func_slots.def; the slot types, the
// members and the offset checks below are expanded from those rows. Every slot
// returns an FS_STATUS unless its row says otherwise.
//
// How the layer reaches a slot:
// - DLE-level slots (0, 2 to 5, 63, 68, 69, 101) are called by the registry and
//   the DLE tree. When slot 0 gives an index an FS_DleBase object, the
//   object's operation of the same role is called instead of slots 2 to 5, 63,
//   68, 69 and 101 of that index.
// - Handle-level slots are reached through the handle's adapter when it has
//   one, else straight from the handle's table. GEN_OpenSys in slot 1 installs
//   the forwarding adapter (FS_FshGeneric): its method of the same name calls
//   the slot and answers FS_ERR_UNIMPLEMENTED for a null slot, unless a slot
//   says otherwise. "Guarded" marks a slot that this adapter calls only with a
//   non-null handle and non-null pointer arguments (it answers
//   FS_ERR_BAD_PARAMETER itself otherwise). "Adapter only" marks a slot the
//   layer itself never calls: it runs when the host calls that adapter method.
//   Where the layer calls a slot itself, its comment names the caller and what
//   a null slot gives when the handle has no adapter. FS_FshGen, the adapter
//   of the generic file system, never reads the table; its fixed answers are
//   noted as "generic adapter".
//
// Conventions: wchar_t is 4 bytes; name and path sizes are in bytes and count
// the terminator; a size returned in the status word is read as a signed
// 16-bit count. A DBLK is a 4,184-byte record owned by the caller; the name
// elements it points at belong to the handle's name pool (FS_AllocPathOrName,
// FS_SetupOSPathOrNameInDBLK) and go back to it through slot 14. A module keeps
// its per-handle state in FSYS_HAND_STRUCT::fsysData. To give the caller
// details of an error, a module calls FS_SetLastError and returns
// FS_STATUS_EXT_ERROR. A module whose blocks have the generic layout can put
// the GEN_ functions into its block slots (10 to 14, 35 to 54); _GENFuncTab
// holds GEN_ functions in slots 1 to 14, 17, 35 to 54 (51: STUB_InitGOS), 56,
// 57, 76, 77, 90, 93 and 107, and null everywhere else.
//
// Slots 6 to 9 are the device and volume name operations of the generic file
// system: 6 DeviceDispName (dle, buffer, buffer size in bytes), 7 GetVolName
// (dle, buffer), 8 SizeofVolName (dle) and 9 SizeofDevName (dle), the last two
// returning a size in bytes. Slots named ReservedNN (58, 64, 65, 78, 79, 81,
// 84, 85, 91, 95, 105, 106, 108, 109, 113) have no caller in the layer; they
// keep their place so that the numbering holds. The third argument of
// GetMachineName (slot 69) receives the name's length in characters.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <qbfsys/fs_status.h>
#include <qbfsys/fs_types.h>

// Module interface version a module's table must have been built for.
constexpr int FS_MODULE_INTERFACE_VERSION = 23;
constexpr unsigned FS_FUNC_LIST_SLOTS = 115;

// Slot types, one per slot, named FS_SLOT_<slot name>, e.g.
// FS_SLOT_FindFirstObj (rows in qbfsys/func_slots.def).
#define FS_FUNC_SLOT(slot, name, result, params, args) using FS_SLOT_##name = result(*) params;
#define FS_FUNC_SLOT_OP(slot, op, name, op_name, result, params, args, generic, legacy) \
  using FS_SLOT_##name = result(*) params;
#include <qbfsys/func_slots_by_slot.inc>
#undef FS_FUNC_SLOT
#undef FS_FUNC_SLOT_OP

// The table: one member per slot, in slot order, named as the slot.
struct _FUNC_LIST {
#define FS_FUNC_SLOT(slot, name, result, params, args) FS_SLOT_##name name;
#define FS_FUNC_SLOT_OP(slot, op, name, op_name, result, params, args, generic, legacy) \
  FS_SLOT_##name name;
#include <qbfsys/func_slots_by_slot.inc>
#undef FS_FUNC_SLOT
#undef FS_FUNC_SLOT_OP
};

namespace fs_func_slots_detail {

// True when numbers[i] == first + i for every i: the rows were expanded in
// their order, none twice and none left out.
template <typename T, std::size_t N>
constexpr bool numbered_from(T const (&numbers)[N], T first) {
  for (std::size_t i = 0; i < N; ++i)
    if (numbers[i] != first + static_cast<T>(i)) return false;
  return true;
}

constexpr unsigned kSlotNumbers[] = {
#define FS_FUNC_SLOT(slot, ...) slot,
#define FS_FUNC_SLOT_OP(slot, ...) slot,
#include <qbfsys/func_slots_by_slot.inc>
#undef FS_FUNC_SLOT
#undef FS_FUNC_SLOT_OP
};

}  // namespace fs_func_slots_detail

static_assert(sizeof(fs_func_slots_detail::kSlotNumbers) / sizeof(unsigned) == FS_FUNC_LIST_SLOTS,
              "one row per slot");
static_assert(fs_func_slots_detail::numbered_from(fs_func_slots_detail::kSlotNumbers, 0u),
              "the slot rows are numbered 0 to 114 in slot order");

// Each member at its slot's offset, from the rows...
#define FS_FUNC_SLOT(slot, name, ...) \
  static_assert(offsetof(_FUNC_LIST, name) == (slot) * 8u, "slot " #slot ": " #name);
#define FS_FUNC_SLOT_OP(slot, op, name, ...) \
  static_assert(offsetof(_FUNC_LIST, name) == (slot) * 8u, "slot " #slot ": " #name);
#include <qbfsys/func_slots_by_slot.inc>
#undef FS_FUNC_SLOT
#undef FS_FUNC_SLOT_OP

// ...and, written out, the size and a few offsets that modules built long ago
// rely on, so that the rows cannot drift together with the checks made from
// them.
static_assert(sizeof(_FUNC_LIST) == 920, "_FUNC_LIST is 115 eight-byte slots");
static_assert(offsetof(_FUNC_LIST, CreateObject) == 0, "slot 0");
static_assert(offsetof(_FUNC_LIST, AttachToDLE) == 120, "slot 15");
static_assert(offsetof(_FUNC_LIST, FindFirstObj) == 240, "slot 30");
static_assert(offsetof(_FUNC_LIST, ChangeIntoDDB) == 440, "slot 55");
static_assert(offsetof(_FUNC_LIST, CloseSys) == 536, "slot 67");
static_assert(offsetof(_FUNC_LIST, ResolveDevName) == 808, "slot 101");
static_assert(offsetof(_FUNC_LIST, DirectImageInterface) == 912, "slot 114");

// The slot with the given number, for code that walks the table as an array.
inline void* FS_FuncListSlot(_FUNC_LIST const& table, unsigned slot) {
  static_assert(sizeof(void*) == 8, "slots are eight bytes");
  void* value = nullptr;
  if (slot < FS_FUNC_LIST_SLOTS)
    std::memcpy(&value, reinterpret_cast<unsigned char const*>(&table) + slot * 8u, 8u);
  return value;
}
