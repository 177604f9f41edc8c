// GEN_FlushDLEs: prunes the top-level elements of one file system that no
// handle is using. Elements are freed directly, without the file system's
// remove-DLE, and only one level of children is considered.
#include <qbfsys/dle.h>
#include <qbfsys/gen.h>

namespace {
// Frees an unlinked element and everything below it (grandchildren cannot
// outlive their parent).
void free_subtree(GENERIC_DLE* dle) {
  while (_Q_ELEM* c = DeQueueElem(&dle->child_q)) free_subtree(reinterpret_cast<GENERIC_DLE*>(c));
  DLE_Free(dle);
}
}  // namespace

void GEN_FlushDLEs(HEAD_DLE* head, unsigned char fsIndex) {
  if (head == nullptr) return;
  _Q_ELEM* next = nullptr;
  for (_Q_ELEM* e = QueueHead(&head->dle_q); e != nullptr; e = next) {
    next = e->q_next;
    GENERIC_DLE* dle = reinterpret_cast<GENERIC_DLE*>(e);
    if ((dle->type & DLE_TYPE_BYTE_MASK) != fsIndex) continue;
    bool child_attached = false;
    for (_Q_ELEM* c = QueueHead(&dle->child_q); c != nullptr; c = c->q_next)
      if (reinterpret_cast<GENERIC_DLE*>(c)->attach_count != 0) child_attached = true;
    if (child_attached) continue;
    while (_Q_ELEM* c = DeQueueElem(&dle->child_q)) free_subtree(reinterpret_cast<GENERIC_DLE*>(c));
    if (dle->attach_count == 0) {
      if (head->current == dle) head->current = nullptr;
      RemoveQueueElem(&head->dle_q, &dle->q);
      DLE_Free(dle);
    }
  }
}
