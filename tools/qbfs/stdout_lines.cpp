#include "stdout_lines.h"

#include <qbhost/strings.h>

namespace qbfs {

void StdoutLines::print(void*, int, wchar_t const* line) {
  std::string text = wcstring(line).to_utf8();
  std::fputs(text.c_str(), stdout);
  if (text.empty() || text.back() != '\n') std::fputc('\n', stdout);
}

}  // namespace qbfs
