// `qbfs match [options] SPEC NAME...`: prints, per name, what the layer's
// file-specification matcher returns (0 no match, 1 match, 2 the name ended
// while the specification goes on). This is how one checks why an exclusion
// rule did or did not apply to a file.
//
// Names and the specification are passed with their terminators counted, as
// the exclusion lookups do. Options:
//   -i, --ignore-case   compare case-insensitively (default: case-sensitive)
//   --partial           accept a name that ends while the specification goes on
//   --segment           segment-search mode (flags 4) instead of the classic one
//   --flags N           the raw flag word, 0 to 15 (not with --segment)
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <qbfsys/fs_filespec.h>
#include <qbhost/strings.h>

#include "archive/archive_terminal_text.h"
#include "commands.h"

namespace qbfs {
namespace {

// Names and specifications are counted in 16-bit sizes, terminator included.
constexpr std::size_t kMaxCounted = 32767;
constexpr long kAllFlags =
    FS_SPEC_LITERAL | FS_SPEC_SKIP_STARS | FS_SPEC_SEGMENT_SEARCH | FS_SPEC_STAY_CLASSIC;

std::vector<wchar_t> counted(char const* text) {
  wcstring wide = wcstring::from_utf8(text, std::strlen(text));
  std::vector<wchar_t> out(wide.begin(), wide.end());
  out.push_back(L'\0');
  return out;
}

// The --flags value: a whole number (decimal, 0x hexadecimal or 0 octal)
// made of the defined flag bits only.
bool parse_flags(char const* text, int* flags) {
  if (text[0] == '\0' || text[0] == '-' || text[0] == '+') return false;
  char* end = nullptr;
  errno = 0;
  long value = std::strtol(text, &end, 0);
  if (errno != 0 || *end != '\0' || (value & ~kAllFlags) != 0) return false;
  *flags = static_cast<int>(value);
  return true;
}

}  // namespace

int cmd_match(int argc, char** argv) {
  int case_sensitive = 1, partial = 0, flags = 0;
  bool segment = false, raw_flags = false;
  int i = 1;
  for (; i < argc && argv[i][0] == '-' && argv[i][1] != '\0'; ++i) {
    std::string a = argv[i];
    if (a == "-i" || a == "--ignore-case") {
      case_sensitive = 0;
    } else if (a == "--partial") {
      partial = 1;
    } else if (a == "--segment") {
      segment = true;
    } else if (a == "--flags") {
      if (i + 1 >= argc) {
        std::fprintf(stderr, "qbfs match: --flags needs a value\n");
        return 2;
      }
      if (!parse_flags(argv[++i], &flags)) {
        std::fprintf(stderr,
                     "qbfs match: --flags takes a number from 0 to %ld (the flag bits), not '%s'\n",
                     kAllFlags, archive::terminal_text(argv[i]).c_str());
        return 2;
      }
      raw_flags = true;
    } else if (a == "--") {
      ++i;
      break;
    } else {
      std::fprintf(stderr, "qbfs match: unknown option %s\n", archive::terminal_text(argv[i]).c_str());
      return 2;
    }
  }
  if (segment && raw_flags) {
    std::fprintf(stderr, "qbfs match: --segment and --flags cannot be given together\n");
    return 2;
  }
  if (segment) flags = FS_SPEC_SEGMENT_SEARCH;
  if (argc - i < 2) {
    std::fprintf(stderr,
                 "usage: qbfs match [-i] [--partial] [--segment | --flags N] SPEC NAME...\n");
    return 2;
  }
  std::vector<wchar_t> spec = counted(argv[i]);
  if (spec.size() > kMaxCounted) {
    std::fprintf(stderr,
                 "qbfs match: the specification has %zu characters; at most %zu are taken\n",
                 spec.size() - 1, kMaxCounted - 1);
    return 2;
  }
  std::vector<std::vector<wchar_t>> names;
  for (int n = i + 1; n < argc; ++n) {
    names.push_back(counted(argv[n]));
    if (names.back().size() > kMaxCounted) {
      std::fprintf(stderr, "qbfs match: name %d has %zu characters; at most %zu are taken\n", n - i,
                   names.back().size() - 1, kMaxCounted - 1);
      return 2;
    }
  }
  for (std::size_t n = 0; n < names.size(); ++n) {
    int result =
        FS_CompareFileSpec(names[n].data(), static_cast<short>(names[n].size()), spec.data(),
                           static_cast<short>(spec.size()), case_sensitive, partial, flags);
    std::printf("%d  %s\n", result, archive::terminal_text(argv[i + 1 + static_cast<int>(n)]).c_str());
  }
  return 0;
}

}  // namespace qbfs
