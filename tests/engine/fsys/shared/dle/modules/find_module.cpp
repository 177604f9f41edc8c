// A module serving index 15 whose find-drives adds one top-level element,
// "MOD-A", with a child "MOD-A\\child"; with module flag 1 it fails instead.
// Its remove-DLE counts the elements it frees.
#include <qbfsys/dle.h>
#include <qbfsys/gen.h>
#include <qbfsys/module.h>

namespace {
int g_removed = 0;

FS_STATUS find_drives(HEAD_DLE* head, QB_CFG* cfg) {
  if (cfg->module_flags & 1u) return 0xE0005555;
  GENERIC_DLE* machine = nullptr;
  FS_STATUS s = DLE_Create(head, nullptr, L"MOD-A", 15, 1, L'\\', &machine);
  if (s != FS_SUCCESS) return s;
  return DLE_Create(head, machine, L"MOD-A\\child", 15, 2, L'\\', nullptr);
}

FS_STATUS remove_dle(GENERIC_DLE* dle) {
  ++g_removed;
  return GEN_RemoveDLE(dle);
}
}  // namespace

FS_MODULE_EXPORT int GetTable(int n, unsigned int, _FUNC_LIST* out, int* index) {
  if (n != 0) return 0;
  _FUNC_LIST t{};
  t.InitFileSys = GEN_InitFileSys;
  t.FindDrives = find_drives;
  t.RemoveDLE = remove_dle;
  *out = t;
  *index = 15;
  return 1;
}

FS_MODULE_EXPORT int fm_removed() { return g_removed; }
