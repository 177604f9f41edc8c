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
#include "archive_terminal_text.h"
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

using Scratch = qbtest::ScratchDir;

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
    ok = ok && out.begin_object(record, ObjectGeneric{}, o.path, &info);
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

using qbtest::read_file;

// ---- the escaping ----------------------------------------------------------------

struct Escape {
  std::string in, shown;
};

// Each class of character of the documented form, as bytes and as wide text.
TEST(TerminalText, EscapesWhatATerminalActsOnAndNothingElse) {
  std::vector<Escape> const cases = {
      {"plain/name.txt", "plain/name.txt"},
      {"caf\xC3\xA9 \xE6\x97\xA5", "caf\xC3\xA9 \xE6\x97\xA5"},  // letters of any script stay
      {"a\x1B]0;t\x07z", "a\\x1B]0;t\\x07z"},
      {"line\nfeed\ttab\x7F", "line\\x0Afeed\\x09tab\\x7F"},
      {"csi\xC2\x9B" "31m", "csi\\u009B31m"},
      {"\xC2\x80\xC2\x85\xC2\x9F", "\\u0080\\u0085\\u009F"},
      {"raw\x9B" "31m", "raw\\x9B31m"},                    // a byte that is not UTF-8
      {"\xED\xB2\x9B", "\\x9B"},                           // a module's stand-in for that byte
      {"\xED\xA0\x80", "\\uD800"},                         // another surrogate
      {"\xE2\x80\xAE" "exe.txt", "\\u202Eexe.txt"},
      {"\xE2\x80\xAA\xE2\x80\xAB\xE2\x80\xAC\xE2\x80\xAD", "\\u202A\\u202B\\u202C\\u202D"},
      {"\xE2\x81\xA6\xE2\x81\xA7\xE2\x81\xA8\xE2\x81\xA9", "\\u2066\\u2067\\u2068\\u2069"},
      {"\xE2\x80\x8E\xE2\x80\x8F\xD8\x9C", "\\u200E\\u200F\\u061C"},
      {"\xE2\x80\xA8\xE2\x80\xA9", "\\u2028\\u2029"},
      {"\xC0\xAF\xE2\x80", "\\xC0\\xAF\\xE2\\x80"},        // an overlong form, a cut one
      {"back\\slash", "back\\slash"},
  };
  for (Escape const& c : cases) {
    std::string const shown = terminal_text(c.in);
    EXPECT_EQ(shown, c.shown) << c.in;
    EXPECT_EQ(terminal_text(shown), shown) << "escaping twice changes nothing: " << c.in;
  }
  std::wstring const wide = {L'a', 0x1B, 0x9B, 0xDC9B, 0x202E, 0x110000, L'z'};
  EXPECT_EQ(terminal_text(wide), "a\\x1B\\u009B\\x9B\\u202E\\U00110000z");
}

// ---- names that a terminal would act on --------------------------------------------------

// The bytes of `text` a terminal would act on: controls (but the line
// breaks), DEL, and every byte of a non-ASCII character; the names below
// hold no other non-ASCII character, so every such byte is a leak.
std::string leaks(std::string const& text) {
  std::string found;
  char hex[8];
  for (unsigned char c : text)
    if ((c < 0x20 && c != '\n') || c >= 0x7F) {
      std::snprintf(hex, sizeof hex, " %02X", c);
      found += hex;
    }
  return found;
}

struct HostileName {
  std::string name;   // as stored in the archive
  std::string shown;  // as every command shows it
  std::string on_disk;  // as the posix module names the file; "" when it is `name`
};

// Escape sequences, C1 controls as characters and as raw bytes (the posix
// module's stand-ins for them), and bidirectional controls.
std::vector<HostileName> const kHostileNames = {
    {"title\x1B]0;owned\x07", "title\\x1B]0;owned\\x07", ""},
    {"red\x1B[31m", "red\\x1B[31m", ""},
    {"csi\xC2\x9B" "31m", "csi\\u009B31m", ""},
    {"osc\xC2\x9D" "0;owned\xC2\x9C", "osc\\u009D0;owned\\u009C", ""},
    {"raw\xED\xB2\x9B" "31m", "raw\\x9B31m", "raw\x9B" "31m"},
    {"rlo\xE2\x80\xAE" "txt.exe", "rlo\\u202Etxt.exe", ""},
    {"iso\xE2\x81\xA6x\xE2\x81\xA9", "iso\\u2066x\\u2069", ""},
    {"rlm\xE2\x80\x8Fx", "rlm\\u200Fx", ""},
};

struct NameRun {
  char const* label;
  std::string args;           // "@" stands for the archive, "%" for the scratch directory
  std::string before, after;  // around "src/NAME" in what it prints for each hostile name
  std::string not_before;     // before "src/NAME\n": what it must not print ("" for nothing)
};

TEST(HostileNames, NoCommandPrintsWhatATerminalWouldActOn) {
  Scratch s;
  std::vector<Forged> objects = {{"src", S_IFDIR | 0755, ""}};
  for (HostileName const& n : kHostileNames) objects.push_back({"src/" + n.name, S_IFREG | 0644, "x"});
  // A path that is not UTF-8: its record is refused and named.
  objects.push_back({"src/bad\x9B" "31m\x1B[2J", S_IFREG | 0644, "x"});
  std::string const archive = s.dir + "/names.qba";
  ASSERT_TRUE(write_archive(archive, objects));
  // Restores into `blocked` fail on every hostile name: a directory that is
  // not empty holds it, so the module's message (quoting the name) is printed.
  for (char const* blocked : {"blocked", "blocked-v"}) {
    ASSERT_FALSE(s.fresh(blocked).empty());
    ASSERT_FALSE(s.fresh(std::string(blocked) + "/src").empty());
    for (HostileName const& n : kHostileNames) {
      std::string const dir = s.dir + "/" + blocked + "/src/" + (n.on_disk.empty() ? n.name : n.on_disk);
      ASSERT_EQ(mkdir(dir.c_str(), 0755), 0) << n.shown;
      std::ofstream(dir + "/keep") << "keep\n";
    }
  }
  ASSERT_FALSE(s.fresh("empty").empty());
  ASSERT_FALSE(s.fresh("fresh").empty());
  std::string const kInTheWay = ": object in the way could not be removed (Directory not empty)";
  std::vector<NameRun> const runs = {
      {"ls", "ls @", "\n", "\n", ""},
      {"ls -l", "ls -l @", " ", "\n", ""},
      {"verify -v --against", "verify -v @ --against %/empty", "qbfs verify: differs: ", ": not found\n", ""},
      {"restore -v", "restore -v @ -C %/fresh", "qbfs restore: restored ", "\n", ""},
      // The module's last error, which the restore prints for the object.
      {"restore failing", "restore @ -C %/blocked", ": cannot be restored: /", kInTheWay + "\n", ""},
      // The module's message as the layer prints it with -v; an object
      // that could not be made is not called restored.
      {"restore -v failing", "restore -v @ -C %/blocked-v", "posix: /", kInTheWay + "\n", "qbfs restore: restored "},
  };
  for (NameRun const& r : runs) {
    SCOPED_TRACE(r.label);
    std::string args = r.args;
    args.replace(args.find('@'), 1, archive);
    if (args.find('%') != std::string::npos) args.replace(args.find('%'), 1, s.dir);
    ToolRun const run = qbfs(args);
    EXPECT_TRUE(clean(run));
    EXPECT_EQ(run.status, 1) << "the refused record makes the archive damaged";
    EXPECT_EQ(leaks(run.out), "") << run.out;
    EXPECT_EQ(leaks(run.err), "") << run.err;
    std::string const said = run.out + run.err;
    EXPECT_TRUE(has(run.err, "\"src/bad\\x9B31m\\x1B[2J\": the path is not well-formed UTF-8")) << run.err;
    for (HostileName const& n : kHostileNames) {
      EXPECT_TRUE(has("\n" + said, r.before + "src/" + n.shown + r.after)) << n.shown << "\n" << said;
      EXPECT_TRUE(r.not_before.empty() || !has(said, r.not_before + "src/" + n.shown + "\n")) << n.shown;
    }
  }
}

struct EchoCase {
  std::string args;   // as the shell is given them (raw bytes inside single quotes); "%": a
                      // scratch directory holding the directory "r ESC ]0;T BEL"
  std::string shown;  // a part of what the tool prints ("%": the scratch directory)
};

// What a person typed or the file system holds comes back escaped too:
// arguments named in errors, names matched, the property tree loader's
// words, and the layer's own lines (the tree's dump, a module check's report).
TEST(HostileNames, EchoedArgumentsAndLayerLinesAreEscaped) {
  Scratch s;
  ASSERT_FALSE(s.fresh("r\x1B]0;T\x07").empty());
  std::string const root = "'%/r\x1B]0;T\x07' ", module = std::string(QB_TEST_MODULE_DIR) + "/libqbposix.so";
  std::vector<EchoCase> const cases = {
      {"--root " + root + "tree", "DLE Tree"},
      {"--root " + root + "tree", "%/r\\x1B]0;T\\x07"},
      {"--root " + root + "tree --brief", "  %/r\\x1B]0;T\\x07  (file system "},
      {"--root " + root + "validate " + module, "6 probes on '%/r\\x1B]0;T\\x07'"},
      {"match '*' 'a\x1B]0;x\x07" "b'", "  a\\x1B]0;x\\x07b\n"},
      {"ls '/none\x1B[31m\xC2\x9B'", "cannot open the archive '/none\\x1B[31m\\u009B'"},
      {"'frob\x1B'", "qbfs: unknown command 'frob\\x1B'"},
      {"backup '--frob\x9B'", "qbfs backup: unknown option --frob\\x9B"},
      {"props '/none\x1B[2J'", "'/none\\x1B[2J'"},
      {"restore @ -C '/none\xE2\x80\xAE'", "cannot restore into '/none\\u202E'"},
      {"verify @ --against '/none\x1B[2J'", "cannot compare against '/none\\x1B[2J'"},
  };
  std::string const archive = s.dir + "/a.qbfs";
  ASSERT_EQ(qbfs("-q backup '" + s.fresh("plain") + "' -o '" + archive + "'").status, 0);
  auto fill = [&](std::string text) {
    for (std::size_t at; (at = text.find('%')) != std::string::npos;) text.replace(at, 1, s.dir);
    if (std::size_t const at = text.find('@'); at != std::string::npos) text.replace(at, 1, archive);
    return text;
  };
  for (EchoCase const& c : cases) {
    ToolRun const run = qbfs(fill(c.args));
    EXPECT_TRUE(clean(run));
    EXPECT_EQ(leaks(run.out), "") << run.out;
    EXPECT_EQ(leaks(run.err), "") << run.err;
    EXPECT_TRUE(has(run.out + run.err, fill(c.shown))) << fill(c.shown) << "\n" << run.out << run.err;
  }
}

// ---- set-uid files and device nodes restored as root ------------------------------------

struct PermissionCase {
  char const* label;
  std::string options;
  std::uint32_t setuid_file, setgid_dir, setgid_file, device;  // modes restored (0: not made)
  int status;
};

// The restore runs under umask 027.
TEST(RestoreAsRoot, OptionsNarrowWhatAnArchiveMayMake) {
  if (geteuid() != 0) GTEST_SKIP() << "device nodes and set-uid files of any owner need root";
  Scratch s;
  dev_t const null_device = makedev(1, 3), loop_device = makedev(7, 0);
  std::string const archive = s.dir + "/perm.qba";
  ASSERT_TRUE(write_archive(archive, {{"src", S_IFDIR | 0755, ""},
                                      {"src/suid", S_IFREG | 04755, "#!/bin/sh\n"},
                                      {"src/shared", S_IFDIR | 02777, ""},
                                      {"src/shared/sgid", S_IFREG | 02755, "x"},
                                      {"src/null", S_IFCHR | 0666, "", null_device},
                                      {"src/disk", S_IFBLK | 0666, "", loop_device},
                                      {"src/fifo", S_IFIFO | 0666, ""}}));
  std::vector<PermissionCase> const cases = {
      {"as archived", "", 04755, 02777, 02755, 0666, 0},
      {"no set-id", "--no-setid", 0755, 0777, 0755, 0666, 0},
      {"umask too", "--no-same-permissions", 0750, 0750, 0750, 0640, 0},
      {"no devices", "--no-devices", 04755, 02777, 02755, 0, 1},
      {"both", "--no-setid --no-devices", 0755, 0777, 0755, 0, 1},
  };
  int round = 0;
  for (PermissionCase const& c : cases) {
    SCOPED_TRACE(c.label);
    std::string const out = s.fresh("out" + std::to_string(++round));
    ToolRun const run = shell("umask 027; " + qbtest::qbfs_command() + "restore " + c.options + " " + archive + " -C " + out);
    EXPECT_TRUE(clean(run));
    EXPECT_EQ(run.status, c.status) << run.err;
    struct stat st {};
    auto mode_of = [&](char const* rel) -> std::uint32_t {
      return lstat((out + "/" + rel).c_str(), &st) == 0 ? st.st_mode & 07777 : 0;
    };
    EXPECT_EQ(mode_of("src/suid"), c.setuid_file);
    EXPECT_EQ(mode_of("src/shared"), c.setgid_dir);
    EXPECT_EQ(mode_of("src/shared/sgid"), c.setgid_file);
    EXPECT_EQ(read_file(out + "/src/shared/sgid"), "x");
    EXPECT_EQ(mode_of("src/null"), c.device);
    EXPECT_EQ(mode_of("src/disk"), c.device);
    if (c.device != 0) {
      EXPECT_TRUE(lstat((out + "/src/null").c_str(), &st) == 0 && S_ISCHR(st.st_mode) && st.st_rdev == null_device);
      EXPECT_TRUE(lstat((out + "/src/disk").c_str(), &st) == 0 && S_ISBLK(st.st_mode) && st.st_rdev == loop_device);
    } else {
      EXPECT_TRUE(has(run.err, "qbfs restore: src/null: a character device node; refused (--no-devices)\n")) << run.err;
      EXPECT_TRUE(has(run.err, "qbfs restore: src/disk: a block device node; refused (--no-devices)\n")) << run.err;
      EXPECT_TRUE(has(run.out, "0 damaged, 0 failed, 2 refused")) << run.out;
    }
    EXPECT_TRUE(lstat((out + "/src/fifo").c_str(), &st) == 0 && S_ISFIFO(st.st_mode)) << "a FIFO is no device";
  }
}

TEST(RestoreAsRoot, HelpNamesTheOptions) {
  ToolRun const help = qbfs("restore --help");
  EXPECT_EQ(help.status, 0);
  for (char const* option : {"--no-setid", "--no-same-permissions", "--no-devices"})
    EXPECT_TRUE(has(help.out, "  " + std::string(option))) << option;
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
