// The host's debug-print objects, made by the factory that the utility
// library (libqb_util.so) hands out through its "get_debug_print_factory"
// entry point.
//
// A print interface belongs to one source path. It prints only while enabled;
// the factory enables or disables interfaces by source-path prefix, for the
// interfaces it made and those it will make. A printed trace line reads
// "<source path>(<line>): <text>" and goes to standard error, or to the
// capture hook when one is set.
//
// Interfaces start disabled, except that the environment variable QB_TRACE,
// when set to a comma-separated list of prefixes (QB_TRACE=engine), enables
// those when the factory is made. One factory serves the process at a time:
// the entry point returns the live one, or a new one when none is alive.
// Interfaces share the factory's settings and may outlive the factory, but
// not the library.
#pragma once
#include <qbclass/shared_ptr.h>

class debug_print_interface {
 public:
  virtual ~debug_print_interface() = default;
  virtual bool enabled() const = 0;
  // Prints one trace line (narrow text, UTF-8) when enabled.
  virtual void print(int line, char const* text) = 0;
  virtual char const* source_path() const = 0;
};

class debug_print_factory {
 public:
  virtual ~debug_print_factory() = default;
  // Never empty unless memory runs out.
  virtual qbclass::shared_ptr<debug_print_interface> create(char const* source_path) = 0;
  // Enables (or disables) every interface whose path begins with `prefix`;
  // the empty prefix means all.
  virtual void enable(char const* prefix, bool on) = 0;
  // Receives each printed line instead of standard error; null restores it.
  using hook = void (*)(void* context, char const* source_path, int line, char const* text);
  virtual void set_hook(hook function, void* context) = 0;
};

// The entry point's type; the symbol is looked up by its plain name.
extern "C" typedef void get_debug_print_factory_fn(qbclass::shared_ptr<debug_print_factory>* out);
