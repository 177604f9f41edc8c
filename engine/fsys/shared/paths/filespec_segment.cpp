// Segment-search mode of file-specification matching: each literal segment
// of the specification is searched for in the name and the first match is
// taken (no backtracking). In the plain form a segment and its search stop at
// a terminator, so a single '*' stays within one path component; in the star
// form (a leading star kept by the flags) they do not.
#include <qbfsys/fs_filespec.h>

#include <cstddef>
#include <cwchar>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

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

// The same when the first characters are already known to match.
bool rest_matches(MatchState const& s, const wchar_t* at, int seg) noexcept {
  return literal_prefix(s.spec + 1, at + 1, seg - 1, s.case_sensitive, 0, s.fold) == seg - 1;
}

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

// A failed search ends at `at`; a successful one found the segment there.
Search gave_up(MatchState const& s, int at) noexcept {
  return {false, s.name + at, s.name_len - at};
}

Search found_at(MatchState const& s, int at) noexcept {
  return {true, s.name + at, s.name_len - at};
}

// A segment ended by a terminator can only match where its terminator meets
// the name's first one: the characters before it are real characters and so
// must face real characters.
Search search_anchored(MatchState& s, int seg) noexcept {
  const int last_fit = s.name_len - seg;
  const wchar_t* t = next_terminator(s);
  if (t != nullptr) {
    const int p = static_cast<int>(t - s.name) - (seg - 1);
    if (p >= 0 && full_match(s, s.name + p, seg)) return found_at(s, p);
    if (t - s.name <= last_fit) return gave_up(s, static_cast<int>(t - s.name));
  }
  return gave_up(s, last_fit + 1 > 0 ? last_fit + 1 : 0);
}

// First position in [from, last] whose character is `a`, `b` or `c`, or
// last + 1. Four characters at a time where the vector unit allows, never
// reading past `last`.
int find_any_of(const wchar_t* name, int from, int last, wchar_t a, wchar_t b,
                wchar_t c) noexcept {
  int p = from;
#if defined(__SSE2__) && __WCHAR_MAX__ == 0x7fffffff
  const __m128i va = _mm_set1_epi32(a);
  const __m128i vb = _mm_set1_epi32(b);
  const __m128i vc = _mm_set1_epi32(c);
  for (; p + 3 <= last; p += 4) {
    const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(name + p));
    const __m128i hit = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi32(x, va), _mm_cmpeq_epi32(x, vb)),
                                     _mm_cmpeq_epi32(x, vc));
    const int lanes = _mm_movemask_ps(_mm_castsi128_ps(hit));
    if (lanes != 0) return p + __builtin_ctz(static_cast<unsigned>(lanes));
  }
#endif
  for (; p <= last; ++p) {
    const wchar_t x = name[p];
    if (x == a || x == b || x == c) break;
  }
  return p;
}

// The same with `a` standing for every character that folds to it, and `c`
// for itself.
int find_folded(const wchar_t* name, int from, int last, Folder const& fold, wchar_t a,
                wchar_t c) noexcept {
  int p = from;
  while (p <= last) {
    const wchar_t x = name[p];
    if (x == c || fold(x) == a) break;
    ++p;
  }
  return p;
}

// Case-insensitive search for a segment whose first character is not '?'.
// Only that character is folded; a name position is compared further (from
// its second character on) when its character folds to the same value. The
// plain form's stop at the terminator is looked for in the same pass, so the
// name is read once; in the star form the third character looked for
// repeats the first, which disables it.
Search search_folded(MatchState const& s, int seg, bool star_form) noexcept {
  const wchar_t* const name = s.name;
  const int last_fit = s.name_len - seg;
  const Folder fold = s.fold;
  const wchar_t folded = fold(s.spec[0]);
  const wchar_t stop_at = star_form ? folded : L'\0';
  // Only 'A'..'Z' fold: a lower-case letter has two forms, anything else one.
  const bool ascii = fold.ascii_only();
  const wchar_t upper =
      (folded >= L'a' && folded <= L'z') ? static_cast<wchar_t>(folded - 32) : folded;
  for (int p = 0;; ++p) {
    p = ascii ? find_any_of(name, p, last_fit, folded, upper, stop_at)
              : find_folded(name, p, last_fit, fold, folded, stop_at);
    if (p > last_fit) break;
    if (!star_form && name[p] == L'\0') {
      // Compared like any other position before the search stops there.
      if (fold(L'\0') == folded && rest_matches(s, name + p, seg)) return found_at(s, p);
      return gave_up(s, p);
    }
    if (rest_matches(s, name + p, seg)) return found_at(s, p);
  }
  return gave_up(s, last_fit + 1 > 0 ? last_fit + 1 : 0);
}

// Compares the segment at every position of the name from the start, as long
// as it fits, first match wins; the plain form gives up after the position
// of the name's terminator. The searches below visit the same positions and
// find the same first match with fewer comparisons.
Search search(MatchState& s, int seg, bool star_form) noexcept {
  if (!star_form && s.spec[seg - 1] == L'\0') return search_anchored(s, seg);
  const wchar_t first = s.spec[0];
  if (first != L'?' && !s.case_sensitive) return search_folded(s, seg, star_form);

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
  }
  if (first == L'?') {
    for (int p = 0; p <= stop; ++p) {
      if (s.name[p] != L'\0' && full_match(s, s.name + p, seg)) return found_at(s, p);
    }
    return gave_up(s, given_up);
  }
  // Most positions fail on the segment's first character: look for that
  // character first, then compare the whole segment.
  const wchar_t* from = s.name;
  const wchar_t* const end = s.name + (stop + 1);
  while (from < end) {
    const wchar_t* hit = std::wmemchr(from, first, static_cast<std::size_t>(end - from));
    if (hit == nullptr) break;
    if (full_match(s, hit, seg)) return found_at(s, static_cast<int>(hit - s.name));
    from = hit + 1;
  }
  return gave_up(s, given_up);
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
