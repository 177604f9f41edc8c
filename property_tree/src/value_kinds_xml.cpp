// Text forms of the string, bool, GUID, binary and xml values in XML.
#include <cstring>
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

void set_text(xml_document& doc, xml_node* element, std::wstring const& text) {
  if (text.empty()) return;
  cstring utf8;
  utf8.assign(text.data(), text.size(), cstring::UTF8);
  element->value(doc.allocate_string(utf8.data(), utf8.size()), utf8.size());
}
}  // namespace

void fs_property_tree_value_str_impl::load_xml(xml_node* element) {
  std::string storage;
  std::string_view text = element_text(element, storage);
  value_ = wide_of(text.data(), text.size());
}

void fs_property_tree_value_str_impl::serialize(xml_document& doc, xml_node* element) const {
  set_text(doc, element, value_);
}

void fs_property_tree_value_bool_impl::load_xml(xml_node* element) {
  std::string storage;
  std::string_view text = element_text(element, storage);
  value_ = parse_number<bool>(text.data(), text.size());
}

void fs_property_tree_value_bool_impl::serialize(xml_document&, xml_node* element) const {
  element->value(value_ ? "1" : "0", 1);
}

void fs_property_tree_value_guid_impl::load_xml(xml_node* element) {
  std::string storage;
  std::string_view text = element_text(element, storage);
  if (!parse_guid(text.data(), text.size(), &value_))
    throw boost::bad_lexical_cast(typeid(std::string), typeid(_SSGUID));
}

void fs_property_tree_value_guid_impl::serialize(xml_document& doc, xml_node* element) const {
  char buf[guid_text_size];
  format_guid(value_, buf);
  element->value(doc.allocate_string(buf, guid_text_size), guid_text_size);
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

void fs_property_tree_value_bin_impl::serialize(xml_document& doc, xml_node* element) const {
  if (value_.empty()) return;
  std::string text = base64_encode(value_.data(), value_.size());
  element->value(doc.allocate_string(text.data(), text.size()), text.size());
}

// The fragment is the element's content as printed, without indentation.
void fs_property_tree_value_xml_impl::load_xml(xml_node* element) {
  std::string text = print_content(element);
  value_ = wide_of(text.data(), text.size());
}

// The fragment becomes the element's content: parsed inside a wrapper element
// (so that text and several elements are allowed) with the checks of a
// document load, and its nodes cloned into the document. A fragment that is
// not well-formed XML is refused, and so is one nested so deep that the
// document would exceed the nesting a load accepts: the element holding it
// sits at level depth + 2 below the document (root element, then one level
// per tree), and the wrapper counts as one level.
void fs_property_tree_value_xml_impl::serialize(xml_document& doc, xml_node* element) const {
  if (value_.empty()) return;
  cstring utf8;
  utf8.assign(value_.data(), value_.size(), cstring::UTF8);
  static char const open[] = "<r>", close[] = "</r>";
  std::size_t const open_size = sizeof open - 1, close_size = sizeof close - 1;
  std::size_t size = open_size + utf8.size() + close_size;
  char* buffer = doc.allocate_string(nullptr, size + 1);
  std::memcpy(buffer, open, open_size);
  std::memcpy(buffer + open_size, utf8.data(), utf8.size());
  std::memcpy(buffer + open_size + utf8.size(), close, close_size);
  buffer[size] = '\0';
  unsigned const element_level = owner()->tree()->depth() + 2;
  unsigned const wrapper_level = 1;
  unsigned const limit = fs_property_tree_max_xml_depth - element_level + wrapper_level;
  std::string problem;
  xml_document fragment;
  try {
    parse_document(buffer, size, limit, fragment);
  } catch (std::exception const& e) {
    problem = e.what();
  }
  xml_node* wrapper = fragment.first_node();
  if (problem.empty() && (wrapper == nullptr || wrapper->next_sibling() != nullptr))
    problem = "more than the fragment was read";
  if (!problem.empty())
    throw std::runtime_error("xml value of property '" + owner()->name_string() +
                             "' is not a well-formed XML fragment: " + problem);
  for (xml_node* child = wrapper->first_node(); child != nullptr; child = child->next_sibling())
    element->append_node(doc.clone_node(child));
}

}  // namespace property_tree_details
