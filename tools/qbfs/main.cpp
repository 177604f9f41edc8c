// qbfs: the command-line host of the file-system layer. It plays the agent
// process: it provides the host runtime, starts the layer with a list of
// modules, runs one sub-command and shuts the layer down.
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <qbclass/debug_print_keep_alive.h>
#include <qbhost/strings.h>
#include <qbhost/zprintf.h>

#include "archive/archive_terminal_text.h"
#include "commands.h"
#include "layer_lines.h"
#include "module_check.h"

namespace {

// Arguments and the loader's reasons are printed escaped for the terminal.
std::string shown(std::string const& text) { return qbfs::archive::terminal_text(text); }

constexpr char kUsageHead[] =
    "usage: qbfs [options] <command> [arguments]\n"
    "\n"
    "Runs the backup agent's file-system layer from the command line.\n"
    "Each command answers --help with its own usage.\n"
    "\n"
    "Commands:\n";
constexpr char kUsageOptions[] =
    "\n"
    "Options:\n"
    "  -m, --module FILE  load this module (repeatable); replaces the default\n"
    "                     list of modules shipped beside the tool. Modules\n"
    "                     are checked before start-up: one that cannot be\n"
    "                     loaded is named with the reason\n"
    "  --no-modules       load no module at all\n"
    "  --root DIR         offer DIR as a backup root (repeatable) instead of\n"
    "                     the mounted file systems\n"
    "  --drive-scan       set the configuration's drive-scan flag\n"
    "  -q, --quiet        do not show the layer's messages\n"
    "  -t, --trace        show the layer's debug traces\n"
    "  -h, --help         show this help\n"
    "\n"
    "Exit status: 0 on success, 1 when the command failed, 2 on bad usage.\n"
    "Errors go to standard error.\n";

// The tool's help: the commands come from the command table.
void print_usage(std::FILE* out) {
  constexpr int kSummaryColumn = 21;
  std::fputs(kUsageHead, out);
  for (std::size_t c = 0; c < qbfs::kCommandCount; ++c) {
    qbfs::Command const& command = qbfs::kCommands[c];
    std::fprintf(out, "  %s\n", command.synopsis);
    std::string const summary = command.summary;
    std::size_t at = 0;
    while (at <= summary.size()) {
      std::size_t const end = std::min(summary.find('\n', at), summary.size());
      std::fprintf(out, "%*s%s\n", kSummaryColumn, "", summary.substr(at, end - at).c_str());
      at = end + 1;
    }
  }
  std::fputs(kUsageOptions, out);
}

std::wstring widen(char const* text) { return wcstring::from_utf8(text, std::strlen(text)); }

// The modules shipped with the tool, in the order they are loaded.
constexpr char const* kShippedModules[] = {"libqbposix.so"};

// Checks the modules before the layer sees them. A module named on the
// command line that cannot be loaded ends the run; a shipped one is left out
// with a warning, so that the commands that need no module still work.
bool prepare_modules(qbfs::Options& options, std::vector<std::string> const& named,
                     bool explicit_modules) {
  for (std::string const& path : named) {
    std::string why = qbfs::check_module(path);
    if (!why.empty()) {
      std::fprintf(stderr, "qbfs: module '%s' cannot be loaded: %s\n", shown(path).c_str(), shown(why).c_str());
      return false;
    }
    options.modules.push_back(widen(path.c_str()));
  }
  if (explicit_modules) return true;
  for (char const* name : kShippedModules) {
    std::string path = qbfs::shipped_module_dir() + "/" + name;
    std::string why = qbfs::check_module(path);
    if (why.empty()) {
      options.modules.push_back(widen(path.c_str()));
    } else {
      std::fprintf(
          stderr,
          "qbfs: warning: the default module '%s' cannot be loaded (%s); going on without it\n",
          shown(path).c_str(), shown(why).c_str());
    }
  }
  return true;
}

// A --root value must name an existing directory.
int check_root(char const* root) {
  if (root[0] == '\0') {
    std::fprintf(stderr, "qbfs: --root needs a directory, got an empty value\n");
    return 2;
  }
  struct stat st;
  if (stat(root, &st) != 0) {
    char const* const reason = std::strerror(errno);
    std::fprintf(stderr, "qbfs: --root '%s': %s\n", shown(root).c_str(), reason);
    return 1;
  }
  if (!S_ISDIR(st.st_mode)) {
    std::fprintf(stderr, "qbfs: --root '%s' is not a directory\n", shown(root).c_str());
    return 1;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  qbfs::Options options;
  std::vector<std::string> named_modules;
  bool explicit_modules = false;
  bool no_modules = false;
  int i = 1;
  for (; i < argc && argv[i][0] == '-'; ++i) {
    std::string a = argv[i];
    auto value = [&](char const* what) -> char const* {
      if (i + 1 >= argc) {
        std::fprintf(stderr, "qbfs: %s needs a value\n", what);
        return nullptr;
      }
      return argv[++i];
    };
    if (a == "-h" || a == "--help") {
      print_usage(stdout);
      return 0;
    } else if (a == "-m" || a == "--module") {
      char const* v = value("--module");
      if (!v) return 2;
      if (v[0] == '\0') {
        std::fprintf(stderr, "qbfs: --module needs a file name, got an empty value\n");
        return 2;
      }
      named_modules.push_back(v);
      explicit_modules = true;
    } else if (a == "--no-modules") {
      no_modules = true;
      explicit_modules = true;
    } else if (a == "--root") {
      char const* v = value("--root");
      if (!v) return 2;
      if (int rc = check_root(v)) return rc;
      options.roots.push_back(widen(v));
    } else if (a == "--drive-scan") {
      options.drive_scan = true;
    } else if (a == "-q" || a == "--quiet") {
      options.quiet = true;
    } else if (a == "-t" || a == "--trace") {
      options.trace = true;
    } else {
      std::fprintf(stderr, "qbfs: unknown option %s\n\n", shown(argv[i]).c_str());
      print_usage(stderr);
      return 2;
    }
  }
  if (i >= argc) {
    print_usage(stderr);
    return 2;
  }
  if (no_modules && !named_modules.empty()) {
    std::fprintf(stderr, "qbfs: --no-modules and --module cannot be given together\n");
    return 2;
  }
  qbfs::take_layer_lines(options.quiet ? -1 : 0);
  if (options.trace) {
    auto keep = qbclass::debug_print_keep_alive::instance();
    if (keep && keep->factory()) keep->factory()->enable("", true);
  }

  std::string const name = argv[i];
  qbfs::Command const* command = qbfs::find_command(name);
  if (command == nullptr) {
    std::fprintf(stderr, "qbfs: unknown command '%s'\n\n", shown(name).c_str());
    print_usage(stderr);
    return 2;
  }
  if (command->starts_layer && !prepare_modules(options, named_modules, explicit_modules)) return 1;
  return command->run(options, argc - i, argv + i);
}
