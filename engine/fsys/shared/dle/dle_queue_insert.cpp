// DLE_QueueInsert: the sibling order of a DLE list.
//
// Drive-letter names ("C:") order among themselves by their first character
// alone; every other element orders by type, subtype and name. A non-drive
// element is compared by type even against drive letters, so one of a
// smaller type stands before them: this unevenness is intended.
#include <qbfsys/dle.h>
#include <qbhost/strings.h>

namespace {

bool is_drive_letter(wchar_t const* name) {
  return name != nullptr && name[0] != L'\0' && name[1] == L':' && name[2] == L'\0';
}

// True when `dle` goes before `e`.
bool goes_before(GENERIC_DLE const* dle, GENERIC_DLE const* e) {
  wchar_t const* name = dle->device_name;
  if (is_drive_letter(name)) return !is_drive_letter(e->device_name) || name[0] < e->device_name[0];
  if (dle->type != e->type) return dle->type < e->type;
  if (dle->subtype != e->subtype) return dle->subtype < e->subtype;
  return QB::stricmp_internal(name, e->device_name) < 0;
}

}  // namespace

void DLE_QueueInsert(HEAD_DLE* head, GENERIC_DLE* dle) {
  if (head == nullptr || dle == nullptr) return;
  _Q_HEADER* queue = &head->dle_q;
  _Q_ELEM* previous = nullptr;
  for (_Q_ELEM* e = queue->q_head; e != nullptr; e = e->q_next) {
    if (goes_before(dle, reinterpret_cast<GENERIC_DLE*>(e))) {
      InsertElem(queue, previous, &dle->q);
      return;
    }
    previous = e;
  }
  EnQueueElem(queue, &dle->q);
}
