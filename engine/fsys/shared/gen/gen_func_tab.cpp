// _GENFuncTab: the generic file system's table, with which every registry
// index starts. Slots without a GEN operation stay null.
#include <qbfsys/gen.h>
#include <qbfsys/registry.h>

namespace {
_FUNC_LIST make_gen_table() {
  _FUNC_LIST t{};
  t.InitFileSys = GEN_InitFileSys;
  t.FindDrives = GEN_FindDrives;
  t.RemoveDLE = GEN_RemoveDLE;
  t.DeInitFileSys = GEN_DeInitFileSys;
  return t;
}
}  // namespace

_FUNC_LIST _GENFuncTab = make_gen_table();
_FUNC_LIST* __func_tab_ptr_GEN = &_GENFuncTab;
