// `qbfs verify ARCHIVE [--against DIR]`
//
// Reads the archive once and checks every frame and every object's
// checksum, naming each damaged object. With --against, each intact object
// is also compared with the object of the same path below DIR (DIR is
// where the archive would be restored: an archive of /usr/share/doc is
// compared against /usr/share), read through the layer in archive order:
// the streams (their ids, sizes and bytes) and, for objects of the posix
// module, type, permissions, owner, group, size and modification time.
// Objects in DIR that the archive does not hold are not looked at, so a
// backup made with exclusions verifies against its source.
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
    "usage: qbfs verify ARCHIVE [--against DIR]\n"
    "\n"
    "Checks that ARCHIVE ('-' reads standard input) is whole: every object's\n"
    "checksum, every frame, the end-of-data record. Names each damaged object.\n"
    "\n"
    "  --against DIR   also compare each object with the one at the same path\n"
    "                  below DIR (where the archive would be restored): data,\n"
    "                  type, permissions, owner, group, size, modification time\n"
    "  -v, --verbose   name each object checked; show the layer's messages\n"
    "  -q, --quiet     no progress line, no layer messages\n"
    "\n"
    "Exit status: 0 when the archive is whole (and matches DIR), 1 when it\n"
    "is damaged or differs, 2 on bad usage.\n";

constexpr std::size_t kReadBuffer = 1u << 20;

// A digest of an object's streams: each header's id and size, then its bytes.
class StreamDigest {
 public:
  void header(STREAM_INFO const& h) {
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
  Digest digest{};
  std::string problem;  // it could not be read
};

class Comparer {
 public:
  Comparer(FSYS_HAND_STRUCT* hand) : hand_(hand), buffer_(kReadBuffer) {}
  Found look_up(Components const& path) {
    Found found;
    std::string why;
    if (!cursor_.go_to(path, path.size() - 1, false, why)) return found;
    std::wstring pattern = path.back();
    DBLK blk{};
    FS_STATUS s = FS_HandFindFirstObj(hand_, &blk, &pattern[0], 0);
    for (; s == FS_SUCCESS; s = FS_HandFindNextObj(hand_, &blk))
      if (object_name(hand_, &blk) == path.back()) break;
    if (s == FS_SUCCESS) read(&blk, found);
    FS_HandFindObjClose(hand_, &blk);
    FS_HandReleaseBlk(hand_, &blk);
    return found;
  }

 private:
  void read(DBLK* blk, Found& found) {
    found.present = true;
    found.blk_type = blk->blk_type;
    found.os_id = blk->os_id;
    found.attrib1 = FS_GetAttrib1FromDBLK(hand_, blk);
    found.attrib2 = FS_GetAttrib2FromDBLK(hand_, blk);
    std::uint32_t const size = FS_SizeofOS_InfoInDBLK(hand_, blk);
    found.os_info.resize(kMaxOsInfo);
    if (size > kMaxOsInfo || FS_GetOS_InfoFromDBLK(hand_, blk, found.os_info.data()) != FS_SUCCESS)
      found.os_info.clear();
    else
      found.os_info.resize(size);
    StreamDigest digest;
    _FILE_HAND_STRUCT* obj = nullptr;
    FS_STATUS status = FS_OpenObj(hand_, &obj, blk, FS_READ);
    while (status == FS_SUCCESS) {
      unsigned size_read = static_cast<unsigned>(buffer_.size()), need = 0;
      STREAM_INFO header{};
      status = FS_ReadObj(obj, buffer_.data(), &size_read, &need, &header);
      if (status != FS_SUCCESS) break;
      if (header.id != STRM_INVALID) digest.header(header);
      if (size_read > 0) digest.data(buffer_.data(), size_read);
    }
    if (obj != nullptr) FS_CloseObj(obj, nullptr, nullptr);
    if (status != FS_ERR_OBJ_NO_DATA) found.problem = failure_text(hand_, status);
    found.digest = digest.finish();
  }

  FSYS_HAND_STRUCT* hand_;
  std::vector<unsigned char> buffer_;
  HandleCursor cursor_{hand_};
};

struct Tally {
  std::uint64_t objects = 0, bytes = 0, damaged = 0, incomplete = 0, differ = 0;
};

void verify(ArchiveReader& reader, Console& console, Comparer* against, bool verbose, Tally& tally) {
  StreamDigest digest;
  Found found;
  for (Event e = reader.next(); e.kind != EventKind::end; e = reader.next()) {
    ObjectEntry const& entry = reader.object();
    switch (e.kind) {
      case EventKind::object:
        ++tally.objects;
        if (against != nullptr) found = against->look_up(entry.components);
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
        if (against != nullptr) {
          std::string difference;
          qbposix::POSIX_OS_INFO a{}, b{};
          if (!found.present) {
            difference = "not found";
          } else if (!found.problem.empty()) {
            difference = "cannot be read: " + found.problem;
          } else if (found.blk_type != entry.record.blk_type) {
            difference = "a directory on one side, not on the other";
          } else if (stat_view(entry.record.os_id, entry.os_info, a) && stat_view(found.os_id, found.os_info, b)) {
            difference = posix_differences(a, b);
          } else if (found.attrib1 != entry.record.attrib1 || found.attrib2 != entry.record.attrib2) {
            difference = "attributes differ";
          }
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
  std::string const against = args.value("--against");
  bool const verbose = args.has("--verbose"), quiet = options.quiet || args.has("--quiet");
  if (archive_name.empty()) return usage_error(kCommand, "no archive given");
  std::string resolved, why;
  if (!against.empty())
    if (int const rc = resolve_directory(kCommand, against, resolved)) return rc;
  ArchiveInput input;
  if (int const rc = input.open(archive_name, kCommand)) return rc;
  ArchiveReader& reader = input.reader();
  Console console(kCommand, quiet, verbose);
  Tally tally;
  int rc = 0;
  if (against.empty()) {
    verify(reader, console, nullptr, verbose, tally);
  } else {
    RootSession session(options, {resolved});
    FSYS_HAND_STRUCT* hand = session.error().empty() ? session.attach(0, why) : nullptr;
    if (!session.error().empty()) why = session.error();
    if (hand == nullptr) {
      console.message("cannot compare against '" + against + "': " + why);
      rc = 1;
    } else {
      {
        Comparer comparer(hand);
        verify(reader, console, &comparer, verbose, tally);
      }
      FS_DetachDLE(hand);
    }
  }
  if (rc != 0) return rc;
  EndState const& end = reader.end_state();
  if (!end.problem.empty()) console.message("the archive is damaged: " + end.problem);
  std::string rest = tally.damaged == 0 && !end.damaged ? "whole" : grouped(tally.damaged) + " damaged";
  if (tally.incomplete > 0) rest += ", " + grouped(tally.incomplete) + " incomplete at backup";
  if (!against.empty()) rest += ", " + grouped(tally.differ) + " differ from " + against;
  console.summary(tally.objects, tally.bytes, rest, stdout);
  return tally.damaged > 0 || end.damaged || tally.differ > 0 ? 1 : 0;
}

}  // namespace qbfs
