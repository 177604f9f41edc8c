// What every archive object carries besides its module's OS information (the
// generic description: display size and dates), read by the reader, shown by
// ls -l and used by a restore into another module; and the archives written
// before it (version 1) still restore exactly.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include <qbfsys/dblk.h>
#include <qbfsys/stream_ids.h>

#include "archive_reader.h"
#include "archive_writer.h"
#include "tool_run.h"

namespace {

using namespace qbfs::archive;
using qbtest::has;
using qbtest::qbfs;
using qbtest::ToolRun;

using Scratch = qbtest::ScratchDir;

using qbtest::read_file;

// 2021-03-04 05:06:07.123456789 UTC, the date of every object of the fixture.
constexpr std::int64_t kFixtureSeconds = 1614834367;
constexpr long kFixtureNanos = 123456789;

// The fixture was written by the tool of archive version 1 from a small tree
// (a file with mode 0640, a 256-byte file in a directory with mode 0750, an
// empty file and a symbolic link); a restore gives that tree back exactly.
TEST(ArchiveVersions, AVersionOneArchiveRestoresExactly) {
  std::string const fixture = QB_TEST_SOURCE_DIR "/fixtures/version1.qbfs";
  ASSERT_EQ(qbfs("verify " + fixture).status, 0);
  Scratch s;
  ToolRun const restore = qbfs("restore " + fixture + " -C " + s.dir);
  ASSERT_EQ(restore.status, 0) << restore.err;
  std::string bytes(256, '\0');
  for (int i = 0; i < 256; ++i) bytes[static_cast<std::size_t>(i)] = static_cast<char>(i);
  struct Expected {
    char const* path;
    mode_t mode;
    std::string data;
  } const tree[] = {
      {"small/a.txt", S_IFREG | 0640, "hello\n"},
      {"small/sub/b.bin", S_IFREG | 0644, bytes},
      {"small/empty", S_IFREG | 0644, ""},
      {"small/sub", S_IFDIR | 0750, ""},
      {"small/link", S_IFLNK | 0777, ""},
  };
  for (auto const& e : tree) {
    SCOPED_TRACE(e.path);
    std::string const path = s.dir + "/" + e.path;
    struct stat st {};
    ASSERT_EQ(lstat(path.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode, e.mode);
    EXPECT_EQ(st.st_mtim.tv_sec, kFixtureSeconds);
    EXPECT_EQ(st.st_mtim.tv_nsec, kFixtureNanos);
    if (S_ISREG(e.mode)) {
      EXPECT_EQ(read_file(path), e.data);
    }
  }
  char target[16] = {};
  EXPECT_EQ(readlink((s.dir + "/small/link").c_str(), target, sizeof target - 1), 5);
  EXPECT_STREQ(target, "a.txt");
}

// A backup records, for every object, the display size and the dates the
// layer gives for its block.
TEST(ArchiveVersions, ABackupCarriesEachBlocksSizeAndDates) {
  Scratch s;
  std::string const src = s.dir + "/src";
  ASSERT_EQ(mkdir(src.c_str(), 0755), 0);
  std::ofstream(src + "/data.bin") << std::string(5000, 'x');
  struct timespec const times[2] = {{kFixtureSeconds, kFixtureNanos}, {kFixtureSeconds, kFixtureNanos}};
  ASSERT_EQ(utimensat(AT_FDCWD, (src + "/data.bin").c_str(), times, 0), 0);
  ASSERT_EQ(qbfs("backup -q " + src + " -o " + s.dir + "/a.qbfs").status, 0);
  int const fd = open((s.dir + "/a.qbfs").c_str(), O_RDONLY);
  ArchiveReader reader(fd);
  std::string why;
  ASSERT_TRUE(reader.open(why)) << why;
  bool seen = false;
  for (Event e = reader.next(); e.kind != EventKind::end; e = reader.next()) {
    if (e.kind != EventKind::object || reader.object().path != "src/data.bin") continue;
    seen = true;
    ObjectEntry const& o = reader.object();
    ASSERT_TRUE(o.has_generic);
    EXPECT_EQ(o.generic.display_size, 5000u);
    _DATE_TIME const& m = o.generic.mdate;
    EXPECT_EQ(m.date_valid, 1);
    EXPECT_EQ(m.year, 2021);
    EXPECT_EQ(m.month, 3);
    EXPECT_EQ(m.day, 4);
    EXPECT_EQ(m.hour, 5);
    EXPECT_EQ(m.minute, 6);
    EXPECT_EQ(m.second, 7);
    EXPECT_EQ(m.ticks, 1234567u);
  }
  close(fd);
  EXPECT_TRUE(seen);
}

// Objects of a module this machine does not have: ls -l shows what every
// block carries, and a restore into a directory makes them through the posix
// module from those generic fields.
TEST(ArchiveVersions, AnotherModulesObjectsAreListedAndRestoredFromTheirGenericFields) {
  constexpr std::uint8_t kOtherOsId = 99;
  Scratch s;
  std::string const archive = s.dir + "/other.qbfs";
  {
    int const fd = open(archive.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    ArchiveWriter out(fd);
    unsigned char const info[] = {'m', 'e', 'm', 'f', 's'};
    ObjectGeneric generic{};
    generic.mdate = _DATE_TIME{1, 2021, 3, 4, 5, 6, 7, 0, 0, 1234567};
    ObjectRecord dir{};
    dir.blk_type = DBLK_KIND_DDB;
    dir.os_id = kOtherOsId;
    dir.os_info_size = sizeof info;
    ObjectRecord file = dir;
    file.blk_type = DBLK_KIND_FDB;
    file.attrib1 = 0x20;
    std::string const data = "kept in memory";
    ObjectGeneric file_generic = generic;
    file_generic.display_size = data.size();
    STREAM_INFO header{};
    header.id = STRM_GENERIC_DATA;
    header.size = data.size();
    bool ok = out.begin() && out.begin_object(dir, generic, "mem", info) && out.end_object(false) &&
              out.begin_object(file, file_generic, "mem/note.txt", info) && out.begin_stream(header) &&
              out.data(data.data(), data.size()) && out.end_object(false) && out.finish();
    ASSERT_TRUE(close(fd) == 0 && ok) << out.error();
  }
  ToolRun const listed = qbfs("ls -l " + archive);
  EXPECT_EQ(listed.status, 0) << listed.err;
  EXPECT_TRUE(has(listed.out, "0x00000020           14 ")) << listed.out;
  EXPECT_FALSE(has(listed.out, " ? ")) << listed.out;
  ToolRun const restore = qbfs("restore " + archive + " -C " + s.dir);
  ASSERT_EQ(restore.status, 0) << restore.err;
  EXPECT_EQ(read_file(s.dir + "/mem/note.txt"), "kept in memory");
  struct stat st {};
  ASSERT_EQ(stat((s.dir + "/mem/note.txt").c_str(), &st), 0);
  EXPECT_EQ(st.st_mode, static_cast<mode_t>(S_IFREG | 0644));
  EXPECT_EQ(st.st_mtim.tv_sec, kFixtureSeconds);
  EXPECT_EQ(st.st_mtim.tv_nsec, 123456700);  // the date's 100-nanosecond tick
  ASSERT_EQ(stat((s.dir + "/mem").c_str(), &st), 0);
  EXPECT_EQ(st.st_mode, static_cast<mode_t>(S_IFDIR | 0755));
  EXPECT_EQ(st.st_mtim.tv_sec, kFixtureSeconds);
}

}  // namespace
