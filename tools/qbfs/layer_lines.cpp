#include "layer_lines.h"

#include <atomic>
#include <string_view>

#include "archive/archive_terminal_text.h"

namespace qbfs {
namespace {

constexpr int kHostSilent = -1;  // the host runtime's threshold that prints nothing

std::atomic<int> g_level{0};

// The receiver now installed (null: standard error); only the thread that
// runs the command starts and ends redirects.
LineRedirect::Receiver const* g_current = nullptr;

// The receiver travels as the host hook's context, which the host swaps
// under its lock: a line printed on another thread meets either the old
// receiver or the new one, never half of each.
void dispatch_layer_line(void* context, int level, wchar_t const* line) {
  auto const* receiver = static_cast<LineRedirect::Receiver const*>(context);
  if (receiver != nullptr) {
    if (receiver->sink != nullptr) receiver->sink(receiver->context, level, line);
    return;
  }
  if (level <= g_level.load(std::memory_order_relaxed)) print_layer_line(stderr, line);
}

}  // namespace

void take_layer_lines(int level) {
  g_level.store(level, std::memory_order_relaxed);
  qbhost::zprintf_set_threshold(kHostSilent);
  qbhost::zprintf_set_hook(&dispatch_layer_line, const_cast<LineRedirect::Receiver*>(g_current));
}

int layer_lines_level() { return g_level.load(std::memory_order_relaxed); }

void print_layer_line(std::FILE* out, wchar_t const* line) {
  if (line == nullptr) return;
  std::wstring_view rest = line;
  do {
    std::size_t const end = rest.find(L'\n');
    std::fprintf(out, "%s\n", archive::terminal_text(rest.substr(0, end)).c_str());
    rest.remove_prefix(end == std::wstring_view::npos ? rest.size() : end + 1);
  } while (!rest.empty());
}

LineRedirect::LineRedirect(qbhost::zprintf_hook sink, void* context)
    : receiver_{sink, context}, previous_(g_current) {
  g_current = &receiver_;
  qbhost::zprintf_set_hook(&dispatch_layer_line, &receiver_);
}

LineRedirect::~LineRedirect() {
  g_current = previous_;
  qbhost::zprintf_set_hook(&dispatch_layer_line, const_cast<Receiver*>(previous_));
}

}  // namespace qbfs
