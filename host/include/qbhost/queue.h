// Host queues: counted, doubly linked lists of intrusive elements.
//
// An element records the queue that holds it, so removing an element that is
// not in the given queue is detected and refused instead of corrupting it.
// Elements are plain records: a structure that begins with a _Q_ELEM can be
// queued and its address used as the element's.
#pragma once
#include <cstddef>
#include <cstdint>
#include <qbhost/export.h>

struct _Q_HEADER;

struct _Q_ELEM {
  _Q_ELEM* q_prev;      // previous element, null at the head
  _Q_ELEM* q_next;      // next element, null at the tail
  _Q_HEADER* q_owner;   // the queue that holds the element, null when in none
  void* q_ptr;          // free for the owner of the element
};

struct _Q_HEADER {
  _Q_ELEM* q_head;
  _Q_ELEM* q_tail;
  std::int32_t q_count;
  std::int32_t q_reserved;
};

static_assert(sizeof(_Q_ELEM) == 32, "_Q_ELEM is shared with modules");
static_assert(offsetof(_Q_ELEM, q_prev) == 0 && offsetof(_Q_ELEM, q_next) == 8,
              "a queued record's first words are its links");
static_assert(sizeof(_Q_HEADER) == 24, "_Q_HEADER is shared with modules");
static_assert(offsetof(_Q_HEADER, q_count) == 16, "count follows the two links");

// Results of the queue operations that can fail.
enum : int { QUEUE_SUCCESS = 0, QUEUE_FAILURE = -1 };

QBHOST_API void InitQueue(_Q_HEADER* queue);
// Clears an element's links (it then belongs to no queue).
QBHOST_API void InitQElem(_Q_ELEM* element);
// Appends at the tail. Fails when the element already sits in a queue.
QBHOST_API int EnQueueElem(_Q_HEADER* queue, _Q_ELEM* element);
// Inserts after `after`, or at the head when `after` is null. Fails when
// `after` is not in the queue or the element already sits in one.
QBHOST_API int InsertElem(_Q_HEADER* queue, _Q_ELEM* after, _Q_ELEM* element);
// Removes and returns the head element, or null for an empty queue.
QBHOST_API _Q_ELEM* DeQueueElem(_Q_HEADER* queue);
// Removes the element; QUEUE_FAILURE when it is not in this queue.
QBHOST_API int RemoveQueueElem(_Q_HEADER* queue, _Q_ELEM* element);
QBHOST_API int QueueCount(_Q_HEADER const* queue);

// Walking helpers; each returns null past the end or for a null argument.
QBHOST_API _Q_ELEM* QueueHead(_Q_HEADER const* queue);
QBHOST_API _Q_ELEM* QueueTail(_Q_HEADER const* queue);
QBHOST_API _Q_ELEM* QueueNext(_Q_ELEM const* element);
QBHOST_API _Q_ELEM* QueuePrev(_Q_ELEM const* element);
