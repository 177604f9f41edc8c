// Trace output of the layer through the host's debug-print interfaces.
//
// Each source path (e.g. "engine/fsys/shared/initfsys") has one print
// interface, made by the factory on first use and cached. A trace is
// formatted only when that interface exists and reports itself enabled, so a
// disabled trace costs one lookup. A format string that does not fit its
// arguments does not lose the trace: the text becomes "\nTRACE FORMAT ERROR:\n"
// followed by the formatter's message ("Undefined error." when it has none).
// Nothing here throws.
#pragma once
#include <boost/format.hpp>
#include <exception>
#include <initializer_list>
#include <string>
#include <qbfsys/fs_export.h>

namespace qbclass {

// True when the print interface for `source_path` exists and is enabled.
// False for a null path, a missing factory or when memory runs out.
FS_EXPORT bool debug_trace_enabled(char const* source_path) noexcept;

// Prints `text` as one trace line of `source_path` when that is enabled.
FS_EXPORT void debug_trace_text(char const* source_path, int line, std::string const& text) noexcept;

namespace debug_trace_details {

// "\nTRACE FORMAT ERROR:\n" followed by `message`, or by "Undefined error."
// when `message` is null or empty.
FS_EXPORT std::string format_error_text(char const* message);

template <class... A>
std::string format_text(char const* format, A const&... args) {
  try {
    if (format == nullptr) return format_error_text("null format string");
    boost::format f(format);
    (void)std::initializer_list<int>{((void)(f % args), 0)...};
    return f.str();
  } catch (std::exception const& e) {
    return format_error_text(e.what());
  } catch (...) {
    return format_error_text(nullptr);
  }
}

}  // namespace debug_trace_details

// Formats `format` with `args` (boost::format, narrow) and prints the result
// as one trace line, only when the interface for `source_path` is enabled.
template <class... A>
void debug_trace(char const* source_path, int line, char const* format, A const&... args) noexcept {
  try {
    if (!debug_trace_enabled(source_path)) return;
    debug_trace_text(source_path, line, debug_trace_details::format_text(format, args...));
  } catch (...) {
    // Out of memory while building the text: the trace is dropped.
  }
}

}  // namespace qbclass
