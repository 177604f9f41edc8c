// The archive commands end to end on an element served only through an
// adapter class: the test module adapterfs (adapter_module/) fills no
// walking, block or object slot of its table, so whatever qbfs does with
// its element goes through the layer's road to the adapter. The module's
// tree is fixed; what it serves is written out here (names, kinds, bytes,
// modification dates in UTC, attribute words) and compared with what
// `qbfs ls -l` lists and with what a restore leaves on disk, read back
// with stat() and plain file reads.
#include <dlfcn.h>
#include <sys/stat.h>
#include <time.h>

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <qbfsys/func_list.h>

#include "tool_run.h"

namespace {

using qbtest::clean;
using qbtest::has;
using qbtest::qbfs;
using qbtest::ToolRun;

std::string const kModule = std::string("-m '") + QBFS_ADAPTERFS_PATH + "' ";
// The element's device name, which is also the name its objects are stored
// under in an archive.
std::string const kElement = "adapterfs:";

// What the module serves. `path` is below the element ("" is the element's
// root directory).
struct served {
  char const* path;
  bool directory;
  int year, month, day, hour, minute, second;
  long nanoseconds;
  std::uint32_t attrib1;
  std::string data;
};

std::string large_data() {
  std::string large(200000, '\0');
  for (std::size_t i = 0; i < large.size(); ++i) large[i] = static_cast<char>((i * 7 + i / 251) & 0xFF);
  return large;
}

std::vector<served> const& adapterfs_tree() {
  static std::vector<served> const tree{
      {"", true, 2019, 7, 14, 8, 30, 0, 0, 0x0010, ""},
      {"notes.txt", false, 2020, 1, 2, 3, 4, 5, 123456700, 0x0001, "Served through an adapter.\n"},
      {"large.bin", false, 2021, 6, 30, 23, 59, 58, 0, 0x0002, large_data()},
      {"empty.txt", false, 2018, 2, 28, 12, 0, 0, 0, 0x0003, ""},
      {"src", true, 2022, 11, 11, 11, 11, 11, 0, 0x0011, ""},
      {"src/main.c", false, 2017, 5, 6, 7, 8, 9, 0, 0x0004, "int main(void) { return 0; }\n"},
      {"src/deep", true, 2016, 10, 20, 20, 10, 0, 0, 0x0012, ""},
      {"src/deep/leaf.txt", false, 2015, 3, 15, 15, 15, 15, 0, 0x0005, "a leaf\n"},
      {"void", true, 2014, 12, 31, 23, 0, 0, 0, 0x0013, ""},
  };
  return tree;
}

// The path as the archive holds it of the object at `path` below the element.
std::string archived(std::string const& path) { return path.empty() ? kElement : kElement + "/" + path; }
std::string archived(served const& obj) { return archived(std::string(obj.path)); }

// Seconds since the epoch of the served date.
std::time_t epoch_seconds(served const& obj) {
  std::tm utc{};
  utc.tm_year = obj.year - 1900;
  utc.tm_mon = obj.month - 1;
  utc.tm_mday = obj.day;
  utc.tm_hour = obj.hour;
  utc.tm_min = obj.minute;
  utc.tm_sec = obj.second;
  return timegm(&utc);
}

// The paths `qbfs ls` prints, without the '/' that marks directories.
std::set<std::string> listed_paths(std::string const& out) {
  std::set<std::string> listed;
  std::istringstream lines(out);
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && line.back() == '/') line.pop_back();
    listed.insert(line);
  }
  return listed;
}

// ---- the module's table ------------------------------------------------------

// The names of the slots a table fills.
std::set<std::string> filled_slots(_FUNC_LIST const& table) {
  std::set<std::string> names;
#define FS_FUNC_SLOT(slot, name, ...) \
  if (table.name != nullptr) names.insert(#name);
#define FS_FUNC_SLOT_OP(slot, op, slot_name, ...) \
  if (table.slot_name != nullptr) names.insert(#slot_name);
#include <qbfsys/func_slots_by_slot.inc>
#undef FS_FUNC_SLOT
#undef FS_FUNC_SLOT_OP
  return names;
}

// Every other test here passes through this table: with nothing for walking,
// blocks or objects in it, what they prove is that the tool and the layer
// reach the module through its adapter alone.
TEST(AdapterModuleTable, FillsOnlyStartUpAndTheAdapterInstallation) {
  void* module = dlopen(QBFS_ADAPTERFS_PATH, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(module, nullptr) << dlerror();
  using GetTable = int (*)(int, unsigned int, _FUNC_LIST*, int*);
  auto get_table = reinterpret_cast<GetTable>(dlsym(module, "GetTable"));
  ASSERT_NE(get_table, nullptr);
  _FUNC_LIST table{};
  int index = -1;
  ASSERT_EQ(get_table(0, 0, &table, &index), 1);
  EXPECT_EQ(filled_slots(table),
            (std::set<std::string>{"InitFileSys", "DeInitFileSys", "FindDrives", "RemoveDLE", "OpenSys"}));
  dlclose(module);
}

// ---- end to end through qbfs ---------------------------------------------------

// A scratch directory with the element backed up into `archive`.
struct BackedUp : qbtest::ScratchDir {
  BackedUp() : archive(dir + "/adapterfs.qbfs") {
    backup = qbfs(kModule + "-q backup " + kElement + " -o '" + archive + "'");
  }
  std::string archive;
  ToolRun backup;
};

TEST(AdapterModule, TreeListsTheElement) {
  ToolRun const run = qbfs(kModule + "tree --brief");
  ASSERT_TRUE(clean(run));
  EXPECT_EQ(run.status, 0) << run.err;
  std::istringstream lines(run.out);
  bool listed = false;
  for (std::string line; std::getline(lines, line);)
    listed = listed || line.rfind(kElement + " ", 0) == 0;  // the device name opens its line
  EXPECT_TRUE(listed) << run.out;
}

TEST(AdapterModule, BackupExitsZero) {
  BackedUp const s;
  EXPECT_TRUE(clean(s.backup));
  EXPECT_EQ(s.backup.status, 0) << s.backup.err;
}

// One line of `ls -l` for another module's object: kind, attribute word,
// size, date, time, path.
struct long_line {
  std::string kind, attrib1, size, date, time, path;
};

std::vector<long_line> parse_long(std::string const& out) {
  std::vector<long_line> lines;
  std::istringstream in(out);
  for (std::string text; std::getline(in, text);) {
    std::istringstream words(text);
    long_line line;
    words >> line.kind >> line.attrib1 >> line.size >> line.date >> line.time >> line.path;
    lines.push_back(line);
  }
  return lines;
}

TEST(AdapterModule, LongListingShowsTypeSizeAttributeWordAndServedDate) {
  BackedUp const s;
  ASSERT_EQ(s.backup.status, 0) << s.backup.err;
  // Dates are shown in local time; in UTC they read as served.
  ToolRun const ls = qbtest::shell("TZ=UTC " + qbtest::qbfs_command() + kModule + "ls -l '" + s.archive + "'");
  ASSERT_TRUE(clean(ls));
  EXPECT_EQ(ls.status, 0) << ls.err;
  std::vector<long_line> const lines = parse_long(ls.out);
  EXPECT_EQ(lines.size(), adapterfs_tree().size()) << ls.out;
  for (served const& obj : adapterfs_tree()) {
    SCOPED_TRACE(archived(obj));
    long_line const* found = nullptr;
    for (long_line const& line : lines)
      if (line.path == archived(obj)) found = &line;
    ASSERT_NE(found, nullptr) << ls.out;
    char attrib[16], date[16], time[8];
    std::snprintf(attrib, sizeof attrib, "0x%08X", static_cast<unsigned>(obj.attrib1));
    std::snprintf(date, sizeof date, "%04d-%02d-%02d", obj.year, obj.month, obj.day);
    std::snprintf(time, sizeof time, "%02d:%02d", obj.hour, obj.minute);
    EXPECT_EQ(found->kind, obj.directory ? "d" : "-");
    EXPECT_EQ(found->attrib1, attrib);
    EXPECT_EQ(found->size, std::to_string(obj.data.size()));
    EXPECT_EQ(found->date, date);
    EXPECT_EQ(found->time, time);
  }
}

TEST(AdapterModule, VerifiesOnItsOwn) {
  BackedUp const s;
  ASSERT_EQ(s.backup.status, 0) << s.backup.err;
  ToolRun const verify = qbfs(kModule + "verify '" + s.archive + "'");
  EXPECT_TRUE(clean(verify));
  EXPECT_EQ(verify.status, 0) << verify.out << verify.err;
}

// The archive compared with the element it was made from, read again
// through the adapter.
TEST(AdapterModule, VerifiesAgainstTheElement) {
  BackedUp const s;
  ASSERT_EQ(s.backup.status, 0) << s.backup.err;
  ToolRun const verify = qbfs(kModule + "verify '" + s.archive + "' --against " + kElement);
  EXPECT_TRUE(clean(verify));
  EXPECT_EQ(verify.status, 0) << verify.out << verify.err;
}

// Each way the element can come to differ from the archive, one object
// changed at a time (ADAPTERFS_CHANGE, adapter_module/adapterfs_tree.cpp):
// verify reads it again through the adapter, names that object and exits 1.
struct served_change {
  char const* name;
  char const* path;   // below the element
  char const* field;  // what the module changes
};
void PrintTo(served_change const& c, std::ostream* os) { *os << c.name; }

class AdapterModuleChanged : public ::testing::TestWithParam<served_change> {};

TEST_P(AdapterModuleChanged, VerifyAgainstTheElementNamesTheObject) {
  BackedUp const s;
  ASSERT_EQ(s.backup.status, 0) << s.backup.err;
  std::string const change = std::string(GetParam().path) + ":" + GetParam().field;
  ToolRun const verify = qbtest::shell("ADAPTERFS_CHANGE='" + change + "' " + qbtest::qbfs_command() + kModule +
                                       "verify '" + s.archive + "' --against " + kElement);
  EXPECT_TRUE(clean(verify));
  EXPECT_EQ(verify.status, 1) << verify.err;
  EXPECT_TRUE(has(verify.err, "differs: " + archived(GetParam().path) + ": ")) << verify.err;
  EXPECT_TRUE(has(verify.out, " 1 differ")) << "that object alone\n" << verify.out;
}

INSTANTIATE_TEST_SUITE_P(
    Verify, AdapterModuleChanged,
    ::testing::Values(served_change{"ElementRootDate", "", "mdate"},
                      served_change{"ElementRootAttributeWord2", "", "attrib2"},
                      served_change{"FileDate", "src/main.c", "mdate"},
                      served_change{"DirectoryDate", "src/deep", "mdate"},
                      served_change{"EmptyDirectoryDate", "void", "mdate"},
                      served_change{"FileAttributeWord1", "notes.txt", "attrib1"},
                      served_change{"FileAttributeWord2", "src/deep/leaf.txt", "attrib2"},
                      served_change{"DirectoryAttributeWord1", "src", "attrib1"},
                      served_change{"LastByteOfALargeFile", "large.bin", "data"},
                      served_change{"LastByteOfASmallFile", "notes.txt", "data"}),
    [](auto const& info) { return std::string(info.param.name); });

TEST(AdapterModule, RestoresBytesAndDatesIntoADirectory) {
  BackedUp const s;
  ASSERT_EQ(s.backup.status, 0) << s.backup.err;
  std::string const target = s.fresh("restored");
  ASSERT_FALSE(target.empty());
  ToolRun const restore = qbfs("restore '" + s.archive + "' -C '" + target + "'");
  ASSERT_TRUE(clean(restore));
  EXPECT_EQ(restore.status, 0) << restore.err;
  for (served const& obj : adapterfs_tree()) {
    std::string const path = target + "/" + archived(obj);
    SCOPED_TRACE(path);
    struct stat st {};
    ASSERT_EQ(lstat(path.c_str(), &st), 0) << restore.err;
    EXPECT_EQ(S_ISDIR(st.st_mode), obj.directory);
    EXPECT_EQ(S_ISREG(st.st_mode), !obj.directory);
    if (!obj.directory) {
      EXPECT_TRUE(qbtest::read_file(path) == obj.data) << "contents differ";
    }
    EXPECT_EQ(st.st_mtim.tv_sec, epoch_seconds(obj));
    EXPECT_EQ(st.st_mtim.tv_nsec, obj.nanoseconds);
  }
}

// Exclusions are decided by the layer from the names and current paths the
// adapter gives (FS_GetSpecialAttribs for files, the element's rules for
// directories): what a pattern names is left out, the rest is kept.
struct exclusion {
  char const* name;
  std::string options;
  std::set<std::string> left_out;  // paths below the element
};
void PrintTo(exclusion const& e, std::ostream* os) { *os << e.name; }

class AdapterModuleExclusion : public ::testing::TestWithParam<exclusion> {};

TEST_P(AdapterModuleExclusion, LeavesOutWhatThePatternsName) {
  qbtest::ScratchDir const s;
  std::string const archive = s.dir + "/excluded.qbfs";
  ToolRun const backup = qbfs(kModule + "-q backup " + kElement + " " + GetParam().options + " -o '" + archive + "'");
  ASSERT_TRUE(clean(backup));
  ASSERT_EQ(backup.status, 0) << backup.err;
  ToolRun const ls = qbfs("ls '" + archive + "'");
  std::set<std::string> const listed = listed_paths(ls.out);
  std::set<std::string> expected;
  for (served const& obj : adapterfs_tree()) {
    bool out = false;
    for (std::string const& gone : GetParam().left_out)
      out = out || obj.path == gone || std::string(obj.path).rfind(gone + "/", 0) == 0;
    if (!out) expected.insert(archived(obj));
  }
  EXPECT_EQ(listed, expected) << ls.out;
}

INSTANTIATE_TEST_SUITE_P(
    Backup, AdapterModuleExclusion,
    ::testing::Values(exclusion{"FileByPath", "--exclude src/main.c", {"src/main.c"}},
                      exclusion{"FilesByPattern", "--exclude '**.txt'",
                                {"notes.txt", "empty.txt", "src/deep/leaf.txt"}},
                      exclusion{"NestedDirectory", "--exclude src/deep", {"src/deep"}},
                      exclusion{"TopFileAndEmptyDirectory", "--exclude large.bin --exclude void",
                                {"large.bin", "void"}}),
    [](auto const& info) { return std::string(info.param.name); });

// The copy a restore made into a directory stands for the element too: the
// posix module keeps no attribute words of another module, but the kinds,
// data, sizes and modification dates must match, and a change made to the
// copy afterwards is found.
struct copy_change {
  char const* name;
  char const* command;  // run in the copy's directory; "" for none
  char const* differs;  // the path below the element that differs; null for none
};
void PrintTo(copy_change const& c, std::ostream* os) { *os << c.name; }

class AdapterModuleRestoredCopy : public ::testing::TestWithParam<copy_change> {};

TEST_P(AdapterModuleRestoredCopy, VerifyAgainstTheCopy) {
  BackedUp const s;
  ASSERT_EQ(s.backup.status, 0) << s.backup.err;
  std::string const target = s.fresh("restored");
  ASSERT_EQ(qbfs("restore '" + s.archive + "' -C '" + target + "'").status, 0);
  std::string const copy = target + "/" + kElement;
  if (*GetParam().command != '\0') {
    ASSERT_EQ(qbtest::shell("cd '" + copy + "' && " + GetParam().command).status, 0);
  }
  ToolRun const verify = qbfs("verify '" + s.archive + "' --against '" + copy + "'");
  EXPECT_TRUE(clean(verify));
  if (GetParam().differs == nullptr) {
    EXPECT_EQ(verify.status, 0) << verify.err;
  } else {
    EXPECT_EQ(verify.status, 1) << verify.err;
    EXPECT_TRUE(has(verify.err, "differs: " + archived(GetParam().differs) + ": ")) << verify.err;
    EXPECT_TRUE(has(verify.out, " 1 differ")) << "that object alone\n" << verify.out;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Verify, AdapterModuleRestoredCopy,
    ::testing::Values(copy_change{"Unchanged", "", nullptr},
                      copy_change{"FileDate", "touch -m -d '2001-01-01 00:00:00 UTC' src/main.c", "src/main.c"},
                      copy_change{"DirectoryDate", "touch -m -d '2001-01-01 00:00:00 UTC' void", "void"},
                      copy_change{"FileData", "printf 'Served through an adaptor.\\n' > notes.txt", "notes.txt"}),
    [](auto const& info) { return std::string(info.param.name); });

// `qbfs validate` attaches, walks and reads a module the way a job does; a
// module whose handles attach through their adapter is checked in full.
TEST(AdapterModule, ValidateAttachesWalksAndReadsThroughTheAdapter) {
  std::size_t directories = 0, files = 0, bytes = 0;
  for (served const& obj : adapterfs_tree()) {
    if (obj.path[0] == '\0') continue;  // the element's root is not an object of its walk
    (obj.directory ? directories : files) += 1;
    bytes += obj.data.size();
  }
  ToolRun const run = qbfs(std::string("validate --seed 1 '") + QBFS_ADAPTERFS_PATH + "'");
  EXPECT_TRUE(clean(run));
  EXPECT_EQ(run.status, 0) << run.out;
  std::string const walked = std::to_string(directories + files) + " objects (" + std::to_string(directories) +
                             " directories, " + std::to_string(files) + " files)";
  std::string const read = std::to_string(files) + " files read (" + std::to_string(files) + " streams, " +
                           std::to_string(bytes) + " bytes)";
  for (std::string const& line :
       std::vector<std::string>{"passed   attach-detach", "passed   attach-leaks", "passed   null-arguments",
                                "passed   walk               " + walked, "passed   read-framing       " + read})
    EXPECT_TRUE(has(run.out, line)) << line << "\n" << run.out;
}

// The element is read-only (its adapter makes no object and opens none for
// writing): a restore into it fails for every object, says so, and exits 1.
TEST(AdapterModule, RestoreIntoTheReadOnlyElementFailsCleanly) {
  BackedUp const s;
  ASSERT_EQ(s.backup.status, 0) << s.backup.err;
  ToolRun const restore = qbfs(kModule + "restore '" + s.archive + "' -C " + kElement);
  EXPECT_TRUE(clean(restore));
  EXPECT_EQ(restore.status, 1) << restore.err;
  EXPECT_TRUE(has(restore.err, archived("") + ": cannot be restored")) << restore.err;
  EXPECT_TRUE(has(restore.out, " 0 objects")) << restore.out;
  EXPECT_TRUE(has(restore.out, " " + std::to_string(adapterfs_tree().size()) + " failed")) << restore.out;
  // The missing top directory is said once, not once for every object below it.
  std::size_t lines = 0;
  for (char c : restore.err) lines += c == '\n';
  EXPECT_LE(lines, 3u) << restore.err;
  EXPECT_TRUE(has(restore.err, "; nothing else below " + archived("") + " is restored\n")) << restore.err;
}

// ---- a module that fails mid-read ------------------------------------------------

// With ADAPTERFS_FAIL_READ naming a file, the module's read of it fails once
// its first unit was delivered: all of a small file, part of a large one.
class AdapterModuleReadError : public ::testing::TestWithParam<char const*> {};

TEST_P(AdapterModuleReadError, BackupAndRestoreNameTheObjectAndExitOne) {
  std::string const failing = GetParam();
  qbtest::ScratchDir const s;
  std::string const archive = s.dir + "/failed.qbfs";
  ToolRun const backup = qbtest::shell("ADAPTERFS_FAIL_READ='" + failing + "' " + qbtest::qbfs_command() + kModule +
                                       "-q backup " + kElement + " -o '" + archive + "'");
  EXPECT_TRUE(clean(backup));
  EXPECT_EQ(backup.status, 1) << backup.err;
  EXPECT_TRUE(has(backup.err, kElement + "/" + failing + ": ")) << backup.err;
  for (served const& obj : adapterfs_tree())
    if (obj.path != failing && obj.path[0] != '\0') {
      EXPECT_FALSE(has(backup.err, archived(obj) + ":")) << "only the failing object is named\n" << backup.err;
    }

  ToolRun const ls = qbfs("ls '" + archive + "'");
  EXPECT_TRUE(clean(ls));
  EXPECT_EQ(ls.status, 0) << "a failed read leaves the archive whole\n" << ls.err;
  EXPECT_TRUE(has(ls.out, kElement + "/" + failing + "  (incomplete")) << ls.out;
  ToolRun const verify = qbfs("verify '" + archive + "'");
  EXPECT_TRUE(clean(verify));
  EXPECT_EQ(verify.status, 1) << "an archive missing an object's data is no complete backup\n" << verify.out;
  EXPECT_TRUE(has(verify.out, "whole, 1 incomplete at backup")) << verify.out;

  std::string const target = s.fresh("restored");
  ToolRun const restore = qbfs("restore '" + archive + "' -C '" + target + "'");
  EXPECT_TRUE(clean(restore));
  EXPECT_EQ(restore.status, 1) << restore.err;
  EXPECT_TRUE(has(restore.err, kElement + "/" + failing + ": ")) << restore.err;
  struct stat st {};
  EXPECT_NE(lstat((target + "/" + kElement + "/" + failing).c_str(), &st), 0) << "an incomplete file is not restored";
  // The others are restored whole.
  for (served const& obj : adapterfs_tree())
    if (!obj.directory && obj.path != failing) {
      EXPECT_TRUE(qbtest::read_file(target + "/" + archived(obj)) == obj.data) << archived(obj);
    }
}

INSTANTIATE_TEST_SUITE_P(Backup, AdapterModuleReadError, ::testing::Values("src/main.c", "large.bin"),
                         [](auto const& info) {
                           std::string name = info.param;
                           for (char& c : name)
                             if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
                           return name;
                         });

// With ADAPTERFS_FAIL_ENTER naming a directory, entering it fails: backup
// names that directory, exits 1 and stores all else; what lies below it is
// missing.
class AdapterModuleEnterError : public ::testing::TestWithParam<char const*> {};

TEST_P(AdapterModuleEnterError, BackupNamesTheDirectoryAndKeepsTheRest) {
  std::string const failing = GetParam();
  qbtest::ScratchDir const s;
  std::string const archive = s.dir + "/failed.qbfs";
  ToolRun const backup = qbtest::shell("ADAPTERFS_FAIL_ENTER='" + failing + "' " + qbtest::qbfs_command() +
                                       kModule + "-q backup " + kElement + " -o '" + archive + "'");
  EXPECT_TRUE(clean(backup));
  EXPECT_EQ(backup.status, 1) << backup.err;
  EXPECT_TRUE(has(backup.err, archived(failing) + ": ")) << backup.err;
  ToolRun const ls = qbfs("ls '" + archive + "'");
  EXPECT_EQ(ls.status, 0) << ls.err;
  std::set<std::string> const listed = listed_paths(ls.out);
  std::set<std::string> expected;
  for (served const& obj : adapterfs_tree())
    if (std::string(obj.path).rfind(failing + "/", 0) != 0) expected.insert(archived(obj));
  EXPECT_EQ(listed, expected);
}

INSTANTIATE_TEST_SUITE_P(Backup, AdapterModuleEnterError, ::testing::Values("src", "src/deep", "void"),
                         [](auto const& info) {
                           std::string name = info.param;
                           for (char& c : name)
                             if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
                           return name;
                         });

}  // namespace
