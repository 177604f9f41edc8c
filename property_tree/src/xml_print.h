// Writing the tree's XML text.
//
// The layout is the parser library's own printer's (one element a line,
// indented by tabs, a text-only element on its line, two line breaks at the
// end), with the differences that make every written document load back to
// the same tree and write again to the same text, and keep it well-formed:
// - An element whose children mix text with elements (an xml value such as
//   "a<b/>c") has its content written as it is, without indentation:
//   indentation would become part of the text and grow on every save.
// - Text made only of blanks starts with a character reference, because the
//   parser drops blank-only text.
// - Carriage returns, and in attribute values also tabs and line breaks, are
//   written as character references, which a parser keeps as they are.
// - Control characters other than these, U+FFFE and U+FFFF, and wide
//   characters that are no Unicode scalar values have no XML form at all;
//   they are written as U+FFFD.
// - Attribute values are always quoted with '"'.
// The tree writes its elements straight into the text; only xml values go
// through a parsed document, which is how they are checked.
#pragma once
#include <cstddef>
#include <string>
#include <string_view>
#include "exception_impl.h"
#include "value_impl.h"

namespace property_tree_details {

// Appends XML to a text buffer, growing it by doubling.
class xml_writer {
 public:
  explicit xml_writer(text_buffer& out) noexcept : out_(out) {}

  void raw(char c) {
    room(1);
    out_.data[out_.size++] = c;
  }
  void raw(char const* s, std::size_t n);
  void raw(std::string_view s) { raw(s.data(), s.size()); }
  void tabs(int n);
  // UTF-8 text as element content, escaped.
  void text(char const* s, std::size_t n);
  // Wide text as element content: UTF-8, escaped.
  void wide_text(wchar_t const* s, std::size_t n);
  // ` name="value"` with the value escaped.
  void attribute(std::string_view name, char const* value, std::size_t n);

  // The rest of an element named `name` whose open tag has been written up
  // to its attributes: "/>" when `n` is 0, else '>', the text as it is (it
  // must need no escaping) and the closing tag.
  void plain_element_rest(std::string_view name, char const* s, std::size_t n);
  // The same for wide text, escaped.
  void wide_element_rest(std::string_view name, std::wstring const& text);
  // The same with the children of the parsed element `content` as the
  // content, laid out by the rules above for an element at level `indent`.
  void element_rest(std::string_view name, xml_node const* content, int indent);
  // A parsed node at level `indent` (kCompact: without indentation).
  void node(xml_node const* n, int indent);
  // "</name>".
  void close(std::string_view name);

  static constexpr int kCompact = -1;

 private:
  void room(std::size_t n) {
    if (out_.capacity - out_.size < n) grow(n);
  }
  void grow(std::size_t n);
  text_buffer& out_;
};

// The content of the parsed `element` (its children, else its value) without
// indentation: the text form of an xml value.
std::string print_content(xml_node const* element);

}  // namespace property_tree_details
