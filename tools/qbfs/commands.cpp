// The table of sub-commands that main reads: what the tool's help lists, what
// starts the layer, and which function runs each.
#include "commands.h"

namespace qbfs {

Command const kCommands[] = {
    {"backup", true, cmd_backup, "backup [options] SOURCE... -o ARCHIVE",
     "back up directories or elements into an archive\n('-' for standard output)"},
    {"restore", true, cmd_restore, "restore ARCHIVE -C TARGET [PATH...]",
     "restore an archive, or some paths of it, into a\ndirectory or an element"},
    {"verify", true, cmd_verify, "verify ARCHIVE [--against TARGET]...",
     "check an archive's checksums, and compare it with\nwhat was backed up or its restored copy"},
    {"ls", false, cmd_ls, "ls [-l] ARCHIVE", "list the objects of an archive"},
    {"tree", true, cmd_tree, "tree [--brief]",
     "build this machine's tree of backup elements (DLEs)\nand print it"},
    {"attach", true, cmd_attach, "attach PATH",
     "attach to the element that holds a local path,\nreport the result and detach"},
    {"modules", true, cmd_modules, "modules",
     "load the modules and show which file system serves\neach of the 51 indices"},
    {"match", false, cmd_match, "match [-i] [--partial] [--segment | --flags N] SPEC NAME...",
     "print 0, 1 or 2 per name: how the file-specification\nmatcher answers (no match, match, name too short)"},
    {"props", false, cmd_props, "props FILE [PATH]",
     "load a property tree from an XML file, print it\nback and answer a path query"},
    {"validate", false, cmd_validate, "validate [options] MODULE.so",
     "check a module against what the layer expects of it,\neach check in a child process"},
    {"version", false, cmd_version, "version", "show what was built"},
};
std::size_t const kCommandCount = sizeof kCommands / sizeof kCommands[0];

Command const* find_command(std::string const& name) {
  for (Command const& c : kCommands)
    if (name == c.name) return &c;
  return nullptr;
}

}  // namespace qbfs
