// What a file-system module exports: "GetTable" or "Get64BitTable", and
// optionally "GetInterfaceVersion".
//
// Call n = 0, 1, 2, ... fills `*out` with one complete table and `*index` with
// the file-system index it serves, and returns non-zero; a zero result means
// there are no more tables. "GetTable" receives the 32-bit mask 0xFFFFFFFF,
// "Get64BitTable" the 64-bit mask 0xFFFFFFFFFFFFFFFF.
#pragma once
#include <qbfsys/func_list.h>

extern "C" {
typedef int FS_GetTable_fn(int n, unsigned int mask, _FUNC_LIST* out, int* index);
typedef int FS_Get64BitTable_fn(int n, unsigned long long mask, _FUNC_LIST* out, int* index);
// Optional: the interface version the module was built for, which is
// FS_MODULE_INTERFACE_VERSION of the headers it was compiled with. The
// layer does not call it; `qbfs validate` does, and reports a module built
// against another table layout before the layer meets its slots.
typedef int FS_GetInterfaceVersion_fn(void);
}

// Marks a module's entry points (GetTable, Get64BitTable,
// GetInterfaceVersion): C linkage, so the layer finds them by their plain
// names with dlsym, and default visibility, so they stay exported when the
// module is built with hidden visibility.
#define FS_MODULE_EXPORT extern "C" __attribute__((visibility("default")))
