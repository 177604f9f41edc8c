// While alive, the host's debug-print lines go to standard output instead of
// standard error: for sub-commands whose result is printed by the layer.
#pragma once
#include <cstdio>

#include <qbhost/zprintf.h>

namespace qbfs {

class StdoutLines {
 public:
  enum filter { as_printed, without_addresses };

  // With `without_addresses`, the " address <pointer>" part of each line is
  // left out: output a person reads carries no pointers.
  explicit StdoutLines(filter f = as_printed) : threshold_(qbhost::zprintf_threshold()) {
    qbhost::zprintf_set_threshold(-1);
    qbhost::zprintf_set_hook(&StdoutLines::print,
                             f == without_addresses ? &kDropAddresses : nullptr);
  }
  ~StdoutLines() {
    std::fflush(stdout);  // keep the order with what later goes to standard error
    qbhost::zprintf_set_hook(nullptr, nullptr);
    qbhost::zprintf_set_threshold(threshold_);
  }
  StdoutLines(StdoutLines const&) = delete;
  StdoutLines& operator=(StdoutLines const&) = delete;

 private:
  static void print(void* filter, int, wchar_t const* line);
  static int kDropAddresses;  // its address marks the filter
  int threshold_;
};

}  // namespace qbfs
