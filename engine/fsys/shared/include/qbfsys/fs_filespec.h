// File-specification matching: does an object name match a specification
// holding the wildcards '*' (any run of characters) and '?' (any one
// character)?
//
// Names and specifications are counted wide strings. A count may or may not
// include the terminator; a terminator inside the count is an ordinary
// character except where the rules below give it a meaning. Paths in
// component form (components separated by wide NULs) are compared as they
// are: a single '*' stays inside one component, "**" may cross components.
//
// FS_CompareFileSpec has two modes, chosen by its flags:
//   classic mode (every flag value except 4 to 7): the specification is
//     compared from the start of the name; a '*' hands the rest of the
//     specification to the segment-search mode (or, with FS_SPEC_STAY_CLASSIC,
//     matches an empty run only);
//   segment-search mode (flag values 4 to 7): every literal segment of the
//     specification is searched for in the name, first match wins.
// Trailing ".*" matches a name without an extension, a trailing "." matches
// only a name without an extension, and a '?' never matches the end of the
// name.
//
// Choices made for points the rules leave open:
//   - A negative count is out of range: FS_CompareFileSpec returns
//     FS_SPEC_NO_MATCH and FS_LiteralComp returns 0 (unless a pointer is null,
//     in which case FS_LiteralComp returns the count it was given).
//   - A specification "is exactly" ".*", "." or "*" when its count covers
//     those characters alone, or those characters and one terminator, so that
//     both counting conventions of callers behave alike.
//   - When a '?' meets the end of the name at the very first position of the
//     classic comparison there is nothing before the strings to step back to;
//     the comparison ends there with no match.
//   - The "last character passed" in the name is the character just before
//     the current position in the caller's name; at the start of the name
//     there is none.
//   - "Moving the name to its end" stops at its terminator, or at the end of
//     its count when there is none; the trailing-dot rule consumes the rest of
//     the name's count.
//   - Wide characters outside the C library's tolower domain (EOF and
//     0..UCHAR_MAX) are returned unchanged instead of being passed to it.
//   - The comparison never recurses on the machine stack, so a specification
//     of any length (up to 32767 characters) is safe; its cost is at most
//     proportional to the product of the two lengths, never exponential.
// None of these functions allocates, throws, or keeps state a caller can see.
#pragma once

#include <qbfsys/fs_export.h>

// Flag bits of FS_CompareFileSpec.
constexpr int FS_SPEC_LITERAL = 0x1;         // '*' and '?' are ordinary in the classic mode
constexpr int FS_SPEC_SKIP_STARS = 0x2;      // segment search: several leading stars count as one
constexpr int FS_SPEC_SEGMENT_SEARCH = 0x4;  // with bits 0x1/0x2 only: segment-search mode
constexpr int FS_SPEC_STAY_CLASSIC = 0x8;    // a '*' in the classic mode matches an empty run only

// Results of FS_CompareFileSpec.
constexpr int FS_SPEC_NO_MATCH = 0;
constexpr int FS_SPEC_MATCH = 1;
constexpr int FS_SPEC_NAME_ENDED = 2;  // the name ended while the specification goes on

// Compares `name` (nameLen characters) with `spec` (specLen characters).
// Case-insensitive unless caseSensitive is non-zero. partialOk accepts a name
// that goes on past the specification's end in the few places the rules allow.
// Returns FS_SPEC_NO_MATCH, FS_SPEC_MATCH or FS_SPEC_NAME_ENDED; a null
// pointer gives FS_SPEC_NO_MATCH.
FS_EXPORT int FS_CompareFileSpec(wchar_t* name, short nameLen, wchar_t* spec, short specLen,
                                 int caseSensitive, int partialOk, int flags) noexcept;

// Number of leading characters of `text` that match `pattern`, looking at no
// more than `count` characters of either. Unless `literal` is set, '?' in the
// pattern matches any one character except the terminator; when a '?' meets
// the terminator the result is one less than the characters matched so far
// (-1 at the first position), which callers rely on. Equal terminators match,
// so the comparison may run past the end of equal strings up to `count`.
// A null pointer gives `count`; a count of 0 or below gives 0.
FS_EXPORT short FS_LiteralComp(wchar_t* pattern, wchar_t* text, short count, int caseSensitive,
                               int literal) noexcept;

// Lower-case form of one wide character: ASCII letters are folded whatever
// the locale; every other value goes through the C library's tolower.
FS_EXPORT wchar_t tolower64(wchar_t c) noexcept;
