// The command-line host run as a person runs it: a separate process, its
// output and exit status.
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

namespace {

struct ToolRun {
  int status;
  std::string out;  // standard output and standard error together
};

ToolRun qbfs(std::string const& args) {
  std::string command = std::string("'") + QBFS_PATH + "' " + args + " 2>&1";
  ToolRun run{-1, {}};
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return run;
  char buffer[4096];
  std::size_t n;
  while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) run.out.append(buffer, n);
  int status = pclose(pipe);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

bool has(std::string const& text, std::string const& part) {
  return text.find(part) != std::string::npos;
}

TEST(QbfsTool, HelpAndBadUsage) {
  ToolRun help = qbfs("--help");
  EXPECT_EQ(help.status, 0);
  EXPECT_TRUE(has(help.out, "usage: qbfs"));
  EXPECT_EQ(qbfs("").status, 2);
  EXPECT_EQ(qbfs("no-such-command").status, 2);
  EXPECT_EQ(qbfs("--no-such-option tree").status, 2);
  EXPECT_EQ(qbfs("attach").status, 2);
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
  EXPECT_TRUE(has(run.out, "    -->" + root + "<-- address ")) << run.out;
  EXPECT_TRUE(has(run.out, " type 7 subtype 2 feature bits 0x0 0x0 ")) << run.out;
  EXPECT_TRUE(has(run.out, "\nEnd of List\n")) << run.out;

  ToolRun brief = qbfs("--root " + root + " -q tree --brief");
  EXPECT_TRUE(has(brief.out, "  " + root + "  (file system 7, type 7, subtype 2)")) << brief.out;

  ToolRun attach = qbfs("--root " + root + " -q attach " + root);
  EXPECT_EQ(attach.status, 0) << attach.out;
  EXPECT_TRUE(has(attach.out, "attach to " + root + " (file system 7): 0x00000000")) << attach.out;
  EXPECT_TRUE(has(attach.out, "attach count while attached: 1")) << attach.out;
  rmdir(templ);
}

TEST(QbfsTool, WithoutModulesThereIsNoTree) {
  ToolRun run = qbfs("--no-modules -q tree");
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(has(run.out, "building the tree returned 0xE000FE46")) << run.out;
  ToolRun modules = qbfs("--no-modules modules");
  EXPECT_EQ(modules.status, 0);
  EXPECT_TRUE(has(modules.out, "FS_InitFileSys\nInitializing FSs\n")) << modules.out;
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
  unlink(path);
  EXPECT_NE(qbfs("props /nonexistent/file.xml").status, 0);
}

}  // namespace
