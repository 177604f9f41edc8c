// QB_Zprintf: formats with vswprintf, writes UTF-8 to standard error at or
// below the threshold, and hands every line to the capture hook.
//
// Two things are made independent of the process locale: narrow "%s"
// arguments are read as UTF-8 (formatting runs under a thread-local C.UTF-8
// locale when the system has one; the global locale is never changed), and
// the wide result is encoded to UTF-8 here instead of by the C library, which
// in the "C" locale would stop at the first non-ASCII character.
#include <qbhost/zprintf.h>

#include <atomic>
#include <cerrno>
#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <cwchar>
#include <locale.h>
#include <mutex>
#include <string>
#include <vector>

#include "utf8.h"

namespace {
std::atomic<int> g_threshold{0};
// Recursive so that a hook may install or remove hooks; a hook's own
// QB_Zprintf calls are not fed back to it (see t_in_hook).
std::recursive_mutex g_hook_mutex;
qbhost::zprintf_hook g_hook = nullptr;
void* g_hook_context = nullptr;
thread_local bool t_in_hook = false;

constexpr std::size_t kMaxChars = std::size_t{1} << 20;

// A C.UTF-8 locale object made once and never freed (it must outlive every
// thread that may still be formatting at exit); null when unavailable.
locale_t utf8_locale() {
  static locale_t const loc = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
  return loc;
}

// Formats into a buffer that grows until the text fits: vswprintf reports
// "too small" and "cannot convert" alike, except that the latter sets EILSEQ.
std::wstring format_line(wchar_t const* format, va_list args) {
  locale_t const loc = utf8_locale();
  locale_t const previous = (loc != static_cast<locale_t>(0)) ? uselocale(loc) : nullptr;
  std::wstring result;
  std::vector<wchar_t> buffer(512);
  for (;;) {
    va_list copy;
    va_copy(copy, args);
    errno = 0;
    int const n = std::vswprintf(buffer.data(), buffer.size(), format, copy);
    int const error = errno;
    va_end(copy);
    if (n >= 0) {
      result.assign(buffer.data(), static_cast<std::size_t>(n));
      break;
    }
    if (error == EILSEQ) {
      result = L"<QB_Zprintf: an argument is not valid text> ";
      result += format;
      break;
    }
    if (buffer.size() >= kMaxChars) {
      result = L"<QB_Zprintf: message too long> ";
      result += format;
      break;
    }
    buffer.resize(buffer.size() * 4);
  }
  if (previous != nullptr) uselocale(previous);
  return result;
}
}  // namespace

int QB_Zprintf(int level, wchar_t const* format, ...) {
  if (format == nullptr) return -1;
  try {
    int const saved_errno = errno;  // a diagnostic must not disturb the caller's errno
    va_list args;
    va_start(args, format);
    std::wstring const line = format_line(format, args);
    va_end(args);

    {
      std::lock_guard<std::recursive_mutex> lock(g_hook_mutex);
      if (g_hook != nullptr && !t_in_hook) {
        t_in_hook = true;
        g_hook(g_hook_context, level, line.c_str());
        t_in_hook = false;
      }
    }
    if (level <= g_threshold.load(std::memory_order_relaxed)) {
      std::string text = qbhost_detail::encode_utf8(line.data(), line.size());
      if (text.empty() || text.back() != '\n') text.push_back('\n');
      // One write per line so that lines from several threads do not mix.
      std::fwrite(text.data(), 1, text.size(), stderr);
    }
    errno = saved_errno;
    return static_cast<int>(line.size());
  } catch (...) {
    t_in_hook = false;
    return -1;
  }
}

namespace qbhost {
void zprintf_set_threshold(int level) { g_threshold.store(level, std::memory_order_relaxed); }
int zprintf_threshold() { return g_threshold.load(std::memory_order_relaxed); }
void zprintf_set_hook(zprintf_hook hook, void* context) {
  std::lock_guard<std::recursive_mutex> lock(g_hook_mutex);
  g_hook = hook;
  g_hook_context = context;
}
}  // namespace qbhost
