// FS_StatusText and FS_StatusName: a status in words, and its constant's
// name, from the rows of FS_STATUS_LIST.
#include <qbfsys/fs_status.h>

namespace {

struct StatusRow {
  FS_STATUS code;
  char const* name;
  char const* words;
};

#define FS_STATUS_ROW_(name, code, words) {code, #name, words},
constexpr StatusRow kRows[] = {FS_STATUS_LIST(FS_STATUS_ROW_)};
#undef FS_STATUS_ROW_

// A code listed twice would give the second row's words no reader.
constexpr bool codes_distinct() {
  for (StatusRow const& a : kRows)
    for (StatusRow const& b : kRows)
      if (&a != &b && a.code == b.code) return false;
  return true;
}
static_assert(codes_distinct(), "each status code has one row");

constexpr char kUnknown[] = "unknown status";

// A linear search: about two dozen rows, read once per message.
StatusRow const* find(unsigned int status) {
  for (StatusRow const& row : kRows)
    if (row.code == status) return &row;
  return nullptr;
}

}  // namespace

char const* FS_StatusText(unsigned int status) {
  StatusRow const* row = find(status);
  return row != nullptr ? row->words : kUnknown;
}

char const* FS_StatusName(unsigned int status) {
  StatusRow const* row = find(status);
  return row != nullptr ? row->name : nullptr;
}
