// Remove-DLE: unlinks one of the module's elements and frees it.
//
// The layer removes the children first, so only the one element is freed. An
// element that still has children is refused (FS_ERR_BAD_PARAMETER) and left
// in place: freeing it would leave the children pointing at freed memory.
#include "posix_fsys.h"

namespace qbposix {

FS_STATUS posix_remove_dle(GENERIC_DLE* dle) {
  if (dle == nullptr || dle->child_q.q_head != nullptr) return FS_ERR_BAD_PARAMETER;
  HEAD_DLE* head = dle->head;
  _Q_HEADER* queue = dle->parent ? &dle->parent->child_q : head ? &head->dle_q : nullptr;
  if (queue != nullptr && dle->q.q_owner == queue) {
    RemoveQueueElem(queue, &dle->q);
  } else if (dle->q.q_owner != nullptr) {
    // Linked somewhere else (the head's second queue): unlink it there.
    RemoveQueueElem(dle->q.q_owner, &dle->q);
  }
  if (head != nullptr) {
    // The head must not keep pointing at a freed element.
    if (head->default_dle == dle) head->default_dle = nullptr;
    if (head->current == dle) head->current = nullptr;
    if (head->further == dle) head->further = nullptr;
  }
  DLE_Free(dle);
  return FS_SUCCESS;
}

}  // namespace qbposix
