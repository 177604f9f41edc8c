// Reading an object's extended attributes, and setting a restored object's
// metadata.
#pragma once
#include <string>
#include <vector>

#include "posix_streams.h"

namespace qbposix {

// The extended attributes of the object `name` in directory `dirfd`, or of
// the open descriptor `fd` when it is not -1 (then `name` is unused). A
// symbolic link's own attributes are read, never its target's. Returns 0
// (a file system without extended attributes has none) or the errno of the
// failed call.
int posix_read_xattrs(int dirfd, std::string const& name, int fd, std::vector<PosixXattr>& out);

// Sets the metadata of a restored object, in this order: owner and group
// when `privileged` (a change of owner clears setuid, setgid and file
// capabilities, so it comes before the mode and the extended attributes);
// extended attributes; the mode with its
// setuid, setgid and sticky bits (not for symbolic links, which have none);
// access and modification times to the nanosecond. The object is the open
// descriptor `fd`, or `name` in `dirfd` when `fd` is -1 (never followed).
// Returns 0, or the errno of the first step that failed with `*step` naming
// it; the later steps are still tried.
int posix_apply_metadata(int dirfd, std::string const& name, int fd, POSIX_OS_INFO const& info,
                         std::vector<PosixXattr> const& xattrs, bool privileged,
                         wchar_t const** step);

}  // namespace qbposix
