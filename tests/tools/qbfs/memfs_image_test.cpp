// The example module's image file (QBMEMFS_IMAGE), written by hand after
// the format its header documents: a valid image is served as it says, a
// missing one gives the sample tree, and damaged or hostile ones stop the
// module with a message that names the file and the fault, never a crash.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tool_run.h"

namespace {

using qbtest::clean;
using qbtest::has;
using qbtest::read_file;
using qbtest::ToolRun;

std::string const kMemfs = std::string("-m '") + QBFS_MEMFS_PATH + "' ";

ToolRun memfs_qbfs(std::string const& image, std::string const& args) {
  return qbtest::shell("env TZ=UTC QBMEMFS_IMAGE='" + image + "' " + qbtest::qbfs_command() + kMemfs + args);
}

// ---- the format, by hand -----------------------------------------------------

template <typename T>
std::string le(T value) {
  std::string out;
  for (std::size_t i = 0; i < sizeof(T); ++i)
    out.push_back(static_cast<char>((static_cast<std::uint64_t>(value) >> (8 * i)) & 0xFF));
  return out;
}

std::string const kMagic = "QBMEMFS\n";
std::string header(std::uint32_t version = 1) { return kMagic + le(version); }

struct date {
  std::uint16_t valid, year;
  std::uint8_t month, day, hour, minute, second;
};
constexpr date kNoDate{0, 0, 0, 0, 0, 0, 0};

std::string date_bytes(date d) {
  return le(d.valid) + le(d.year) + le(d.month) + le(d.day) + le(d.hour) + le(d.minute) + le(d.second) +
         le(std::uint32_t{0});
}

std::string name_bytes(std::wstring const& name) {
  std::string out = le(static_cast<std::uint32_t>(name.size()));
  for (wchar_t c : name) out += le(static_cast<std::uint32_t>(c));
  return out;
}

// A node up to (not including) its entry count or data size.
std::string node_head(std::uint8_t kind, std::wstring const& name, date mdate = kNoDate,
                      std::uint32_t attrib1 = 0, std::uint64_t display = 0) {
  return le(kind) + name_bytes(name) + date_bytes(kNoDate) + date_bytes(mdate) + date_bytes(kNoDate) +
         le(attrib1) + le(std::uint32_t{0}) + le(display);
}
std::string directory(std::wstring const& name, std::vector<std::string> const& entries, date mdate = kNoDate) {
  std::string out = node_head(1, name, mdate) + le(static_cast<std::uint32_t>(entries.size()));
  for (std::string const& e : entries) out += e;
  return out;
}
std::string file(std::wstring const& name, std::string const& data, date mdate = kNoDate, std::uint32_t attrib1 = 0) {
  return node_head(2, name, mdate, attrib1, data.size()) + le(static_cast<std::uint64_t>(data.size())) + data;
}

constexpr date kDirDate{1, 2015, 6, 7, 8, 9, 10};
constexpr date kFileDate{1, 2020, 11, 12, 13, 14, 15};

std::string valid_image() {
  return header() + directory(L"", {directory(L"d", {file(L"f.txt", "hello", kFileDate, 0644)}, kDirDate)});
}

bool write(std::string const& path, std::string const& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << bytes;
  return static_cast<bool>(out);
}

bool exists(std::string const& path) {
  struct stat st {};
  return lstat(path.c_str(), &st) == 0;
}

// ---- images that load ----------------------------------------------------------

TEST(MemfsImage, AHandMadeImageIsServedAndNotRewrittenWhenUnchanged) {
  qbtest::ScratchDir s;
  std::string const image = s.dir + "/memfs.img", archive = s.dir + "/out.qbfs";
  ASSERT_TRUE(write(image, valid_image()));
  timespec const old[2] = {{1000000000, 0}, {1000000000, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, image.c_str(), old, 0), 0);

  ToolRun const backup = memfs_qbfs(image, "-q backup memfs: -o '" + archive + "'");
  ASSERT_TRUE(clean(backup));
  ASSERT_EQ(backup.status, 0) << backup.err;
  ToolRun const ls = qbtest::shell("TZ=UTC " + qbtest::qbfs_command() + "ls -l '" + archive + "'");
  ASSERT_EQ(ls.status, 0) << ls.err;
  EXPECT_TRUE(has(ls.out, " 2015-06-07 08:09 memfs:/d\n")) << ls.out;
  EXPECT_TRUE(has(ls.out, "0x000001A4            5 2020-11-12 13:14 memfs:/d/f.txt\n")) << ls.out;
  EXPECT_FALSE(has(ls.out, "README.txt")) << "the sample tree was served instead of the image's\n" << ls.out;

  struct stat st {};
  ASSERT_EQ(stat(image.c_str(), &st), 0);
  EXPECT_EQ(st.st_mtim.tv_sec, 1000000000) << "an unchanged tree was written back";
  EXPECT_EQ(read_file(image), valid_image());
}

TEST(MemfsImage, AMissingImageGivesTheSampleTreeAndIsNotMadeUnchanged) {
  qbtest::ScratchDir s;
  std::string const image = s.dir + "/none.img", archive = s.dir + "/out.qbfs";
  ToolRun const backup = memfs_qbfs(image, "-q backup memfs: -o '" + archive + "'");
  ASSERT_TRUE(clean(backup));
  ASSERT_EQ(backup.status, 0) << backup.err;
  EXPECT_TRUE(has(qbtest::qbfs("ls '" + archive + "'").out, "memfs:/README.txt"));
  EXPECT_FALSE(exists(image));
}

// ---- images that stop the module -------------------------------------------------

struct bad_image {
  char const* name;
  std::string bytes;
  char const* said;  // the fault, as the message gives it
};

std::string deep_image(std::size_t levels) {
  std::string inner = directory(L"x", {});
  for (std::size_t i = 1; i < levels; ++i) inner = directory(L"x", {inner});
  return header() + directory(L"", {inner});
}

// Directories nested `levels` deep, each claiming `count` entries, and more
// than `count` bytes after them: room for the count's entries may not be
// reserved at each level before they are read.
std::string nested_counts_image(std::size_t levels, std::uint32_t count) {
  std::string out = header() + node_head(1, L"") + le(count);
  for (std::size_t i = 0; i < levels; ++i) out += node_head(1, L"x") + le(count);
  return out + std::string(count + 100, '\0');
}

std::vector<bad_image> bad_images() {
  std::string const good = valid_image();
  std::string const root_head = header() + node_head(1, L"");
  std::string const d_head = node_head(1, L"d", kDirDate);
  std::string const f_head = node_head(2, L"f.txt", kFileDate, 0644, 5);
  return {
      {"Empty", "", "no memfs magic"},
      {"WrongMagic", "QBMEMFX\n" + good.substr(8), "no memfs magic"},
      {"OtherVersion", header(2) + good.substr(12), "image version 2"},
      {"CutAfterTheMagic", kMagic, "cut short"},
      {"CutInAFilesData", good.substr(0, good.size() - 2), "cut short"},
      {"CutInAName", good.substr(0, root_head.size() + 4 + 1 + 4 + 2), "cut short"},
      {"AbsurdNameLength", header() + le(std::uint8_t{1}) + le(std::uint32_t{0xFFFFFFFF}), "name longer"},
      {"NameLengthBeyondTheFile", header() + le(std::uint8_t{1}) + le(std::uint32_t{200}), "cut short"},
      {"AbsurdEntryCount", root_head + le(std::uint32_t{0xFFFFFFFF}), "entry count larger than the file"},
      {"NestedHugeEntryCounts", nested_counts_image(200, 10000000), "entry count larger than the file"},
      {"EntryCountBeyondItsEntries", root_head + le(std::uint32_t{3}) + file(L"a", "1") + file(L"b", "2"),
       "entry count larger than the file"},
      {"AbsurdFileSize", root_head + le(std::uint32_t{1}) + f_head + le(~std::uint64_t{0}), "larger than memfs keeps"},
      {"FileSizeBeyondTheFile", root_head + le(std::uint32_t{1}) + f_head + le(std::uint64_t{1000}) + "hello",
       "cut short"},
      {"UnknownKind", header() + le(std::uint8_t{7}), "unknown kind"},
      {"RootIsAFile", header() + file(L"", "x"), "root that is not an unnamed directory"},
      {"NamedRoot", header() + directory(L"r", {}), "root that is not an unnamed directory"},
      {"NameWithASlash", header() + directory(L"", {file(L"a/b", "x")}), "name memfs cannot serve"},
      {"DotDot", header() + directory(L"", {directory(L"..", {})}), "name memfs cannot serve"},
      {"EmptyName", header() + directory(L"", {file(L"", "x")}), "name memfs cannot serve"},
      {"Surrogate", header() + directory(L"", {file(std::wstring(1, wchar_t(0xD800)), "x")}),
       "name memfs cannot serve"},
      {"BeyondUnicode", header() + directory(L"", {file(std::wstring(1, wchar_t(0x110000)), "x")}),
       "no Unicode character"},
      {"TwoEntriesAlike", header() + directory(L"", {file(L"a", "1"), file(L"a", "2")}), "same name"},
      {"MonthThirteen", header() + directory(L"", {file(L"a", "1", date{1, 2000, 13, 1, 0, 0, 0})}),
       "date out of range"},
      {"BytesAfterTheTree", good + "x", "goes on after the tree's end"},
      {"TooDeep", deep_image(300), "deeper than memfs allows"},
      {"DirectoryHeadOnly", root_head + le(std::uint32_t{1}) + d_head, "cut short"},
  };
}

// Named in test listings by the case's name, not its bytes.
void PrintTo(bad_image const& image, std::ostream* out) { *out << image.name; }

class HostileImage : public ::testing::TestWithParam<bad_image> {};

TEST_P(HostileImage, StopsTheModuleWithAMessageAndLeavesTheFile) {
  qbtest::ScratchDir s;
  std::string const image = s.dir + "/memfs.img", archive = s.dir + "/out.qbfs";
  ASSERT_TRUE(write(image, GetParam().bytes));
  ToolRun const run = memfs_qbfs(image, "-q backup memfs: -o '" + archive + "'");
  EXPECT_TRUE(clean(run));
  EXPECT_EQ(run.status, 1) << run.err;
  EXPECT_TRUE(has(run.err, "memfs: not started: the image file '" + image + "'")) << run.err;
  EXPECT_TRUE(has(run.err, GetParam().said)) << run.err;
  EXPECT_FALSE(exists(archive));
  EXPECT_EQ(read_file(image), GetParam().bytes) << "the damaged image was changed";
}

INSTANTIATE_TEST_SUITE_P(Memfs, HostileImage, ::testing::ValuesIn(bad_images()),
                         [](auto const& info) { return std::string(info.param.name); });

// A FIFO would block the start for ever (the run is bounded by `timeout`
// so that a regression fails instead of hanging).
TEST(MemfsImage, AnImageThatIsNoRegularFileStopsTheModule) {
  qbtest::ScratchDir s;
  struct {
    char const* what;
    std::string path;
  } const cases[] = {{"directory", s.fresh("dir")}, {"fifo", s.dir + "/fifo"}};
  ASSERT_EQ(mkfifo(cases[1].path.c_str(), 0600), 0);
  for (auto const& c : cases) {
    ToolRun const run = qbtest::shell("timeout 60 env TZ=UTC QBMEMFS_IMAGE='" + c.path + "' " +
                                      qbtest::qbfs_command() + kMemfs + "-q backup memfs: -o '" + s.dir + "/out.qbfs'");
    EXPECT_TRUE(clean(run)) << c.what;
    EXPECT_EQ(run.status, 1) << c.what << "\n" << run.err;
    EXPECT_TRUE(has(run.err, "memfs: not started: the image file '" + c.path + "' is not a regular file"))
        << c.what << "\n" << run.err;
  }
}

}  // namespace
