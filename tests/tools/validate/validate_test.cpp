// `qbfs validate` as a module author runs it: each deliberately faulty
// module is reported with the check its fault breaks, and only that; the
// control module and the posix module pass.
#include <stdlib.h>
#include <sys/wait.h>

#include <cstdio>
#include <fstream>
#include <regex>
#include <string>

#include <gtest/gtest.h>

namespace {

struct ToolRun {
  int status;
  std::string out;  // standard output only: the report
};

ToolRun validate(std::string const& args) {
  std::string const command = std::string("'") + QBFS_PATH + "' -q validate " + args + " 2>/dev/null";
  ToolRun run{-1, {}};
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return run;
  char buffer[4096];
  for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) run.out.append(buffer, n);
  int const status = pclose(pipe);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

std::string module(std::string const& name) {
  return std::string(QB_TEST_MODULE_DIR) + "/lib" + name + ".so";
}

// The ids of the failed checks, in report order, joined by spaces.
std::string failed_ids(std::string const& report) {
  std::string ids;
  std::regex const line("^failed +([a-z-]+) ", std::regex::multiline);
  for (std::sregex_iterator it(report.begin(), report.end(), line), end;
       it != end; ++it)
    ids += (ids.empty() ? "" : " ") + (*it)[1].str();
  return ids;
}

// The report line of one check.
std::string line_of(std::string const& report, std::string const& id) {
  std::smatch m;
  std::regex const line("^[a-z]+ +" + id + " .*$", std::regex::multiline);
  return std::regex_search(report, m, line) ? m.str() : std::string();
}

struct FaultCase {
  char const* module;
  char const* failed;  // the failed checks expected, in report order
  char const* says;    // part of the failure's detail
};

FaultCase const kFaults[] = {
    {"qbv_none", "", "passed   read-framing       1 files read (1 streams, 1000 bytes)"},
    {"qbv_wrong_version", "interface-version", "expected interface version 23; the module reports 22"},
    {"qbv_read_overrun", "read-framing", "FS_ERR_OBJ_OVERRUN"},
    {"qbv_lying_size", "read-framing", "announced 1000 bytes; 400 came before the object ended"},
    {"qbv_crash_attach", "attach-detach", "attach-detach      crashed: "},
    // Shutting down builds the tree first, so it meets the hang too.
    {"qbv_hang_find", "find-drives shut-down", "did not finish within 2 s"},
    {"qbv_leak_attach", "attach-leaks", "the heap grew by"},
    {"qbv_bad_index", "tables", "call 0 gave index 60; expected 0 to 50"},
    {"qbv_unpaired_slot", "slots", "AttachToDLE (slot 15) is filled but DetachDLE (slot 16) is empty"},
    {"qbv_odd_status", "read-framing", "a read returned 0xE0001234; expected 0"},
    {"qbv_path_no_room", "null-arguments", "GetCurrentPath with 0 bytes of room returned 0x00000000"},
};

TEST(QbfsValidate, EachFaultIsReportedByTheCheckItBreaks) {
  for (FaultCase const& c : kFaults) {
    ToolRun const run = validate("--timeout 2 --seed 1 " + module(c.module));
    EXPECT_EQ(run.status, *c.failed == '\0' ? 0 : 1) << c.module << "\n" << run.out;
    EXPECT_EQ(failed_ids(run.out), c.failed) << c.module << "\n" << run.out;
    EXPECT_NE(run.out.find(c.says), std::string::npos) << c.module << "\n" << run.out;
  }
}

TEST(QbfsValidate, PosixModulePassesOnAGeneratedTreeAndRestoresIt) {
  char src[] = "/tmp/qbv-src-XXXXXX";
  char dst[] = "/tmp/qbv-dst-XXXXXX";
  ASSERT_TRUE(mkdtemp(src) && mkdtemp(dst));
  std::string const root = src;
  ASSERT_EQ(std::system(("mkdir -p " + root + "/d/e && printf abc > " + root + "/a && head -c 70000 "
                         "/dev/zero > " + root + "/d/big && ln -s a " + root + "/l").c_str()), 0);
  ToolRun const run = validate("--seed 5 --root " + root + " --write " + dst + " " + module("qbposix"));
  EXPECT_EQ(run.status, 0) << run.out;
  EXPECT_EQ(failed_ids(run.out), "") << run.out;
  EXPECT_NE(run.out.find("walk               5 objects (2 directories, 3 files)"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("2 files restored into"), std::string::npos) << run.out;
  // Same seed, same report; JSON carries the same verdicts.
  ToolRun const again = validate("--seed 5 --root " + root + " " + module("qbposix"));
  ToolRun const json = validate("--json --seed 5 --root " + root + " " + module("qbposix"));
  EXPECT_EQ(line_of(again.out, "read-framing"), line_of(run.out, "read-framing"));
  // Without --write only the restore check is skipped.
  EXPECT_NE(json.out.find("\"summary\":{\"passed\":13,\"failed\":0,\"skipped\":1}"), std::string::npos) << json.out;
  std::system(("rm -rf " + root + " " + dst).c_str());
}

TEST(QbfsValidate, BadUsageExitsTwo) {
  for (char const* args : {"", "--cycles 0 x.so", "--seed -1 x.so", "--write /no/such/dir x.so",
                           "a.so b.so", "--no-such-option x.so"})
    EXPECT_EQ(validate(args).status, 2) << args;
}

}  // namespace
