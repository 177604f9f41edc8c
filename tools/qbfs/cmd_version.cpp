// `qbfs version`: what was built (the layer's build record).
#include <cstdio>

#include <qbfsys/buildinfo.h>

#include "arguments.h"
#include "commands.h"

namespace qbfs {
namespace {

constexpr char kCommand[] = "qbfs version";
constexpr char kHelp[] =
    "usage: qbfs version\n"
    "\n"
    "Shows the layer's version and interface, the compiler, the build type,\n"
    "the source revision and the sanitizers it was built with.\n";

}  // namespace

int cmd_version(Options const& /*options*/, int argc, char** argv) {
  Arguments args;
  if (int const rc = parse_arguments(argc, argv, kCommand, {}, args); rc != 0) return rc;
  if (args.help) return std::fputs(kHelp, stdout), 0;
  if (!args.operands.empty()) return usage_error(kCommand, "takes no arguments");
  std::printf("qbfs %s (layer interface %u)\ncompiler: %s\nbuild: %s\nrevision: %s\n",
              buildinfo.version, buildinfo.interface_version, buildinfo.compiler,
              buildinfo.build_type, buildinfo.source_revision);
  if (buildinfo.sanitizers[0] != '\0') std::printf("sanitizers: %s\n", buildinfo.sanitizers);
  return 0;
}

}  // namespace qbfs
