// `qbfs verify ARCHIVE [--against TARGET]...`
//
// Reads the archive once and checks every frame and every object's
// checksum, naming each damaged object. With --against, each intact object
// is also compared with its counterpart in TARGET, read through the layer
// in archive order. TARGET is what was backed up (or where a restore put
// it): an existing directory, else an element named as `qbfs backup` names
// its sources. It stands for the archive's top-level object, so an archive
// of /usr/share/doc is compared against /usr/share/doc, and one restored
// with -C /tmp/r against /tmp/r/doc. An archive of several sources has one
// top-level object per source: the first --against stands for the first,
// the second for the second, and so on; the objects of a source without a
// TARGET are not compared (the summary counts them, and the exit status is
// 1: the archive was not checked against everything it holds).
//
// What is compared, for any module: the kind of block and the streams
// (their ids, sizes and bytes); for objects of the posix module on both
// sides, type, permissions, owner, group, size and modification time; for
// any other, the display size of a file and the modification date, each
// when the archive describes it, and the attribute words when both sides
// are of the same OS id (a posix copy of another module's object keeps no
// such words). An empty data stream counts as none. Objects in TARGET
// that the archive does not hold are not looked at, so a backup made with
// exclusions verifies against its source.
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

#include <qbfsys/qbfsys.h>

#include "../commands.h"
#include "archive_digest.h"
#include "input.h"
#include "archive_names.h"
#include "archive_reader.h"
#include "../arguments.h"
#include "console.h"
#include "layer_objects.h"
#include "stat_view.h"

namespace qbfs {
namespace {

using namespace archive;

constexpr char kCommand[] = "qbfs verify";
constexpr char kHelp[] =
    "usage: qbfs verify ARCHIVE [--against TARGET]...\n"
    "\n"
    "Checks that ARCHIVE ('-' reads standard input) is whole: every object's\n"
    "checksum, every frame, the end-of-data record. Names each damaged object.\n"
    "\n"
    "  --against TARGET\n"
    "                  also compare each object with its counterpart in TARGET:\n"
    "                  the directory or element that was backed up (as backup\n"
    "                  names sources), or a copy a restore made. It stands for\n"
    "                  the archive's top-level object; give one per source of\n"
    "                  an archive of several, in their order. Compares data,\n"
    "                  type, and permissions, owner, group, size, modification\n"
    "                  time (other modules: size, modification date, and the\n"
    "                  attribute words when TARGET is of the same module)\n"
    "  -v, --verbose   name each object checked; show the layer's messages\n"
    "  -q, --quiet     no progress line, no layer messages\n"
    "\n"
    "Exit status: 0 when the archive is whole (and matches TARGET), 1 when it\n"
    "is damaged, differs, holds objects whose reading failed at backup (it is\n"
    "then no complete copy of its source), or when a TARGET cannot be used or\n"
    "a source has no TARGET (its objects are not compared), 2 on bad usage.\n";

constexpr std::size_t kReadBuffer = 1u << 20;

// A date as compared and shown: to the 100 ns the block holds.
std::string date_text(_DATE_TIME const& d) {
  if (d.date_valid == 0) return "unset";
  char text[48];
  std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u.%07u", d.year, d.month, d.day, d.hour, d.minute,
                d.second, d.ticks);
  return text;
}

// A digest of an object's streams: each header's id and size, then its bytes.
// An empty data stream and no data stream say the same (the file holds no
// bytes), and modules differ in which they give for an empty file (the
// posix module gives none): an empty data stream is left out.
class StreamDigest {
 public:
  void header(STREAM_INFO const& h) {
    if (h.id == STRM_GENERIC_DATA && h.size == 0) return;
    sha_.add(&h.id, sizeof h.id);
    sha_.add(&h.size, sizeof h.size);
  }
  void data(void const* bytes, std::size_t size) { sha_.add(bytes, size); }
  Digest finish() { return sha_.finish(); }

 private:
  Sha256 sha_;
};

// The object found below DIR for an archive object.
struct Found {
  bool present = false;
  std::uint8_t blk_type = 0;
  std::uint8_t os_id = 0;
  std::vector<unsigned char> os_info;
  std::uint32_t attrib1 = 0, attrib2 = 0;
  ObjectGeneric generic{};
  Digest digest{};
  std::string problem;  // it could not be read
};

// Finds an archive object's counterpart: the top-level object of the
// archive's i-th source in TARGET i, each attached when its source begins.
class Comparer {
 public:
  Comparer(RootSession& session, std::vector<Place> const& targets, Console& console)
      : session_(session), targets_(targets), console_(console), buffer_(kReadBuffer) {}
  ~Comparer() { let_go(); }
  Comparer(Comparer const&) = delete;
  Comparer& operator=(Comparer const&) = delete;

  // Objects of a source that no TARGET stands for, and TARGETs that could
  // not be attached (each said once).
  std::uint64_t not_compared_ = 0, unusable_ = 0;

  // The counterpart of the object at `path`; `compared` false when there is
  // no TARGET for its source.
  Found look_up(Components const& path, bool& compared) {
    Found found;
    compared = false;
    if (path.empty()) return found;
    if (!started_ || path.front() != top_) next_source(path.front());
    if (hand_ == nullptr) {
      ++not_compared_;
      return found;
    }
    compared = true;
    std::string why;
    if (path.size() == 1) {
      // The top-level object is TARGET itself; a backup stores its
      // description, not its streams.
      Components const root;
      DBLK blk{};
      if (!cursor_->go_to(root, false, why)) return found;
      if (FS_HandGetCurrentDDB(hand_, &blk) == FS_SUCCESS) {
        read(&blk, found, false);
        FS_HandReleaseBlk(hand_, &blk);
      } else {
        // A module that does not describe its root: backup stored a plain
        // directory record for it.
        found.present = true;
        found.blk_type = DBLK_KIND_DDB;
        found.digest = StreamDigest().finish();
      }
      return found;
    }
    Components const below(path.begin() + 1, path.end());
    if (!cursor_->go_to(below, below.size() - 1, false, why)) return found;
    std::wstring pattern = below.back();
    DBLK blk{};
    FS_STATUS s = FS_HandFindFirstObj(hand_, &blk, &pattern[0], 0);
    for (; s == FS_SUCCESS; s = FS_HandFindNextObj(hand_, &blk))
      if (object_name(hand_, &blk) == below.back()) break;
    if (s == FS_SUCCESS) read(&blk, found);
    FS_HandFindObjClose(hand_, &blk);
    FS_HandReleaseBlk(hand_, &blk);
    return found;
  }

 private:
  // A new top-level name: the next TARGET takes over.
  void next_source(std::wstring const& top) {
    let_go();
    started_ = true;
    top_ = top;
    if (next_ >= targets_.size()) return;
    Place const& target = targets_[next_++];
    std::string why;
    hand_ = session_.attach_place(target, why);
    if (hand_ == nullptr) {
      ++unusable_;
      console_.message("cannot compare against '" + target.text + "': " + why);
      return;
    }
    cursor_ = std::make_unique<HandleCursor>(hand_);
  }

  void let_go() {
    cursor_.reset();  // steps the handle back to its root first
    if (hand_ != nullptr) FS_DetachDLE(hand_);
    hand_ = nullptr;
  }

 private:
  // A hard-link stream names the first name below TARGET; the archive
  // holds it below the top-level name, as every path (backup adds it).
  void read(DBLK* blk, Found& found, bool streams = true) {
    found.present = true;
    found.blk_type = blk->blk_type;
    found.os_id = blk->os_id;
    found.attrib1 = FS_GetAttrib1FromDBLK(hand_, blk);
    found.attrib2 = FS_GetAttrib2FromDBLK(hand_, blk);
    found.generic = generic_description(hand_, blk);
    std::uint32_t const size = FS_SizeofOS_InfoInDBLK(hand_, blk);
    found.os_info.resize(kMaxOsInfo);
    if (size > kMaxOsInfo || FS_GetOS_InfoFromDBLK(hand_, blk, found.os_info.data()) != FS_SUCCESS)
      found.os_info.clear();
    else
      found.os_info.resize(size);
    StreamDigest digest;
    _FILE_HAND_STRUCT* obj = nullptr;
    FS_STATUS status = streams ? FS_OpenObj(hand_, &obj, blk, FS_READ) : FS_ERR_OBJ_NO_DATA;
    // A module that does not open directories has no streams for them.
    if (status == FS_ERR_NOT_SUPPORTED && blk->blk_type == DBLK_KIND_DDB) status = FS_ERR_OBJ_NO_DATA;
    std::string const link_prefix = narrow(top_) + "/";
    while (status == FS_SUCCESS) {
      unsigned size_read = static_cast<unsigned>(buffer_.size()), need = 0;
      STREAM_INFO header{};
      status = FS_ReadObj(obj, buffer_.data(), &size_read, &need, &header);
      if (status != FS_SUCCESS) break;
      if (header.id == STRM_NTFS_LINK) {
        header.size += link_prefix.size();
        digest.header(header);
        digest.data(link_prefix.data(), link_prefix.size());
      } else if (header.id != STRM_INVALID) {
        digest.header(header);
      }
      if (size_read > 0) digest.data(buffer_.data(), size_read);
    }
    if (obj != nullptr) FS_CloseObj(obj, nullptr, nullptr);
    if (status != FS_ERR_OBJ_NO_DATA) found.problem = failure_text(hand_, status);
    found.digest = digest.finish();
  }

  RootSession& session_;
  std::vector<Place> const& targets_;
  Console& console_;
  std::vector<unsigned char> buffer_;
  std::size_t next_ = 0;  // the TARGET the next source takes
  bool started_ = false;
  std::wstring top_;      // the current source's top-level name
  FSYS_HAND_STRUCT* hand_ = nullptr;
  std::unique_ptr<HandleCursor> cursor_;
};

// What differs between the archive's description of an object and the
// counterpart found; empty when nothing does. The data is compared apart.
std::string differences(ObjectEntry const& entry, Found const& found) {
  if (!found.present) return "not found";
  if (!found.problem.empty()) return "cannot be read: " + found.problem;
  if (found.blk_type != entry.record.blk_type) return "a directory on one side, not on the other";
  qbposix::POSIX_OS_INFO a{}, b{};
  if (stat_view(entry.record.os_id, entry.os_info, a) && stat_view(found.os_id, found.os_info, b))
    return posix_differences(a, b);
  std::string out;
  auto add = [&](std::string const& what) { out += (out.empty() ? "" : ", ") + what; };
  // Attribute words are each module's own: the posix copy a restore makes
  // of another module's object carries a mode there, not the words it came
  // with. We compare them only between objects of the same OS id; kind,
  // data, size and date still tell a changed copy.
  bool const same_module = found.os_id == entry.record.os_id;
  if (same_module && (found.attrib1 != entry.record.attrib1 || found.attrib2 != entry.record.attrib2))
    add("attributes differ");
  if (!entry.has_generic) return out;
  ObjectGeneric const& g = entry.generic;
  if (entry.record.blk_type != DBLK_KIND_DDB && g.display_size != found.generic.display_size)
    add("size " + std::to_string(g.display_size) + " in the archive, " + std::to_string(found.generic.display_size) +
        " found");
  if (g.mdate.date_valid != 0 && date_text(g.mdate) != date_text(found.generic.mdate))
    add("modification date " + date_text(g.mdate) + " in the archive, " + date_text(found.generic.mdate) + " found");
  return out;
}

struct Tally {
  std::uint64_t objects = 0, bytes = 0, damaged = 0, incomplete = 0, differ = 0;
};

void verify(ArchiveReader& reader, Console& console, Comparer* against, bool verbose, Tally& tally) {
  StreamDigest digest;
  Found found;
  bool compared = false;
  for (Event e = reader.next(); e.kind != EventKind::end; e = reader.next()) {
    ObjectEntry const& entry = reader.object();
    switch (e.kind) {
      case EventKind::object:
        ++tally.objects;
        if (against != nullptr) found = against->look_up(entry.components, compared);
        break;
      case EventKind::stream:
        digest.header(e.stream);
        break;
      case EventKind::data:
        tally.bytes += e.size;
        digest.data(e.data, e.size);
        break;
      case EventKind::damage:
        ++tally.damaged;
        console.message("damaged: " + e.problem);
        break;
      case EventKind::object_end: {
        Digest const archived = digest.finish();
        std::string const path = display_path(entry.components);
        if (e.verdict == Verdict::damaged) {
          ++tally.damaged;
          console.message("damaged: " + path + ": " + e.problem);
          break;
        }
        if (e.verdict == Verdict::source_failed) {
          ++tally.incomplete;
          console.message("incomplete: " + path + ": its reading failed at backup");
        }
        if (against != nullptr && compared) {
          std::string difference = differences(entry, found);
          if (difference.empty() && e.verdict == Verdict::intact && found.digest != archived)
            difference = "its data differs";
          if (!difference.empty()) {
            ++tally.differ;
            console.message("differs: " + path + ": " + difference);
          }
        }
        if (verbose) console.message("checked " + path);
        console.progress(tally.objects, tally.bytes);
        break;
      }
      case EventKind::end: break;
    }
  }
}

}  // namespace

int cmd_verify(Options const& options, int argc, char** argv) {
  Arguments args;
  if (int const rc = parse_arguments(argc, argv, kCommand, {{nullptr, "--against", true}, kVerbose, kQuiet}, args))
    return rc;
  if (args.help) {
    std::fputs(kHelp, stdout);
    return 0;
  }
  if (args.operands.size() > 1) return usage_error(kCommand, "more than one archive given");
  std::string const archive_name = args.operands.empty() ? std::string() : args.operands.front();
  bool const verbose = args.has("--verbose"), quiet = options.quiet || args.has("--quiet");
  if (archive_name.empty()) return usage_error(kCommand, "no archive given");
  std::vector<std::string> roots;
  std::vector<Place> targets;
  for (auto const& [name, value] : args.options) {
    if (name != "--against") continue;
    targets.emplace_back();
    if (int const rc = place_of(kCommand, value, roots, targets.back())) return rc;
  }
  // Roots offered with --root stay offered: their elements can be named.
  for (std::wstring const& r : options.roots) roots.push_back(narrow(r));
  ArchiveInput input;
  if (int const rc = input.open(archive_name, kCommand)) return rc;
  ArchiveReader& reader = input.reader();
  Console console(kCommand, quiet, verbose);
  Tally tally;
  int rc = 0;
  std::uint64_t not_compared = 0;
  if (targets.empty()) {
    verify(reader, console, nullptr, verbose, tally);
  } else {
    RootSession session(options, roots);
    Comparer comparer(session, targets, console);
    verify(reader, console, &comparer, verbose, tally);
    not_compared = comparer.not_compared_;
    if (comparer.unusable_ > 0) rc = 1;
  }
  EndState const& end = reader.end_state();
  if (!end.problem.empty()) console.message("the archive is damaged: " + end.problem);
  std::string rest = tally.damaged == 0 && !end.damaged ? "whole" : grouped(tally.damaged) + " damaged";
  if (tally.incomplete > 0) rest += ", " + grouped(tally.incomplete) + " incomplete at backup";
  if (!targets.empty()) {
    std::string named;
    for (Place const& t : targets) named += (named.empty() ? "" : ", ") + t.text;
    rest += ", " + grouped(tally.differ) + " differ from " + named;
  }
  if (not_compared > 0) rest += ", " + grouped(not_compared) + " not compared";
  console.summary(tally.objects, tally.bytes, rest, stdout);
  return rc != 0 || tally.damaged > 0 || end.damaged || tally.differ > 0 || tally.incomplete > 0 ||
                 not_compared > 0
             ? 1
             : 0;
}

}  // namespace qbfs
