// A pass over XML text before it is parsed: the parser recurses once per
// element level, so documents nested deeper than a limit are refused here
// instead of exhausting the stack; and text must be valid UTF-8.
#pragma once
#include <cstddef>
#include <string>

namespace property_tree_details {

// Empty when the element nesting of text[0, size) stays within `limit`,
// otherwise a message. Comments, CDATA, processing instructions, declarations
// and quoted attribute values are skipped; the count errs on the high side.
std::string check_xml_depth(char const* text, std::size_t size, unsigned limit);

// Empty when text[0, size) is valid UTF-8 (no overlong forms, surrogates or
// code points above U+10FFFF), otherwise a message with the byte offset.
std::string check_utf8(char const* text, std::size_t size);

}  // namespace property_tree_details
