// Text forms of the string, bool, GUID, binary and xml values in XML.
#include <cstring>
#include <rapidxml/rapidxml_print.hpp>
#include <qbhost/base64.h>
#include <qbhost/strings.h>
#include "property_impl.h"
#include "xml_depth.h"

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

// The fragment is the element's content as compact XML text.
void fs_property_tree_value_xml_impl::load_xml(xml_node* element) {
  std::string text;
  for (xml_node* child = element->first_node(); child != nullptr; child = child->next_sibling())
    rapidxml::print(std::back_inserter(text), *child, rapidxml::print_no_indenting);
  if (element->first_node() == nullptr && element->value_size() != 0)
    text.assign(element->value(), element->value_size());
  value_ = wide_of(text.data(), text.size());
}

// The fragment becomes the element's content: parsed inside a wrapper element
// (so that text and several elements are allowed) and its nodes cloned into
// the document. A fragment that is not well-formed XML is refused.
void fs_property_tree_value_xml_impl::serialize(xml_document& doc, xml_node* element) const {
  if (value_.empty()) return;
  cstring utf8;
  utf8.assign(value_.data(), value_.size(), cstring::UTF8);
  static char const open[] = "<r>", close[] = "</r>";
  std::size_t size = 3 + utf8.size() + 4;
  char* buffer = doc.allocate_string(nullptr, size + 1);
  std::memcpy(buffer, open, 3);
  std::memcpy(buffer + 3, utf8.data(), utf8.size());
  std::memcpy(buffer + 3 + utf8.size(), close, 4);
  buffer[size] = '\0';
  std::string problem = check_xml_depth(buffer, size, fs_property_tree_max_depth);
  xml_document fragment;
  if (problem.empty()) {
    try {
      fragment.parse<0>(buffer);
    } catch (rapidxml::parse_error const& e) {
      problem = e.what();
    }
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
