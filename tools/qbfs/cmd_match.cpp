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
#include "arguments.h"
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

int cmd_match(Options const& /*options*/, int argc, char** argv) {
  static constexpr char kCommand[] = "qbfs match";
  static constexpr char kHelp[] =
      "usage: qbfs match [-i] [--partial] [--segment | --flags N] SPEC NAME...\n"
      "\n"
      "Prints, per NAME, what the layer's file-specification matcher answers\n"
      "for SPEC: 0 no match, 1 match, 2 the name ended while SPEC goes on.\n"
      "This is how one checks why an exclusion rule did or did not apply.\n"
      "\n"
      "  -i, --ignore-case   compare without regard to case\n"
      "  --partial           accept a name that ends while SPEC goes on\n"
      "  --segment           segment-search mode instead of the classic one\n"
      "  --flags N           the raw flag word, 0 to 15 (not with --segment)\n"
      "  --                  what follows is SPEC and names, even with a '-'\n";
  Arguments args;
  if (int const rc = parse_arguments(argc, argv, kCommand,
                                     {{"-i", "--ignore-case", false},
                                      {nullptr, "--partial", false},
                                      {nullptr, "--segment", false},
                                      {nullptr, "--flags", true}},
                                     args);
      rc != 0)
    return rc;
  if (args.help) return std::fputs(kHelp, stdout), 0;
  int const case_sensitive = args.has("--ignore-case") ? 0 : 1;
  int const partial = args.has("--partial") ? 1 : 0;
  bool const segment = args.has("--segment");
  bool const raw_flags = args.has("--flags");
  int flags = 0;
  if (raw_flags && !parse_flags(args.value("--flags").c_str(), &flags)) {
    std::fprintf(stderr, "qbfs match: --flags takes a number from 0 to %ld (the flag bits), not '%s'\n",
                 kAllFlags, archive::terminal_text(args.value("--flags")).c_str());
    return 2;
  }
  if (segment && raw_flags) return usage_error(kCommand, "--segment and --flags cannot be given together");
  if (segment) flags = FS_SPEC_SEGMENT_SEARCH;
  if (args.operands.size() < 2) return usage_error(kCommand, "needs SPEC and at least one NAME");
  std::vector<std::string> const& operands = args.operands;
  std::vector<wchar_t> spec = counted(operands[0].c_str());
  if (spec.size() > kMaxCounted) {
    std::fprintf(stderr,
                 "qbfs match: the specification has %zu characters; at most %zu are taken\n",
                 spec.size() - 1, kMaxCounted - 1);
    return 2;
  }
  std::vector<std::vector<wchar_t>> names;
  for (std::size_t n = 1; n < operands.size(); ++n) {
    names.push_back(counted(operands[n].c_str()));
    if (names.back().size() > kMaxCounted) {
      std::fprintf(stderr, "qbfs match: name %zu has %zu characters; at most %zu are taken\n", n,
                   names.back().size() - 1, kMaxCounted - 1);
      return 2;
    }
  }
  for (std::size_t n = 0; n < names.size(); ++n) {
    int result =
        FS_CompareFileSpec(names[n].data(), static_cast<short>(names[n].size()), spec.data(),
                           static_cast<short>(spec.size()), case_sensitive, partial, flags);
    std::printf("%d  %s\n", result, archive::terminal_text(operands[n + 1]).c_str());
  }
  return 0;
}

}  // namespace qbfs
