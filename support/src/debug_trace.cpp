// Trace output through the cached debug-print interface of a source path.
#include <qbclass/debug_trace.h>

#include <qbclass/debug_print_keep_alive.h>

namespace qbclass {
namespace {

// The enabled interface of `source_path`, or empty. Never throws: a trace
// must not change what the traced code does.
shared_ptr<debug_print_interface> enabled_interface(char const* source_path) noexcept {
  if (source_path == nullptr) return shared_ptr<debug_print_interface>();
  try {
    shared_ptr<debug_print_keep_alive> keep_alive = debug_print_keep_alive::instance();
    if (!keep_alive) return shared_ptr<debug_print_interface>();
    shared_ptr<debug_print_interface> out = keep_alive->print_interface(source_path);
    if (out && out->enabled()) return out;
  } catch (...) {
    // Out of memory, or a trace reached from the keep-alive's own
    // construction: no trace.
  }
  return shared_ptr<debug_print_interface>();
}

}  // namespace

bool debug_trace_enabled(char const* source_path) noexcept {
  return static_cast<bool>(enabled_interface(source_path));
}

void debug_trace_text(char const* source_path, int line, std::string const& text) noexcept {
  shared_ptr<debug_print_interface> out = enabled_interface(source_path);
  if (!out) return;
  try {
    out->print(line, text.c_str());
  } catch (...) {
    // A failing print loses this one line only.
  }
}

namespace debug_trace_details {

std::string format_error_text(char const* message) {
  std::string text = "\nTRACE FORMAT ERROR:\n";
  text += (message != nullptr && *message != '\0') ? message : "Undefined error.";
  return text;
}

}  // namespace debug_trace_details
}  // namespace qbclass
