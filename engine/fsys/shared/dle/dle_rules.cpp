// DLE_AddSpecObj, DLE_RemoveSpecObjs, DLE_AddAgentWarningObj,
// DLE_RemoveAgentWarningObjs: rules are stored in component form, the form
// in which a handle delivers paths, so a lookup compares them as they are.
// Exclusion patterns are appended to the end of their list so that list
// order is the order in which they were added.
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include <qbfsys/dle_rules.h>

#include "../internal/rule_index.h"

namespace {

constexpr std::size_t kWideChar = sizeof(wchar_t);

// The rule in component form, or an empty string for an unusable rule.
std::wstring component_form(GENERIC_DLE const* dle, wchar_t const* rule) {
  std::wstring text(rule);
  std::size_t start = 0;
  while (start < text.size() && text[start] == dle->name_delimiter) ++start;
  text.erase(0, start);
  for (wchar_t& c : text)
    if (c == dle->name_delimiter) c = L'\0';
  return text;
}

FS_STATUS check_rule(GENERIC_DLE const* dle, wchar_t const* rule, DLE_RULE_KIND kind) {
  if (dle == nullptr || rule == nullptr || rule[0] == L'\0') return FS_ERR_BAD_PARAMETER;
  if (kind != DLE_RULE_PATH && kind != DLE_RULE_PATTERN) return FS_ERR_BAD_PARAMETER;
  if ((std::wcslen(rule) + 1) * kWideChar > DLE_MAX_RULE_BYTES) return FS_ERR_NAME_TOO_LONG;
  return FS_SUCCESS;
}

FS_STATUS append_pattern(GENERIC_DLE* dle, std::wstring const& text, std::uint32_t reason) {
  std::size_t const bytes = (text.size() + 1) * kWideChar;
  auto* entry = static_cast<DLE_SPEC_PATTERN*>(std::calloc(1, sizeof(DLE_SPEC_PATTERN) + bytes));
  if (entry == nullptr) return FS_ERR_NO_MEMORY;
  entry->reason = reason;
  entry->size = static_cast<std::int16_t>(bytes);
  std::memcpy(entry->pattern, text.c_str(), bytes);
  fsys::free_rule_index(dle->exclude_index);
  DLE_SPEC_PATTERN** tail = &dle->exclude_patterns;
  while (*tail != nullptr) tail = &(*tail)->next;
  *tail = entry;
  return FS_SUCCESS;
}

}  // namespace

FS_STATUS DLE_AddSpecObj(GENERIC_DLE* dle, wchar_t const* rule, DLE_RULE_KIND kind,
                         std::uint32_t reason) {
  if (FS_STATUS const status = check_rule(dle, rule, kind); status != FS_SUCCESS) return status;
  try {
    std::wstring const text = component_form(dle, rule);
    if (text.empty()) return FS_ERR_BAD_PARAMETER;
    if (kind == DLE_RULE_PATTERN) return append_pattern(dle, text, reason);
    if (dle->exclude_paths == nullptr) dle->exclude_paths = new DLE_EXCLUDE_PATHS;
    (*dle->exclude_paths)[text] = reason;
    return FS_SUCCESS;
  } catch (std::bad_alloc const&) {
    return FS_ERR_NO_MEMORY;
  }
}

void DLE_RemoveSpecObjs(GENERIC_DLE* dle) {
  if (dle == nullptr) return;
  while (DLE_SPEC_PATTERN* entry = dle->exclude_patterns) {
    dle->exclude_patterns = entry->next;
    std::free(entry);
  }
  delete dle->exclude_paths;
  dle->exclude_paths = nullptr;
  fsys::free_rule_index(dle->exclude_index);
}

FS_STATUS DLE_AddAgentWarningObj(GENERIC_DLE* dle, wchar_t const* rule, DLE_RULE_KIND kind,
                                 std::uint32_t reason) {
  if (FS_STATUS const status = check_rule(dle, rule, kind); status != FS_SUCCESS) return status;
  try {
    std::wstring text = component_form(dle, rule);
    if (text.empty()) return FS_ERR_BAD_PARAMETER;
    if (dle->agent_warnings == nullptr) dle->agent_warnings = new DLE_AGENT_WARNINGS;
    if (kind == DLE_RULE_PATTERN) {
      fsys::free_rule_index(dle->warning_index);
      dle->agent_warnings->patterns.emplace_back(std::move(text), reason);
    } else {
      dle->agent_warnings->paths[text] = reason;
    }
    return FS_SUCCESS;
  } catch (std::bad_alloc const&) {
    return FS_ERR_NO_MEMORY;
  }
}

void DLE_RemoveAgentWarningObjs(GENERIC_DLE* dle) {
  if (dle == nullptr) return;
  delete dle->agent_warnings;
  dle->agent_warnings = nullptr;
  fsys::free_rule_index(dle->warning_index);
}
