// What a module's entry point threw, and which module it was, for the trace
// that reports it.
#pragma once
#include <exception>
#include <string>

#include <qbfsys/registry.h>
#include <qbhost/strings.h>

namespace fsys {

// The message of the exception being handled: its what(), or a fixed text
// when it is not a std::exception. Call only inside a catch block.
inline std::string current_exception_text() {
  try {
    throw;
  } catch (std::exception const& e) {
    return e.what();
  } catch (...) {
    return "an exception that is not a std::exception";
  }
}

// The file name of the module serving file system `index` (0..50), or "the
// generic file system" when no module does.
inline std::string module_name_of(unsigned long index) {
  if (index >= dlls.size() || !dlls[index]) return "the generic file system";
  return wcstring(dlls[index]->name).to_utf8();
}

}  // namespace fsys
