// DLE_GetExcludeReason and DLE_GetWarningReason: exact path first, then the
// first matching pattern in list order. The patterns are reached through an
// index (internal/rule_index.h) built on the first lookup, so that a list of
// hundreds of patterns costs about what a short one does.
#include <new>
#include <string>

#include <qbfsys/dle_rules.h>

#include "../internal/rule_index.h"

namespace {

constexpr std::uint16_t kShortestPath = 5;  // bytes: anything shorter holds no name
constexpr std::size_t kWideChar = sizeof(wchar_t);

// The path in component form, also splitting at the DLE's delimiter; false
// when there is nothing to look up. A path of 5 to 7 bytes gives the empty
// key, which is still looked up: a rule for "" answers it.
bool lookup_key(GENERIC_DLE const* dle, wchar_t const* path, short pathBytes, std::wstring* key) {
  if (dle == nullptr || path == nullptr) return false;
  std::uint16_t const bytes = static_cast<std::uint16_t>(pathBytes);
  if (bytes < kShortestPath) return false;
  key->assign(path, bytes / kWideChar - 1);
  for (wchar_t& c : *key)
    if (c == dle->name_delimiter) c = L'\0';
  return true;
}

// The exclusion list is a linked list that modules can reach. Its stamps
// record each entry's address, reason and size; checking them reads the
// entries in list order, each proven to be in the list (its predecessor
// links to it) before it is read, and the addresses come from the stamps, so
// the reads do not wait on one another. A pattern's characters edited in
// place are not noticed: an entry is replaced, not rewritten, to change its
// text.
fsys::RuleListView exclusion_patterns(GENERIC_DLE* dle) {
  fsys::RuleListView view;
  for (DLE_SPEC_PATTERN* p = dle->exclude_patterns; p != nullptr; p = p->next) {
    view.stamps.push_back({p, p->reason, static_cast<std::uint32_t>(static_cast<std::uint16_t>(p->size))});
    // A negative size cannot be compared; such an entry never matches.
    if (p->size < 0) continue;
    view.patterns.push_back({p->pattern, static_cast<std::size_t>(p->size) / kWideChar, p->reason});
  }
  return view;
}

bool exclusion_unchanged(GENERIC_DLE const* dle, std::vector<fsys::RuleStamp> const& stamps) noexcept {
  if (stamps.empty()) return dle->exclude_patterns == nullptr;
  if (dle->exclude_patterns != stamps.front().entry) return false;
  std::size_t const last = stamps.size() - 1;
  for (std::size_t i = 0; i < last; ++i) {
    auto const* entry = static_cast<DLE_SPEC_PATTERN const*>(stamps[i].entry);
    if (entry->next != stamps[i + 1].entry || entry->reason != stamps[i].reason ||
        static_cast<std::uint16_t>(entry->size) != stamps[i].size)
      return false;
  }
  auto const* tail = static_cast<DLE_SPEC_PATTERN const*>(stamps[last].entry);
  return tail->next == nullptr && tail->reason == stamps[last].reason &&
         static_cast<std::uint16_t>(tail->size) == stamps[last].size;
}

// Warning patterns sit in a vector of strings: each stamp holds the
// element's address, its reason and its length; the text's address is
// checked against the element's own.
fsys::RuleListView warning_patterns(GENERIC_DLE* dle) {
  fsys::RuleListView view;
  for (auto& rule : dle->agent_warnings->patterns) {
    view.stamps.push_back({rule.first.data(), rule.second, static_cast<std::uint32_t>(rule.first.size())});
    view.patterns.push_back({rule.first.data(), rule.first.size(), rule.second});
  }
  return view;
}

bool warning_unchanged(GENERIC_DLE const* dle, std::vector<fsys::RuleStamp> const& stamps) noexcept {
  auto const& rules = dle->agent_warnings->patterns;
  if (rules.size() != stamps.size()) return false;
  for (std::size_t i = 0; i < rules.size(); ++i) {
    fsys::RuleStamp const& s = stamps[i];
    if (rules[i].first.data() != s.entry || rules[i].second != s.reason || rules[i].first.size() != s.size)
      return false;
  }
  return true;
}

constexpr fsys::RuleListKind kExclusionList = {exclusion_patterns, exclusion_unchanged};
constexpr fsys::RuleListKind kWarningList = {warning_patterns, warning_unchanged};

}  // namespace

std::uint32_t DLE_GetExcludeReason(GENERIC_DLE* dle, wchar_t const* path, short pathBytes) {
  try {
    std::wstring key;
    if (!lookup_key(dle, path, pathBytes, &key)) return 0;
    if (dle->exclude_paths != nullptr) {
      auto const found = dle->exclude_paths->find(key);
      if (found != dle->exclude_paths->end()) return found->second;
    }
    if (dle->exclude_patterns == nullptr) return 0;
    std::uint32_t reason = 0;
    fsys::indexed_first_match(dle, dle->exclude_index, kExclusionList, key, &reason);
    return reason;
  } catch (std::bad_alloc const&) {
  }
  return 0;
}

std::uint32_t DLE_GetWarningReason(GENERIC_DLE* dle, wchar_t const* path, short pathBytes) {
  if (dle == nullptr || dle->agent_warnings == nullptr) return 0;
  try {
    std::wstring key;
    if (!lookup_key(dle, path, pathBytes, &key)) return 0;
    DLE_AGENT_WARNINGS& rules = *dle->agent_warnings;
    auto const found = rules.paths.find(key);
    if (found != rules.paths.end()) return found->second;
    if (rules.patterns.empty()) return 0;
    std::uint32_t reason = 0;
    fsys::indexed_first_match(dle, dle->warning_index, kWarningList, key, &reason);
    return reason;
  } catch (std::bad_alloc const&) {
  }
  return 0;
}
