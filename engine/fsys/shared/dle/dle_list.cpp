// Creating and tearing down the tree: FS_InitDleList, FS_DeinitDleList.
#include <cstdlib>

#include <qbfsys/dle.h>
#include <qbfsys/fs_init.h>

FS_STATUS FS_InitDleList(HEAD_DLE** out, QB_CFG* cfg) {
  if (out == nullptr) return FS_ERR_BAD_PARAMETER;
  HEAD_DLE* head = static_cast<HEAD_DLE*>(std::calloc(1, sizeof(HEAD_DLE)));
  *out = head;
  if (head == nullptr) return FS_ERR_NO_MEMORY;
  head->default_dle = nullptr;
  InitQueue(&head->dle_q);
  InitQueue(&head->pdi_q);
  FS_STATUS status = DLE_UpdateList(head, cfg);
  if (status != FS_SUCCESS) return status;
  return QueueHead(&head->dle_q) == nullptr ? FS_ERR_INIT_FAILED : FS_SUCCESS;
}

void FS_DeinitDleList(HEAD_DLE* head) {
  if (head == nullptr) return;
  FS_BlockWaitForInitThreads(head, 1);
  // A file system that fails to unlink an element would keep it first in the
  // queue forever; such an element is unlinked here and its subtree left.
  while (_Q_ELEM* first = QueueHead(&head->dle_q)) {
    DLE_RemoveRecurse(reinterpret_cast<GENERIC_DLE*>(first), 1);
    if (QueueHead(&head->dle_q) == first) RemoveQueueElem(&head->dle_q, first);
  }
  // The further element is released once; the queue above is empty by now.
  if (head->further != nullptr) {
    DLE_RemoveRecurse(head->further, 1);
    head->further = nullptr;
  }
  std::free(head);
}
