// The kernel's mount table, and which of its entries are local file systems
// worth backing up.
//
// This part depends on nothing but the standard library, so that it can be
// tested on sample tables without loading the module.
//
// Selection rule (SelectLocalFileSystems), applied in this order:
//  1. Stacked mounts: when one mount point appears several times, only the
//     last entry counts (it is the one mounted on top, the one a walk sees).
//     This is decided before anything is left out, so a pseudo file system
//     mounted over a real one hides it.
//  2. Left out by type:
//     - kernel interfaces and virtual file systems: proc, sysfs, cgroup,
//       cgroup2, devpts, devtmpfs, mqueue, debugfs, tracefs, securityfs,
//       pstore, bpf, configfs, fusectl, hugetlbfs, autofs, binfmt_misc,
//       rpc_pipefs, nsfs, efivarfs, selinuxfs, nfsd, sockfs, pipefs,
//       anon_inodefs, cpuset, ramfs, tmpfs (every tmpfs: its content lives in
//       memory and is gone at power-off; a directory on one can still be
//       named as a root in the configuration);
//     - network file systems, which belong to other machines: nfs, nfs4, cifs,
//       smb3, smbfs, ceph, glusterfs, afs, 9p, davfs, ncpfs, lustre;
//     - userspace file systems of the "fuse" and "fuse.*" types (remote views
//       and synthetic trees); "fuseblk", a userspace driver over a local block
//       device, is kept;
//     - overlay, except when it is the root (a container's root is an overlay);
//     - squashfs mounted at or below /snap, or from a ".snap" image: read-only
//       package images that are reinstalled, not restored.
//  3. Left out by place: any mount point at or below /proc, /sys or /dev,
//     whatever its type.
//  4. Left out when the mount point is not a directory (the caller's check:
//     containers bind-mount single files such as /etc/hosts).
//  5. Bind duplicates: when a kept entry names the same device path (one that
//     starts with '/') and the same type as an earlier kept entry, it shows the
//     same file system a second time and is left out; the earlier entry (the
//     original mount, in table order) stays. btrfs and bcachefs are exempt:
//     their subvolumes share one device and are different trees.
// The result keeps the table order of the surviving entries.
#pragma once
#include <functional>
#include <string>
#include <vector>

namespace qbposix {

struct MountEntry {
  std::string device;       // first field: the mounted device or source
  std::string mount_point;  // second field: where it is mounted
  std::string fs_type;      // third field
  std::string options;      // fourth field, empty when missing
};

// Decodes the octal escapes the kernel writes for blanks and backslashes
// (\040 space, \011 tab, \012 newline, \134 backslash, and any other \ooo
// from \001 to \377). A backslash not followed by such a sequence stays as it
// is.
std::string DecodeMountField(std::string const& field);

// Parses mount-table text: one entry per line, fields separated by blanks.
// Lines with fewer than three fields, and comment lines, are skipped.
std::vector<MountEntry> ParseMountTable(std::string const& text);

// Rule 1: the entries with each mount point's last occurrence, in table order.
std::vector<MountEntry> LastMountPerPoint(std::vector<MountEntry> const& entries);

// Rules 2 and 3 for one entry: true when it may be a local file system to back
// up.
bool IsLocalFileSystem(MountEntry const& entry);

// The whole rule. `is_directory` answers rule 4; when empty, every mount point
// counts as a directory.
std::vector<MountEntry> SelectLocalFileSystems(
    std::vector<MountEntry> const& entries,
    std::function<bool(std::string const&)> const& is_directory = {});

// The entry whose mount point holds `path` (an absolute, resolved path) most
// closely, or null when none does.
MountEntry const* FindContainingMount(std::vector<MountEntry> const& entries,
                                      std::string const& path);

// Reads a whole text file such as /proc/self/mounts (whose size the kernel
// reports as 0) into `text`. Returns 0, or the errno value of the failure; a
// file above 64 MiB is refused with EFBIG.
int ReadMountTableFile(char const* path, std::string* text);

}  // namespace qbposix
