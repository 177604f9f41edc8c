// Sub-commands of the qbfs command-line host. Each takes the arguments that
// follow the global options, argv[0] being the sub-command's name, and
// returns the process exit code.
#pragma once
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
int cmd_ls(int argc, char** argv);
// These two need no started layer.
int cmd_match(int argc, char** argv);
int cmd_props(int argc, char** argv);

}  // namespace qbfs
