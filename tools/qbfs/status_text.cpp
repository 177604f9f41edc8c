#include "status_text.h"

#include <cstdio>

#include <qbfsys/fs_status.h>

namespace qbfs {

std::string describe_status(unsigned status) {
  char code[16];
  std::snprintf(code, sizeof code, "0x%08X", status);
  return std::string(FS_StatusText(status)) + " (" + code + ")";
}

}  // namespace qbfs
