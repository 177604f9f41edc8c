// The host's string classes and wide-character helpers.
//
// cstring and wcstring are std::string and std::wstring with the host's code
// page conversions. Code pages: ACP is ISO-8859-1 (one byte, one character),
// UTF8 is UTF-8. Invalid input never fails a conversion: an invalid UTF-8
// sequence becomes U+FFFD, and a wide character that cannot be encoded (a
// surrogate, above U+10FFFF, or above 0xFF for ACP) becomes U+FFFD or '?'.
// A code-page value other than ACP is taken as UTF-8; a null text converts as
// an empty one.
#pragma once
#include <cstddef>
#include <string>
#include <qbhost/export.h>

class QBHOST_API cstring : public std::string {
 public:
  enum codePage { ACP = 0, UTF8 = 65001 };

  using std::string::string;
  using std::string::assign;
  cstring() = default;
  cstring(std::string const& s) : std::string(s) {}
  cstring(std::string&& s) : std::string(std::move(s)) {}

  // Encodes `count` wide characters in the code page.
  cstring& assign(wchar_t const* text, std::size_t count, codePage page);
};

class QBHOST_API wcstring : public std::wstring {
 public:
  using std::wstring::wstring;
  using std::wstring::assign;
  wcstring() = default;
  wcstring(std::wstring const& s) : std::wstring(s) {}
  wcstring(std::wstring&& s) : std::wstring(std::move(s)) {}

  // Decodes `count` bytes of text in the code page.
  wcstring& assign(char const* text, std::size_t count, cstring::codePage page);
  // This string in UTF-8.
  cstring to_utf8() const;
  static wcstring from_utf8(char const* text, std::size_t count);
};

namespace QB {
// Case-insensitive compares of wide strings (simple case folding, independent
// of the process locale). A null string sorts before every other one.
QBHOST_API int stricmp_internal(wchar_t const* a, wchar_t const* b);
QBHOST_API int strnicmp_internal(wchar_t const* a, wchar_t const* b, std::size_t count);

// Widens `bytes` bytes of narrow text (UTF-8; a byte that is not part of a
// valid sequence stands for itself) into at most `capacity` wide characters.
// Returns the number of characters written; a terminator is added when there
// is room for it.
QBHOST_API std::size_t UniConv(char const* text, std::size_t bytes, wchar_t* out,
                               std::size_t capacity);
}  // namespace QB
