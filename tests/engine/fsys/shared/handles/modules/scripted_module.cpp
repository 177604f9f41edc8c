// The scripted object behind a function table, built as a module of its
// own. The test hands it a script through qbtest_set_object_script.
#include "scripted_object.h"

namespace {
qbtest::ObjectScript* g_script = nullptr;

FS_STATUS open_obj(FSYS_HAND_STRUCT* hand, _FILE_HAND_STRUCT** out, DBLK*, OPEN_MODE) {
  return qbtest::scripted_open(hand, out, g_script);
}
FS_STATUS close_obj(_FILE_HAND_STRUCT* obj, void**, void**) { return qbtest::scripted_close(obj); }

_FUNC_LIST make_table() {
  _FUNC_LIST t{};
  t.OpenObj = open_obj;
  t.ReadObj = qbtest::scripted_read;
  t.WriteObj = qbtest::scripted_write;
  t.CloseObj = close_obj;
  return t;
}
_FUNC_LIST g_table = make_table();
}  // namespace

extern "C" __attribute__((visibility("default"))) _FUNC_LIST* qbtest_scripted_table() { return &g_table; }
extern "C" __attribute__((visibility("default"))) void qbtest_set_object_script(qbtest::ObjectScript* s) {
  g_script = s;
}
