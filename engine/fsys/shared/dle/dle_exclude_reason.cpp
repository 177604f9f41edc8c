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

// The path in component form, also splitting at the DLE's delimiter; empty
// when there is nothing to look up.
std::wstring lookup_key(GENERIC_DLE const* dle, wchar_t const* path, short pathBytes) {
  if (dle == nullptr || path == nullptr) return {};
  std::uint16_t const bytes = static_cast<std::uint16_t>(pathBytes);
  if (bytes < kShortestPath) return {};
  std::wstring key(path, bytes / kWideChar - 1);
  for (wchar_t& c : key)
    if (c == dle->name_delimiter) c = L'\0';
  return key;
}

std::vector<fsys::RuleIndex::Pattern> exclusion_patterns(GENERIC_DLE* dle) {
  std::vector<fsys::RuleIndex::Pattern> patterns;
  for (DLE_SPEC_PATTERN* p = dle->exclude_patterns; p != nullptr; p = p->next) {
    // A negative size cannot be compared; such an entry never matches.
    if (p->size < 0) continue;
    patterns.push_back({p->pattern, static_cast<std::size_t>(p->size) / kWideChar, p->reason});
  }
  return patterns;
}

std::vector<fsys::RuleIndex::Pattern> warning_patterns(GENERIC_DLE* dle) {
  std::vector<fsys::RuleIndex::Pattern> patterns;
  for (auto& [pattern, reason] : dle->agent_warnings->patterns)
    patterns.push_back({pattern.data(), pattern.size(), reason});
  return patterns;
}

}  // namespace

std::uint32_t DLE_GetExcludeReason(GENERIC_DLE* dle, wchar_t const* path, short pathBytes) {
  try {
    std::wstring key = lookup_key(dle, path, pathBytes);
    if (key.empty()) return 0;
    if (dle->exclude_paths != nullptr) {
      auto const found = dle->exclude_paths->find(key);
      if (found != dle->exclude_paths->end()) return found->second;
    }
    if (dle->exclude_patterns == nullptr) return 0;
    std::uint32_t reason = 0;
    fsys::indexed_first_match(dle, dle->exclude_index, exclusion_patterns, key, &reason);
    return reason;
  } catch (std::bad_alloc const&) {
  }
  return 0;
}

std::uint32_t DLE_GetWarningReason(GENERIC_DLE* dle, wchar_t const* path, short pathBytes) {
  if (dle == nullptr || dle->agent_warnings == nullptr) return 0;
  try {
    std::wstring key = lookup_key(dle, path, pathBytes);
    if (key.empty()) return 0;
    DLE_AGENT_WARNINGS& rules = *dle->agent_warnings;
    auto const found = rules.paths.find(key);
    if (found != rules.paths.end()) return found->second;
    if (rules.patterns.empty()) return 0;
    std::uint32_t reason = 0;
    fsys::indexed_first_match(dle, dle->warning_index, warning_patterns, key, &reason);
    return reason;
  } catch (std::bad_alloc const&) {
  }
  return 0;
}
