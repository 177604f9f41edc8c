// An index over a DLE's patterns that names, for one path, the few patterns
// that can match it, so that finding the first matching pattern does not
// cost a comparison per pattern.
//
// Every pattern gets an anchor: its longest run of characters that are not
// '*', '?' or a separator between components, without trailing dots, folded
// to lower case (the last run keeps the pattern's terminator). The matcher
// consumes such characters only by comparing them (folded) with equal name
// characters; the wildcards are the only characters it lets stand for
// others, and a trailing dot is the only literal it may skip (the "name
// without an extension" rule). Separators inside a pattern are left out
// because a terminator there ends a segment by rules of its own. So a path
// can match a pattern only if the folded path, with its terminator, holds
// the pattern's anchor. Likewise it must begin with the pattern's literal
// beginning (up to its first wildcard, separators included, short of a
// dot that may match nothing); a pattern whose beginning is at least as
// long as its anchor is found through a trie of beginnings instead. One scan of the path through
// an automaton over all anchors yields those patterns; patterns without an
// anchor ("*", "**", "?*") are candidates for every path. The candidates are
// then compared with FS_CompareFileSpec in list order, so the answer is
// exactly that of walking the whole list.
//
// An index belongs to one fold table (the C library's lower-case table of
// the locale it was built under); a lookup under another table does not use
// it. It is built on first lookup and thrown away when the rules change.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <qbfsys/dle.h>

#include "../paths/filespec_literal.h"

namespace fsys {

class RuleIndex {
 public:
  // One pattern in component form: `chars` characters counted as the
  // matcher is given them (terminator included), and its reason. The text
  // stays owned by the rule list.
  struct Pattern {
    wchar_t* text;
    std::size_t chars;
    std::uint32_t reason;
  };

  // Builds the index over `patterns` (in list order) for the fold table of
  // `fold`. Throws std::bad_alloc.
  RuleIndex(std::vector<Pattern> patterns, qbfsys::filespec::Folder const& fold);

  // The reason of the first pattern that `key` (component form, without
  // its final terminator) matches, in list order; false when none does.
  // Throws std::bad_alloc.
  bool first_match(std::wstring& key, std::uint32_t* reason) const;

 private:
  void candidates(std::wstring const& key, qbfsys::filespec::Folder const& fold,
                  std::vector<std::uint32_t>& out) const;
  std::uint32_t char_class(wchar_t folded) const noexcept;
  bool matches(std::wstring& key, Pattern const& pattern) const;

  std::vector<Pattern> patterns_;
  qbfsys::filespec::Folder table_;
  // Anchor characters are mapped to classes 1..n; class 0 is every other
  // character. Characters up to 255 through a table, the rest by search.
  std::vector<std::uint32_t> narrow_class_;
  std::vector<std::pair<wchar_t, std::uint32_t>> wide_class_;  // sorted
  std::uint32_t classes_ = 1;
  // The automaton as a full transition table: next_[state * classes_ + c].
  std::vector<std::uint32_t> next_;
  std::vector<std::uint32_t> fail_;  // per state: the longest proper suffix state
  // Per state: the nearest state on its suffix chain (itself included) at
  // which anchors end, or kNoState; and the range of those anchors'
  // patterns in ends_ (ends_begin_ has one entry more than there are states).
  std::vector<std::uint32_t> report_;
  std::vector<std::uint32_t> ends_begin_;
  std::vector<std::uint32_t> ends_;
  std::vector<std::uint32_t> always_;  // patterns without an anchor, ascending
  // Patterns indexed by their literal beginning instead: a trie of the
  // folded beginnings (sorted edges per node) with the patterns ending at
  // each node in prefix_ordinals_[prefix_begin_[node] .. prefix_begin_[node + 1]).
  std::vector<std::vector<std::pair<wchar_t, std::uint32_t>>> prefix_edges_;
  std::vector<std::uint32_t> prefix_begin_;
  std::vector<std::uint32_t> prefix_ordinals_;
  std::vector<bool> by_prefix_;
  bool indexed_by_prefix(std::uint32_t ordinal) const { return by_prefix_[ordinal]; }
};

}  // namespace fsys

namespace fsys {

// One rule-list entry as it was when an index was built: the entry's
// address, its reason and its size. The entry that follows it is the next
// stamp's. A lookup compares the list with these before it trusts the index.
struct RuleStamp {
  void const* entry;
  std::uint32_t reason;
  std::uint32_t size;
};

// The patterns of one rule list of a DLE and the stamps of its entries.
struct RuleListView {
  std::vector<RuleIndex::Pattern> patterns;
  std::vector<RuleStamp> stamps;
};

// How a rule list is read: `collect` lists it for a new index; `unchanged`
// says whether the list still matches the stamps taken by `collect`.
struct RuleListKind {
  RuleListView (*collect)(GENERIC_DLE* dle);
  bool (*unchanged)(GENERIC_DLE const* dle, std::vector<RuleStamp> const& stamps) noexcept;
};

}  // namespace fsys

// What a DLE holds for each rule set's patterns once looked up. An index
// found stale is not freed at once (another handle may be reading it) but
// kept behind its successor until the rules change through the rule API or
// the DLE is freed.
struct DLE_RULE_INDEX {
  fsys::RuleIndex index;
  std::vector<fsys::RuleStamp> stamps;
  DLE_RULE_INDEX* superseded = nullptr;
};

namespace fsys {

// Frees an index and those it superseded (null is fine).
void free_rule_index(DLE_RULE_INDEX*& index) noexcept;

// The reason of the first pattern that `key` matches, or false. The index
// is built into `slot` on first use from what `kind.collect` returns for
// `dle`, and built again when `kind.unchanged` finds that the list was
// changed behind the rule API (modules can reach the list). The rule API
// clears the slot itself. Throws std::bad_alloc.
bool indexed_first_match(GENERIC_DLE* dle, DLE_RULE_INDEX*& slot, RuleListKind const& kind,
                         std::wstring& key, std::uint32_t* reason);

}  // namespace fsys
