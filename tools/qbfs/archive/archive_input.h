// Opens the archive a command reads: a file, or standard input for "-".
#pragma once
#include <string>

namespace qbfs::archive {

// The descriptor, or -1 with `why` filled (2 in `exit_code` for usage
// errors, 1 otherwise). The caller closes a descriptor other than 0.
int open_archive(std::string const& name, std::string& why, int& exit_code);

}  // namespace qbfs::archive
