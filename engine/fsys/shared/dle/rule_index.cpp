// RuleIndex: the anchors of the patterns in one automaton (a trie of the
// folded anchors with its failure links resolved into a full transition
// table over the anchors' characters), scanned once per path.
#include "../internal/rule_index.h"

#include <algorithm>
#include <climits>
#include <deque>
#include <utility>

#include <qbfsys/fs_filespec.h>

namespace fsys {
namespace {

constexpr std::uint32_t kNoState = UINT32_MAX;
constexpr std::uint32_t kRoot = 0;
constexpr std::uint32_t kOtherClass = 0;
// A hostile list (long anchors of thousands of distinct characters) would
// make the full transition table huge; past this many entries the anchored
// patterns are compared with every path instead, as without an index.
constexpr std::size_t kMostTableEntries = std::size_t{1} << 22;
constexpr std::size_t kNarrowChars = UCHAR_MAX + 1;
constexpr int kCaseInsensitive = 0;
constexpr int kWholeName = 0;
constexpr int kClassic = 0;

bool is_wildcard(wchar_t c) { return c == L'*' || c == L'?'; }

// The longest run of literal characters, folded, without trailing dots.
// Runs end at wildcards and at the separators between components; the
// pattern's own terminator stays in its last run (so "**.tmp" is anchored
// by ".tmp" at the end of a name) unless a dot precedes it, because a
// trailing dot may match a name that ends without one.
std::wstring anchor_of(RuleIndex::Pattern const& pattern, qbfsys::filespec::Folder const& fold) {
  std::wstring best;
  std::wstring run;
  auto close_run = [&] {
    while (!run.empty() && run.back() == L'.') run.pop_back();
    if (run.size() >= best.size()) best = run;
    run.clear();
  };
  for (std::size_t i = 0; i < pattern.chars; ++i) {
    wchar_t const c = pattern.text[i];
    bool const terminator = c == L'\0' && i + 1 == pattern.chars;
    if (terminator && !run.empty() && run.back() != L'.') run.push_back(c);
    if (is_wildcard(c) || c == L'\0') {
      close_run();
    } else {
      run.push_back(fold(c));
    }
  }
  close_run();
  return best;
}

// The literal beginning of a pattern, folded: everything before its first
// wildcard, separators included, but not from a dot on that may match
// nothing (a dot before a separator, a wildcard or the end).
std::wstring prefix_of(RuleIndex::Pattern const& pattern, qbfsys::filespec::Folder const& fold) {
  std::wstring prefix;
  for (std::size_t i = 0; i < pattern.chars; ++i) {
    wchar_t const c = pattern.text[i];
    if (is_wildcard(c)) break;
    if (c == L'.') {
      wchar_t const after = i + 1 < pattern.chars ? pattern.text[i + 1] : L'\0';
      if (after == L'\0' || is_wildcard(after)) break;
    }
    prefix.push_back(fold(c));
  }
  return prefix;
}

}  // namespace

RuleIndex::RuleIndex(std::vector<Pattern> patterns, qbfsys::filespec::Folder const& fold)
    : patterns_(std::move(patterns)), table_(fold), narrow_class_(kNarrowChars, kOtherClass) {
  // Each pattern is indexed by its literal beginning or by its anchor,
  // whichever is longer: both must be found in every path it matches.
  std::vector<std::wstring> anchors;
  anchors.reserve(patterns_.size());
  prefix_edges_.emplace_back();
  by_prefix_.assign(patterns_.size(), false);
  std::vector<std::vector<std::uint32_t>> prefix_ends(1);
  for (std::uint32_t ordinal = 0; ordinal < patterns_.size(); ++ordinal) {
    std::wstring anchor = anchor_of(patterns_[ordinal], fold);
    std::wstring const prefix = prefix_of(patterns_[ordinal], fold);
    if (prefix.empty() || prefix.size() < anchor.size()) {
      anchors.push_back(std::move(anchor));
      continue;
    }
    anchors.emplace_back();
    by_prefix_[ordinal] = true;
    std::uint32_t node = kRoot;
    for (wchar_t c : prefix) {
      auto& edges = prefix_edges_[node];
      auto at = std::lower_bound(edges.begin(), edges.end(), std::make_pair(c, std::uint32_t{0}));
      if (at == edges.end() || at->first != c) {
        at = edges.insert(at, {c, static_cast<std::uint32_t>(prefix_edges_.size())});
        node = at->second;
        prefix_edges_.emplace_back();
        prefix_ends.emplace_back();
      } else {
        node = at->second;
      }
    }
    prefix_ends[node].push_back(ordinal);
  }
  for (std::vector<std::uint32_t> const& ordinals : prefix_ends) {
    prefix_begin_.push_back(static_cast<std::uint32_t>(prefix_ordinals_.size()));
    prefix_ordinals_.insert(prefix_ordinals_.end(), ordinals.begin(), ordinals.end());
  }
  prefix_begin_.push_back(static_cast<std::uint32_t>(prefix_ordinals_.size()));

  std::size_t anchor_chars = 0;
  std::vector<wchar_t> distinct;
  for (std::wstring const& anchor : anchors) {
    anchor_chars += anchor.size();
    distinct.insert(distinct.end(), anchor.begin(), anchor.end());
  }
  std::sort(distinct.begin(), distinct.end());
  distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
  if ((anchor_chars + 1) * (distinct.size() + 1) > kMostTableEntries)
    for (std::wstring& anchor : anchors) anchor.clear();

  // Classes for the anchors' characters.
  for (std::wstring const& anchor : anchors) {
    for (wchar_t c : anchor) {
      if (char_class(c) != kOtherClass) continue;
      std::uint32_t const cls = classes_++;
      if (c >= 0 && static_cast<std::size_t>(c) < kNarrowChars) {
        narrow_class_[static_cast<std::size_t>(c)] = cls;
      } else {
        wide_class_.insert(std::upper_bound(wide_class_.begin(), wide_class_.end(),
                                            std::make_pair(c, std::uint32_t{0})),
                           {c, cls});
      }
    }
  }

  // The trie; kNoState marks a missing edge until the links fill it.
  std::vector<std::vector<std::uint32_t>> ends_at(1);
  next_.assign(classes_, kNoState);
  for (std::uint32_t ordinal = 0; ordinal < anchors.size(); ++ordinal) {
    if (anchors[ordinal].empty()) {
      if (!indexed_by_prefix(ordinal)) always_.push_back(ordinal);
      continue;
    }
    std::uint32_t state = kRoot;
    for (wchar_t c : anchors[ordinal]) {
      std::uint32_t& edge = next_[state * classes_ + char_class(c)];
      if (edge == kNoState) {
        edge = static_cast<std::uint32_t>(ends_at.size());
        ends_at.emplace_back();
        next_.resize(next_.size() + classes_, kNoState);
      }
      state = next_[state * classes_ + char_class(c)];
    }
    ends_at[state].push_back(ordinal);
  }

  // Failure links in breadth-first order, each missing edge replaced by the
  // edge of the state's failure state.
  std::size_t const states = ends_at.size();
  fail_.assign(states, kRoot);
  report_.assign(states, kNoState);
  std::deque<std::uint32_t> queue;
  for (std::uint32_t c = 0; c < classes_; ++c) {
    std::uint32_t& edge = next_[c];
    if (edge == kNoState) {
      edge = kRoot;
    } else {
      queue.push_back(edge);
    }
  }
  while (!queue.empty()) {
    std::uint32_t const state = queue.front();
    queue.pop_front();
    report_[state] = ends_at[state].empty() ? report_[fail_[state]] : state;
    for (std::uint32_t c = 0; c < classes_; ++c) {
      std::uint32_t& edge = next_[state * classes_ + c];
      std::uint32_t const fallback = next_[fail_[state] * classes_ + c];
      if (edge == kNoState) {
        edge = fallback;
      } else {
        fail_[edge] = fallback;
        queue.push_back(edge);
      }
    }
  }

  ends_begin_.reserve(states + 1);
  for (std::vector<std::uint32_t> const& ordinals : ends_at) {
    ends_begin_.push_back(static_cast<std::uint32_t>(ends_.size()));
    ends_.insert(ends_.end(), ordinals.begin(), ordinals.end());
  }
  ends_begin_.push_back(static_cast<std::uint32_t>(ends_.size()));
}

std::uint32_t RuleIndex::char_class(wchar_t folded) const noexcept {
  if (folded >= 0 && static_cast<std::size_t>(folded) < kNarrowChars)
    return narrow_class_[static_cast<std::size_t>(folded)];
  auto const found = std::lower_bound(wide_class_.begin(), wide_class_.end(),
                                      std::make_pair(folded, std::uint32_t{0}));
  return found != wide_class_.end() && found->first == folded ? found->second : kOtherClass;
}

void RuleIndex::candidates(std::wstring const& key, qbfsys::filespec::Folder const& fold,
                           std::vector<std::uint32_t>& out) const {
  out.clear();
  std::uint32_t state = kRoot;
  // The terminator is scanned too: anchors may end with it.
  for (wchar_t const* c = key.c_str(); c <= key.c_str() + key.size(); ++c) {
    state = next_[state * classes_ + char_class(fold(*c))];
    for (std::uint32_t r = report_[state]; r != kNoState; r = report_[fail_[r]]) {
      out.insert(out.end(), ends_.begin() + ends_begin_[r], ends_.begin() + ends_begin_[r + 1]);
    }
  }
  // Patterns indexed by their beginning: follow the path from its start.
  std::uint32_t node = kRoot;
  for (wchar_t const* c = key.c_str();; ++c) {
    out.insert(out.end(), prefix_ordinals_.begin() + prefix_begin_[node],
               prefix_ordinals_.begin() + prefix_begin_[node + 1]);
    if (c > key.c_str() + key.size()) break;
    auto const& edges = prefix_edges_[node];
    wchar_t const folded = fold(*c);
    auto const at = std::lower_bound(edges.begin(), edges.end(), std::make_pair(folded, std::uint32_t{0}));
    if (at == edges.end() || at->first != folded) break;
    node = at->second;
  }
  std::sort(out.begin(), out.end());
  out.erase(std::unique(out.begin(), out.end()), out.end());
}

bool RuleIndex::matches(std::wstring& key, Pattern const& pattern) const {
  return FS_CompareFileSpec(key.data(), static_cast<short>(key.size() + 1), pattern.text,
                            static_cast<short>(pattern.chars), kCaseInsensitive, kWholeName,
                            kClassic) == FS_SPEC_MATCH;
}

bool RuleIndex::first_match(std::wstring& key, std::uint32_t* reason) const {
  qbfsys::filespec::Folder const fold;
  if (!table_.same_as(fold)) {
    for (Pattern const& pattern : patterns_) {
      if (matches(key, pattern)) {
        *reason = pattern.reason;
        return true;
      }
    }
    return false;
  }
  thread_local std::vector<std::uint32_t> found;
  candidates(key, fold, found);
  // Both lists ascend: taking the smaller head each time visits the
  // candidates in list order.
  auto a = found.begin();
  auto b = always_.begin();
  while (a != found.end() || b != always_.end()) {
    std::uint32_t ordinal;
    if (b == always_.end() || (a != found.end() && *a < *b)) {
      ordinal = *a++;
    } else {
      ordinal = *b++;
    }
    if (matches(key, patterns_[ordinal])) {
      *reason = patterns_[ordinal].reason;
      return true;
    }
  }
  return false;
}

void free_rule_index(DLE_RULE_INDEX*& index) noexcept {
  while (index != nullptr) {
    DLE_RULE_INDEX* const older = index->superseded;
    delete index;
    index = older;
  }
}

bool indexed_first_match(GENERIC_DLE* dle, DLE_RULE_INDEX*& slot, RuleListKind const& kind,
                         std::wstring& key, std::uint32_t* reason) {
  // Lookups through several handles may meet here at once; the first index
  // published wins and a late builder drops its own. A stale index stays
  // reachable behind the new one, because a concurrent lookup may still be
  // reading it.
  DLE_RULE_INDEX* index = __atomic_load_n(&slot, __ATOMIC_ACQUIRE);
  while (index == nullptr || !kind.unchanged(dle, index->stamps)) {
    RuleListView view = kind.collect(dle);
    auto* fresh = new DLE_RULE_INDEX{RuleIndex(std::move(view.patterns), qbfsys::filespec::Folder()),
                                     std::move(view.stamps), index};
    DLE_RULE_INDEX* expected = index;
    if (__atomic_compare_exchange_n(&slot, &expected, fresh, false, __ATOMIC_ACQ_REL,
                                    __ATOMIC_ACQUIRE)) {
      index = fresh;
      break;
    }
    fresh->superseded = nullptr;
    delete fresh;
    index = expected;
  }
  return index->index.first_match(key, reason);
}

}  // namespace fsys
