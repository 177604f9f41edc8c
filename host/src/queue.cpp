// Host queues. Every change checks the element's owner first, so a stale or
// foreign element is refused rather than unlinked from the wrong list.
#include <qbhost/queue.h>

namespace {

void link_after(_Q_HEADER* queue, _Q_ELEM* after, _Q_ELEM* element) {
  _Q_ELEM* next = (after != nullptr) ? after->q_next : queue->q_head;
  element->q_prev = after;
  element->q_next = next;
  element->q_owner = queue;
  if (after != nullptr) after->q_next = element;
  else queue->q_head = element;
  if (next != nullptr) next->q_prev = element;
  else queue->q_tail = element;
  ++queue->q_count;
}

void unlink(_Q_HEADER* queue, _Q_ELEM* element) {
  if (element->q_prev != nullptr) element->q_prev->q_next = element->q_next;
  else queue->q_head = element->q_next;
  if (element->q_next != nullptr) element->q_next->q_prev = element->q_prev;
  else queue->q_tail = element->q_prev;
  --queue->q_count;
  element->q_prev = nullptr;
  element->q_next = nullptr;
  element->q_owner = nullptr;
}

}  // namespace

void InitQueue(_Q_HEADER* queue) {
  if (queue == nullptr) return;
  queue->q_head = nullptr;
  queue->q_tail = nullptr;
  queue->q_count = 0;
  queue->q_reserved = 0;
}

void InitQElem(_Q_ELEM* element) {
  if (element == nullptr) return;
  element->q_prev = nullptr;
  element->q_next = nullptr;
  element->q_owner = nullptr;
}

int EnQueueElem(_Q_HEADER* queue, _Q_ELEM* element) {
  if (queue == nullptr || element == nullptr || element->q_owner != nullptr) return QUEUE_FAILURE;
  link_after(queue, queue->q_tail, element);
  return QUEUE_SUCCESS;
}

int InsertElem(_Q_HEADER* queue, _Q_ELEM* after, _Q_ELEM* element) {
  if (queue == nullptr || element == nullptr || element->q_owner != nullptr ||
      (after != nullptr && after->q_owner != queue))
    return QUEUE_FAILURE;
  link_after(queue, after, element);
  return QUEUE_SUCCESS;
}

_Q_ELEM* DeQueueElem(_Q_HEADER* queue) {
  if (queue == nullptr || queue->q_head == nullptr) return nullptr;
  _Q_ELEM* head = queue->q_head;
  unlink(queue, head);
  return head;
}

int RemoveQueueElem(_Q_HEADER* queue, _Q_ELEM* element) {
  if (queue == nullptr || element == nullptr || element->q_owner != queue) return QUEUE_FAILURE;
  unlink(queue, element);
  return QUEUE_SUCCESS;
}

int QueueCount(_Q_HEADER const* queue) { return queue != nullptr ? queue->q_count : 0; }

_Q_ELEM* QueueHead(_Q_HEADER const* queue) { return queue != nullptr ? queue->q_head : nullptr; }

_Q_ELEM* QueueTail(_Q_HEADER const* queue) { return queue != nullptr ? queue->q_tail : nullptr; }

_Q_ELEM* QueueNext(_Q_ELEM const* element) {
  return element != nullptr ? element->q_next : nullptr;
}

_Q_ELEM* QueuePrev(_Q_ELEM const* element) {
  return element != nullptr ? element->q_prev : nullptr;
}
