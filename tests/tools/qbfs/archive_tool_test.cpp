// The archive commands (backup, ls, verify, restore) run as a person runs
// them: separate processes on generated trees, on archives that were cut or
// altered, and on archives written by hand to attack the restore. Trees are
// compared through the kernel (fs_tree.h); archives are read and written
// with the format's own reader and writer.
#include <dirent.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>
#include <stdexcept>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <qbfsys/dblk.h>
#include <qbfsys/stream_ids.h>

#include "archive_names.h"
#include "archive_reader.h"
#include "archive_writer.h"
#include "fs_tree.h"
#include "tool_run.h"
#include "posix_name_codec.h"

namespace {

using namespace qbfs::archive;

using qbtest::clean;
using qbtest::has;
using qbtest::qbfs;
using qbtest::shell;
using qbtest::ToolRun;
std::string const kTool = qbtest::qbfs_command();

// QB_TEST_SEED moves every seeded test to other seeds; failures print the seed.
std::uint32_t seeded(std::uint32_t base) {
  char const* env = std::getenv("QB_TEST_SEED");
  return base + (env ? static_cast<std::uint32_t>(std::strtoul(env, nullptr, 10)) : 0u);
}

// A scratch directory holding the source `src`, restore directories and archives.
// A scratch directory with an empty source directory in it.
struct Scratch : qbtest::ScratchDir {
  Scratch() {
    src = dir + "/src";
    mkdir(src.c_str(), 0755);
  }
  std::string src;
};

bool make_tree(std::string const& root, std::uint32_t seed, bool huge) {
  int const fd = open(root.c_str(), O_RDONLY | O_DIRECTORY);
  bool const ok = qbtest::TreeMaker(fd, seed).make(huge);
  close(fd);
  return ok;
}

using qbtest::read_file;

// How the commands show the object at `rel` (bytes below the source) of an archive of src.
std::string shown(std::string const& rel) {
  Components path{L"src"};
  std::istringstream parts(rel);
  for (std::string part; std::getline(parts, part, '/');) path.push_back(qbposix::posix_decode_name(part));
  return display_path(path);
}

// The same object in two trees: type, permissions and owner, and for what is
// not a directory its size, holes, data, link target and modification time.
bool same_object(qbtest::TreeEntry const& a, qbtest::TreeEntry const& b) {
  if (a.st.st_mode != b.st.st_mode || a.st.st_uid != b.st.st_uid || a.st.st_gid != b.st.st_gid) return false;
  return S_ISDIR(a.st.st_mode) ||
         (a.st.st_size == b.st.st_size && a.extents == b.extents && a.hash == b.hash && a.target == b.target &&
          a.st.st_mtim.tv_sec == b.st.st_mtim.tv_sec && a.st.st_mtim.tv_nsec == b.st.st_mtim.tv_nsec);
}

// ---- end to end --------------------------------------------------------------

class ArchiveRoundTrip : public ::testing::TestWithParam<std::uint32_t> {};

TEST_P(ArchiveRoundTrip, BackupListVerifyAndRestoreGiveTheSameTree) {
  std::uint32_t const seed = seeded(GetParam());
  SCOPED_TRACE("seed " + std::to_string(seed));
  Scratch s;
  ASSERT_TRUE(make_tree(s.src, seed, true)) << std::strerror(errno);
  qbtest::TreeSnapshot const before = qbtest::snapshot_tree(s.src);
  std::string const archive = s.dir + "/a.qba";
  ToolRun const backup = qbfs("backup " + s.src + " -o " + archive);
  ASSERT_EQ(backup.status, 0) << backup.err;
  struct stat st {};
  ASSERT_EQ(stat(archive.c_str(), &st), 0);
  EXPECT_LT(st.st_size, 64 << 20) << "the holes of the 5 GiB file are not stored";

  ToolRun const ls = qbfs("ls " + archive);
  EXPECT_EQ(ls.status, 0) << ls.err;
  std::set<std::string> listed;
  std::istringstream lines(ls.out);
  for (std::string line; std::getline(lines, line);) listed.insert(line);
  EXPECT_EQ(listed.size(), before.size() + 1);
  EXPECT_TRUE(listed.count("src/"));
  for (auto const& [rel, entry] : before)
    EXPECT_TRUE(listed.count(shown(rel) + (S_ISDIR(entry.st.st_mode) ? "/" : ""))) << shown(rel);

  ToolRun const verify = qbfs("verify " + archive), against = qbfs("verify " + archive + " --against " + s.src);
  EXPECT_EQ(verify.status, 0) << verify.err;
  EXPECT_TRUE(has(verify.out, "; whole\n")) << verify.out;
  EXPECT_EQ(against.status, 0) << against.err;
  EXPECT_TRUE(has(against.out, "; whole, 0 differ from " + s.src + "\n")) << against.out;

  std::string const out = s.fresh("out"), piped = s.fresh("piped");
  ToolRun const restore = qbfs("restore " + archive + " -C " + out);
  EXPECT_EQ(restore.status, 0) << restore.err;
  for (std::string const& d : qbtest::compare_trees(before, qbtest::snapshot_tree(out + "/src"))) ADD_FAILURE() << d;
  ToolRun const copy = qbfs("verify " + archive + " --against " + out + "/src");
  EXPECT_EQ(copy.status, 0) << "the restored copy verifies as the source does\n" << copy.err;
  ToolRun const pipe = shell(kTool + "backup -q -o - " + s.src + " | " + kTool + "restore -q - -C " + piped);
  EXPECT_EQ(pipe.status, 0) << pipe.err;
  for (std::string const& d : qbtest::compare_trees(before, qbtest::snapshot_tree(piped + "/src")))
    ADD_FAILURE() << "through a pipe: " << d;
  EXPECT_TRUE(qbtest::compare_trees(before, qbtest::snapshot_tree(s.src)).empty()) << "the source changed";
}

INSTANTIATE_TEST_SUITE_P(Seeds, ArchiveRoundTrip, ::testing::Values(7u, 20261124u));

// Backs up a small tree with the exclusion `options` and -v, lists and
// restores the archive. Each of `excluded` (a path below src and the reason
// shown) is reported, neither listed nor restored, and still in the source;
// each of `kept` is listed and restored.
void check_exclusion(std::string const& options, std::vector<std::pair<std::string, std::string>> const& excluded,
                     std::vector<std::string> const& kept) {
  Scratch s;
  ASSERT_EQ(std::system(("cd '" + s.src + "' && mkdir -p build/cache/x sub/deep docs logs cache tmp && touch top.o "
                         "sub/deep/m.o sub/UPPER.O build/cache/x/f docs/draft.txt docs/final.txt logs/a.log "
                         "logs/a.txt cache/c tmp/t notes.txt")
                            .c_str()),
            0);
  std::ofstream(s.dir + "/patterns") << "# logs\n\nlogs/*.log\n";
  std::string const archive = s.dir + "/a.qba", out = s.fresh("out");
  ToolRun const backup =
      qbfs("backup -v " + options + " --exclude-from " + s.dir + "/patterns " + s.src + " -o " + archive);
  ASSERT_EQ(backup.status, 0) << backup.err;
  ToolRun const ls = qbfs("ls " + archive);
  ASSERT_EQ(ls.status, 0) << ls.err;
  EXPECT_EQ(qbfs("restore " + archive + " -C " + out).status, 0);
  EXPECT_EQ(qbfs("verify " + archive + " --against " + s.src).status, 0) << "what was left out is no difference";
  struct stat st {};
  for (auto const& [rel, reason] : excluded) {
    EXPECT_TRUE(has(backup.err, "excluded src/" + rel + " (matches " + reason + ")\n")) << rel << "\n" << backup.err;
    EXPECT_FALSE(has(backup.err, "excluded src/" + rel + "/")) << "what lies below is not looked at";
    EXPECT_FALSE(has(ls.out, "src/" + rel + "\n") || has(ls.out, "src/" + rel + "/")) << rel;
    EXPECT_NE(lstat((out + "/src/" + rel).c_str(), &st), 0) << rel;
    EXPECT_EQ(lstat((s.src + "/" + rel).c_str(), &st), 0) << rel;
  }
  for (std::string const& rel : kept) {
    EXPECT_TRUE(has(ls.out, "src/" + rel + "\n") || has(ls.out, "src/" + rel + "/\n")) << rel;
    EXPECT_EQ(lstat((out + "/src/" + rel).c_str(), &st), 0) << rel;
  }
}

char const kOption[] = "an --exclude pattern", kFile[] = "a pattern of --exclude-from";

TEST(ArchiveExclusion, ExcludedPathsAreLeftOutAndReported) {
  check_exclusion("--exclude '**.o' --exclude docs/draft.txt --exclude tmp",
                  {{"top.o", kOption}, {"sub/deep/m.o", kOption}, {"sub/UPPER.O", kOption},
                   {"docs/draft.txt", kOption}, {"tmp", kOption}, {"logs/a.log", kFile}},
                  {"notes.txt", "sub/deep", "docs/final.txt", "build/cache/x/f", "logs/a.txt", "cache/c"});
}

// A directory is excluded by its whole path: "cache" is the top-level one
// only, "sub/deep" a nested one, and "docs/*" what docs holds, not docs.
TEST(ArchiveExclusion, DirectoryPathsAndPatternsNameTheirDirectoriesOnly) {
  check_exclusion("--exclude cache --exclude sub/deep --exclude 'docs/*'",
                  {{"cache", kOption}, {"sub/deep", kOption}, {"docs/draft.txt", kOption},
                   {"docs/final.txt", kOption}, {"logs/a.log", kFile}},
                  {"build/cache/x/f", "docs", "sub/UPPER.O", "top.o"});
}

// ---- archives read and written here ------------------------------------------------

struct Stream {
  STREAM_INFO header;
  std::string data;
};
struct Object {
  ObjectRecord record;
  std::string path;  // as stored
  Components components;
  std::vector<unsigned char> info;
  std::vector<Stream> streams;
  std::uint64_t begin, end;  // from its record to the end of its checksum

  std::string rel() const {  // bytes below the source, as in a snapshot
    std::string bytes, out;
    for (std::size_t i = 1; i < components.size(); ++i) {
      qbposix::posix_encode_name(components[i].data(), components[i].size(), bytes);
      out += (i > 1 ? "/" : "") + bytes;
    }
    return out;
  }
  std::string link() const {  // the target of its hard-link stream
    for (Stream const& s : streams)
      if (s.header.id == STRM_NTFS_LINK) return s.data;
    return {};
  }
};

std::vector<Object> objects_of(std::string const& archive) {
  std::vector<Object> objects;
  int const fd = open(archive.c_str(), O_RDONLY);
  ArchiveReader reader(fd);
  std::string why;
  for (Event e = reader.open(why) ? reader.next() : Event{}; e.kind != EventKind::end; e = reader.next()) {
    ObjectEntry const& o = reader.object();
    if (e.kind == EventKind::object) objects.push_back({o.record, o.path, o.components, o.os_info, {}, e.offset, 0});
    if (e.kind == EventKind::stream) objects.back().streams.push_back({e.stream, {}});
    if (e.kind == EventKind::data) objects.back().streams.back().data.append(reinterpret_cast<char const*>(e.data), e.size);
    if (e.kind == EventKind::object_end) objects.back().end = reader.offset();
  }
  close(fd);
  return objects;
}

bool write_archive(std::string const& file, std::vector<Object> const& objects) {
  int const fd = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  ArchiveWriter out(fd);
  bool ok = out.begin();
  for (Object const& o : objects) {
    ok = ok && out.begin_object(o.record, ObjectGeneric{}, o.path, o.info.data());
    for (Stream const& s : o.streams)
      ok = ok && out.begin_stream(s.header) && (s.data.empty() || out.data(s.data.data(), s.data.size()));
    ok = ok && out.end_object(false);
  }
  ok = ok && out.finish();
  return close(fd) == 0 && ok;
}

// ---- damaged archives ----------------------------------------------------------

class ArchiveDamage : public ::testing::TestWithParam<std::uint32_t> {
 protected:
  void SetUp() override {
    seed_ = seeded(GetParam());
    ASSERT_TRUE(make_tree(s_.src, seed_, false)) << std::strerror(errno);
    source_ = qbtest::snapshot_tree(s_.src);
    ToolRun const backup = qbfs("backup -q " + s_.src + " -o " + s_.dir + "/a.qba");
    ASSERT_EQ(backup.status, 0) << backup.err;
    bytes_ = read_file(s_.dir + "/a.qba");
    objects_ = objects_of(s_.dir + "/a.qba");
    ASSERT_EQ(objects_.size(), source_.size() + 1);
  }
  struct Said {
    std::string verify, restore;  // standard error
  };
  // Verifies and restores `bytes`: both say the archive is damaged and
  // neither crashes. Every object restored is the source's object, and every
  // one of `expected` is restored.
  Said check(std::string const& bytes, std::vector<Object const*> const& expected) {
    std::ofstream(s_.dir + "/damaged.qba", std::ios::binary | std::ios::trunc) << bytes;
    std::string const out = s_.fresh("out");
    ToolRun const verify = qbfs("verify " + s_.dir + "/damaged.qba");
    EXPECT_TRUE(clean(verify));
    EXPECT_EQ(verify.status, 1) << "every byte is covered by a CRC or a digest";
    ToolRun const restore = qbfs("restore " + s_.dir + "/damaged.qba -C " + out);
    EXPECT_TRUE(clean(restore));
    EXPECT_EQ(restore.status, 1);
    qbtest::TreeSnapshot const restored = qbtest::snapshot_tree(out + "/src");
    for (auto const& [rel, entry] : restored) {
      auto const it = source_.find(rel);
      EXPECT_TRUE(it != source_.end() && (S_ISDIR(entry.st.st_mode) || same_object(it->second, entry)))
          << rel << ": restored, and not as in the source";
    }
    for (Object const* o : expected) {
      auto const it = restored.find(o->rel());
      EXPECT_TRUE(o->rel().empty() || (it != restored.end() && same_object(source_.at(o->rel()), it->second)))
          << o->rel() << ": intact in the archive, not restored as it was";
    }
    return {verify.err, restore.err};
  }
  Scratch s_;
  std::uint32_t seed_ = 0;
  qbtest::TreeSnapshot source_;
  std::string bytes_;
  std::vector<Object> objects_;
};

TEST_P(ArchiveDamage, CutArchiveRestoresWhatLiesBeforeTheCut) {
  std::mt19937 rng(seed_);
  for (int round = 0; round < 20; ++round) {
    std::size_t const cut = sizeof(ArchiveHeader) + rng() % (bytes_.size() - sizeof(ArchiveHeader));
    SCOPED_TRACE("seed " + std::to_string(seed_) + ", cut at " + std::to_string(cut));
    std::vector<Object const*> whole;
    for (Object const& o : objects_)
      if (o.end <= cut) whole.push_back(&o);
    std::string const verified = check(bytes_.substr(0, cut), whole).verify;
    EXPECT_TRUE(has(verified, "it is truncated")) << verified;
    for (Object const& o : objects_) {
      // A cut inside an object's record leaves nothing that names it.
      std::uint64_t const record_end = o.begin + sizeof(FrameHeader) + sizeof(ObjectRecord) +
                                       sizeof(ObjectGeneric) + o.path.size() + o.info.size();
      bool const record_cut = o.begin < cut && cut < record_end;
      EXPECT_TRUE(o.end <= cut || cut <= o.begin || has(verified, "damaged: " + display_path(o.components) + ": ") ||
                  (record_cut && has(verified, "belong to no readable object")))
          << verified;
    }
  }
}

TEST_P(ArchiveDamage, AlteredByteIsFoundAndOnlyItsObjectIsLost) {
  std::mt19937 rng(seed_ + 1);
  for (int round = 0; round < 20; ++round) {
    std::size_t const at = rng() % bytes_.size();
    SCOPED_TRACE("seed " + std::to_string(seed_) + ", byte " + std::to_string(at) + " altered");
    std::string altered = bytes_;
    altered[at] = static_cast<char>(altered[at] ^ (1 + rng() % 255));
    Object const* hit = nullptr;
    for (Object const& o : objects_)
      if (o.begin <= at && at < o.end) hit = &o;
    std::vector<Object const*> intact;  // neither hit nor a further name of what was hit
    for (Object const& o : objects_)
      if (at >= sizeof(ArchiveHeader) && &o != hit && (hit == nullptr || o.link() != "src/" + hit->rel()))
        intact.push_back(&o);
    std::string const restored = check(altered, intact).restore;
    EXPECT_TRUE(at >= sizeof(ArchiveHeader) || has(restored, "its header is damaged")) << restored;
    struct stat st {};
    bool const file = hit != nullptr && hit->record.blk_type != DBLK_KIND_DDB && !hit->rel().empty();
    EXPECT_FALSE(file && lstat((s_.dir + "/out/src/" + hit->rel()).c_str(), &st) == 0) << "damaged, yet restored";
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ArchiveDamage, ::testing::Values(3u));

// ---- hand-made hostile archives ------------------------------------------------

// What a hostile archive is made of: the objects of an archive of src (a-file,
// the symbolic link l, the directory d holding inner, z-file), and a
// directory beside the restore directory that must stay as it is.
struct Parts {
  std::vector<Object> objects;
  std::string outside;
  Object const& at(std::string const& path) const {
    for (Object const& o : objects)
      if (o.path == path) return o;
    throw std::runtime_error("no " + path);
  }
  // Like `like` under `path`, with the one stream `id` holding `data` announced as `size` bytes.
  Object made(std::string const& like, std::string const& path, std::uint32_t id, std::string const& data,
              std::size_t size) const {
    Object o = at(like);
    o.path = path;
    o.streams = {{STREAM_INFO{}, data}};
    o.streams[0].header.id = id;
    o.streams[0].header.size = size;
    return o;
  }
  Object file(std::string const& path) const { return made("src/a-file", path, STRM_GENERIC_DATA, "x", 1); }
  Object symlink(std::string const& path, std::string const& to) const {
    return made("src/l", path, STRM_NT_REPARSE, to, to.size());
  }
  Object hard_link(std::string const& path, std::string const& to) const {
    return made("src/a-file", path, STRM_NTFS_LINK, to, to.size());
  }
};

struct Hostile {
  char const* label;
  std::function<std::vector<Object>(Parts const&)> objects;  // placed between intact objects
  std::string message;                                       // a part of what restore says
  std::string absent;                                        // what is not restored (below the restore directory)
};
std::ostream& operator<<(std::ostream& os, Hostile const& c) { return os << c.label; }

std::set<std::string> names_in(std::string const& dir) {
  std::set<std::string> names;
  if (DIR* d = opendir(dir.c_str())) {
    while (dirent* e = readdir(d)) names.insert(e->d_name);
    closedir(d);
  }
  return names;
}

void check_hostile(Hostile const& hostile) {
  Scratch s;
  std::vector<std::pair<std::string, std::string>> const intact = {
      {"a-file", "alpha\n"}, {"d/inner", "inner\n"}, {"z-file", "zulu\n"}};
  ASSERT_EQ(mkdir((s.src + "/d").c_str(), 0755), 0);
  for (auto const& [rel, data] : intact) std::ofstream(s.src + "/" + rel) << data;
  ASSERT_EQ(symlink("a-file", (s.src + "/l").c_str()), 0);
  ASSERT_EQ(qbfs("backup -q " + s.src + " -o " + s.dir + "/a.qba").status, 0);
  Parts parts{objects_of(s.dir + "/a.qba"), s.fresh("outside")};
  ASSERT_EQ(parts.objects.size(), 6u);
  std::ofstream(parts.outside + "/secret") << "secret\n";
  chmod((parts.outside + "/secret").c_str(), 0600);
  std::vector<Object> objects;
  for (char const* path : {"src", "src/a-file", "src/d", "src/d/inner"}) objects.push_back(parts.at(path));
  for (Object const& o : hostile.objects(parts)) objects.push_back(o);
  objects.push_back(parts.at("src/z-file"));
  std::string const archive = s.dir + "/hostile.qba", out = s.fresh("out");
  ASSERT_TRUE(write_archive(archive, objects));
  qbtest::TreeSnapshot const outside = qbtest::snapshot_tree(parts.outside);
  std::set<std::string> const beside = names_in(s.dir);

  ToolRun const restore = qbfs("restore " + archive + " -C " + out);
  EXPECT_TRUE(clean(restore));
  EXPECT_EQ(restore.status, 1);
  EXPECT_TRUE(has(restore.err, hostile.message)) << restore.err;
  for (std::string const& d : qbtest::compare_trees(outside, qbtest::snapshot_tree(parts.outside)))
    ADD_FAILURE() << "outside: " << d;
  EXPECT_EQ(names_in(s.dir), beside);
  for (auto const& [rel, data] : intact) EXPECT_EQ(read_file(out + "/src/" + rel), data) << rel;
  struct stat st {};
  EXPECT_TRUE(hostile.absent.empty() || lstat((out + "/" + hostile.absent).c_str(), &st) != 0) << hostile.absent;
}

class HostileArchive : public ::testing::TestWithParam<Hostile> {};

TEST_P(HostileArchive, RestoreRefusesItAndStaysInsideTheDirectory) { check_hostile(GetParam()); }

using Objects = std::vector<Object>;
INSTANTIATE_TEST_SUITE_P(
    Cases, HostileArchive,
    ::testing::Values(
        Hostile{"climbing", [](Parts const& p) { return Objects{p.file("../outside/x")}; },
                "\"../outside/x\": the path climbs with \"..\"", ""},
        Hostile{"climbing from below", [](Parts const& p) { return Objects{p.file("src/../../outside/x")}; },
                "\"src/../../outside/x\": the path climbs with \"..\"", ""},
        Hostile{"absolute", [](Parts const& p) { return Objects{p.file(p.outside + "/x")}; },
                "/outside/x\": the path is absolute", ""},
        Hostile{"empty component", [](Parts const& p) { return Objects{p.file("src//x")}; },
                "\"src//x\": the path has an empty component", ""},
        Hostile{"NUL", [](Parts const& p) { return Objects{p.file(std::string("src/x\0y", 7))}; },
                "\"src/x\\x00y\": the path holds a NUL character", "src/x"},
        Hostile{"lying size",
                [](Parts const& p) { return Objects{p.made("src/a-file", "src/lying", STRM_GENERIC_DATA, "lie", 103)}; },
                "damaged: src/lying: stream \"STAN\" ends 100 bytes short of its size", "src/lying"},
        Hostile{"data beyond the size",
                [](Parts const& p) { return Objects{p.made("src/a-file", "src/long", STRM_GENERIC_DATA, "too long", 3)}; },
                "runs beyond its stream's size", "src/long"},
        Hostile{"hard link climbing", [](Parts const& p) { return Objects{p.hard_link("src/h", "../outside/secret")}; },
                "src/h: hard link target is malformed", "src/h"},
        Hostile{"hard link absolute", [](Parts const& p) { return Objects{p.hard_link("src/h", p.outside + "/secret")}; },
                "src/h: hard link target is malformed", "src/h"},
        Hostile{"hard link through a link",
                [](Parts const& p) { return Objects{p.symlink("src/s", p.outside), p.hard_link("src/h", "src/s/secret")}; },
                "src/h: hard link target's directory could not be opened", "src/h"}),
    [](::testing::TestParamInfo<Hostile> const& info) {
      std::string name = info.param.label;
      for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
      return name;
    });

// A file below a symbolic link the archive made is refused; the link stays.
TEST(HostileArchive, FileBelowALinkIsRefused) {
  check_hostile(Hostile{"file below a link",
                        [](Parts const& p) { return Objects{p.symlink("src/s", p.outside), p.file("src/s/x")}; },
                        "src/s/x: ", "src/s/x"});
}

// ---- bad usage -------------------------------------------------------------------

struct usage_case {
  std::string args;  // "@" stands for a scratch directory holding src/f, dst/, junk and short
  int status;
  std::string err;  // a part of standard error
};
std::ostream& operator<<(std::ostream& os, usage_case const& c) { return os << c.args; }

class ArchiveUsage : public ::testing::TestWithParam<usage_case> {};

TEST_P(ArchiveUsage, ExitsWithTheDocumentedStatusAndSaysWhy) {
  Scratch s;
  mkdir((s.dir + "/dst").c_str(), 0755);
  std::ofstream(s.src + "/f") << "f";
  std::ofstream(s.dir + "/junk") << std::string(200, 'j');
  std::ofstream(s.dir + "/short") << "QBFS";
  auto const fill = [&](std::string text) {
    for (std::size_t at; (at = text.find('@')) != std::string::npos;) text.replace(at, 1, s.dir);
    return text;
  };
  ToolRun const run = qbfs(fill(GetParam().args));
  EXPECT_TRUE(clean(run));
  EXPECT_EQ(run.status, GetParam().status) << run.err;
  EXPECT_EQ(run.out, "");
  EXPECT_TRUE(has(run.err, fill(GetParam().err))) << run.err;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ArchiveUsage,
    ::testing::Values(
        usage_case{"backup @/src", 2, "qbfs backup: no archive given (-o ARCHIVE, or -o - for standard output)"},
        usage_case{"backup @/src -o", 2, "qbfs backup: -o needs a value"},
        usage_case{"backup -o @/a.qba", 2, "qbfs backup: no source given"},
        usage_case{"backup --frob @/src -o @/a.qba", 2, "qbfs backup: unknown option --frob"},
        usage_case{"backup @/src/f -o @/a.qba", 1, "'@/src/f': it is neither a directory nor an element"},
        usage_case{"backup @/src @/src -o @/a.qba", 2, "two sources are named 'src'"},
        usage_case{"backup --exclude-from @/none @/src -o @/a.qba", 1,
                   "cannot read the exclusion file '@/none': No such file or directory"},
        usage_case{"restore @/junk", 2, "qbfs restore: no target given (-C TARGET)"},
        usage_case{"restore -x @/junk -C @/dst", 2, "qbfs restore: unknown option -x"},
        usage_case{"restore @/junk -C @/dst", 1, "qbfs restore: cannot read '@/junk': it is not a qbfs archive"},
        usage_case{"restore @/short -C @/dst", 1, "'@/short': it is too short to be an archive"},
        usage_case{"restore @/none -C @/dst", 1, "cannot open the archive '@/none': No such file or directory"},
        usage_case{"restore @/junk -C @/dst ../x", 2, "the path '../x' cannot name an object of an archive"},
        usage_case{"verify @/junk @/short", 2, "qbfs verify: more than one archive given"},
        usage_case{"ls @/junk", 1, "qbfs ls: cannot read '@/junk': it is not a qbfs archive"}));

}  // namespace
