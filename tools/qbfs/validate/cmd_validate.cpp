// `qbfs validate MODULE.so`: the conformance checker a module author runs
// before shipping. Every check runs in a child process of its own with a time
// limit (isolated_check.h), in the order the agent meets the module; a check
// whose ground was not laid (an earlier check failed or was skipped) is
// skipped and says which.
#include <sys/stat.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "../arguments.h"
#include "../commands.h"
#include "isolated_check.h"
#include "layer_checks.h"
#include "layer_harness.h"
#include "module_checks.h"
#include "object_checks.h"
#include "validate_options.h"

namespace qbfs {
namespace {

using validate::CheckResult;
using validate::ValidateOptions;

constexpr int kExitPassed = 0;
constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;
// parse() result: help was asked for and shown.
constexpr int kHelpShown = -1;

constexpr char kValidateUsage[] =
    "usage: qbfs validate [options] MODULE.so\n"
    "  --json             write the report as one JSON object\n"
    "  --seed N           seed of the read sizes (default: from the clock; printed)\n"
    "  --root DIR         offer DIR to the module as a backup root (repeatable)\n"
    "  --write DIR        restore the files read into DIR through the module and\n"
    "                     compare them (DIR outside the roots)\n"
    "  --timeout SECS     time limit of each check (default 20)\n"
    "  --cycles N         attach/detach cycles (default 50)\n"
    "  --max-objects N    objects walked per element (default 200)\n"
    "  --max-elements N   elements attached (default 4)\n";

struct CheckStep {
  char const* id;
  CheckResult (*run)(ValidateOptions const&);
  char const* needs;  // the check that must have passed first, or null
};

// In the order the agent meets a module.
constexpr CheckStep kSteps[] = {
    {"load", validate::check_load, nullptr},
    {"entry-points", validate::check_entry_points, "load"},
    {"interface-version", validate::check_interface_version, "load"},
    {"tables", validate::check_tables, "entry-points"},
    {"slots", validate::check_slots, "tables"},
    {"start-up", validate::check_start_up, "tables"},
    {"find-drives", validate::check_find_drives, "start-up"},
    {"attach-detach", validate::check_attach_detach, "find-drives"},
    {"attach-leaks", validate::check_attach_leaks, "attach-detach"},
    {"null-arguments", validate::check_null_arguments, "attach-detach"},
    {"walk", validate::check_walk, "attach-detach"},
    {"read-framing", validate::check_read_framing, "walk"},
    {"restore", validate::check_restore, "read-framing"},
    {"shut-down", validate::check_shut_down, "start-up"},
};

bool parse_count(char const* text, unsigned& out) {
  char* end = nullptr;
  unsigned long const v = std::strtoul(text, &end, 10);
  if (end == text || *end != '\0' || text[0] == '-' || v == 0 || v > 1000000) return false;
  out = static_cast<unsigned>(v);
  return true;
}

bool is_directory(char const* path) {
  struct stat st {};
  return stat(path, &st) == 0 && S_ISDIR(st.st_mode);
}

// Returns 0 when the arguments are good, kHelpShown after printing the help,
// else prints why and returns kExitUsage.
int parse(Options const& global, int argc, char** argv, ValidateOptions& options) {
  options.roots = global.roots;
  options.drive_scan = global.drive_scan;
  options.seed = static_cast<std::uint64_t>(
      std::chrono::steady_clock::now().time_since_epoch().count());
  Arguments args;
  if (int const rc = parse_arguments(argc, argv, "qbfs validate",
                                     {{nullptr, "--json", false},
                                      {nullptr, "--seed", true},
                                      {nullptr, "--root", true},
                                      {nullptr, "--write", true},
                                      {nullptr, "--timeout", true},
                                      {nullptr, "--cycles", true},
                                      {nullptr, "--max-objects", true},
                                      {nullptr, "--max-elements", true}},
                                     args);
      rc != 0)
    return kExitUsage;
  if (args.help) {
    std::fputs(kValidateUsage, stdout);
    return kHelpShown;
  }
  for (auto const& [a, value] : args.options) {
    if (a == "--json") {
      options.json = true;
    } else if (a == "--seed") {
      char* end = nullptr;
      options.seed = std::strtoull(value.c_str(), &end, 10);
      if (*end != '\0' || value[0] == '-') {
        std::fprintf(stderr, "qbfs validate: --seed needs a number, not '%s'\n", value.c_str());
        return kExitUsage;
      }
    } else if (a == "--root") {
      if (!is_directory(value.c_str())) {
        std::fprintf(stderr, "qbfs validate: --root %s is not a directory\n", value.c_str());
        return kExitUsage;
      }
      options.roots.push_back(validate::wide(value));
    } else if (a == "--write") {
      options.write_dir = value;
      if (!is_directory(value.c_str())) {
        std::fprintf(stderr, "qbfs validate: --write %s is not a directory\n", value.c_str());
        return kExitUsage;
      }
    } else {
      unsigned& target = a == "--timeout"       ? options.timeout_seconds
                         : a == "--cycles"      ? options.attach_cycles
                         : a == "--max-objects" ? options.max_objects
                                                : options.max_elements;
      if (!parse_count(value.c_str(), target)) {
        std::fprintf(stderr, "qbfs validate: %s needs a whole number from 1 to 1000000, not '%s'\n",
                     a.c_str(), value.c_str());
        return kExitUsage;
      }
    }
  }
  if (args.operands.size() > 1) {
    std::fprintf(stderr, "qbfs validate: one module at a time (got '%s' and '%s')\n",
                 args.operands[0].c_str(), args.operands[1].c_str());
    return kExitUsage;
  }
  if (!args.operands.empty()) options.module = args.operands[0];
  if (options.module.empty()) {
    std::fputs(kValidateUsage, stderr);
    return kExitUsage;
  }
  // The loader searches its own paths for a bare name; the module meant is
  // the file named.
  if (options.module.find('/') == std::string::npos) options.module = "./" + options.module;
  return 0;
}

}  // namespace

int cmd_validate(Options const& global, int argc, char** argv) {
  ValidateOptions options;
  if (int const parsed = parse(global, argc, argv, options); parsed != 0)
    return parsed == kHelpShown ? kExitPassed : parsed;
  validate::Report report;
  for (CheckStep const& step : kSteps) {
    CheckResult const* needed = step.needs != nullptr ? report.find(step.needs) : nullptr;
    if (needed != nullptr && needed->outcome != validate::Outcome::passed) {
      report.add({step.id, validate::Outcome::skipped,
                  std::string("needs ") + step.needs + ", which " +
                      validate::outcome_name(needed->outcome)});
      continue;
    }
    report.add(validate::run_isolated(step.id, options.timeout_seconds,
                                      [&] { return step.run(options); }));
  }
  if (options.json) report.write_json(stdout, options.module, options.seed);
  else report.write_text(stdout, options.module, options.seed);
  return report.any_failed() ? kExitFailed : kExitPassed;
}

}  // namespace qbfs
