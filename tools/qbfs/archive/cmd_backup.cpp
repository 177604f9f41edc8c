// `qbfs backup [--exclude PATTERN]... [--exclude-from FILE] SRC... -o ARCHIVE`
//
// A SRC that names an existing local directory is offered to the modules as
// a root; any other SRC names an element of the tree the loaded modules
// build, as `qbfs tree --brief` prints it: its device name, else its simple
// or alternate name. Each source's element is attached through the layer
// and walked depth first; each object goes into the archive as its record
// and the streams the module delivers. A directory appears in the archive
// under its own name (backing up /usr/share/doc gives doc/...); an element
// under its simple name, else the last '/'-separated component of its
// device name. Several sources can share an archive; their names must
// differ.
//
// Every source is found and attached before the archive is created, so a
// backup that cannot start (an unknown source, an element that cannot be
// attached, a layer that does not start) leaves no archive file behind.
//
// Exclusion patterns become exclusion rules of each source's element and
// the layer decides with them: FS_GetSpecialAttribs marks a file. A
// directory's block names the directory alone, and FS_GetSpecialAttribs
// would match "cache" against every directory of that name at any depth;
// directories are looked up by their whole path instead
// (DLE_GetExcludeReason, the same rules), so "build/cache" and "build"
// mean those paths, as they do for files. An excluded directory is not
// walked.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include <qbfsys/qbfsys.h>
#include <qbposix/posix_os_info.h>

#include "../commands.h"
#include "../arguments.h"
#include "archive_names.h"
#include "archive_terminal_text.h"
#include "archive_writer.h"
#include "console.h"
#include "input.h"
#include "layer_objects.h"

namespace qbfs {
namespace {

using namespace archive;

constexpr char kCommand[] = "qbfs backup";
constexpr char kHelp[] =
    "usage: qbfs backup [options] SRC... -o ARCHIVE\n"
    "\n"
    "Backs up each SRC through the layer into ARCHIVE ('-' writes to standard\n"
    "output). A SRC that is an existing directory is backed up as that\n"
    "directory and stored under its own name. Any other SRC names an element\n"
    "as 'qbfs tree --brief' prints it (its device name; its simple or\n"
    "alternate name also works) of the tree the loaded modules (-m) build;\n"
    "it is stored under the element's simple name, else the last\n"
    "'/'-separated component of its device name. Nothing is written when a\n"
    "SRC is neither.\n"
    "\n"
    "  -o, --output ARCHIVE    where to write the archive (required)\n"
    "  --exclude PATTERN       leave out what PATTERN names (repeatable)\n"
    "  --exclude-from FILE     leave out the patterns of FILE, one per line\n"
    "                          (blank lines and lines starting with # skipped)\n"
    "  -v, --verbose           report each excluded path with its reason, and\n"
    "                          show the layer's own messages\n"
    "  -q, --quiet             no progress line, no layer messages\n"
    "\n"
    "Patterns are relative to each SRC. '*' and '?' stay within one name,\n"
    "'**' crosses directories: '**.o' leaves out every .o file, 'build'\n"
    "the top-level build directory, 'src/*/cache' each cache one level\n"
    "below src. Case is ignored.\n"
    "\n"
    "Exit status: 0 when everything was backed up, 1 when some objects\n"
    "failed or the archive could not be written, 2 on bad usage.\n";

// Exclusion reasons given to the rules; they land in obj_flags.
constexpr std::uint32_t kReasonExcludeOption = 0x10000000;
constexpr std::uint32_t kReasonExcludeFile = 0x20000000;
constexpr std::size_t kReadBuffer = 1u << 20;

struct Rule {
  std::wstring pattern;
  std::uint32_t reason;
};

bool has_wildcard(std::wstring const& p) { return p.find_first_of(L"*?") != std::wstring::npos; }

class BackupJob {
 public:
  BackupJob(ArchiveWriter& out, Console& console, bool verbose, struct stat const* archive)
      : out_(out), console_(console), verbose_(verbose), buffer_(kReadBuffer) {
    if (archive != nullptr) archive_ = *archive, skip_archive_ = true;
  }

  void run(FSYS_HAND_STRUCT* hand, GENERIC_DLE* dle, std::wstring const& base) {
    hand_ = hand;
    dle_ = dle;
    link_prefix_ = narrow(base) + "/";
    Components path{base};
    DBLK root{};
    if (FS_HandGetCurrentDDB(hand, &root) == FS_SUCCESS) {
      save(&root, path, false);
      FS_HandReleaseBlk(hand, &root);
    } else {
      ObjectRecord record{};
      record.blk_type = DBLK_KIND_DDB;
      std::string bytes;
      encode_path(path, bytes);
      if (!out_.begin_object(record, ObjectGeneric{}, bytes, nullptr) || !out_.end_object(false)) return;
      ++objects_;
    }
    walk(path);
  }

  std::uint64_t objects_ = 0, bytes_ = 0, excluded_ = 0, failed_ = 0;

 private:
  void walk(Components& path) {
    DBLK blk{};
    FS_STATUS s = FS_HandFindFirstObj(hand_, &blk, const_cast<wchar_t*>(L"*"), 0);
    for (; s == FS_SUCCESS && out_.error().empty(); s = FS_HandFindNextObj(hand_, &blk)) {
      path.push_back(object_name(hand_, &blk));
      if (!excluded(&blk, path)) {
        save(&blk, path);
        if (blk.blk_type == DBLK_KIND_DDB) {
          FS_STATUS const entered = FS_HandChangeIntoDDB(hand_, &blk);
          if (entered == FS_SUCCESS) {
            walk(path);
            FS_HandChangeDirUp(hand_);
          } else if (entered != FS_STATUS_NONE) {
            fail(path, failure_text(hand_, entered));
          }
        }
      }
      path.pop_back();
    }
    if (s != FS_SUCCESS && s != FS_STATUS_NONE) fail(path, failure_text(hand_, s));
    FS_HandFindObjClose(hand_, &blk);
    FS_HandReleaseBlk(hand_, &blk);
  }

  bool excluded(DBLK* blk, Components const& path) {
    std::uint32_t reason = 0;
    if (blk->blk_type != DBLK_KIND_DDB) {
      FS_GetSpecialAttribs(hand_, blk);
      reason = blk->obj_flags & (kReasonExcludeOption | kReasonExcludeFile);
    } else {
      // Component form: each name ended by a NUL, the last NUL being the
      // path's terminator.
      std::wstring run;
      for (std::size_t i = 1; i < path.size(); ++i) run += path[i] + L'\0';
      std::size_t const bytes = run.size() * sizeof(wchar_t);
      if (bytes <= SHRT_MAX)
        reason = DLE_GetExcludeReason(dle_, run.c_str(), static_cast<short>(bytes)) &
                 (kReasonExcludeOption | kReasonExcludeFile);
    }
    if (reason == 0) return false;
    ++excluded_;
    if (verbose_)
      console_.message("excluded " + display_path(path) +
                       (reason == kReasonExcludeOption ? " (matches an --exclude pattern)"
                                                       : " (matches a pattern of --exclude-from)"));
    return true;
  }

  void fail(Components const& path, std::string const& why) {
    ++failed_;
    console_.message(display_path(path) + ": " + why);
  }

  // True for the archive being written (when it lies inside a source).
  bool is_archive(DBLK* blk, std::vector<unsigned char> const& info) const {
    qbposix::POSIX_OS_INFO stat{};
    if (!skip_archive_ || blk->os_id != qbposix::POSIX_OS_ID || info.size() != sizeof stat) return false;
    std::memcpy(&stat, info.data(), sizeof stat);
    return stat.dev == archive_.st_dev && stat.ino == archive_.st_ino;
  }

  // `streams` false stores the record alone: a source's own directory is
  // the handle's root, which the module describes but does not open.
  void save(DBLK* blk, Components const& path, bool streams = true) {
    std::string bytes;
    if (!encode_path(path, bytes) || bytes.size() > 0xFFFF)
      return fail(path, "its path cannot be stored in an archive");
    ObjectRecord record{};
    record.blk_type = blk->blk_type;
    record.os_id = blk->os_id;
    record.os_ver = blk->os_ver;
    record.attrib1 = FS_GetAttrib1FromDBLK(hand_, blk);
    record.attrib2 = FS_GetAttrib2FromDBLK(hand_, blk);
    std::uint32_t const info_size = FS_SizeofOS_InfoInDBLK(hand_, blk);
    std::vector<unsigned char> info(kMaxOsInfo);
    if (info_size > kMaxOsInfo || FS_GetOS_InfoFromDBLK(hand_, blk, info.data()) != FS_SUCCESS)
      info.clear();
    else
      info.resize(info_size);
    if (is_archive(blk, info)) {
      console_.message("skipped " + display_path(path) + ": it is the archive being written");
      return;
    }
    record.os_info_size = static_cast<std::uint16_t>(info.size());
    if (!out_.begin_object(record, generic_description(hand_, blk), bytes, info.data())) return;
    ++objects_;
    std::string const why = streams ? copy_streams(blk) : std::string();
    if (!why.empty()) fail(path, why);
    out_.end_object(!why.empty());
    console_.progress(objects_, bytes_);
  }

  // Reads the object's streams into the archive; the failure in words, or
  // empty. A hard-link stream names its first name below the source; in
  // the archive it is written below the archive root, like every path.
  std::string copy_streams(DBLK* blk) {
    _FILE_HAND_STRUCT* obj = nullptr;
    FS_STATUS status = FS_OpenObj(hand_, &obj, blk, FS_READ);
    if (status == FS_ERR_OBJ_NO_DATA) return {};
    // A directory's streams are optional: a module that does not open
    // directories (the walk still enters them) has nothing to give for one.
    if (status == FS_ERR_NOT_SUPPORTED && blk->blk_type == DBLK_KIND_DDB) return {};
    if (status != FS_SUCCESS) return failure_text(hand_, status);
    STREAM_INFO link{};
    std::string link_target;
    bool in_link = false;
    while (status == FS_SUCCESS && out_.error().empty()) {
      unsigned size = static_cast<unsigned>(buffer_.size()), need = 0;
      STREAM_INFO header{};
      status = FS_ReadObj(obj, buffer_.data(), &size, &need, &header);
      if (status != FS_SUCCESS) break;
      if (header.id != STRM_INVALID) {
        in_link = header.id == STRM_NTFS_LINK;
        if (in_link) {
          link = header;
          link_target = link_prefix_;
        } else {
          out_.begin_stream(header);
        }
      }
      if (size == 0) continue;
      bytes_ += size;
      if (!in_link) {
        out_.data(buffer_.data(), size);
        continue;
      }
      link_target.append(reinterpret_cast<char const*>(buffer_.data()), size);
      if (link_target.size() == link_prefix_.size() + link.size) {
        link.size = link_target.size();
        out_.begin_stream(link);
        out_.data(link_target.data(), link_target.size());
        in_link = false;
      }
    }
    FS_CloseObj(obj, nullptr, nullptr);
    if (status == FS_ERR_OBJ_NO_DATA && in_link) return "its hard-link stream ended early";
    return status == FS_ERR_OBJ_NO_DATA || !out_.error().empty() ? std::string()
                                                                 : failure_text(hand_, status);
  }

  ArchiveWriter& out_;
  Console& console_;
  bool verbose_;
  std::vector<unsigned char> buffer_;
  struct stat archive_ {};
  bool skip_archive_ = false;
  FSYS_HAND_STRUCT* hand_ = nullptr;
  GENERIC_DLE* dle_ = nullptr;
  std::string link_prefix_;
};

bool read_exclude_file(std::string const& file, std::vector<Rule>& rules) {
  std::ifstream in(file);
  if (!in) return false;
  std::string line;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty() || line[0] == '#') continue;
    rules.push_back({widen(line), kReasonExcludeFile});
  }
  return !in.bad();
}

std::wstring base_name(std::string const& path) {
  std::size_t const slash = path.find_last_of('/');
  return widen(slash == std::string::npos ? path : path.substr(slash + 1));
}

// One SOURCE of the command line; once attached, its element and handle.
struct Source {
  Place place;
  std::wstring base;  // the name its objects are stored under
  GENERIC_DLE* dle;
  FSYS_HAND_STRUCT* hand;
};

// Finds each source's element, gives it the exclusion rules and attaches
// it; 0, or 1 after saying why not (handles attached so far are left in
// `plan` for the caller to detach).
int attach_sources(RootSession& session, std::vector<Rule> const& rules, std::vector<Source>& plan,
                   Console& console) {
  if (!session.error().empty()) {
    console.message(session.error());
    return 1;
  }
  for (Source& src : plan) {
    std::string const shown = terminal_text(src.place.text);
    src.dle = session.element_of(src.place);
    if (src.dle == nullptr && !src.place.directory) {
      std::string why;
      session.attach_place(src.place, why);  // says why there is nothing to attach
      console.message("cannot back up '" + shown + "': " + why);
      return 1;
    }
    if (!src.place.directory) {
      src.base = element_base_name(src.dle);
      if (src.base.empty() || src.base == L"." || src.base == L"..") {
        console.message("cannot back up '" + shown + "': its element gives no name to store it under");
        return 1;
      }
    }
    for (Source const& other : plan) {
      if (&other == &src) break;
      if (other.base == src.base) {
        console.message("two sources are named '" + narrow(src.base) + "'; an archive holds each under its name");
        return 1;
      }
    }
    for (std::size_t r = 0; src.dle != nullptr && r < rules.size(); ++r) {
      DLE_RULE_KIND const kind = has_wildcard(rules[r].pattern) ? DLE_RULE_PATTERN : DLE_RULE_PATH;
      FS_STATUS const added = DLE_AddSpecObj(src.dle, rules[r].pattern.c_str(), kind, rules[r].reason);
      if (added != FS_SUCCESS) {
        console.message("the pattern '" + narrow(rules[r].pattern) + "' cannot be used: " +
                        failure_text(nullptr, added));
        return 1;
      }
    }
    std::string why;
    src.hand = session.attach_place(src.place, why);
    if (src.hand == nullptr) {
      console.message("cannot back up '" + shown + "': " + why);
      return 1;
    }
  }
  return 0;
}

}  // namespace

int cmd_backup(Options const& options, int argc, char** argv) {
  Arguments args;
  if (int const rc = parse_arguments(argc, argv, kCommand,
                                     {{"-o", "--output", true}, {nullptr, "--exclude", true},
                                      {nullptr, "--exclude-from", true}, kVerbose, kQuiet},
                                     args))
    return rc;
  if (args.help) {
    std::fputs(kHelp, stdout);
    return 0;
  }
  std::string const output = args.value("--output");
  std::vector<std::string> const& sources = args.operands;
  bool const verbose = args.has("--verbose"), quiet = options.quiet || args.has("--quiet");
  std::vector<Rule> rules;
  for (auto const& [name, value] : args.options) {
    if (name == "--exclude") {
      if ((value.size() + 1) * sizeof(wchar_t) > DLE_MAX_RULE_BYTES)
        return usage_error(kCommand, "the pattern '" + value.substr(0, 40) + "...' is too long");
      rules.push_back({widen(value), kReasonExcludeOption});
    } else if (name == "--exclude-from" && !read_exclude_file(value, rules)) {
      char const* const reason = std::strerror(errno);
      std::fprintf(stderr, "%s: cannot read the exclusion file '%s': %s\n", kCommand, terminal_text(value).c_str(),
                   reason);
      return 1;
    }
  }
  if (output.empty()) return usage_error(kCommand, "no archive given (-o ARCHIVE, or -o - for standard output)");
  if (sources.empty()) return usage_error(kCommand, "no source given");
  // A source that names a directory is offered to the modules as a root;
  // any other is an element's name, looked up once the tree is built.
  std::vector<std::string> roots;
  std::vector<Source> plan;
  for (std::string const& s : sources) {
    Source src{};
    if (int const rc = place_of(kCommand, s, roots, src.place)) return rc;
    if (src.place.directory) {
      src.base = base_name(src.place.resolved);
      if (src.base.empty())
        return usage_error(kCommand, "the source '" + s + "' is the root directory; name the directories below it");
      for (Source const& other : plan)
        if (other.place.directory && other.base == src.base)
          return usage_error(kCommand, "two sources are named '" + narrow(src.base) +
                                           "'; an archive holds each under its name");
    }
    plan.push_back(src);
  }
  // Roots the user offered with --root stay offered, so that the elements
  // `qbfs --root DIR tree` lists can be named here too.
  for (std::wstring const& r : options.roots) roots.push_back(narrow(r));

  Console console(kCommand, quiet, verbose);
  RootSession session(options, roots);
  // Everything that can keep the backup from starting is settled before
  // the archive is created: a backup that cannot start leaves no file.
  int rc = attach_sources(session, rules, plan, console);
  if (rc != 0) {
    for (Source& src : plan)
      if (src.hand != nullptr) FS_DetachDLE(src.hand);
    return rc;
  }

  int fd = STDOUT_FILENO;
  if (output == "-") {
    if (isatty(STDOUT_FILENO) == 1) rc = usage_error(kCommand, "standard output is a terminal; redirect it or use -o FILE");
  } else {
    fd = open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) {
      char const* const reason = std::strerror(errno);
      std::fprintf(stderr, "%s: cannot create the archive '%s': %s\n", kCommand, terminal_text(output).c_str(), reason);
      rc = 1;
    }
  }
  if (rc != 0) {
    for (Source& src : plan) FS_DetachDLE(src.hand);
    return rc;
  }
  struct stat archive {};
  bool const regular = fstat(fd, &archive) == 0 && S_ISREG(archive.st_mode);

  ArchiveWriter writer(fd);
  BackupJob job(writer, console, verbose, regular ? &archive : nullptr);
  writer.begin();
  for (Source& src : plan) {
    if (writer.error().empty()) job.run(src.hand, src.dle, src.base);
    FS_DetachDLE(src.hand);
  }
  writer.finish();
  if (!writer.error().empty()) {
    console.message("cannot write the archive '" + output + "': " + writer.error());
    rc = 1;
  }
  if (fd != STDOUT_FILENO && close(fd) != 0 && rc == 0) {
    console.message("cannot write the archive '" + output + "': " + std::strerror(errno));
    rc = 1;
  }
  if (job.failed_ > 0) rc = 1;
  std::string const rest = grouped(job.excluded_) + " excluded, " + grouped(job.failed_) + " failed";
  console.summary(job.objects_, job.bytes_, rest, stderr);
  return rc;
}

}  // namespace qbfs
