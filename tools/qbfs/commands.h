// Sub-commands of the qbfs command-line host. Each takes the arguments that
// follow the global options, argv[0] being the sub-command's name, and
// returns the process exit code.
#pragma once
#include <cstddef>
#include <string>
#include <vector>

namespace qbfs {

// Options shared by the sub-commands that start the layer.
struct Options {
  std::vector<std::wstring> modules;  // module files handed to FS_InitFileSys
  bool drive_scan = false;            // QB_CFG drive-scan flag
  std::vector<std::wstring> roots;    // directory roots offered by the modules
  bool quiet = false;                 // layer messages off
  bool trace = false;                 // debug-print traces on
};

int cmd_modules(Options const& options, int argc, char** argv);
int cmd_tree(Options const& options, int argc, char** argv);
int cmd_attach(Options const& options, int argc, char** argv);
// Conformance check of one module (validate/cmd_validate.cpp).
int cmd_validate(Options const& options, int argc, char** argv);
// The archive commands (archive/cmd_*.cpp).
int cmd_backup(Options const& options, int argc, char** argv);
int cmd_restore(Options const& options, int argc, char** argv);
int cmd_verify(Options const& options, int argc, char** argv);
int cmd_ls(Options const& options, int argc, char** argv);
// These need no started layer.
int cmd_match(Options const& options, int argc, char** argv);
int cmd_props(Options const& options, int argc, char** argv);
int cmd_version(Options const& options, int argc, char** argv);

// One sub-command: its name, whether it starts the layer (the modules are
// checked before it runs), the function that runs it, and its entry in the
// tool's help. Every command answers --help with its own usage.
struct Command {
  char const* name;
  bool starts_layer;
  int (*run)(Options const& options, int argc, char** argv);
  char const* synopsis;  // "backup SRC... -o ARCHIVE"
  char const* summary;   // what it does, lines of at most 50 characters
};

// Every sub-command, in the order the help lists them (commands.cpp).
extern Command const kCommands[];
extern std::size_t const kCommandCount;
// The command named `name`, or null.
Command const* find_command(std::string const& name);

}  // namespace qbfs
