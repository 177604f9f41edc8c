// Feeds rule lists and paths drawn from the input to DLE_GetExcludeReason
// and aborts when its answer differs from the first pattern in list order
// that FS_CompareFileSpec accepts. The alphabet is small and holds every
// character the matcher treats specially, so that wildcards, dots,
// separators and case meet often.
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <qbfsys/dle_rules.h>
#include <qbfsys/fs_filespec.h>

#include "fuzz_input.h"

namespace {

constexpr wchar_t kAlphabet[] = L"aAbB.c/*?~xZ";
constexpr std::size_t kLetters = sizeof kAlphabet / sizeof kAlphabet[0] - 1;
constexpr std::uint32_t kMostRules = 40;
constexpr std::uint32_t kLongestText = 16;

std::wstring text_from(qbfuzz::Input& in) {
  std::wstring text(1 + in.take(1) % kLongestText, L'a');
  for (wchar_t& c : text) c = kAlphabet[in.take(1) % kLetters];
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  qbfuzz::Input in{data, size};
  GENERIC_DLE dle{};
  dle.name_delimiter = L'/';
  std::vector<std::pair<std::wstring, std::uint32_t>> rules;  // component form
  for (std::uint32_t i = 0, n = in.take(1) % kMostRules; i < n; ++i) {
    std::wstring rule = text_from(in);
    auto const reason = static_cast<std::uint32_t>(rules.size() + 1);
    if (DLE_AddSpecObj(&dle, rule.c_str(), DLE_RULE_PATTERN, reason) != FS_SUCCESS) continue;
    rule.erase(0, rule.find_first_not_of(L'/'));
    for (wchar_t& c : rule) c = c == L'/' ? L'\0' : c;
    rules.emplace_back(rule + L'\0', reason);
  }
  while (!in.done()) {
    std::wstring path = text_from(in);
    for (wchar_t& c : path) c = c == L'/' ? L'\0' : c;
    path.push_back(L'\0');
    std::uint32_t expected = 0;
    for (auto& [pattern, reason] : rules) {
      if (FS_CompareFileSpec(path.data(), static_cast<short>(path.size()), pattern.data(),
                             static_cast<short>(pattern.size()), 0, 0, 0) == FS_SPEC_MATCH) {
        expected = reason;
        break;
      }
    }
    if (DLE_GetExcludeReason(&dle, path.data(), static_cast<short>(path.size() * sizeof(wchar_t))) !=
        expected)
      std::abort();
  }
  DLE_RemoveSpecObjs(&dle);
  return 0;
}
