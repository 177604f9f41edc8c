// Text forms of the string, bool, GUID, binary and xml values in XML.
#include <cstring>
#include <vector>
#include <qbhost/base64.h>
#include <qbhost/strings.h>
#include "property_impl.h"
#include "tree_impl.h"
#include "xml_print.h"

namespace property_tree_details {

namespace {
// UTF-8 element text to a wide string; a NUL character (from "&#0;") cannot
// live in the C strings the interface hands out and is refused.
std::wstring wide_of(char const* text, std::size_t size) {
  if (std::memchr(text, 0, size) != nullptr)
    throw std::runtime_error("text value contains a NUL character");
  wcstring wide;
  wide.assign(text, size, cstring::UTF8);
  return std::move(static_cast<std::wstring&>(wide));
}

}  // namespace

void write_plain_element_rest(xml_writer& w, std::string_view name, char const* s, std::size_t n) {
  w.plain_element_rest(name, s, n);
}

void fs_property_tree_value_str_impl::load_xml(xml_node* element) {
  std::string storage;
  std::string_view text = element_text(element, storage);
  value_ = wide_of(text.data(), text.size());
}

void fs_property_tree_value_str_impl::write_xml(xml_writer& w, std::string_view name, int) const {
  w.wide_element_rest(name, value_);
}

void fs_property_tree_value_bool_impl::load_xml(xml_node* element) {
  std::string storage;
  std::string_view text = element_text(element, storage);
  value_ = parse_number<bool>(text.data(), text.size());
}

void fs_property_tree_value_bool_impl::write_xml(xml_writer& w, std::string_view name, int) const {
  w.plain_element_rest(name, value_ ? "1" : "0", 1);
}

void fs_property_tree_value_guid_impl::load_xml(xml_node* element) {
  std::string storage;
  std::string_view text = element_text(element, storage);
  if (!parse_guid(text.data(), text.size(), &value_))
    throw boost::bad_lexical_cast(typeid(std::string), typeid(_SSGUID));
}

void fs_property_tree_value_guid_impl::write_xml(xml_writer& w, std::string_view name, int) const {
  char buf[guid_text_size];
  format_guid(value_, buf);
  w.plain_element_rest(name, buf, guid_text_size);
}

void fs_property_tree_value_bin_impl::assign(source const& s) {
  std::vector<unsigned char> bytes;
  to_bin(s, bytes);
  value_.swap(bytes);
}

void fs_property_tree_value_bin_impl::load_xml(xml_node* element) {
  std::string storage;
  std::string_view text = element_text(element, storage);
  // Decoded straight into this (new) value: a failure abandons the value.
  if (!base64_decode(text.data(), text.size(), value_))
    throw std::runtime_error("binary value of property '" + owner()->name_string() +
                             "' is not valid base64 text");
}

void fs_property_tree_value_bin_impl::write_xml(xml_writer& w, std::string_view name, int) const {
  if (value_.empty()) {
    w.plain_element_rest(name, nullptr, 0);
    return;
  }
  std::string text = base64_encode(value_.data(), value_.size());
  w.plain_element_rest(name, text.data(), text.size());
}

// The fragment is the element's content as printed, without indentation.
void fs_property_tree_value_xml_impl::load_xml(xml_node* element) {
  std::string text = print_content(element);
  value_ = wide_of(text.data(), text.size());
}

// The fragment becomes the element's content: parsed inside a wrapper element
// (so that text and several elements are allowed) with the checks of a
// document load, and written from the parsed nodes. A fragment that is not
// well-formed XML is refused, and so is one nested so deep that the document
// would exceed the nesting a load accepts: the element holding it sits at
// level depth + 2 of the document (root element, then one level per tree),
// and the wrapper counts as one level.
void fs_property_tree_value_xml_impl::write_xml(xml_writer& w, std::string_view name,
                                                int indent) const {
  if (value_.empty()) {
    w.plain_element_rest(name, nullptr, 0);
    return;
  }
  cstring utf8;
  utf8.assign(value_.data(), value_.size(), cstring::UTF8);
  static char const open[] = "<r>", close[] = "</r>";
  std::size_t const open_size = sizeof open - 1, close_size = sizeof close - 1;
  std::vector<char> buffer(open_size + utf8.size() + close_size + 1);  // NUL-terminated
  std::memcpy(buffer.data(), open, open_size);
  std::memcpy(buffer.data() + open_size, utf8.data(), utf8.size());
  std::memcpy(buffer.data() + open_size + utf8.size(), close, close_size);
  buffer.back() = '\0';
  unsigned const element_level = owner()->tree()->depth() + 2;
  unsigned const wrapper_level = 1;
  unsigned const limit = fs_property_tree_max_xml_depth - element_level + wrapper_level;
  std::string problem;
  xml_document fragment;
  try {
    parse_document(buffer, limit, fragment);
  } catch (std::exception const& e) {
    problem = e.what();
  }
  xml_node* wrapper = fragment.first_node();
  if (problem.empty() && (wrapper == nullptr || wrapper->next_sibling() != nullptr))
    problem = "more than the fragment was read";
  if (!problem.empty())
    throw std::runtime_error("xml value of property '" + owner()->name_string() +
                             "' is not a well-formed XML fragment: " + problem);
  w.element_rest(name, wrapper, indent);
}

}  // namespace property_tree_details
