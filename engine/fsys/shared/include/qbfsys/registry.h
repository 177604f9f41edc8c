// The registry of the 51 file systems: their function tables, their per-index
// objects, the modules that filled them and the two ordering arrays.
#pragma once
#include <cstdint>
#include <vector>

#include <qbfsys/dll_instance.h>
#include <qbfsys/fs_dle_base.h>
#include <qbfsys/fs_export.h>
#include <qbfsys/func_list.h>

constexpr unsigned FS_MAX_FSYS = 51;  // file-system indices 0..50

// Element i holds the module that filled table i (null when none did).
FS_EXPORT extern std::vector<RefPointer<DllInstance>> dlls;
// Pass in which file system i finds drives / resolves device names; 0 never.
FS_EXPORT extern std::int32_t find_order[FS_MAX_FSYS];
FS_EXPORT extern std::int32_t resolve_order[FS_MAX_FSYS];
// The built-in generic table every index starts with, and a pointer to it.
FS_EXPORT extern _FUNC_LIST _GENFuncTab;
FS_EXPORT extern _FUNC_LIST* __func_tab_ptr_GEN;

// Stores the address of the first of the 51 registry tables (entry i is the
// table of file system i). Never fails; a null `out` is ignored.
FS_EXPORT void get_func_tabs(_FUNC_LIST** out);
FS_EXPORT _FUNC_LIST GetFuncTable_GEN();
FS_EXPORT _FUNC_LIST* GetFuncTablePtr_GEN();
FS_EXPORT FS_DleBase* get_DLE_fsysObjPtr(unsigned long index);
FS_EXPORT void set_DLE_fsysObjPtr(unsigned long index, FS_DleBase* object);
// What slot 0 of table `index` makes for the index, or null.
FS_EXPORT FS_DleBase* FS_CreateDleAgent(unsigned int index);
