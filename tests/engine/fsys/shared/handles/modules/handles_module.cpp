// A module serving file systems 3 and 5 with open, attach, detach, close and
// machine-name slots whose results the test sets (handles_module_control.h).
// Elements are removed through the generic removal.
#include <cwchar>

#include <qbfsys/gen.h>
#include <qbfsys/module.h>

#include "handles_module_control.h"

namespace {
HandlesModuleControl g_control{};

FS_STATUS open_sys(FSYS_HAND_STRUCT*) {
  ++g_control.opens;
  return g_control.open_result;
}

FS_STATUS attach(FSYS_HAND_STRUCT*, GENERIC_DLE* dle, wchar_t*, wchar_t*) {
  ++g_control.attaches;
  g_control.last_attach_dle = dle;
  return g_control.attach_result;
}

FS_STATUS detach(FSYS_HAND_STRUCT*, void*, void**) {
  ++g_control.detaches;
  return g_control.detach_result;
}

FS_STATUS close_sys(FSYS_HAND_STRUCT*) {
  ++g_control.closes;
  return g_control.close_result;
}

// Writes at most 256 characters, whatever length it reports.
FS_STATUS machine_name(GENERIC_DLE*, wchar_t* name, unsigned int* length, int) {
  ++g_control.machine_queries;
  std::wcscpy(name, L"HOST");
  *length = g_control.machine_length;
  return g_control.machine_result;
}
}  // namespace

FS_MODULE_EXPORT int GetTable(int n, unsigned int, _FUNC_LIST* out, int* index) {
  if (n > 1) return 0;
  _FUNC_LIST t{};
  t.OpenSys = open_sys;
  t.AttachToDLE = attach;
  t.DetachDLE = detach;
  t.CloseSys = close_sys;
  t.GetMachineName = machine_name;
  t.RemoveDLE = GEN_RemoveDLE;
  *out = t;
  *index = n == 0 ? 3 : 5;
  return 1;
}

FS_MODULE_EXPORT HandlesModuleControl* hm_control() { return &g_control; }
