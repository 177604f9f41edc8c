// The hookup of the host's debug-print factory.
//
// The factory comes from the host's utility library (libqb_util.so), opened
// at first use and kept loaded for as long as the factory lives. A missing
// library or entry point is not an error: debug printing is then simply
// unavailable and factory() returns an empty pointer.
#pragma once
#include <map>
#include <mutex>
#include <string>
#include <qbclass/shared_ptr.h>
#include <qbclass/singleton.h>
#include <qbfsys/fs_export.h>
#include <qbhost/debug_print.h>

namespace qbclass {

class FS_EXPORT debug_print_keep_alive {
 public:
  // Opens the library by name and asks it for its factory.
  debug_print_keep_alive();
  debug_print_keep_alive(debug_print_keep_alive const&) = delete;
  debug_print_keep_alive& operator=(debug_print_keep_alive const&) = delete;

  // The process-wide instance; empty only after teardown at process exit.
  // Throws singleton_details::reentrant_exception when reached from its own
  // construction, std::bad_alloc when memory runs out.
  static shared_ptr<debug_print_keep_alive> instance();

  shared_ptr<debug_print_factory> const& factory() const noexcept { return factory_; }

  // The print interface of `source_path`, made by the factory on first
  // request and cached; empty without a factory. Throws std::bad_alloc.
  shared_ptr<debug_print_interface> print_interface(std::string const& source_path);

  // The name the library is opened by, and its entry point.
  static constexpr char const* library_name = "libqb_util.so";
  static constexpr char const* entry_point = "get_debug_print_factory";

 private:
  // Declared first: the cached interfaces go before the factory, and the
  // factory before the library that holds their code.
  shared_ptr<debug_print_factory> factory_;
  std::mutex cache_lock_;
  std::map<std::string, shared_ptr<debug_print_interface>> cache_;
};

}  // namespace qbclass
