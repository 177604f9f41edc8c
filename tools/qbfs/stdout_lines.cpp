#include "stdout_lines.h"

#include <cwctype>
#include <string>

#include "archive/archive_terminal_text.h"

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
  std::wstring const text = filter == &kDropAddresses ? drop_address(line) : std::wstring(line);
  // Each line of the text is printed escaped for the terminal (names of
  // mount points and objects are among it); the line breaks stay.
  std::wstring_view rest = text;
  do {
    std::size_t const end = rest.find(L'\n');
    std::fputs(archive::terminal_text(rest.substr(0, end)).c_str(), stdout);
    std::fputc('\n', stdout);
    rest.remove_prefix(end == std::wstring_view::npos ? rest.size() : end + 1);
  } while (!rest.empty());
}

}  // namespace qbfs
