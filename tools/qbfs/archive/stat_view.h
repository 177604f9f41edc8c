// What the archive commands show of an object described by the posix
// module: its stat record (read through the installed header
// qbposix/posix_os_info.h), when the object's OS info is one. Other
// modules' objects are shown by their generic description.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include <qbposix/posix_os_info.h>

#include "archive_format.h"

namespace qbfs::archive {

// The stat record of an object, when its OS info is the posix module's.
bool stat_view(std::uint8_t os_id, std::vector<unsigned char> const& os_info,
                qbposix::POSIX_OS_INFO& out);

// "drwxr-xr-x" from st_mode.
std::string mode_text(std::uint32_t mode);

// The differences that matter to a person between two stat records of the
// same object (type, permissions, owner, group, size of a regular file,
// modification time), in words; empty when there are none.
std::string posix_differences(qbposix::POSIX_OS_INFO const& archived,
                              qbposix::POSIX_OS_INFO const& found);

}  // namespace qbfs::archive
