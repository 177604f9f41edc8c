// The archive commands on archives written here by hand, as someone who
// wants to attack the person running them would: names that a terminal
// would act on, set-uid files and device nodes restored as root, and an
// end-of-data record whose counts were forged.
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <qbfsys/dblk.h>
#include <qbfsys/stream_ids.h>

#include "archive_digest.h"
#include "archive_format.h"
#include "archive_writer.h"
#include "posix_streams.h"
#include "tool_run.h"

namespace {

using namespace qbfs::archive;
using qbtest::clean;
using qbtest::has;
using qbtest::qbfs;
using qbtest::shell;
using qbtest::ToolRun;

struct Scratch {
  Scratch() {
    char templ[] = "/tmp/qbfs-untrusted-XXXXXX";
    dir = mkdtemp(templ) ? templ : "";
  }
  ~Scratch() { std::system(("rm -rf '" + dir + "'").c_str()); }
  std::string fresh(std::string const& name) const {  // an empty directory
    std::string const path = dir + "/" + name;
    return mkdir(path.c_str(), 0755) == 0 ? path : "";
  }
  std::string dir;
};

// An object as the posix module describes it: its path in the archive,
// its mode (type and permissions), its device number and its bytes.
struct Forged {
  std::string path;
  std::uint32_t mode;
  std::string data;
  dev_t rdev = 0;
};

constexpr std::int64_t kMtime = 1700000000;

bool write_archive(std::string const& file, std::vector<Forged> const& objects) {
  int const fd = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  ArchiveWriter out(fd);
  bool ok = out.begin();
  for (Forged const& o : objects) {
    qbposix::POSIX_OS_INFO info{};
    info.version = qbposix::POSIX_OS_INFO_VERSION;
    info.mode = o.mode;
    info.nlink = 1;
    info.rdev = o.rdev;
    info.size = o.data.size();
    info.mtime_sec = info.atime_sec = info.ctime_sec = kMtime;
    ObjectRecord record{};
    record.blk_type = S_ISDIR(o.mode) ? DBLK_KIND_DDB : DBLK_KIND_FDB;
    record.os_id = qbposix::POSIX_OS_ID;
    record.os_ver = qbposix::POSIX_OS_INFO_VERSION;
    record.attrib1 = o.mode & 07777;
    record.os_info_size = sizeof info;
    ok = ok && out.begin_object(record, o.path, &info);
    if (S_ISREG(o.mode)) {
      STREAM_INFO header{};
      header.id = STRM_GENERIC_DATA;
      header.size = o.data.size();
      ok = ok && out.begin_stream(header) && (o.data.empty() || out.data(o.data.data(), o.data.size()));
    }
    ok = ok && out.end_object(false);
  }
  ok = ok && out.finish();
  return close(fd) == 0 && ok;
}

std::string read_file(std::string const& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// ---- a forged end-of-data record ----------------------------------------------------------

// `bytes` with the END record's data-byte count replaced by `count`, its
// frame's CRC made to match again.
std::string with_data_bytes(std::string bytes, std::uint64_t count) {
  std::size_t const at = bytes.size() - sizeof(EndRecord) - sizeof(FrameHeader);
  FrameHeader header{};
  EndRecord record{};
  std::memcpy(&header, bytes.data() + at, sizeof header);
  std::memcpy(&record, bytes.data() + at + sizeof header, sizeof record);
  record.data_bytes = count;
  header.crc = frame_crc(header, &record, sizeof record);
  std::memcpy(&bytes[at], &header, sizeof header);
  std::memcpy(&bytes[at + sizeof header], &record, sizeof record);
  return bytes;
}

struct EndCase {
  char const* label;
  std::uint64_t count;
};

TEST(ForgedEnd, AWrongDataByteCountMakesTheArchiveDamaged) {
  Scratch s;
  std::string const archive = s.dir + "/whole.qba";
  // 4 + 3 + 1,048,577 data bytes: one stream takes two frames.
  std::uint64_t const kHeld = 1048584;
  ASSERT_TRUE(write_archive(archive, {{"src", S_IFDIR | 0755, ""},
                                      {"src/a", S_IFREG | 0644, "abcd"},
                                      {"src/b", S_IFREG | 0644, "xyz"},
                                      {"src/big", S_IFREG | 0644, std::string(1048577, 'b')}}));
  std::string const bytes = read_file(archive);
  std::vector<EndCase> const cases = {
      {"the largest count", ~std::uint64_t{0}}, {"one more", kHeld + 1}, {"one less", kHeld - 1}, {"none", 0}};
  std::string const unchanged = s.dir + "/unchanged.qba";
  std::ofstream(unchanged, std::ios::binary) << with_data_bytes(bytes, kHeld);
  ToolRun const whole = qbfs("verify " + unchanged);
  ASSERT_EQ(whole.status, 0) << "the true count, rewritten, is accepted: " << whole.err;
  for (EndCase const& c : cases) {
    SCOPED_TRACE(c.label);
    std::string const forged = s.dir + "/forged.qba";
    std::ofstream(forged, std::ios::binary | std::ios::trunc) << with_data_bytes(bytes, c.count);
    std::string const message = "the archive is damaged: the end-of-data record counts " + std::to_string(c.count) +
                                " data bytes, the archive holds " + std::to_string(kHeld) + "\n";
    ToolRun const verify = qbfs("verify " + forged);
    EXPECT_TRUE(clean(verify));
    EXPECT_EQ(verify.status, 1);
    EXPECT_TRUE(has(verify.err, "qbfs verify: " + message)) << verify.err;
    EXPECT_TRUE(has(verify.out, "; 0 damaged")) << verify.out;
    std::string const out = s.dir + "/out-" + std::to_string(c.count);
    ASSERT_EQ(mkdir(out.c_str(), 0755), 0);
    ToolRun const restore = qbfs("restore " + forged + " -C " + out);
    EXPECT_TRUE(clean(restore));
    EXPECT_EQ(restore.status, 1);
    EXPECT_TRUE(has(restore.err, "qbfs restore: " + message)) << restore.err;
    ToolRun const ls = qbfs("ls " + forged);
    EXPECT_EQ(ls.status, 1);
    EXPECT_TRUE(has(ls.err, "qbfs ls: " + message)) << ls.err;
  }
}

}  // namespace
