// A pass over XML text before it is parsed, refusing what the parser would
// accept although it is not well-formed XML: the parser recurses once per
// element level, so documents nested deeper than a limit are refused here
// instead of exhausting the stack; it decodes a numeric character reference
// to any code point (surrogates, NUL and control characters included) and
// keeps an '&' that starts no reference as text; and it takes any byte as a
// character.
#pragma once
#include <cstddef>
#include <string>

namespace property_tree_details {

// Empty when the markup of text[0, size) passes, otherwise a message:
// - element nesting deeper than `limit` levels;
// - a numeric character reference that names no XML character (message
//   "invalid numeric character entity", the parser's own for its refusals);
// - an '&' in text or an attribute value that starts neither a numeric
//   reference nor one of the five predefined entities.
// Comments, CDATA, processing instructions, declarations and quoted
// attribute values are skipped for the nesting count; syntax errors are left
// to the parser.
std::string check_markup(char const* text, std::size_t size, unsigned limit);

// Empty when text[0, size) is valid UTF-8 (no overlong forms, surrogates or
// code points above U+10FFFF) of XML characters (no control character other
// than tab, line feed and carriage return, no U+FFFE or U+FFFF), otherwise a
// message with the byte offset.
std::string check_characters(char const* text, std::size_t size);

// True for the code points XML allows as characters.
constexpr bool is_xml_char(unsigned long c) {
  return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) ||
         (c >= 0xE000 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0x10FFFF);
}

}  // namespace property_tree_details
