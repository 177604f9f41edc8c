// Segment-search mode of file-specification matching: each literal segment
// of the specification is searched for in the name and the first match is
// taken (no backtracking). In the plain form a segment and its search stop at
// a terminator, so a single '*' stays within one path component; in the star
// form (a leading star kept by the flags) they do not.
#include <qbfsys/fs_filespec.h>

#include <cstddef>
#include <cwchar>

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

// Where the search for the segment (the first `seg` characters of the
// specification) ended: at its first full match, or where it gave up.
struct Search {
  bool matched;
  wchar_t* at;
  int rest;  // the name's count from `at` on
};

bool full_match(MatchState const& s, const wchar_t* at, int seg) noexcept {
  return literal_prefix(s.spec, at, seg, s.case_sensitive, 0, s.fold) == seg;
}

// Compares the segment at every position of the name from the start, as long
// as it fits, first match wins; the plain form gives up after the position
// of the name's terminator. The loop below visits the same positions and
// finds the same first match with fewer comparisons.
// First terminator of the name at or after its current position, without
// scanning again what an earlier search of the same comparison scanned.
const wchar_t* next_terminator(MatchState& s) noexcept {
  const bool known = s.nul_from != nullptr && s.name >= s.nul_from &&
                     (s.nul_at == nullptr || s.name <= s.nul_at);
  if (!known) {
    s.nul_from = s.name;
    s.nul_at = s.name_len > 0
                   ? std::wmemchr(s.name, L'\0', static_cast<std::size_t>(s.name_len))
                   : nullptr;
  }
  return s.nul_at;
}

Search search(MatchState& s, int seg, bool star_form) noexcept {
  const int len = s.name_len;
  const int last_fit = len - seg;  // last position where the segment fits
  int stop = last_fit;             // last position compared
  int given_up = last_fit + 1 > 0 ? last_fit + 1 : 0;
  if (!star_form) {
    const wchar_t* t = next_terminator(s);
    if (t != nullptr && t - s.name <= last_fit) {
      stop = static_cast<int>(t - s.name);
      given_up = stop;
    }
    // A segment ended by a terminator can only match where its terminator
    // meets the name's first one: the characters before it are real
    // characters and so must face real characters.
    if (s.spec[seg - 1] == L'\0') {
      if (t != nullptr) {
        const int p = static_cast<int>(t - s.name) - (seg - 1);
        if (p >= 0 && full_match(s, s.name + p, seg)) return {true, s.name + p, len - p};
      }
      return {false, s.name + given_up, len - given_up};
    }
  }
  // Most positions fail on the segment's first character: look for that
  // character first, then compare the whole segment.
  const wchar_t first = s.spec[0];
  if (first == L'?') {
    for (int p = 0; p <= stop; ++p) {
      if (s.name[p] != L'\0' && full_match(s, s.name + p, seg)) return {true, s.name + p, len - p};
    }
  } else if (s.case_sensitive) {
    const wchar_t* from = s.name;
    const wchar_t* const end = s.name + (stop + 1);
    while (from < end) {
      const wchar_t* hit = std::wmemchr(from, first, static_cast<std::size_t>(end - from));
      if (hit == nullptr) break;
      const int p = static_cast<int>(hit - s.name);
      if (full_match(s, hit, seg)) return {true, s.name + p, len - p};
      from = hit + 1;
    }
  } else {
    const wchar_t first_folded = s.fold(first);
    for (int p = 0; p <= stop; ++p) {
      if (s.fold(s.name[p]) == first_folded && full_match(s, s.name + p, seg)) {
        return {true, s.name + p, len - p};
      }
    }
  }
  return {false, s.name + given_up, len - given_up};
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

  const Search found = search(s, seg, star_form);
  if (found.matched) {
    s.name = found.at + seg;
    s.name_len = found.rest - seg;
    advance_spec_past(s, seg);
    return kStepAgain;
  }
  wchar_t* const at = found.at;
  const int rest = found.rest;

  // A trailing dot matches a name without an extension: "abc.<NUL>" against
  // the last characters "abc" of the name plus its final character.
  if (rest == seg - 1 && seg >= 2 && s.spec[seg - 2] == L'.' && s.spec[seg - 1] == L'\0' &&
      literal_prefix(s.spec, at, seg - 2, s.case_sensitive, 0, s.fold) == seg - 2) {
    s.name = at + rest;
    s.name_len = 0;
    advance_spec_past(s, seg);
    return kStepAgain;
  }
  return FS_SPEC_NO_MATCH;
}

}  // namespace filespec
}  // namespace qbfsys
