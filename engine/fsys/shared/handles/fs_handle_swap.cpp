// fsys::swap_handle_state: value swap of two handle records.
#include "fs_handle_swap.h"

#include <cstring>
#include <type_traits>

static_assert(std::is_trivially_copyable<FSYS_HAND_STRUCT>::value,
              "the handle record is copied and swapped as one value");

namespace {

void rehome(_Q_HEADER* queue) {
  for (_Q_ELEM* e = queue->q_head; e != nullptr; e = e->q_next) e->q_owner = queue;
}

void rehome_all(FSYS_HAND_STRUCT* hand) {
  rehome(&hand->queue1);
  rehome(&hand->in_use_name_q);
  rehome(&hand->avail_name_q);
}

}  // namespace

namespace fsys {

void swap_handle_state(FSYS_HAND_STRUCT* a, FSYS_HAND_STRUCT* b) {
  FSYS_HAND_STRUCT kept;
  std::memcpy(&kept, a, sizeof kept);
  std::memcpy(a, b, sizeof kept);
  std::memcpy(b, &kept, sizeof kept);
  rehome_all(a);
  rehome_all(b);
}

}  // namespace fsys
