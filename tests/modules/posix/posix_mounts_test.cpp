// The mount-table parser and the choice of local file systems, on sample
// tables.
#include <cerrno>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "posix_mounts.h"

namespace {

using qbposix::MountEntry;

std::vector<std::string> Points(std::vector<MountEntry> const& entries) {
  std::vector<std::string> points;
  for (auto const& e : entries) points.push_back(e.mount_point);
  return points;
}

struct DecodeCase {
  char const* field;
  std::string expected;
};
void PrintTo(DecodeCase const& c, std::ostream* os) { *os << '"' << c.field << '"'; }
class DecodeMountField : public ::testing::TestWithParam<DecodeCase> {};

TEST_P(DecodeMountField, Decodes) {
  EXPECT_EQ(qbposix::DecodeMountField(GetParam().field), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(
    Escapes, DecodeMountField,
    ::testing::Values(DecodeCase{"/mnt/my\\040disk", "/mnt/my disk"},
                      DecodeCase{"a\\134b", "a\\b"},
                      DecodeCase{"\\011\\012", "\t\n"},
                      DecodeCase{"\\303\\251", "\xC3\xA9"},
                      DecodeCase{"trail\\", "trail\\"},         // nothing after the backslash
                      DecodeCase{"short\\04", "short\\04"},     // two digits only
                      DecodeCase{"\\08x", "\\08x"},             // 8 is not octal
                      DecodeCase{"\\000", "\\000"},             // no NUL inside a path
                      DecodeCase{"\\400", "\\400"}));           // above one byte

TEST(ParseMountTable, SkipsShortAndCommentLinesAndKeepsFields) {
  auto entries = qbposix::ParseMountTable(
      "# comment\n"
      "\n"
      "onlytwo fields\n"
      "/dev/sda1\t/data\text4\trw,relatime 0 0\n"
      "/dev/sdb1 /mnt/no\\040options vfat\n"
      "/dev/sdc1 /last xfs rw 0 0");  // no final newline
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[0].device, "/dev/sda1");
  EXPECT_EQ(entries[0].mount_point, "/data");
  EXPECT_EQ(entries[0].fs_type, "ext4");
  EXPECT_EQ(entries[0].options, "rw,relatime");
  EXPECT_EQ(entries[1].mount_point, "/mnt/no options");
  EXPECT_EQ(entries[1].options, "");
  EXPECT_EQ(entries[2].mount_point, "/last");
}

struct SelectCase {
  char const* name;
  char const* table;
  std::vector<std::string> not_directories;
  std::vector<std::string> expected;
};
void PrintTo(SelectCase const& c, std::ostream* os) { *os << c.name; }
class SelectLocalFileSystems : public ::testing::TestWithParam<SelectCase> {};

TEST_P(SelectLocalFileSystems, KeepsOnlyLocalFileSystems) {
  auto const& c = GetParam();
  auto is_directory = [&](std::string const& p) {
    for (auto const& n : c.not_directories)
      if (n == p) return false;
    return true;
  };
  EXPECT_EQ(Points(qbposix::SelectLocalFileSystems(qbposix::ParseMountTable(c.table),
                                                   is_directory)),
            c.expected);
}
INSTANTIATE_TEST_SUITE_P(
    Tables, SelectLocalFileSystems,
    ::testing::Values(
        SelectCase{"Desktop",
                   "sysfs /sys sysfs rw 0 0\nproc /proc proc rw 0 0\n"
                   "udev /dev devtmpfs rw 0 0\ndevpts /dev/pts devpts rw 0 0\n"
                   "tmpfs /run tmpfs rw 0 0\n/dev/sda2 / ext4 rw 0 0\n"
                   "securityfs /sys/kernel/security securityfs rw 0 0\n"
                   "cgroup2 /sys/fs/cgroup cgroup2 rw 0 0\ntmpfs /tmp tmpfs rw 0 0\n"
                   "/dev/loop0 /snap/core/123 squashfs ro 0 0\n"
                   "/dev/sda1 /boot/efi vfat rw 0 0\n/dev/sda3 /home ext4 rw 0 0\n"
                   "server:/export /mnt/nfs nfs4 rw 0 0\n"
                   "user@h:/ /mnt/ssh fuse.sshfs rw 0 0\n"
                   "gvfsd-fuse /run/user/1000/gvfs fuse.gvfsd-fuse rw 0 0\n"
                   "/dev/sdb1 /media/usb\\040stick fuseblk rw 0 0\n"
                   "overlay /var/lib/docker/overlay2/x/merged overlay rw 0 0\n"
                   "nsfs /run/snapd/ns/lxd.mnt nsfs rw 0 0\n"
                   "/dev/sda3 /srv/bound ext4 rw 0 0\n"
                   "binfmt_misc /proc/sys/fs/binfmt_misc binfmt_misc rw 0 0\n",
                   {},
                   {"/", "/boot/efi", "/home", "/media/usb stick"}},
        SelectCase{"ContainerWithBoundFiles",
                   "overlay / overlay rw 0 0\nproc /proc proc rw 0 0\n"
                   "tmpfs /dev tmpfs rw 0 0\nshm /dev/shm tmpfs rw 0 0\n"
                   "/dev/vda /etc/resolv.conf ext4 rw 0 0\n/dev/vda /etc/hosts ext4 rw 0 0\n"
                   "/dev/vda /work ext4 rw 0 0\n",
                   {"/etc/resolv.conf", "/etc/hosts"},
                   {"/", "/work"}},
        SelectCase{"PseudoMountedOverRealHidesIt",
                   "/dev/sdb1 /data ext4 rw 0 0\ntmpfs /data tmpfs rw 0 0\n", {}, {}},
        SelectCase{"LastOfStackedMountsWins",
                   "tmpfs /data tmpfs rw 0 0\n/dev/sdb1 /data xfs rw 0 0\n"
                   "rootfs / rootfs rw 0 0\n/dev/sda1 / ext4 rw 0 0\n",
                   {},
                   {"/data", "/"}},
        SelectCase{"BtrfsSubvolumesShareADevice",
                   "/dev/sda2 / btrfs rw,subvol=@ 0 0\n/dev/sda2 /home btrfs rw,subvol=@home 0 0\n",
                   {},
                   {"/", "/home"}},
        SelectCase{"RelativeMountPointIgnored", "weird relative ext4 rw 0 0\n", {}, {}}),
    [](auto const& info) { return std::string(info.param.name); });

TEST(SelectLocalFileSystems, KeepsTheSurvivingEntryOfAStackedPoint) {
  auto chosen = qbposix::SelectLocalFileSystems(
      qbposix::ParseMountTable("/dev/sdb1 /data ext4 rw 0 0\n/dev/sdc1 /data xfs rw 0 0\n"));
  ASSERT_EQ(chosen.size(), 1u);
  EXPECT_EQ(chosen[0].device, "/dev/sdc1");
  EXPECT_EQ(chosen[0].fs_type, "xfs");
}

TEST(FindContainingMount, ChoosesTheClosestMountOnTop) {
  auto entries = qbposix::ParseMountTable(
      "/dev/a / ext4 rw\n/dev/b /home ext4 rw\n/dev/c /home/x xfs rw\n/dev/d /home/x btrfs rw\n");
  auto device_of = [&](char const* path) {
    auto const* m = qbposix::FindContainingMount(entries, path);
    return m ? m->device : std::string("none");
  };
  EXPECT_EQ(device_of("/"), "/dev/a");
  EXPECT_EQ(device_of("/homes"), "/dev/a");
  EXPECT_EQ(device_of("/home/user"), "/dev/b");
  EXPECT_EQ(device_of("/home/x/y"), "/dev/d");
  EXPECT_EQ(qbposix::FindContainingMount({}, "/"), nullptr);
}

TEST(ReadMountTableFile, ReadsTheKernelTableAndReportsErrors) {
  std::string text = "stale";
  ASSERT_EQ(qbposix::ReadMountTableFile("/proc/self/mounts", &text), 0);
  EXPECT_FALSE(qbposix::ParseMountTable(text).empty());
  EXPECT_EQ(qbposix::ReadMountTableFile("/nonexistent/mounts", &text), ENOENT);
  EXPECT_EQ(qbposix::ReadMountTableFile(nullptr, &text), EINVAL);
  EXPECT_EQ(qbposix::ReadMountTableFile("/proc/self/mounts", nullptr), EINVAL);
}

}  // namespace
