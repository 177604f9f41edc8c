// `qbfs ls [-l] ARCHIVE`: the objects of an archive, one path per line
// (directories end with '/'). With -l, objects of the posix module show
// their type and permissions, owner and group, size, modification time and
// link target, like a long directory listing.
#include <unistd.h>

#include <ctime>
#include <string>
#include <sys/stat.h>

#include <qbfsys/dblk.h>
#include <qbfsys/stream_ids.h>

#include "../commands.h"
#include "input.h"
#include "archive_names.h"
#include "archive_reader.h"
#include "archive_terminal_text.h"
#include "../arguments.h"
#include "stat_view.h"

namespace qbfs {
namespace {

using namespace archive;

constexpr char kCommand[] = "qbfs ls";
constexpr char kHelp[] =
    "usage: qbfs ls [-l] ARCHIVE\n"
    "\n"
    "Lists the objects of ARCHIVE ('-' reads standard input).\n"
    "\n"
    "  -l, --long   type and permissions, owner/group, size, modification\n"
    "               time and link targets; for other modules' objects the\n"
    "               type, attribute word, size and modification time\n"
    "\n"
    "Exit status: 0 when the archive is whole, 1 when it is damaged, 2 on\n"
    "bad usage.\n";

// Link targets are shown up to this length.
constexpr std::size_t kShownTarget = 4096;

std::string long_line(ObjectEntry const& entry, std::string const& symlink, std::string const& hardlink) {
  qbposix::POSIX_OS_INFO info{};
  char text[160];
  if (stat_view(entry.record.os_id, entry.os_info, info)) {
    std::time_t const when = static_cast<std::time_t>(info.mtime_sec);
    std::tm local{};
    char date[32] = "?";
    if (localtime_r(&when, &local) != nullptr) std::strftime(date, sizeof date, "%Y-%m-%d %H:%M", &local);
    std::snprintf(text, sizeof text, "%s %5u/%-5u %12llu %s ", mode_text(info.mode).c_str(), info.uid, info.gid,
                  static_cast<unsigned long long>(S_ISREG(info.mode) ? info.size : 0), date);
  } else if (entry.has_generic) {
    // Another module's object: what every block carries. Its attribute word
    // stands where the owner would; its date is shown in local time as the
    // posix objects' are.
    char date[32] = "?";
    _DATE_TIME const& m = entry.generic.mdate;
    if (m.date_valid != 0) {
      std::tm utc{};
      utc.tm_year = m.year - 1900;
      utc.tm_mon = m.month - 1;
      utc.tm_mday = m.day;
      utc.tm_hour = m.hour;
      utc.tm_min = m.minute;
      utc.tm_sec = m.second;
      std::time_t const when = timegm(&utc);
      std::tm local{};
      if (localtime_r(&when, &local) != nullptr) std::strftime(date, sizeof date, "%Y-%m-%d %H:%M", &local);
    }
    std::snprintf(text, sizeof text, "%-10s  0x%08X %12llu %s ", entry.record.blk_type == DBLK_KIND_DDB ? "d" : "-",
                  entry.record.attrib1, static_cast<unsigned long long>(entry.generic.display_size), date);
  } else {
    std::snprintf(text, sizeof text, "%-10s %11s %12s %16s ", entry.record.blk_type == DBLK_KIND_DDB ? "d" : "-",
                  "?", "?", "?");
  }
  std::string line = text + display_path(entry.path);
  if (!symlink.empty()) line += " -> " + display_path(symlink);
  if (!hardlink.empty()) line += " link to " + display_path(hardlink);
  return line;
}

}  // namespace

int cmd_ls(Options const& /*options*/, int argc, char** argv) {
  Arguments args;
  if (int const rc = parse_arguments(argc, argv, kCommand, {{"-l", "--long", false}}, args)) return rc;
  if (args.help) {
    std::fputs(kHelp, stdout);
    return 0;
  }
  if (args.operands.size() > 1) return usage_error(kCommand, "more than one archive given");
  std::string const archive_name = args.operands.empty() ? std::string() : args.operands.front();
  bool const long_form = args.has("--long");
  if (archive_name.empty()) return usage_error(kCommand, "no archive given");
  ArchiveInput input;
  if (int const rc = input.open(archive_name, kCommand)) return rc;
  ArchiveReader& reader = input.reader();
  std::string symlink, hardlink;
  std::uint32_t stream = STRM_INVALID;
  for (Event e = reader.next(); e.kind != EventKind::end; e = reader.next()) {
    ObjectEntry const& entry = reader.object();
    if (e.kind == EventKind::object) {
      symlink.clear();
      hardlink.clear();
    } else if (e.kind == EventKind::stream) {
      stream = e.stream.id;
    } else if (e.kind == EventKind::data) {
      std::string* into = stream == STRM_NT_REPARSE ? &symlink : stream == STRM_NTFS_LINK ? &hardlink : nullptr;
      if (into != nullptr && into->size() < kShownTarget)
        into->append(reinterpret_cast<char const*>(e.data), std::min(e.size, kShownTarget - into->size()));
    } else if (e.kind == EventKind::damage) {
      std::fprintf(stderr, "%s: damaged: %s\n", kCommand, terminal_text(e.problem).c_str());
    } else if (e.kind == EventKind::object_end) {
      std::string const path = display_path(entry.path);
      if (e.verdict == Verdict::damaged) {
        std::fprintf(stderr, "%s: damaged: %s: %s\n", kCommand, path.c_str(), terminal_text(e.problem).c_str());
        continue;
      }
      bool const dir = entry.record.blk_type == DBLK_KIND_DDB;
      std::string const line = long_form ? long_line(entry, symlink, hardlink) : path;
      std::printf("%s%s%s\n", terminal_text(line).c_str(), dir && !long_form ? "/" : "",
                  e.verdict == Verdict::source_failed ? "  (incomplete: its reading failed at backup)" : "");
    }
  }
  EndState const& end = reader.end_state();
  if (!end.problem.empty())
    std::fprintf(stderr, "%s: the archive is damaged: %s\n", kCommand, terminal_text(end.problem).c_str());
  std::fflush(stdout);
  return end.damaged ? 1 : 0;
}

}  // namespace qbfs
