// qbfs backup of elements named as `qbfs tree --brief` prints them, and
// backups that cannot start: they exit 1, say which source is at fault and
// leave no archive behind. The example module (memfs) stands for a module
// whose element is no local path; its tree is fixed, so what it serves is
// written out here and compared with what ls lists and verify checks.
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tool_run.h"

namespace {

using qbtest::clean;
using qbtest::has;
using qbtest::qbfs;
using qbtest::ToolRun;

std::string const kMemfs = std::string("-m '") + QBFS_MEMFS_PATH + "' ";
// The posix module beside memfs: directories and memfs's element at once.
std::string const kPosixAndMemfs = std::string("-m '") + QB_TEST_MODULE_DIR + "/libqbposix.so' " + kMemfs;

// A scratch directory with a source directory holding one file.
struct Scratch : qbtest::ScratchDir {
  Scratch() {
    src = dir + "/src";
    mkdir(src.c_str(), 0755);
    std::ofstream(src + "/file.txt") << "a file\n";
  }
  std::string src;
};

bool exists(std::string const& path) {
  struct stat st {};
  return lstat(path.c_str(), &st) == 0;
}

// A backup that cannot start. In the command, SRC stands for a directory
// holding one file and FILE for a regular file.
struct refused_start {
  char const* name;
  std::string command;
  std::vector<char const*> said;  // parts of standard error
};

std::string expand(std::string text, Scratch const& s) {
  for (auto [word, value] : {std::pair<std::string, std::string>{"SRC", s.src}, {"FILE", s.src + "/file.txt"}})
    for (std::size_t at = 0; (at = text.find(word, at)) != std::string::npos; at += value.size())
      text.replace(at, word.size(), value);
  return text;
}

class RefusedStart : public ::testing::TestWithParam<refused_start> {};

TEST_P(RefusedStart, ExitsOneNamesTheSourceAndLeavesNoArchive) {
  Scratch s;
  std::string const archive = s.dir + "/out.qbfs";
  ToolRun const run = qbfs(expand(GetParam().command, s) + " -o '" + archive + "'");
  EXPECT_TRUE(clean(run));
  EXPECT_EQ(run.status, 1) << run.err;
  for (char const* part : GetParam().said) EXPECT_TRUE(has(run.err, expand(part, s))) << part << "\n" << run.err;
  EXPECT_FALSE(exists(archive)) << "a backup that did not start left " << archive;
}

INSTANTIATE_TEST_SUITE_P(
    Backup, RefusedStart,
    ::testing::Values(
        refused_start{"UnknownName", "backup no-such-element",
                      {"'no-such-element'", "neither a directory nor an element `qbfs tree` lists"}},
        refused_start{"RegularFile", "backup FILE", {"'FILE'", "neither a directory nor an element"}},
        refused_start{"UnknownAfterAGoodSource", "backup SRC no-such-element",
                      {"'no-such-element'", "neither a directory nor an element"}},
        refused_start{"UnknownBesideAnElement", kMemfs + "backup memfs: no-such-element",
                      {"'no-such-element'", "neither a directory nor an element"}},
        refused_start{"DirectoryNoModuleOffers", kMemfs + "backup SRC",
                      {"'SRC'", "no module offers it"}},
        refused_start{"NoModuleLoaded", "--no-modules backup SRC", {}}),
    [](auto const& info) { return std::string(info.param.name); });

// What memfs serves, as `ls -l` names it below the archive's top name.
struct served {
  char const* path;
  char kind;                // 'd' or '-'
};

std::vector<served> memfs_tree() {
  return {{"README.txt", '-'}, {"docs", 'd'}, {"docs/guide.txt", '-'}, {"docs/empty", 'd'}, {"large.bin", '-'}};
}

// A source named by an element's name, and the name its objects are stored
// under.
struct named_element {
  char const* name;
  char const* source;
  char const* stored_as;
};

class ElementByName : public ::testing::TestWithParam<named_element> {};

TEST_P(ElementByName, BacksUpListsAndVerifies) {
  Scratch s;
  std::string const archive = s.dir + "/memfs.qbfs";
  std::string const top = GetParam().stored_as;

  ToolRun const backup = qbfs(kMemfs + "-q backup '" + GetParam().source + "' -o '" + archive + "'");
  ASSERT_TRUE(clean(backup));
  ASSERT_EQ(backup.status, 0) << backup.err;

  ToolRun const ls = qbfs(kMemfs + "ls -l '" + archive + "'");
  ASSERT_TRUE(clean(ls));
  EXPECT_EQ(ls.status, 0) << ls.err;
  for (served const& obj : memfs_tree()) {
    std::string const path = top + "/" + obj.path;
    std::size_t const at = ls.out.find(path + "\n");
    ASSERT_NE(at, std::string::npos) << path << " missing from\n" << ls.out;
    std::size_t const line = ls.out.rfind('\n', at);
    EXPECT_EQ(ls.out[line == std::string::npos ? 0 : line + 1], obj.kind) << path << "\n" << ls.out;
  }

  ToolRun const verify = qbfs(kMemfs + "verify '" + archive + "'");
  EXPECT_TRUE(clean(verify));
  EXPECT_EQ(verify.status, 0) << verify.out << verify.err;
  ToolRun const against = qbfs(kMemfs + "verify '" + archive + "' --against '" + GetParam().source + "'");
  EXPECT_TRUE(clean(against));
  EXPECT_EQ(against.status, 0) << against.out << against.err;
  EXPECT_TRUE(has(against.out, ", 0 differ from " + std::string(GetParam().source) + "\n")) << against.out;

  // Restored into a directory through the posix module, from the generic
  // fields of memfs's blocks: the same tree with the same contents.
  std::string const target = s.dir + "/restored";
  ASSERT_EQ(mkdir(target.c_str(), 0755), 0);
  ToolRun const restore = qbfs("restore '" + archive + "' -C '" + target + "'");
  EXPECT_TRUE(clean(restore));
  EXPECT_EQ(restore.status, 0) << restore.err;
  for (served const& obj : memfs_tree()) {
    struct stat st {};
    std::string const path = target + "/" + top + "/" + obj.path;
    ASSERT_EQ(lstat(path.c_str(), &st), 0) << path << "\n" << restore.err;
    EXPECT_EQ(S_ISDIR(st.st_mode), obj.kind == 'd') << path;
  }
  std::ifstream readme(target + "/" + top + "/README.txt");
  std::string const text((std::istreambuf_iterator<char>(readme)), std::istreambuf_iterator<char>());
  EXPECT_EQ(text, "Served from memory.\n");
  std::ifstream guide(target + "/" + top + "/docs/guide.txt");
  std::string const walk((std::istreambuf_iterator<char>(guide)), std::istreambuf_iterator<char>());
  EXPECT_EQ(walk, "Walk, open, read, close.\n");
}

INSTANTIATE_TEST_SUITE_P(Backup, ElementByName,
                         ::testing::Values(named_element{"DeviceName", "memfs:", "memfs:"}),
                         [](auto const& info) { return std::string(info.param.name); });

// verify --against on an archive of two sources, a directory and the memfs
// element: each TARGET stands for one source's top-level object, in order.
struct against_case {
  char const* name;
  std::string targets;  // SRC: the directory backed up
  int status;
  std::vector<char const*> said;      // parts of standard output and error
  bool change_source = false;         // the file below SRC changes after the backup
};

class VerifyAgainst : public ::testing::TestWithParam<against_case> {};

TEST_P(VerifyAgainst, ComparesEachSourceWithItsTarget) {
  Scratch s;
  std::string const archive = s.dir + "/two.qbfs";
  ToolRun const backup = qbfs(kPosixAndMemfs + "-q backup '" + s.src + "' memfs: -o '" + archive + "'");
  ASSERT_EQ(backup.status, 0) << backup.err;
  if (GetParam().change_source) std::ofstream(s.src + "/file.txt") << "changed after the backup\n";
  ToolRun const run = qbfs(kPosixAndMemfs + "verify '" + archive + "' " + expand(GetParam().targets, s));
  EXPECT_TRUE(clean(run));
  EXPECT_EQ(run.status, GetParam().status) << run.out << run.err;
  for (char const* part : GetParam().said)
    EXPECT_TRUE(has(run.out + run.err, expand(part, s))) << part << "\n" << run.out << run.err;
}

INSTANTIATE_TEST_SUITE_P(
    Verify, VerifyAgainst,
    ::testing::Values(
        against_case{"EachSourceItsTarget", "--against SRC --against memfs:", 0, {", 0 differ from SRC, memfs:\n"}},
        against_case{"SecondSourceWithoutTarget", "--against SRC", 1, {", 0 differ from SRC, 6 not compared\n"}},
        against_case{"TargetsSwapped", "--against memfs: --against SRC", 1, {"differs: src/file.txt: not found"}},
        against_case{"UnknownTarget", "--against no-such --against memfs:", 1,
                     {"cannot compare against 'no-such': it is neither a directory nor an element"}},
        against_case{"SourceChanged", "--against SRC --against memfs:", 1,
                     {"differs: src/file.txt: size 7 in the archive, 25 found", ", 1 differ from SRC, memfs:\n"},
                     true}),
    [](auto const& info) { return std::string(info.param.name); });

TEST(BackupHelp, SaysHowSourcesAreNamed) {
  ToolRun const run = qbfs("backup --help");
  EXPECT_EQ(run.status, 0);
  EXPECT_TRUE(has(run.out, "qbfs tree --brief")) << run.out;
  EXPECT_TRUE(has(run.out, "device name")) << run.out;
}

}  // namespace
