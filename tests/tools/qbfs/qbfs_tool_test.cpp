// The command-line host run as a person runs it: a separate process, its
// output and exit status.
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "tool_run.h"

namespace {

using qbtest::has;
using qbtest::ToolRun;

ToolRun qbfs(std::string const& args) { return qbtest::qbfs(args, 30); }

TEST(QbfsTool, HelpAndBadUsage) {
  ToolRun help = qbfs("--help");
  EXPECT_EQ(help.status, 0);
  EXPECT_TRUE(has(help.out, "usage: qbfs"));
  EXPECT_EQ(qbfs("").status, 2);
  EXPECT_EQ(qbfs("no-such-command").status, 2);
  EXPECT_EQ(qbfs("--no-such-option tree").status, 2);
  EXPECT_EQ(qbfs("attach").status, 2);
}

// Every command the tool's help lists answers --help with its own usage on
// standard output, and -h the same, whether or not it starts the layer.
TEST(QbfsTool, EveryListedCommandAnswersHelp) {
  std::string const help = qbfs("--help").out;
  std::size_t const list = help.find("Commands:\n");
  ASSERT_NE(list, std::string::npos);
  std::vector<std::string> commands;
  std::size_t at = list + 10;
  while (at < help.size() && help.compare(at, 2, "  ") == 0 && help[at + 2] != ' ') {
    std::size_t const end = help.find_first_of(" \n", at + 2);
    commands.push_back(help.substr(at + 2, end - at - 2));
    while (at < help.size() && help.compare(at, 3, "   ") != 0 && help[at] != '\n') at = help.find('\n', at) + 1;
    while (at < help.size() && help.compare(at, 3, "   ") == 0) at = help.find('\n', at) + 1;
  }
  EXPECT_GE(commands.size(), 11u) << help;
  for (std::string const& command : commands) {
    for (char const* flag : {"--help", "-h"}) {
      ToolRun run = qbfs(command + " " + flag);
      EXPECT_EQ(run.status, 0) << command << " " << flag << ": " << run.err;
      EXPECT_TRUE(has(run.out, "usage: qbfs " + command)) << command << ": " << run.out;
      EXPECT_EQ(run.err, "") << command;
    }
  }
}

TEST(QbfsTool, MatchPrintsWhatTheMatcherReturns) {
  ToolRun run = qbfs("match '*.txt' a.txt b.TXT README");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "1  a.txt\n0  b.TXT\n0  README\n");
  EXPECT_EQ(qbfs("match -i '*.txt' b.TXT").out, "1  b.TXT\n");
  EXPECT_EQ(qbfs("match x").status, 2);
}

TEST(QbfsTool, TreeOfConfiguredRootsIsTheLayersDump) {
  char templ[] = "/tmp/qbfs-tool-XXXXXX";
  ASSERT_NE(mkdtemp(templ), nullptr);
  std::string root = templ;
  ToolRun run = qbfs("--root " + root + " -q tree");
  EXPECT_EQ(run.status, 0) << run.out;
  EXPECT_TRUE(has(run.out, std::string(78, '*') + "\nDLE Tree\n-->\\\\")) << run.out;
  EXPECT_TRUE(has(run.out, "    -->" + root + "<-- type 7 subtype 2")) << run.out;
  EXPECT_FALSE(has(run.out, " address ")) << "no pointers in what a person reads";
  EXPECT_TRUE(has(run.out, " type 7 subtype 2 feature bits 0x0 0x0 ")) << run.out;
  EXPECT_TRUE(has(run.out, "\nEnd of List\n")) << run.out;

  ToolRun brief = qbfs("--root " + root + " -q tree --brief");
  EXPECT_TRUE(has(brief.out, "  " + root + "  (file system 7, type 7, subtype 2)")) << brief.out;

  ToolRun attach = qbfs("--root " + root + " -q attach " + root);
  EXPECT_EQ(attach.status, 0) << attach.out;
  EXPECT_TRUE(has(attach.out, "attach to " + root + " (file system 7): success (0x00000000)"))
      << attach.out;
  EXPECT_TRUE(has(attach.out, "attach count while attached: 1")) << attach.out;
  rmdir(templ);
}

// -q leaves standard error to errors alone: no summary, no progress.
TEST(QbfsTool, QuietLeavesOnlyErrorsOnStandardError) {
  char templ[] = "/tmp/qbfs-quiet-XXXXXX";
  ASSERT_NE(mkdtemp(templ), nullptr);
  std::string const dir = templ;
  std::ofstream(dir + "/a.txt") << "some data";
  std::string const archive = dir + ".qbfs";
  ToolRun loud = qbfs("backup " + dir + " -o " + archive);
  EXPECT_EQ(loud.status, 0) << loud.err;
  EXPECT_TRUE(has(loud.err, "qbfs backup: ")) << "the summary, without -q";
  ToolRun quiet = qbfs("backup -q " + dir + " -o " + archive);
  EXPECT_EQ(quiet.status, 0) << quiet.err;
  EXPECT_EQ(quiet.err, "");
  ToolRun failing = qbfs("backup -q " + dir + "/no-such -o " + archive);
  EXPECT_NE(failing.status, 0);
  EXPECT_NE(failing.err, "") << "errors stay";
  std::remove(archive.c_str());
  std::remove((dir + "/a.txt").c_str());
  rmdir(templ);
}

TEST(QbfsTool, WithoutModulesThereIsNoTree) {
  ToolRun run = qbfs("--no-modules -q tree");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err,
            "qbfs tree: no backup element was found: no file system initialized, "
            "or no drive found (0xE000FE46)\n");
  EXPECT_FALSE(has(run.out, "DLE Tree")) << "no empty tree after a failed start-up";
  ToolRun modules = qbfs("--no-modules modules");
  EXPECT_EQ(modules.status, 0);
  EXPECT_TRUE(has(modules.err, "FS_InitFileSys\nInitializing FSs\n")) << modules.err;
  EXPECT_TRUE(has(modules.out, "start-up: success (0x00000000)\n")) << modules.out;
  EXPECT_TRUE(has(modules.out, "   50     0        0  no      generic")) << modules.out;
}

TEST(QbfsTool, PropsRoundTripsAFile) {
  char path[] = "/tmp/qbfs-props-XXXXXX";
  int fd = mkstemp(path);
  ASSERT_GE(fd, 0);
  close(fd);
  std::ofstream(path) << "<root><size type=\"uint64\">42</size></root>";
  ToolRun run = qbfs(std::string("props ") + path);
  EXPECT_EQ(run.status, 0) << run.out;
  EXPECT_TRUE(has(run.out, "42")) << run.out;
  ToolRun nowhere = qbfs(std::string("props ") + path + " missing");
  EXPECT_EQ(nowhere.status, 1) << "a path to no tree is a failure, not a status of its own";
  EXPECT_TRUE(has(nowhere.err, "the path \"missing\" leads to no tree")) << nowhere.err;
  unlink(path);
}

// Bad arguments and unusable inputs: the documented exit status, nothing on
// standard output, and a message on standard error that names the object and
// the reason.
struct refusal_case {
  char const* label;
  std::string args;  // "@" stands for a scratch directory
  int status;
  std::string err;  // a part of standard error
};
std::ostream& operator<<(std::ostream& os, refusal_case const& c) { return os << c.label; }

class Refusal : public ::testing::TestWithParam<refusal_case> {
 protected:
  static void SetUpTestSuite() {
    scratch_ = ::testing::TempDir() + "qbfs_refusals." + std::to_string(getpid());
    mkdir(scratch_.c_str(), 0700);
    mkfifo((scratch_ + "/fifo").c_str(), 0600);
    std::ofstream(scratch_ + "/text.so") << std::string(256, 'x');
    std::ofstream(scratch_ + "/tree.xml") << "<r/>";
  }
  static void TearDownTestSuite() {
    for (char const* f : {"/fifo", "/text.so", "/tree.xml"}) unlink((scratch_ + f).c_str());
    rmdir(scratch_.c_str());
  }
  static std::string scratch_;
};
std::string Refusal::scratch_;

TEST_P(Refusal, ExitsWithTheDocumentedStatusAndSaysWhy) {
  std::string args = GetParam().args;
  for (std::size_t at; (at = args.find('@')) != std::string::npos;) args.replace(at, 1, scratch_);
  std::string err = GetParam().err;
  for (std::size_t at; (at = err.find('@')) != std::string::npos;) err.replace(at, 1, scratch_);
  ToolRun run = qbfs(args);
  EXPECT_EQ(run.status, GetParam().status) << run.err;
  EXPECT_EQ(run.out, "");
  EXPECT_TRUE(has(run.err, err)) << run.err;
}

INSTANTIATE_TEST_SUITE_P(
    Props, Refusal,
    ::testing::Values(
        refusal_case{"directory", "props @", 1, "'@' is a directory; only regular files are read"},
        refusal_case{"endless device", "props /dev/zero", 1, "'/dev/zero' is a character device"},
        refusal_case{"FIFO", "props @/fifo", 1, "'@/fifo' is a FIFO"},
        refusal_case{"missing file", "props @/none.xml", 1,
                     "cannot open '@/none.xml': No such file or directory"},
        refusal_case{"invalid path", "props @/tree.xml 'a[x]'", 2,
                     "invalid path \"a[x]\": invalid character found while parsing position"}));

INSTANTIATE_TEST_SUITE_P(
    Match, Refusal,
    ::testing::Values(refusal_case{"flags not a number", "match --flags abc '*' a", 2, "not 'abc'"},
                      refusal_case{"flags empty", "match --flags '' '*' a", 2, "--flags needs a value"},
                      refusal_case{"flags beyond the bits", "match --flags 16 '*' a", 2,
                                   "from 0 to 15"},
                      refusal_case{"segment and flags", "match --segment --flags 4 '*' a", 2,
                                   "--segment and --flags cannot be given together"},
                      refusal_case{"over-long name", "match '*' " + std::string(40000, 'n'), 2,
                                   "name 1 has 40000 characters; at most 32766 are taken"}));

INSTANTIATE_TEST_SUITE_P(
    Layer, Refusal,
    ::testing::Values(
        refusal_case{"empty attach path", "attach ''", 2, "qbfs attach: the path is empty"},
        refusal_case{"module that is no module", "-q -m @/text.so modules", 1,
                     "module '@/text.so' cannot be loaded: @/text.so: invalid ELF header"},
        refusal_case{
            "module missing a function",
            std::string("-q -m ") + QB_TEST_MODULE_DIR + "/libhm_undefined_call.so modules", 1,
            "undefined symbol: hm_no_library_defines_this_function"}));

}  // namespace
