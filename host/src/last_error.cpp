// GetLastError / SetLastError: a per-thread code that falls back to errno, so
// a failure reported only by the C library (dlopen, open) is still seen.
#include <qbhost/last_error.h>

#include <cerrno>

namespace {
thread_local unsigned long t_last_error = 0;
}

unsigned long GetLastError() {
  if (t_last_error != 0) return t_last_error;
  return static_cast<unsigned long>(errno);
}

void SetLastError(unsigned long code) { t_last_error = code; }
