// While alive, the host's debug-print lines go to standard output instead of
// standard error, escaped for the terminal (layer_lines.h): for sub-commands
// whose result is printed by the layer.
#pragma once
#include <cstdio>

#include "layer_lines.h"

namespace qbfs {

class StdoutLines {
 public:
  enum filter { as_printed, without_addresses };

  // With `without_addresses`, the " address <pointer>" part of each line is
  // left out: output a person reads carries no pointers.
  explicit StdoutLines(filter f = as_printed)
      : redirect_(&StdoutLines::print, f == without_addresses ? &kDropAddresses : nullptr) {}
  ~StdoutLines() {
    std::fflush(stdout);  // keep the order with what later goes to standard error
  }
  StdoutLines(StdoutLines const&) = delete;
  StdoutLines& operator=(StdoutLines const&) = delete;

 private:
  static void print(void* filter, int, wchar_t const* line);
  static int kDropAddresses;  // its address marks the filter
  LineRedirect redirect_;
};

}  // namespace qbfs
