// QB::UniConv: widening of narrow names. Names on disk are mostly UTF-8 but
// not always; a byte that does not belong to a valid sequence is kept as the
// character of the same value (the Latin-1 reading) so that no name is lost.
#include <qbhost/strings.h>

#include "utf8.h"

namespace QB {

std::size_t UniConv(char const* text, std::size_t bytes, wchar_t* out, std::size_t capacity) {
  if (out == nullptr || capacity == 0) return 0;
  if (text == nullptr) bytes = 0;
  auto const* in = reinterpret_cast<unsigned char const*>(text);
  std::size_t written = 0;
  std::size_t i = 0;
  while (i < bytes && written < capacity) {
    char32_t c = 0;
    int const n = qbhost_detail::decode_utf8(in + i, bytes - i, c);
    if (n > 0) {
      out[written++] = static_cast<wchar_t>(c);
      i += static_cast<std::size_t>(n);
    } else {
      out[written++] = static_cast<wchar_t>(in[i]);
      i += 1;
    }
  }
  if (written < capacity) out[written] = L'\0';
  return written;
}

}  // namespace QB
