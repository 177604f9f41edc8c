// The one road from the layer to a file system for handle-level operations:
// the handle's adapter object when it has one, else the slot of its table.
#pragma once
#include <utility>

#include <qbfsys/file_hand.h>
#include <qbfsys/fs_fsh_base.h>
#include <qbfsys/func_list.h>
#include <qbfsys/handles.h>

namespace fsys {

// Sizes travel between the layer and the file systems as signed 16-bit
// values in a status word: narrowed, then widened again.
inline FS_STATUS narrow_size(FS_STATUS size) {
  return static_cast<FS_STATUS>(static_cast<std::int32_t>(static_cast<std::int16_t>(size)));
}

// True when the handle can serve the operation: it has an adapter, or its
// table has the slot.
template <typename Slot>
bool can_dispatch(FSYS_HAND_STRUCT const* hand, Slot _FUNC_LIST::*slot) {
  return hand != nullptr &&
         (hand->adapter != nullptr || (hand->funcTable != nullptr && hand->funcTable->*slot != nullptr));
}

// Calls `op` on the adapter, else `slot` of the table, with the handle first
// and `args` after it; `absent` when the handle has neither. `Result` is the
// operation's result type (a status, or a size for the size operations).
template <typename Result, typename... Params, typename Slot, typename... Args>
Result dispatch(FSYS_HAND_STRUCT* hand, Result (FS_FshBase::*op)(FSYS_HAND_STRUCT*, Params...),
                Slot _FUNC_LIST::*slot, Result absent, Args&&... args) {
  if (hand == nullptr) return absent;
  if (hand->adapter != nullptr) return (hand->adapter->*op)(hand, std::forward<Args>(args)...);
  if (hand->funcTable == nullptr || hand->funcTable->*slot == nullptr) return absent;
  return (hand->funcTable->*slot)(hand, std::forward<Args>(args)...);
}

}  // namespace fsys

namespace fsys {

// The same for object operations: the road is the one of the object's
// owning handle, and the object handle is passed first.
template <typename Result, typename... Params, typename Slot, typename... Args>
Result dispatch_object(_FILE_HAND_STRUCT* obj,
                       Result (FS_FshBase::*op)(_FILE_HAND_STRUCT*, Params...),
                       Slot _FUNC_LIST::*slot, Result absent, Args&&... args) {
  FSYS_HAND_STRUCT* hand = obj->fsysHand;
  if (hand->adapter != nullptr) return (hand->adapter->*op)(obj, std::forward<Args>(args)...);
  if (hand->funcTable == nullptr || hand->funcTable->*slot == nullptr) return absent;
  return (hand->funcTable->*slot)(obj, std::forward<Args>(args)...);
}

}  // namespace fsys
