// cstring / wcstring code-page conversions. A code page other than ACP is
// taken as UTF-8; a null text converts as an empty one.
#include <qbhost/strings.h>

#include <cstdint>

#include "utf8.h"

cstring& cstring::assign(wchar_t const* text, std::size_t count, codePage page) {
  if (text == nullptr) count = 0;
  if (page == ACP) {
    std::string out;
    out.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
      auto const c = static_cast<std::uint32_t>(text[i]);
      out.push_back(c <= 0xFF ? static_cast<char>(c) : '?');
    }
    std::string::operator=(std::move(out));
  } else {
    std::string::operator=(qbhost_detail::encode_utf8(text, count));
  }
  return *this;
}

// One wide character at most per byte: the result is written in place and
// cut to length, with plain ASCII copied without decoding.
wcstring& wcstring::assign(char const* text, std::size_t count, cstring::codePage page) {
  if (text == nullptr) count = 0;
  auto const* bytes = reinterpret_cast<unsigned char const*>(text);
  std::wstring out(count, L'\0');
  wchar_t* o = count != 0 ? &out[0] : nullptr;
  if (page == cstring::ACP) {
    for (std::size_t i = 0; i < count; ++i) *o++ = static_cast<wchar_t>(bytes[i]);
  } else {
    std::size_t i = 0;
    while (i < count) {
      if (bytes[i] < 0x80) {
        *o++ = static_cast<wchar_t>(bytes[i++]);
        continue;
      }
      char32_t c = 0;
      int const n = qbhost_detail::decode_utf8(bytes + i, count - i, c);
      if (n > 0) {
        *o++ = static_cast<wchar_t>(c);
        i += static_cast<std::size_t>(n);
      } else {
        *o++ = static_cast<wchar_t>(qbhost_detail::kReplacement);
        i += static_cast<std::size_t>(-n);
      }
    }
  }
  out.resize(count != 0 ? static_cast<std::size_t>(o - &out[0]) : 0);
  std::wstring::operator=(std::move(out));
  return *this;
}

cstring wcstring::to_utf8() const {
  return cstring(qbhost_detail::encode_utf8(data(), size()));
}

wcstring wcstring::from_utf8(char const* text, std::size_t count) {
  wcstring out;
  out.assign(text, count, cstring::UTF8);
  return out;
}
