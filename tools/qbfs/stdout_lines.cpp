#include "stdout_lines.h"

#include <cwctype>
#include <string>

namespace qbfs {

int StdoutLines::kDropAddresses = 0;

namespace {
// The line without " address " and the pointer text that follows it.
std::wstring drop_address(wchar_t const* line) {
  std::wstring text(line);
  static wchar_t const kTag[] = L" address ";
  std::size_t at = text.find(kTag);
  if (at == std::wstring::npos) return text;
  std::size_t end = at + (sizeof kTag / sizeof kTag[0] - 1);
  while (end < text.size() && !std::iswspace(text[end])) ++end;
  text.erase(at, end - at);
  return text;
}
}  // namespace

void StdoutLines::print(void* filter, int, wchar_t const* line) {
  if (line == nullptr) return;
  print_layer_line(stdout, filter == &kDropAddresses ? drop_address(line).c_str() : line);
}

}  // namespace qbfs
