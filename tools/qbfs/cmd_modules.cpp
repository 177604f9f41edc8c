// `qbfs modules`: start the layer, show what each of the 51 file-system
// indices is served by, shut down.
#include <cstdio>
#include <cstring>
#include <string>

#include <qbfsys/registry.h>
#include <qbhost/strings.h>

#include "archive/archive_terminal_text.h"
#include "arguments.h"
#include "commands.h"
#include "layer_session.h"
#include "status_text.h"

namespace qbfs {

int cmd_modules(Options const& options, int argc, char** argv) {
  static constexpr char kCommand[] = "qbfs modules";
  static constexpr char kHelp[] =
      "usage: qbfs modules\n"
      "\n"
      "Starts the layer with the modules and shows, for each of the 51\n"
      "file-system indices, whether it finds drives, resolves names or serves\n"
      "objects, and which module serves it (else the generic file system).\n";
  Arguments args;
  if (int const rc = parse_arguments(argc, argv, kCommand, {}, args); rc != 0) return rc;
  if (args.help) return std::fputs(kHelp, stdout), 0;
  if (!args.operands.empty()) return usage_error(kCommand, "takes no arguments");
  LayerSession session(options);
  std::printf("start-up: %s\n", describe_status(session.status()).c_str());

  _FUNC_LIST* tables = nullptr;
  get_func_tabs(&tables);
  std::printf("index  find  resolve  object  served by\n");
  for (unsigned i = 0; i < FS_MAX_FSYS; ++i) {
    bool generic = std::memcmp(&tables[i], &_GENFuncTab, sizeof(_FUNC_LIST)) == 0;
    std::string by = "generic";
    if (dlls[i]) {
      by = archive::terminal_text(dlls[i]->name);
    } else if (!generic) {
      by = "(table of an unloaded module)";
    }
    std::printf("%5u  %4d  %7d  %-6s  %s\n", i, find_order[i], resolve_order[i],
                get_DLE_fsysObjPtr(i) ? "yes" : "no", by.c_str());
  }
  return session.usable() ? 0 : 1;
}

}  // namespace qbfs
