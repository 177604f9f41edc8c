// The name pools of a handle: FS_AllocPathOrName, FS_ReleasePathOrName and
// FS_FreeOSPathOrNameQueueInHand.
//
// Elements in use sit in in_use_name_q; released ones wait in avail_name_q
// and are handed out again, first in first out. A fresh buffer holds the
// requested size plus 1,024 bytes (and 20 more that are never counted).
//
// Choices where the interface leaves room:
// - A null handle gives a null element, and releasing through a null handle
//   does nothing (the caller keeps its pointer, since the element could not
//   be put anywhere).
// - A request above 64,511 bytes is refused with a null element: the 16-bit
//   capacity could not describe the buffer it needs.
#include <cstdlib>

#include <qbfsys/name_pool.h>
#include <qbhost/zprintf.h>

namespace {
constexpr std::uint32_t kSpare = 1024;  // bytes added to a request
constexpr std::size_t kSlack = 20;      // bytes beyond the capacity
constexpr std::uint32_t kLargest = 0xFFFFu - kSpare;
constexpr int kPoolLimit = 8;           // free elements a handle is expected to keep

FS_NAME_Q_ELEM* as_element(_Q_ELEM* e) { return reinterpret_cast<FS_NAME_Q_ELEM*>(e); }

void free_element(FS_NAME_Q_ELEM* element) {
  std::free(element->buffer);
  std::free(element);
}

void free_queue(_Q_HEADER* queue) {
  while (_Q_ELEM* e = DeQueueElem(queue)) free_element(as_element(e));
}
}  // namespace

FS_NAME_Q_ELEM* FS_AllocPathOrName(FSYS_HAND_STRUCT* hand, std::uint16_t size) {
  if (hand == nullptr || size > kLargest) return nullptr;

  FS_NAME_Q_ELEM* element = as_element(DeQueueElem(&hand->avail_name_q));
  if (element == nullptr) {
    element = static_cast<FS_NAME_Q_ELEM*>(std::calloc(1, sizeof(FS_NAME_Q_ELEM)));
    if (element == nullptr) return nullptr;
  }

  if (element->capacity != 0 && element->capacity >= size) {
    if (element->buffer == nullptr) {
      std::free(element);
      return nullptr;
    }
  } else {
    element->capacity = static_cast<std::uint16_t>(size + kSpare);
    std::free(element->buffer);
    element->buffer = static_cast<unsigned char*>(std::calloc(1, element->capacity + kSlack));
    if (element->buffer == nullptr) {
      std::free(element);
      return nullptr;
    }
  }
  EnQueueElem(&hand->in_use_name_q, &element->q);
  return element;
}

void FS_ReleasePathOrName(FSYS_HAND_STRUCT* hand, FS_NAME_Q_ELEM** element) {
  if (element == nullptr || *element == nullptr || hand == nullptr) return;
  FS_NAME_Q_ELEM* theElem = *element;
  if (RemoveQueueElem(&hand->in_use_name_q, &theElem->q) != QUEUE_SUCCESS) {
    QB_Zprintf(0, L"FS_ReleasePathOrName: Error. RemoveQueueElem( &fsh->in_use_name_q, "
                  L"&theElem->q ) != SUCCESS\n");
  } else {
    EnQueueElem(&hand->avail_name_q, &theElem->q);
  }
  *element = nullptr;
}

void FS_FreeOSPathOrNameQueueInHand(FSYS_HAND_STRUCT* hand) {
  if (hand == nullptr) {
    QB_Zprintf(0, L"FS_FreeOSPathOrNameQueueInHand: Error. fsh == NULL \n");
    return;
  }
  if (QueueCount(&hand->avail_name_q) > kPoolLimit)
    QB_Zprintf(0, L"FS_FreeOSPathOrNameQueueInHand: Error. QueueCount( &fsh->avail_name_q  ) > 8 \n");
  if (QueueCount(&hand->in_use_name_q) != 0)
    QB_Zprintf(0, L"FS_FreeOSPathOrNameQueueInHand: Error. QueueCount( &fsh->in_use_name_q ) != 0 \n");
  free_queue(&hand->avail_name_q);
  free_queue(&hand->in_use_name_q);
}
