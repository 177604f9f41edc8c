// Classic mode of file-specification matching: the specification is laid
// over the start of the name; the first '*' hands what follows it to the
// segment-search mode, which is how a star comes to match a run.
#include <qbfsys/fs_filespec.h>

#include <algorithm>

#include "filespec_engine.h"
#include "filespec_literal.h"

namespace qbfsys {
namespace filespec {

int classic_step(MatchState& s) noexcept {
  const int n = std::min(s.name_len, s.spec_len);

  // Nothing (or only the name's end) to compare while the specification goes on.
  if ((n == 0 || (n == 1 && s.name[0] == L'\0')) && s.spec_len > 1) return FS_SPEC_NAME_ENDED;
  if (s.partial_ok && n == 1 && s.name_len != 1) return FS_SPEC_MATCH;

  int matched = 0;
  if (n != 0) {
    int m = literal_prefix(s.spec, s.name, n, s.case_sensitive, s.flags & FS_SPEC_LITERAL,
                           s.fold);
    // A '?' facing the end of the name at the first position: the comparer's
    // one-short count would step back before both strings. Stepping back one
    // character only ever leads to "no match" (the name's count stays above
    // zero and the name does not stand at its end), so say so directly.
    if (m < 0) return FS_SPEC_NO_MATCH;
    // A star facing a star must still act as a wildcard, not be eaten as text.
    for (int j = 0; j < m; ++j) {
      if (s.name[j] == L'*' && s.spec[j] == L'*') {
        m = j;
        break;
      }
    }
    s.name += m;
    s.name_len -= m;
    s.spec += m;
    s.spec_len -= m;
    matched = m;
  }

  if (s.spec_len == 0) {
    if (s.name_len == 0) return FS_SPEC_MATCH;
    // The name goes on past its own terminator: acceptable as a partial match.
    const bool passed_terminator = s.name != s.name_start && s.name[-1] == L'\0';
    return (s.partial_ok && passed_terminator) ? FS_SPEC_MATCH : FS_SPEC_NO_MATCH;
  }

  if (s.name_len != 0 && s.name[0] == L'\0') {
    // At the name's end, trailing '?'s and a trailing ".*" or "." match nothing.
    if (s.spec[0] == L'?') {
      while (s.spec_len > 0 && s.spec[0] == L'?') {
        ++s.spec;
        --s.spec_len;
      }
      return kStepAgain;
    }
    if (counted_is(s.spec, s.spec_len, L".*", 2)) {
      s.spec += 2;
      s.spec_len -= 2;
      return kStepAgain;
    }
    if (counted_is(s.spec, s.spec_len, L".", 1)) {
      s.spec += 1;
      s.spec_len -= 1;
      return kStepAgain;
    }
  }

  if (s.spec[0] != L'*') {
    // The whole name matched up to and including a terminator of the
    // specification, which goes on: the name ended before the specification.
    if (s.name_len != 0 || matched == 0 || s.spec[-1] != L'\0') return FS_SPEC_NO_MATCH;
    return FS_SPEC_NAME_ENDED;
  }

  if (s.flags & FS_SPEC_LITERAL) return FS_SPEC_NO_MATCH;
  ++s.spec;
  --s.spec_len;
  s.flags |= FS_SPEC_SEGMENT_SEARCH;
  return kStepAgain;
}

}  // namespace filespec
}  // namespace qbfsys
