// Placeholder until the property tree lands: `qbfs props` reports that it is
// not available in this build.
#include <cstdio>

#include "commands.h"

int cmd_props(int, char**) {
  std::fprintf(stderr, "qbfs props: the property tree is not part of this build yet\n");
  return 1;
}
