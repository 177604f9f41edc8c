// What `qbfs restore` lets an archive make. By default an object is made
// as the archive describes it, set-uid and set-gid bits and device nodes
// included: restoring one's own backup as root must give the system back
// as it was. For an archive one does not trust, the options narrow that:
//
//   --no-setid             set-uid and set-gid bits are cleared on every
//                          object (directories too: the bits are dropped
//                          wherever they stand, so no archive can give an
//                          object of the restore a privilege).
//   --no-same-permissions  as --no-setid, and the permission bits are
//                          also reduced by the umask of the restore, as
//                          new files of the user's would be. The sticky
//                          bit is kept: it takes rights away, not gives.
//   --no-devices           character and block device nodes are refused:
//                          not made, each reported with its path. FIFOs
//                          and sockets are still made; they reach no
//                          hardware.
//
// The policy acts in the tool, on the object's OS information before the
// restore request is built from it: the module makes the object and sets
// its mode from that request, so what the module is given is already
// narrowed, and a further name of a hard-linked object is judged by its
// own record as well. It reads the posix module's stat record; an object
// described otherwise is passed on unchanged (the posix module refuses to
// make a file or node from OS information that is not its own).
#pragma once
#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace qbfs::archive {

struct RestorePolicy {
  bool clear_setid = false;   // --no-setid, --no-same-permissions
  bool apply_umask = false;   // --no-same-permissions
  mode_t umask = 0;           // taken off the permission bits when apply_umask
  bool refuse_devices = false;  // --no-devices

  // Applies the policy to an object's OS information in place. False, with
  // `why` in words, when the object is refused; it is then left as it was.
  bool admit(std::uint8_t os_id, std::vector<unsigned char>& os_info, std::string& why) const;
};

}  // namespace qbfs::archive
