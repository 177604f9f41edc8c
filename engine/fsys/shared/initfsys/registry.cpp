// The registry: 51 function tables, 51 per-index objects, the modules that
// filled them and the two ordering arrays.
#include <qbfsys/registry.h>

#include "fs_registry_access.h"
#include "module_exception.h"
#include <qbclass/debug_trace.h>
#include <qbhost/zprintf.h>

namespace {
constexpr char kTracePath[] = "engine/fsys/shared/initfsys";
constexpr int kTraceLineCreateThrew = 1495;
_FUNC_LIST g_tables[FS_MAX_FSYS];
FS_DleBase* g_objects[FS_MAX_FSYS];
}  // namespace

std::vector<RefPointer<DllInstance>> dlls(FS_MAX_FSYS);
std::int32_t find_order[FS_MAX_FSYS];
std::int32_t resolve_order[FS_MAX_FSYS];

void get_func_tabs(_FUNC_LIST** out) {
  if (out != nullptr) *out = g_tables;
}

_FUNC_LIST GetFuncTable_GEN() { return *__func_tab_ptr_GEN; }

_FUNC_LIST* GetFuncTablePtr_GEN() { return __func_tab_ptr_GEN; }

FS_DleBase* get_DLE_fsysObjPtr(unsigned long index) {
  if (index >= FS_MAX_FSYS) {
    QB_Zprintf(0, L"get_DLE_fsysObjPtr: Bad file system index Parameter at line number %d", 55);
    return nullptr;
  }
  return g_objects[index];
}

void set_DLE_fsysObjPtr(unsigned long index, FS_DleBase* object) {
  if (index >= FS_MAX_FSYS) {
    QB_Zprintf(0, L"set_DLE_fsysObjPtr: Bad file system index Parameter at line number %d", 44);
    return;
  }
  g_objects[index] = object;
}

FS_DleBase* FS_CreateDleAgent(unsigned int index) {
  if (index >= FS_MAX_FSYS) {
    QB_Zprintf(0, L"FS_CreateObject: Bad file system index Parameter at line number %d", 1491);
    return nullptr;
  }
  FS_SLOT_CreateObject create = g_tables[index].CreateObject;
  if (create == nullptr) return nullptr;
  // A module's exception must not cross this exported function: the index
  // is then served by its table alone.
  try {
    return create(index);
  } catch (...) {
    qbclass::debug_trace(kTracePath, kTraceLineCreateThrew,
                         "%s threw while making the object of file system %d: %s",
                         fsys::module_name_of(index), index, fsys::current_exception_text());
    return nullptr;
  }
}

namespace fsys {
FS_DleBase* object_of(unsigned index) { return index < FS_MAX_FSYS ? g_objects[index] : nullptr; }
}  // namespace fsys
