// The printer of the tree's XML text.
//
// The layout is the parser library's own printer's (one element a line,
// indented by tabs, a text-only element on its line, two line breaks at the
// end), with the differences that make every printed document load back to
// the same tree and print again to the same text, and keep it well-formed:
// - An element whose children mix text with elements (an xml value such as
//   "a<b/>c") has its content printed as it is, without indentation:
//   indentation would become part of the text and grow on every save.
// - Text made only of blanks starts with a character reference, because the
//   parser drops blank-only text.
// - Carriage returns, and in attribute values also tabs and line breaks, are
//   written as character references, which a parser keeps as they are.
// - Control characters other than these, and U+FFFE and U+FFFF, have no XML
//   form at all; they are written as U+FFFD.
// - Attribute values are always quoted with '"'.
#pragma once
#include <string>
#include "exception_impl.h"
#include "value_impl.h"

namespace property_tree_details {

// Appends the document or element `node`, indented, to `out`.
void print_xml(xml_node const* node, text_buffer& out);

// The content of `element` (its children, else its value) without any
// indentation: the text form of an xml value.
std::string print_content(xml_node const* element);

}  // namespace property_tree_details
