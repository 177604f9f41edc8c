// QB_Zprintf: formats with vswprintf, writes to standard error at or below the
// threshold, and hands every line to the capture hook.
#include <qbhost/zprintf.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cwchar>
#include <mutex>
#include <vector>

namespace {
std::atomic<int> g_threshold{0};
std::mutex g_hook_mutex;
qbhost::zprintf_hook g_hook = nullptr;
void* g_hook_context = nullptr;

// Formats into a buffer that grows until the text fits (vswprintf gives no
// length hint, only failure). Gives up at 1 MiB characters with what it has.
std::wstring format_line(wchar_t const* format, va_list args) {
  std::vector<wchar_t> buffer(512);
  for (;;) {
    va_list copy;
    va_copy(copy, args);
    int n = std::vswprintf(buffer.data(), buffer.size(), format, copy);
    va_end(copy);
    if (n >= 0) return std::wstring(buffer.data(), static_cast<std::size_t>(n));
    if (buffer.size() >= (1u << 20)) return L"<QB_Zprintf: message could not be formatted>";
    buffer.resize(buffer.size() * 4);
  }
}
}  // namespace

int QB_Zprintf(int level, wchar_t const* format, ...) {
  if (format == nullptr) return -1;
  va_list args;
  va_start(args, format);
  std::wstring line = format_line(format, args);
  va_end(args);

  {
    std::lock_guard<std::mutex> lock(g_hook_mutex);
    if (g_hook != nullptr) g_hook(g_hook_context, level, line.c_str());
  }
  if (level <= g_threshold.load(std::memory_order_relaxed)) {
    // Standard error is byte-oriented here; write UTF-8 with a newline unless
    // the message already ends with one.
    std::fprintf(stderr, "%ls%s", line.c_str(),
                 (!line.empty() && line.back() == L'\n') ? "" : "\n");
  }
  return static_cast<int>(line.size());
}

namespace qbhost {
void zprintf_set_threshold(int level) { g_threshold.store(level, std::memory_order_relaxed); }
int zprintf_threshold() { return g_threshold.load(std::memory_order_relaxed); }
void zprintf_set_hook(zprintf_hook hook, void* context) {
  std::lock_guard<std::mutex> lock(g_hook_mutex);
  g_hook = hook;
  g_hook_context = context;
}
}  // namespace qbhost
