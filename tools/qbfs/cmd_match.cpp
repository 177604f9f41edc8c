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
//   --flags N           the raw flag word (overrides --segment)
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <qbfsys/fs_filespec.h>
#include <qbhost/strings.h>

#include "commands.h"

namespace qbfs {
namespace {

std::vector<wchar_t> counted(char const* text) {
  wcstring wide = wcstring::from_utf8(text, std::strlen(text));
  std::vector<wchar_t> out(wide.begin(), wide.end());
  out.push_back(L'\0');
  return out;
}

}  // namespace

int cmd_match(int argc, char** argv) {
  int case_sensitive = 1, partial = 0, flags = 0;
  int i = 1;
  for (; i < argc && argv[i][0] == '-' && argv[i][1] != '\0'; ++i) {
    std::string a = argv[i];
    if (a == "-i" || a == "--ignore-case") {
      case_sensitive = 0;
    } else if (a == "--partial") {
      partial = 1;
    } else if (a == "--segment") {
      flags = FS_SPEC_SEGMENT_SEARCH;
    } else if (a == "--flags" && i + 1 < argc) {
      flags = static_cast<int>(std::strtol(argv[++i], nullptr, 0));
    } else if (a == "--") {
      ++i;
      break;
    } else {
      std::fprintf(stderr, "qbfs match: unknown option %s\n", argv[i]);
      return 2;
    }
  }
  if (argc - i < 2) {
    std::fprintf(stderr,
                 "usage: qbfs match [-i] [--partial] [--segment | --flags N] SPEC NAME...\n");
    return 2;
  }
  std::vector<wchar_t> spec = counted(argv[i]);
  if (spec.size() > 32767) {
    std::fprintf(stderr, "qbfs match: the specification is too long\n");
    return 2;
  }
  for (int n = i + 1; n < argc; ++n) {
    std::vector<wchar_t> name = counted(argv[n]);
    int result = name.size() > 32767
                     ? FS_SPEC_NO_MATCH
                     : FS_CompareFileSpec(name.data(), static_cast<short>(name.size()), spec.data(),
                                          static_cast<short>(spec.size()), case_sensitive, partial,
                                          flags);
    std::printf("%d  %s\n", result, argv[n]);
  }
  return 0;
}

}  // namespace qbfs
