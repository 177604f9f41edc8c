// The host's debug print: every diagnostic of the layer and its modules.
//
// QB_Zprintf formats with the wide printf family (vswprintf): "%ls" takes a
// wide string, "%s" a narrow one in UTF-8, whatever the process locale. Lines
// reach standard error in UTF-8, with a newline added when missing. A line is written to standard error when its
// level is at or below the threshold (default 0; -1 silences standard error).
// Independently of the threshold, a hook (if set) receives every line, whatever
// its level, which is how tests capture messages.
#pragma once
#include <qbhost/export.h>

QBHOST_API int QB_Zprintf(int level, wchar_t const* format, ...);

namespace qbhost {
using zprintf_hook = void (*)(void* context, int level, wchar_t const* line);

// Lines with a level above the threshold are not written to standard error.
QBHOST_API void zprintf_set_threshold(int level);
QBHOST_API int zprintf_threshold();
// Install (or, with a null function, remove) the capture hook.
QBHOST_API void zprintf_set_hook(zprintf_hook hook, void* context);
}  // namespace qbhost
