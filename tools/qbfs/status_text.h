// Status codes of the layer in words (FS_StatusText), for what qbfs prints.
#pragma once
#include <string>

namespace qbfs {

// "<meaning in words> (0x%08X)", e.g. "no file system initialized, or no
// drive found (0xE000FE46)"; a code the layer does not define reads
// "unknown status (0x...)".
std::string describe_status(unsigned status);

}  // namespace qbfs
