// `qbfs restore ARCHIVE -C TARGET [PATH...]`
//
// Reads the archive once, front to back (it may be a pipe), and restores
// each object through the layer into TARGET: an existing directory, else an
// element named as `qbfs backup` names its sources. The element's module
// creates each object from the record's block and takes its streams. An
// object is judged only when its checksum arrives, after its data: an
// object found damaged then is deleted again, so no file is left with
// altered data. A directory is kept (the objects below it need it) and
// reported. Which of the two an object is, is asked of the file system
// (what was made), not taken from the record: the module makes the object
// its OS information describes. The reader refuses a record whose kind and
// OS information disagree, and so does the module.
//
// Nothing lands outside TARGET: the reader refuses paths that are absolute
// or climb, and the handle moves only by names below its root (the posix
// module also opens every component without following links).
//
// What the archive may make (set-uid bits, device nodes) is narrowed by
// the options of restore_policy.h; an object refused by them is reported
// and counts like a failed one: the exit status is then 1, because TARGET
// does not hold everything the archive does, and a script must not take
// the restore for a whole one.
//
// When a directory of the archive is missing in TARGET (its record was
// damaged, or only objects below it were selected and it was not), it is
// created as a plain directory so the objects below it can be restored.
// An object of another kind in its place (a file the archive restored just
// before, or one the target held) is not replaced by it: the objects below
// are reported and not restored.
//
// Each object counts once in the summary: restored, damaged, failed (its
// reading failed at backup, it could not be made, or its directory could
// not be), or refused.
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/stat.h>
#include <vector>

#include <qbfsys/qbfsys.h>

#include "../commands.h"
#include "input.h"
#include "archive_names.h"
#include "archive_reader.h"
#include "../arguments.h"
#include "console.h"
#include "layer_objects.h"
#include "archive_terminal_text.h"
#include "restore_policy.h"

namespace qbfs {
namespace {

using namespace archive;

constexpr char kCommand[] = "qbfs restore";
constexpr char kHelp[] =
    "usage: qbfs restore ARCHIVE -C TARGET [PATH...]\n"
    "\n"
    "Restores the objects of ARCHIVE ('-' reads standard input) through the\n"
    "layer into TARGET: an existing directory, else an element of the tree\n"
    "the loaded modules (-m) build, named as 'qbfs tree --brief' prints it.\n"
    "Objects land below TARGET at their paths in the archive (an archive of\n"
    "/usr/share/doc restores to TARGET/doc). With PATHs, restores only those\n"
    "paths of the archive (and what lies below them).\n"
    "\n"
    "  -C, --directory TARGET\n"
    "                       where to restore (required)\n"
    "  -v, --verbose        name each object restored; show the layer's messages\n"
    "  -q, --quiet          no progress line, no layer messages\n"
    "\n"
    "For an archive you do not trust (by default every object is made as the\n"
    "archive describes it, as a restore of your own backup needs):\n"
    "  --no-setid           clear the set-uid and set-gid bits of every object\n"
    "  --no-same-permissions\n"
    "                       as --no-setid, and take the umask off the\n"
    "                       permissions of every object\n"
    "  --no-devices         refuse character and block device nodes: each is\n"
    "                       reported and not made (the exit status is then 1)\n"
    "\n"
    "A damaged object is reported and not restored (a directory is kept);\n"
    "every intact object is restored.\n"
    "\n"
    "Exit status: 0 when everything was restored, 1 when some objects\n"
    "failed, were damaged or were refused, 2 on bad usage.\n";

constexpr OptionSpec kNoSetid{nullptr, "--no-setid", false};
constexpr OptionSpec kNoSamePermissions{nullptr, "--no-same-permissions", false};
constexpr OptionSpec kNoDevices{nullptr, "--no-devices", false};

bool is_prefix(Components const& a, Components const& b) {
  return a.size() <= b.size() && std::equal(a.begin(), a.end(), b.begin());
}

class RestoreJob {
 public:
  RestoreJob(FSYS_HAND_STRUCT* hand, Console& console, bool verbose, std::vector<Components> selection,
             RestorePolicy const& policy)
      : hand_(hand), console_(console), verbose_(verbose), selection_(std::move(selection)),
        policy_(policy) {}

  void run(ArchiveReader& reader) {
    for (Event e = reader.next(); e.kind != EventKind::end; e = reader.next()) {
      switch (e.kind) {
        case EventKind::object: begin(reader.object()); break;
        case EventKind::stream: if (obj_ != nullptr) write_header(e.stream); break;
        case EventKind::data: if (obj_ != nullptr) write_data(e.data, e.size); break;
        case EventKind::object_end: end(reader.object(), e); break;
        case EventKind::damage:
          ++damaged_;
          console_.message("damaged: " + e.problem);
          break;
        case EventKind::end: break;
      }
    }
  }

  std::uint64_t restored_ = 0, bytes_ = 0, failed_ = 0, damaged_ = 0, refused_ = 0;

 private:
  bool wanted(Components const& c) const {
    if (selection_.empty()) return true;
    for (Components const& s : selection_)
      if (is_prefix(c, s) || is_prefix(s, c)) return true;
    return false;
  }

  // A module's message may already begin with the object's path.
  void fail(Components const& path, std::string const& why) {
    ++failed_;
    std::string const shown = display_path(path);
    bool const named = why.compare(0, shown.size() + 2, "/" + shown + ":") == 0;
    console_.message(named ? why : shown + ": " + why);
  }

  void begin(ObjectEntry const& entry) {
    obj_ = nullptr;
    made_ = created_ = opened_ = false;
    counted_ = true;  // until the object gets as far as being made
    error_.clear();
    if (!wanted(entry.components)) return;
    info_ = entry.os_info;
    std::string why;
    if (!policy_.admit(entry.record.os_id, info_, why)) {
      ++refused_;
      return console_.message(display_path(entry.components) + ": " + why);
    }
    auto note = [this](Components const& dir, std::size_t depth) {
      if (verbose_)
        console_.message("created the missing directory " +
                         display_path(Components(dir.begin(), dir.begin() + depth)));
    };
    // Below a directory that could not be entered or made, every object
    // fails the same way: it is said once, for the first, and counted.
    if (!blocked_.empty() && entry.components.size() > blocked_.size() && is_prefix(blocked_, entry.components)) {
      ++failed_;
      if (verbose_) console_.message(display_path(entry.components) + ": not restored: its directory is missing");
      return;
    }
    blocked_.clear();
    std::size_t failed_depth = 0;
    if (!cursor_.go_to(entry.components, entry.components.size() - 1, true, why, note, &failed_depth)) {
      blocked_.assign(entry.components.begin(), entry.components.begin() + failed_depth);
      return fail(entry.components, why + "; nothing else below " + display_path(blocked_) + " is restored");
    }
    blk_ = DBLK{};
    counted_ = false;
    FS_STATUS status = make_block(hand_, entry.record, entry.has_generic ? &entry.generic : nullptr,
                                  entry.components.back(), info_, &blk_);
    made_ = status == FS_SUCCESS;
    if (status == FS_SUCCESS) status = FS_HandCreateObj(hand_, &blk_, nullptr, RESTORE_OVERWRITE);
    created_ = made_ && status == FS_SUCCESS;
    if (status == FS_SUCCESS) status = FS_OpenObj(hand_, &obj_, &blk_, FS_WRITE);
    opened_ = status == FS_SUCCESS;
    if (!opened_) {
      obj_ = nullptr;
      // Reported when the object ends, where what was made is dealt with.
      error_ = "cannot be restored: " + failure_text(hand_, status);
      if (!made_) {
        fail(entry.components, error_);
        error_.clear();
        counted_ = true;
      }
    }
  }

  void write_header(STREAM_INFO header) {
    unsigned zero = 0, need = 0;
    FS_STATUS const status = FS_WriteObj(obj_, nullptr, &zero, &need, &header);
    if (status != FS_SUCCESS && error_.empty()) error_ = failure_text(hand_, status);
  }

  void write_data(unsigned char const* data, std::size_t size) {
    bytes_ += size;
    while (size > 0 && error_.empty()) {
      STREAM_INFO none{};
      unsigned piece = static_cast<unsigned>(size), need = 0;
      FS_STATUS const status = FS_WriteObj(obj_, const_cast<unsigned char*>(data), &piece, &need, &none);
      if (status != FS_SUCCESS) error_ = failure_text(hand_, status);
      else if (piece == 0) error_ = "the file system took no data";
      data += piece;
      size -= piece;
    }
  }

  void end(ObjectEntry const& entry, Event const& e) {
    if (obj_ != nullptr) {
      FS_STATUS const closed = FS_CloseObj(obj_, nullptr, nullptr);
      if (closed != FS_SUCCESS && error_.empty()) error_ = failure_text(hand_, closed);
      obj_ = nullptr;
    }
    bool const keep = e.verdict == Verdict::intact && error_.empty();
    // What stays of an object that is not kept: a directory that was made
    // (what lies below it needs it), nothing else.
    bool const directory = created_ && !keep && kind_of(hand_, entry.components.back()) == DBLK_KIND_DDB;
    std::string const outcome = !created_ ? "" : directory ? "; the directory is kept" : "; not restored";
    auto path = [&] { return display_path(entry.components); };  // for messages only
    if (counted_) {
      // Not selected, refused, or reported when it could not be made; a
      // damaged record is still news.
      if (e.verdict == Verdict::damaged && wanted(entry.components))
        console_.message("damaged: " + path() + ": " + e.problem);
    } else if (e.verdict == Verdict::damaged) {
      ++damaged_;
      console_.message("damaged: " + path() + ": " + e.problem + outcome);
    } else if (e.verdict == Verdict::source_failed) {
      ++failed_;
      console_.message(path() + ": its reading failed at backup" + outcome);
    } else if (!error_.empty()) {
      fail(entry.components, error_);
    } else if (opened_) {  // an object that could not be made was reported at its start
      ++restored_;
      if (verbose_) console_.message("restored " + path());
    }
    if (created_ && !keep && !directory) FS_HandDeleteObj(hand_, &blk_);
    if (made_) FS_HandReleaseBlk(hand_, &blk_);
    made_ = created_ = false;
    console_.progress(restored_, bytes_);
  }

  FSYS_HAND_STRUCT* hand_;
  Console& console_;
  bool verbose_;
  std::vector<Components> selection_;
  RestorePolicy policy_;
  HandleCursor cursor_{hand_};
  Components blocked_;  // a directory that could not be entered or made
  DBLK blk_{};
  bool made_ = false;     // blk_ holds a block
  bool created_ = false;  // the file system made the object
  bool opened_ = false;   // the object was made and opened for its streams
  bool counted_ = true;   // the summary already counts the object (or it is not selected)
  _FILE_HAND_STRUCT* obj_ = nullptr;
  std::vector<unsigned char> info_;
  std::string error_;
};

}  // namespace

int cmd_restore(Options const& options, int argc, char** argv) {
  Arguments args;
  if (int const rc = parse_arguments(argc, argv, kCommand, {{"-C", "--directory", true}, kVerbose, kQuiet, kNoSetid,
                                                        kNoSamePermissions, kNoDevices}, args))
    return rc;
  if (args.help) {
    std::fputs(kHelp, stdout);
    return 0;
  }
  std::string const archive_name = args.operands.empty() ? std::string() : args.operands.front();
  std::string const directory = args.value("--directory");
  bool const verbose = args.has("--verbose"), quiet = options.quiet || args.has("--quiet");
  RestorePolicy policy;
  policy.apply_umask = args.has("--no-same-permissions");
  policy.clear_setid = policy.apply_umask || args.has("--no-setid");
  policy.refuse_devices = args.has("--no-devices");
  policy.umask = umask(0);
  umask(policy.umask);
  std::vector<Components> selection;
  for (std::size_t i = 1; i < args.operands.size(); ++i) {
    std::string trimmed = args.operands[i];
    while (trimmed.size() > 1 && trimmed.back() == '/') trimmed.pop_back();
    Components path;
    std::string why;
    if (!decode_path(trimmed, path, why))
      return usage_error(kCommand, "the path '" + args.operands[i] + "' cannot name an object of an archive: " + why);
    selection.push_back(path);
  }
  if (archive_name.empty()) return usage_error(kCommand, "no archive given");
  if (directory.empty()) return usage_error(kCommand, "no target given (-C TARGET)");
  std::vector<std::string> roots;
  Place target;
  if (int const rc = place_of(kCommand, directory, roots, target)) return rc;
  // Roots offered with --root stay offered: their elements can be named.
  for (std::wstring const& r : options.roots) roots.push_back(narrow(r));
  ArchiveInput input;
  if (int const rc = input.open(archive_name, kCommand)) return rc;
  ArchiveReader& reader = input.reader();
  Console console(kCommand, quiet, verbose);
  int rc = 0;
  std::uint64_t restored = 0, bytes = 0;
  std::string rest, why;
  {
    RootSession session(options, roots);
    FSYS_HAND_STRUCT* hand = session.attach_place(target, why);
    if (hand == nullptr) {
      console.message("cannot restore into '" + terminal_text(directory) + "': " + why);
      rc = 1;
    } else {
      // The archive keeps every date in UTC, as the layer hands dates out;
      // the blocks a restore builds take them as they are, not as local time.
      if (hand->dle != nullptr) hand->dle->date_conversion_off = 1;
      {
        // The job steps its handle back to the root when it ends, so it
        // ends before the handle is detached.
        RestoreJob job(hand, console, verbose, selection, policy);
        job.run(reader);
        if (job.failed_ > 0 || job.damaged_ > 0 || job.refused_ > 0) rc = 1;
        restored = job.restored_;
        bytes = job.bytes_;
        rest = grouped(job.damaged_) + " damaged, " + grouped(job.failed_) + " failed";
        if (job.refused_ > 0) rest += ", " + grouped(job.refused_) + " refused";
      }
      // The module finishes its work at detach (directories get their
      // metadata, a store saves what it took): a failure there means the
      // target does not hold what the archive does.
      FS_STATUS const detached = FS_DetachDLE(hand);
      if (detached != FS_SUCCESS) {
        console.message("restoring into '" + directory + "' could not be finished: " + failure_text(hand, detached));
        rc = 1;
        // A module's own error leaves the handle attached for its text.
        if (detached == FS_STATUS_EXT_ERROR) FS_DetachDLE(hand);
      }
      EndState const& end = reader.end_state();
      if (!end.problem.empty()) console.message("the archive is damaged: " + end.problem);
      if (end.damaged) rc = 1;
    }
  }
  if (!rest.empty()) console.summary(restored, bytes, rest, stdout);
  return rc;
}

}  // namespace qbfs
