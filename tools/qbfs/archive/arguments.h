// Small helpers for the archive commands' arguments.
#pragma once
#include <cstdio>
#include <string>

namespace qbfs::archive {

// Takes the value of option argv[i] into `out` (advancing i). Prints
// "<command>: OPTION needs a value" and returns false when there is none
// or it is empty.
// Usage error: the message, then how to get help. Returns exit code 2.
inline int usage_error(char const* command, std::string const& text) {
  std::fprintf(stderr, "%s: %s\n(see: %s --help)\n", command, text.c_str(), command);
  return 2;
}

inline bool take_value(int& i, int argc, char** argv, char const* command, std::string& out) {
  if (i + 1 >= argc || argv[i + 1][0] == '\0') {
    usage_error(command, std::string(argv[i]) + " needs a value");
    return false;
  }
  out = argv[++i];
  return true;
}

}  // namespace qbfs::archive
