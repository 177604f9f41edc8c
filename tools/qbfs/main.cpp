// qbfs: the command-line host of the file-system layer. It plays the agent
// process: it provides the host runtime, starts the layer with a list of
// modules, runs one sub-command and shuts the layer down.
#include <cstdio>
#include <cstring>
#include <string>

#include <qbclass/debug_print_keep_alive.h>
#include <qbfsys/buildinfo.h>
#include <qbhost/strings.h>
#include <qbhost/zprintf.h>

#include "commands.h"

namespace {

constexpr char kUsage[] =
    "usage: qbfs [options] <command> [arguments]\n"
    "\n"
    "Runs the backup agent's file-system layer from the command line.\n"
    "\n"
    "Commands:\n"
    "  tree [--brief]     build this machine's tree of backup elements (DLEs)\n"
    "                     and print it\n"
    "  attach PATH        attach to the element that holds a local path,\n"
    "                     report the result and detach\n"
    "  modules            load the modules and show which file system serves\n"
    "                     each of the 51 indices\n"
    "  match [-i] [--partial] [--segment | --flags N] SPEC NAME...\n"
    "                     print 0, 1 or 2 per name: how the file-specification\n"
    "                     matcher answers (no match, match, name too short)\n"
    "  props FILE [PATH]  load a property tree from XML, print it back and\n"
    "                     answer a path query\n"
    "  validate [--json] [--seed N] [--write DIR] ... MODULE.so\n"
    "                     check a module against what the layer expects of it,\n"
    "                     each check in a child process (validate --help)\n"
    "  version            show what was built\n"
    "\n"
    "Options:\n"
    "  -m, --module FILE  load this module (repeatable); replaces the default\n"
    "                     list of modules shipped beside the tool\n"
    "  --no-modules       load no module at all\n"
    "  --root DIR         offer DIR as a backup root (repeatable) instead of\n"
    "                     the mounted file systems\n"
    "  --drive-scan       set the configuration's drive-scan flag\n"
    "  -q, --quiet        do not show the layer's messages\n"
    "  -t, --trace        show the layer's debug traces\n"
    "  -h, --help         show this help\n"
    "\n"
    "Exit status: 0 on success, 1 when the command failed, 2 on bad usage.\n";

std::wstring widen(char const* text) { return wcstring::from_utf8(text, std::strlen(text)); }

// The modules shipped with the tool, in the order they are loaded.
void default_modules(qbfs::Options& options) {
  static char const* const kShipped[] = {"libqbposix.so"};
  for (char const* name : kShipped) {
    std::string path = std::string(QB_MODULE_DIR) + "/" + name;
    if (FILE* f = std::fopen(path.c_str(), "rb")) {
      std::fclose(f);
      options.modules.push_back(widen(path.c_str()));
    }
  }
}

int version() {
  std::printf("qbfs %s (layer interface %u)\ncompiler: %s\nbuild: %s\nrevision: %s\n",
              buildinfo.version, buildinfo.interface_version, buildinfo.compiler,
              buildinfo.build_type, buildinfo.source_revision);
  if (buildinfo.sanitizers[0] != '\0') std::printf("sanitizers: %s\n", buildinfo.sanitizers);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  qbfs::Options options;
  bool explicit_modules = false;
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
      std::fputs(kUsage, stdout);
      return 0;
    } else if (a == "-m" || a == "--module") {
      char const* v = value("--module");
      if (!v) return 2;
      options.modules.push_back(widen(v));
      explicit_modules = true;
    } else if (a == "--no-modules") {
      explicit_modules = true;
    } else if (a == "--root") {
      char const* v = value("--root");
      if (!v) return 2;
      options.roots.push_back(widen(v));
    } else if (a == "--drive-scan") {
      options.drive_scan = true;
    } else if (a == "-q" || a == "--quiet") {
      options.quiet = true;
    } else if (a == "-t" || a == "--trace") {
      options.trace = true;
    } else {
      std::fprintf(stderr, "qbfs: unknown option %s\n\n%s", argv[i], kUsage);
      return 2;
    }
  }
  if (i >= argc) {
    std::fputs(kUsage, stderr);
    return 2;
  }
  if (!explicit_modules) default_modules(options);
  qbhost::zprintf_set_threshold(options.quiet ? -1 : 0);
  if (options.trace) {
    auto keep = qbclass::debug_print_keep_alive::instance();
    if (keep && keep->factory()) keep->factory()->enable("", true);
  }

  std::string command = argv[i];
  int sub_argc = argc - i;
  char** sub_argv = argv + i;
  if (command == "tree") return qbfs::cmd_tree(options, sub_argc, sub_argv);
  if (command == "attach") return qbfs::cmd_attach(options, sub_argc, sub_argv);
  if (command == "modules") return qbfs::cmd_modules(options, sub_argc, sub_argv);
  if (command == "match") return qbfs::cmd_match(sub_argc, sub_argv);
  if (command == "props") return cmd_props(sub_argc, sub_argv);
  if (command == "validate") return qbfs::cmd_validate(options, sub_argc, sub_argv);
  if (command == "version") return version();
  std::fprintf(stderr, "qbfs: unknown command '%s'\n\n%s", command.c_str(), kUsage);
  return 2;
}
