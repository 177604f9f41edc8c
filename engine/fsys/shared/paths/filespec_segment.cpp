// Segment-search mode of file-specification matching: each literal segment
// of the specification is searched for in the name and the first match is
// taken (no backtracking). In the plain form a segment and its search stop at
// a terminator, so a single '*' stays within one path component; in the star
// form (a leading star kept by the flags) they do not.
#include <qbfsys/fs_filespec.h>

#include "filespec_engine.h"
#include "filespec_literal.h"

namespace qbfsys {
namespace filespec {
namespace {

// Step over the specification's segment and one star after it, if any.
void advance_spec_past(MatchState& s, int seg) noexcept {
  s.spec += seg;
  s.spec_len -= seg;
  if (s.spec_len > 0 && s.spec[0] == L'*') {
    ++s.spec;
    --s.spec_len;
  }
}

// The "." specification: a name without an extension matches it. Returns
// false when the name has an extension that rules the match out.
bool apply_lone_dot(MatchState& s) noexcept {
  int i = 0;
  while (i < s.name_len && s.name[i] != L'\0' && s.name[i] != L'.') ++i;
  if (i == s.name_len || s.name[i] == L'\0') {
    ++s.spec;
    --s.spec_len;
    s.name += i;
    s.name_len -= i;
    return true;
  }
  return !(i + 1 < s.name_len && s.name[i + 1] != L'\0');
}

}  // namespace

int segment_step(MatchState& s) noexcept {
  if (counted_is(s.spec, s.spec_len, L".*", 2)) {
    s.spec += 2;
    s.spec_len -= 2;
  } else if (counted_is(s.spec, s.spec_len, L".", 1)) {
    if (!apply_lone_dot(s)) return FS_SPEC_NO_MATCH;
  }

  bool star_form = false;
  if (s.flags & FS_SPEC_SKIP_STARS) {
    while (s.spec_len > 0 && s.spec[0] == L'*') {
      ++s.spec;
      --s.spec_len;
    }
  } else if (s.spec_len > 0 && s.spec[0] == L'*') {
    if (counted_is(s.spec, s.spec_len, L"*", 1)) return FS_SPEC_MATCH;
    ++s.spec;
    --s.spec_len;
    star_form = true;
  }
  if (s.spec_len == 0) return FS_SPEC_MATCH;

  while (s.spec_len > 0 && s.spec[0] == L'*') {
    ++s.spec;
    --s.spec_len;
  }
  int seg = 0;
  while (seg < s.spec_len && s.spec[seg] != L'*') {
    ++seg;
    if (!star_form && s.spec[seg - 1] == L'\0') break;  // ends, and anchors, the segment
  }
  if (seg == 0) return FS_SPEC_MATCH;

  // Most positions fail on the segment's first character: fold it once
  // instead of at every position.
  const wchar_t first = s.spec[0];
  const bool first_any = first == L'?';
  const wchar_t first_folded = s.case_sensitive ? first : lib_tolower(first);
  wchar_t* at = s.name;
  int rest = s.name_len;
  while (seg <= rest) {
    const wchar_t c = at[0];
    const bool first_fits = first_any ? c != L'\0'
                                      : (c == first || (!s.case_sensitive && lib_tolower(c) == first_folded));
    if (first_fits && literal_prefix(s.spec, at, seg, s.case_sensitive, 0) == seg) {
      s.name = at + seg;
      s.name_len = rest - seg;
      advance_spec_past(s, seg);
      return kStepAgain;
    }
    if (!star_form && at[0] == L'\0') break;
    ++at;
    --rest;
  }

  // A trailing dot matches a name without an extension: "abc.<NUL>" against
  // the last characters "abc" of the name plus its final character.
  if (rest == seg - 1 && seg >= 2 && s.spec[seg - 2] == L'.' && s.spec[seg - 1] == L'\0' &&
      literal_prefix(s.spec, at, seg - 2, s.case_sensitive, 0) == seg - 2) {
    s.name = at + rest;
    s.name_len = 0;
    advance_spec_past(s, seg);
    return kStepAgain;
  }
  return FS_SPEC_NO_MATCH;
}

}  // namespace filespec
}  // namespace qbfsys
