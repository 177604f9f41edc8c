// The host's per-thread last error code.
#pragma once
#include <qbhost/export.h>

// The calling thread's last error: the code last stored by SetLastError when
// non-zero, else the C library's errno.
QBHOST_API unsigned long GetLastError();
QBHOST_API void SetLastError(unsigned long code);
