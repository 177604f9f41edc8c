// The example module (memfs) as a restore target and as a backup source,
// through the real tool in separate processes that share the tree through
// an image file: a posix tree restored into memfs and backed up from it
// keeps its data, sizes and dates, and the sample tree lists its dates.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tool_run.h"

namespace {

using qbtest::clean;
using qbtest::has;
using qbtest::qbfs;
using qbtest::read_file;
using qbtest::ToolRun;

std::string const kMemfs = std::string("-m '") + QBFS_MEMFS_PATH + "' ";

// The tool run with the memfs module loaded and its tree kept in `image`
// ("": no image, the sample tree); dates listed in UTC.
ToolRun memfs_qbfs(std::string const& image, std::string const& args) {
  std::string const env = image.empty() ? "env -u QBMEMFS_IMAGE TZ=UTC " : "env TZ=UTC QBMEMFS_IMAGE='" + image + "' ";
  return qbtest::shell(env + qbtest::qbfs_command() + kMemfs + args);
}

// One object of the posix source, below the directory `src`.
struct source_object {
  char const* path;
  bool directory;
  std::size_t bytes;   // a file's size
  std::time_t mtime;   // UTC seconds
};

constexpr std::time_t kDay = 86400;
constexpr std::time_t kBase = 1262304000;  // 2010-01-01 00:00:00 UTC
constexpr std::size_t kLarge = 1024 * 1024 + 4099;  // more than 1 MiB, not a multiple of any unit

// Parents come before what they hold; dates are set children first (below).
std::vector<source_object> source_objects() {
  return {{"a.txt", false, 13, kBase + 1 * kDay + 3661},
          {"large.bin", false, kLarge, kBase + 40 * kDay + 7322},
          {"empty", true, 0, kBase + 75 * kDay + 59},
          {"sub", true, 0, kBase + 120 * kDay + 120},
          {"sub/deep", true, 0, kBase + 200 * kDay + 86399},
          {"sub/deep/nested.txt", false, 7, kBase + 300 * kDay + 4000},
          {"sub/zero.txt", false, 0, kBase + 360 * kDay + 1}};
}

std::string contents_of(source_object const& obj) {
  std::string data(obj.bytes, '\0');
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>((i * 131 + obj.path[0]) % 251);
  return data;
}

std::string minute_text(std::time_t when) {
  std::tm utc{};
  gmtime_r(&when, &utc);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &utc);
  return text;
}

bool make_source(std::string const& src) {
  if (mkdir(src.c_str(), 0755) != 0) return false;
  std::vector<source_object> const objects = source_objects();
  for (source_object const& obj : objects) {
    std::string const path = src + "/" + obj.path;
    if (obj.directory) {
      if (mkdir(path.c_str(), 0755) != 0) return false;
    } else {
      std::ofstream(path, std::ios::binary) << contents_of(obj);
    }
  }
  for (auto it = objects.rbegin(); it != objects.rend(); ++it) {
    timespec const times[2] = {{it->mtime, 0}, {it->mtime, 0}};
    if (utimensat(AT_FDCWD, (src + "/" + it->path).c_str(), times, AT_SYMLINK_NOFOLLOW) != 0) return false;
  }
  return true;
}

// The line of `ls -l` output whose path ends with `suffix`, split in words.
std::vector<std::string> listed(std::string const& out, std::string const& suffix) {
  std::istringstream lines(out);
  for (std::string line; std::getline(lines, line);) {
    if (line.size() < suffix.size() || line.compare(line.size() - suffix.size(), suffix.size(), suffix) != 0) continue;
    std::istringstream in(line);
    std::vector<std::string> words;
    for (std::string w; in >> w;) words.push_back(w);
    return words;
  }
  return {};
}

TEST(MemfsRestore, PosixTreeKeepsDataAndDatesThroughMemfs) {
  qbtest::ScratchDir s;
  std::string const src = s.dir + "/src", image = s.dir + "/memfs.img";
  std::string const a = s.dir + "/a.qbfs", b = s.dir + "/b.qbfs";
  ASSERT_TRUE(make_source(src));

  ToolRun const backup = qbfs("-q backup '" + src + "' -o '" + a + "'");
  ASSERT_TRUE(clean(backup));
  ASSERT_EQ(backup.status, 0) << backup.err;

  // With -v the layer's own lines show: among them the check, at detach,
  // that every block's names went back to the handle's pool.
  ToolRun const restore = memfs_qbfs(image, "restore -v '" + a + "' -C memfs:");
  ASSERT_TRUE(clean(restore));
  ASSERT_EQ(restore.status, 0) << restore.err;
  EXPECT_FALSE(has(restore.err, "Error")) << restore.err;
  struct stat st {};
  ASSERT_EQ(stat(image.c_str(), &st), 0) << "the restore left no image of the changed tree";

  // Another process: the tree comes from the image.
  ToolRun const again = memfs_qbfs(image, "-q backup memfs: -o '" + b + "'");
  ASSERT_TRUE(clean(again));
  ASSERT_EQ(again.status, 0) << again.err;

  // The archive matches the tree it was made from, dates and attribute
  // words included.
  ToolRun const verify = memfs_qbfs(image, "verify '" + b + "' --against memfs:");
  EXPECT_TRUE(clean(verify));
  EXPECT_EQ(verify.status, 0) << verify.out << verify.err;
  EXPECT_TRUE(has(verify.out, ", 0 differ from memfs:")) << verify.out;

  ToolRun const ls = qbtest::shell("TZ=UTC " + qbtest::qbfs_command() + "ls -l '" + b + "'");
  ASSERT_TRUE(clean(ls));
  ASSERT_EQ(ls.status, 0) << ls.err;
  std::string top;  // the name memfs's objects are stored under in b
  for (source_object const& obj : source_objects()) {
    std::vector<std::string> const words = listed(ls.out, "/src/" + std::string(obj.path));
    ASSERT_EQ(words.size(), 6u) << obj.path << " in\n" << ls.out;  // kind attrib size date time path
    EXPECT_EQ(words[0], obj.directory ? "d" : "-") << obj.path;
    if (!obj.directory) {
      EXPECT_EQ(words[2], std::to_string(obj.bytes)) << obj.path;
    }
    EXPECT_EQ(words[3] + " " + words[4], minute_text(obj.mtime)) << obj.path << "\n" << ls.out;
    top = words[5].substr(0, words[5].size() - std::string("/src/").size() - std::string(obj.path).size());
  }
  // The sample tree is still there beside what was restored.
  EXPECT_TRUE(has(ls.out, top + "/README.txt")) << ls.out;

  // Back to posix, checked by the file system itself.
  std::string const dir2 = s.fresh("dir2");
  ToolRun const back = qbfs("-q restore '" + b + "' -C '" + dir2 + "'");
  ASSERT_TRUE(clean(back));
  ASSERT_EQ(back.status, 0) << back.err;
  for (source_object const& obj : source_objects()) {
    std::string const path = dir2 + "/" + top + "/src/" + obj.path;
    struct stat got {};
    ASSERT_EQ(lstat(path.c_str(), &got), 0) << path;
    EXPECT_EQ(S_ISDIR(got.st_mode), obj.directory) << path;
    EXPECT_EQ(got.st_mtim.tv_sec, obj.mtime) << path;
    if (!obj.directory) {
      EXPECT_TRUE(read_file(path) == contents_of(obj)) << path << ": contents differ";
    }
  }
}

TEST(MemfsRestore, AStreamMemfsDoesNotKeepFailsTheObjectByName) {
  // A symbolic link arrives as a stream of its own, which memfs refuses:
  // the object is reported failed, by name, and the rest is restored.
  qbtest::ScratchDir s;
  std::string const src = s.dir + "/src", image = s.dir + "/memfs.img", a = s.dir + "/a.qbfs";
  ASSERT_EQ(mkdir(src.c_str(), 0755), 0);
  std::ofstream(src + "/plain.txt") << "kept\n";
  ASSERT_EQ(symlink("plain.txt", (src + "/link").c_str()), 0);
  ASSERT_EQ(qbfs("-q backup '" + src + "' -o '" + a + "'").status, 0);

  ToolRun const restore = memfs_qbfs(image, "-q restore '" + a + "' -C memfs:");
  EXPECT_TRUE(clean(restore));
  EXPECT_EQ(restore.status, 1) << restore.err;
  EXPECT_TRUE(has(restore.err, "link")) << restore.err;
  EXPECT_TRUE(has(restore.err, "memfs keeps only a file's data")) << restore.err;

  std::string const b = s.dir + "/b.qbfs";
  ASSERT_EQ(memfs_qbfs(image, "-q backup memfs: -o '" + b + "'").status, 0);
  ToolRun const listed_b = qbfs("ls '" + b + "'");
  EXPECT_TRUE(has(listed_b.out, "/src/plain.txt")) << listed_b.out;
  EXPECT_FALSE(has(listed_b.out, "/src/link")) << "a refused object was left behind:\n" << listed_b.out;
}

TEST(MemfsRestore, ASecondRestoreReplacesFilesAndKeepsDirectories) {
  qbtest::ScratchDir s;
  std::string const src = s.dir + "/src", image = s.dir + "/memfs.img";
  ASSERT_EQ(mkdir(src.c_str(), 0755), 0);
  ASSERT_EQ(mkdir((src + "/dir").c_str(), 0755), 0);
  std::ofstream(src + "/dir/f.txt") << "first version, longer\n";
  ASSERT_EQ(qbfs("-q backup '" + src + "' -o '" + s.dir + "/1.qbfs'").status, 0);
  std::ofstream(src + "/dir/f.txt", std::ios::trunc) << "second\n";
  std::ofstream(src + "/dir/g.txt") << "added\n";
  ASSERT_EQ(qbfs("-q backup '" + src + "' -o '" + s.dir + "/2.qbfs'").status, 0);
  for (char const* archive : {"/1.qbfs", "/2.qbfs"}) {
    ToolRun const restore = memfs_qbfs(image, "-q restore '" + s.dir + archive + "' -C memfs:");
    ASSERT_TRUE(clean(restore));
    ASSERT_EQ(restore.status, 0) << archive << "\n" << restore.err;
  }
  ASSERT_EQ(memfs_qbfs(image, "-q backup memfs: -o '" + s.dir + "/b.qbfs'").status, 0);
  std::string const out = s.fresh("out");
  ASSERT_EQ(qbfs("-q restore '" + s.dir + "/b.qbfs' -C '" + out + "'").status, 0);
  ToolRun const listing = qbfs("ls '" + s.dir + "/b.qbfs'");
  std::vector<std::string> const words = listed(listing.out, "/src/dir/f.txt");
  ASSERT_EQ(words.size(), 1u) << listing.out;
  std::string const top = words[0].substr(0, words[0].size() - std::string("/src/dir/f.txt").size());
  EXPECT_EQ(read_file(out + "/" + top + "/src/dir/f.txt"), "second\n");
  EXPECT_EQ(read_file(out + "/" + top + "/src/dir/g.txt"), "added\n");
}

TEST(MemfsRestore, ATreeThatCannotBeSavedSaysSo) {
  qbtest::ScratchDir s;
  std::string const src = s.dir + "/src", image = s.dir + "/no-such-dir/memfs.img";
  ASSERT_EQ(mkdir(src.c_str(), 0755), 0);
  std::ofstream(src + "/f.txt") << "x\n";
  ASSERT_EQ(qbfs("-q backup '" + src + "' -o '" + s.dir + "/a.qbfs'").status, 0);
  ToolRun const restore = memfs_qbfs(image, "-q restore '" + s.dir + "/a.qbfs' -C memfs:");
  EXPECT_TRUE(clean(restore));
  EXPECT_TRUE(has(restore.err, "memfs: the tree could not be saved to the image file '" + image + "'"))
      << restore.err;
  EXPECT_EQ(restore.status, 1) << "the restore did not reach the image\n" << restore.err;
  EXPECT_TRUE(has(restore.err, "qbfs restore: restoring into 'memfs:' could not be finished: ")) << restore.err;
  // One failure, one message: neither the handle's closing nor the shut-down
  // tries again and says it again.
  std::size_t said = 0;
  for (std::size_t at = restore.err.find("could not be saved"); at != std::string::npos;
       at = restore.err.find("could not be saved", at + 1))
    ++said;
  EXPECT_EQ(said, 1u) << restore.err;
}

TEST(MemfsRestore, TheImageKeepsItsPermissions) {
  qbtest::ScratchDir s;
  std::string const src = s.dir + "/src", image = s.dir + "/memfs.img";
  ASSERT_EQ(mkdir(src.c_str(), 0755), 0);
  std::ofstream(src + "/f.txt") << "x\n";
  ASSERT_EQ(qbfs("-q backup '" + src + "' -o '" + s.dir + "/a.qbfs'").status, 0);
  struct {
    char const* what;
    mode_t set;     // set on the image before the restore; 0: no image yet
    mode_t wanted;  // the image's permissions after it
  } const cases[] = {{"a new image", 0, 0600}, {"an image made readable by the group", 0640, 0640},
                     {"an image readable by all", 0644, 0644}};
  for (auto const& c : cases) {
    if (c.set != 0) {
      ASSERT_EQ(chmod(image.c_str(), c.set), 0) << c.what;
    }
    ToolRun const restore = memfs_qbfs(image, "-q restore '" + s.dir + "/a.qbfs' -C memfs:");
    ASSERT_TRUE(clean(restore));
    ASSERT_EQ(restore.status, 0) << c.what << "\n" << restore.err;
    struct stat st {};
    ASSERT_EQ(stat(image.c_str(), &st), 0) << c.what;
    EXPECT_EQ(st.st_mode & 07777, c.wanted) << c.what;
  }
}

TEST(MemfsSample, LongListingShowsTheFixedDates) {
  qbtest::ScratchDir s;
  std::string const archive = s.dir + "/sample.qbfs";
  ToolRun const backup = memfs_qbfs("", "-q backup memfs: -o '" + archive + "'");
  ASSERT_TRUE(clean(backup));
  ASSERT_EQ(backup.status, 0) << backup.err;
  ToolRun const ls = qbtest::shell("TZ=UTC " + qbtest::qbfs_command() + "ls -l '" + archive + "'");
  ASSERT_TRUE(clean(ls));
  ASSERT_EQ(ls.status, 0) << ls.err;
  std::istringstream lines(ls.out);
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    EXPECT_TRUE(has(line, " 2001-02-03 04:05 ")) << line;
    EXPECT_FALSE(has(line, "?")) << line;
  }
  EXPECT_EQ(count, 6) << ls.out;  // the top and the five objects below it
  EXPECT_TRUE(has(ls.out, " 100000 2001-02-03 04:05 ")) << "large.bin's size\n" << ls.out;
}

}  // namespace
