// Walking the DLE lists, and the simple name of an element.
#include <cwchar>

#include <qbfsys/dle.h>

namespace {

GENERIC_DLE* as_dle(_Q_ELEM* element) { return reinterpret_cast<GENERIC_DLE*>(element); }

// Moves from `dle` in one direction past hidden elements (unless they are
// wanted) and reports the end of the list.
FS_STATUS settle(GENERIC_DLE** cursor, GENERIC_DLE* dle, bool includeHidden, bool forward) {
  while (dle != nullptr && dle->hidden != 0 && !includeHidden)
    dle = as_dle(forward ? dle->q.q_next : dle->q.q_prev);
  *cursor = dle;
  return dle == nullptr ? FS_STATUS_NO_MORE_DLE : FS_SUCCESS;
}

}  // namespace

FS_STATUS DLE_GetFirst(HEAD_DLE* head, GENERIC_DLE** out, bool includeHidden) {
  if (out == nullptr) return FS_ERR_BAD_PARAMETER;
  if (head == nullptr) {
    *out = nullptr;
    return FS_STATUS_NO_MORE_DLE;
  }
  return settle(out, as_dle(head->dle_q.q_head), includeHidden, true);
}

FS_STATUS DLE_GetFirstChild(GENERIC_DLE* parent, GENERIC_DLE** out, bool includeHidden) {
  if (out == nullptr) return FS_ERR_BAD_PARAMETER;
  if (parent == nullptr) {
    *out = nullptr;
    return FS_STATUS_NO_MORE_DLE;
  }
  return settle(out, as_dle(parent->child_q.q_head), includeHidden, true);
}

FS_STATUS DLE_GetNext(GENERIC_DLE** cursor, bool includeHidden) {
  if (cursor == nullptr) return FS_ERR_BAD_PARAMETER;
  if (*cursor == nullptr) return FS_STATUS_NO_MORE_DLE;
  return settle(cursor, as_dle((*cursor)->q.q_next), includeHidden, true);
}

FS_STATUS DLE_GetPrev(GENERIC_DLE** cursor, bool includeHidden) {
  if (cursor == nullptr) return FS_ERR_BAD_PARAMETER;
  if (*cursor == nullptr) return FS_STATUS_NO_MORE_DLE;
  return settle(cursor, as_dle((*cursor)->q.q_prev), includeHidden, false);
}

wchar_t* DLE_GetSimpleName(GENERIC_DLE* dle) {
  if (dle == nullptr) return nullptr;
  if (dle->simple_name != nullptr) return dle->simple_name;
  wchar_t* name = dle->device_name;
  if (name == nullptr) return nullptr;
  wchar_t* last = dle->name_delimiter != L'\0' ? std::wcsrchr(name, dle->name_delimiter) : nullptr;
  return last != nullptr ? last + 1 : name;
}
