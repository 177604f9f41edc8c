// The commands' arguments: options (with or without a value) and
// operands, read the same way by every command.
#pragma once
#include <cstdio>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "archive/archive_terminal_text.h"

namespace qbfs {

// Usage error: the message, then how to get help. Returns exit code 2.
inline int usage_error(char const* command, std::string const& text) {
  std::fprintf(stderr, "%s: %s\n(see: %s --help)\n", command, archive::terminal_text(text).c_str(), command);
  return 2;
}

// One option a command takes: its short and long spelling (either may be
// null) and whether a value follows it.
struct OptionSpec {
  char const* short_name;
  char const* long_name;
  bool takes_value;
};

struct Arguments {
  bool help = false;  // -h or --help was given
  // Options in the order given: the long spelling (else the short one) and
  // the value ("" for an option without one).
  std::vector<std::pair<std::string, std::string>> options;
  std::vector<std::string> operands;

  bool has(char const* name) const {
    for (auto const& o : options)
      if (o.first == name) return true;
    return false;
  }
  // The last value given to `name`, or "".
  std::string value(char const* name) const {
    std::string out;
    for (auto const& o : options)
      if (o.first == name) out = o.second;
    return out;
  }
};

// Reads argv[1..argc) against `specs`: "-h"/"--help" anywhere sets `help`,
// "--" makes the rest operands, "-" alone is an operand. Returns 0, or 2
// after printing a usage error (an unknown option, a missing or empty value).
inline int parse_arguments(int argc, char** argv, char const* command,
                           std::initializer_list<OptionSpec> specs, Arguments& out) {
  for (int i = 1; i < argc; ++i) {
    std::string const a = argv[i];
    if (a == "-h" || a == "--help") {
      out.help = true;
      continue;
    }
    if (a == "--") {  // what follows is operands, even when it starts with '-'
      for (++i; i < argc; ++i) out.operands.push_back(argv[i]);
      break;
    }
    if (a.size() < 2 || a[0] != '-') {
      out.operands.push_back(a);
      continue;
    }
    OptionSpec const* spec = nullptr;
    for (OptionSpec const& s : specs)
      if ((s.short_name != nullptr && a == s.short_name) || (s.long_name != nullptr && a == s.long_name)) spec = &s;
    if (spec == nullptr) return usage_error(command, "unknown option " + a);
    std::string value;
    if (spec->takes_value) {
      if (i + 1 >= argc || argv[i + 1][0] == '\0') return usage_error(command, a + " needs a value");
      value = argv[++i];
    }
    out.options.emplace_back(spec->long_name != nullptr ? spec->long_name : spec->short_name, value);
  }
  return 0;
}

// The flags every archive command but ls takes.
constexpr OptionSpec kVerbose{"-v", "--verbose", false};
constexpr OptionSpec kQuiet{"-q", "--quiet", false};

}  // namespace qbfs
