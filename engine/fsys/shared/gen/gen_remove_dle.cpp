// GEN_RemoveDLE: the generic remove-DLE operation. Unlinks the element from
// the queue that holds it and frees it with everything it owns.
#include <qbfsys/dle.h>
#include <qbfsys/gen.h>

FS_STATUS GEN_RemoveDLE(GENERIC_DLE* dle) {
  if (dle == nullptr) return FS_ERR_BAD_PARAMETER;
  HEAD_DLE* head = dle->head;
  if (head != nullptr && head->current == dle) head->current = nullptr;
  if (dle->parent != nullptr) {
    RemoveQueueElem(&dle->parent->child_q, &dle->q);
  } else if (head != nullptr) {
    RemoveQueueElem(dle->top_level_flag != 0 ? &head->pdi_q : &head->dle_q, &dle->q);
  }
  DLE_Free(dle);
  return FS_SUCCESS;
}
