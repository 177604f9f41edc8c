// DLE_GetExcludeReason and DLE_GetWarningReason: exact path first, then the
// patterns in list order.
#include <new>
#include <string>

#include <qbfsys/dle_rules.h>
#include <qbfsys/fs_filespec.h>

namespace {

constexpr std::uint16_t kShortestPath = 5;  // bytes: anything shorter holds no name
constexpr std::size_t kWideChar = sizeof(wchar_t);
constexpr int kCaseInsensitive = 0;
constexpr int kWholeName = 0;
constexpr int kClassic = 0;

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

bool matches(std::wstring& key, wchar_t* pattern, std::size_t patternChars) {
  return FS_CompareFileSpec(key.data(), static_cast<short>(key.size() + 1), pattern,
                            static_cast<short>(patternChars), kCaseInsensitive, kWholeName,
                            kClassic) == FS_SPEC_MATCH;
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
    for (DLE_SPEC_PATTERN* p = dle->exclude_patterns; p != nullptr; p = p->next) {
      if (p->size < 0) continue;
      if (matches(key, p->pattern, static_cast<std::size_t>(p->size) / kWideChar)) return p->reason;
    }
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
    for (auto& [pattern, reason] : rules.patterns) {
      if (matches(key, pattern.data(), pattern.size())) return reason;
    }
  } catch (std::bad_alloc const&) {
  }
  return 0;
}
