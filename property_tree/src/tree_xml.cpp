// The XML form of a tree: writing (serialize_fields and the printer) and
// reading (load_fields over a parsed document).
#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>
#include <rapidxml/rapidxml_print.hpp>
#include <qbhost/strings.h>
#include "check_prop_name.h"
#include "tree_impl.h"
#include "xml_depth.h"

namespace property_tree_details {

namespace {

bool has_element_children(xml_node* node) {
  for (xml_node* child = node->first_node(); child != nullptr; child = child->next_sibling())
    if (child->type() == rapidxml::node_element) return true;
  return false;
}

// The "type" attribute (empty when absent) and the "count" attribute (1 when
// absent) of a property's first element.
void extract_type_and_count(xml_node* node, std::string_view* type, unsigned long* count) {
  rapidxml::xml_attribute<char>* t = node->first_attribute("type", 4);
  *type = t != nullptr ? std::string_view(t->value(), t->value_size()) : std::string_view();
  rapidxml::xml_attribute<char>* c = node->first_attribute("count", 5);
  *count = c != nullptr ? parse_number<unsigned long>(c->value(), c->value_size()) : 1;
}

fs_property_type settle_kind(xml_node* node, std::string_view type) {
  if (has_element_children(node)) {
    if (type.empty()) type = "rec";
    else if (type != "xml" && type != "rec") type = "xml";
  } else if (type.empty()) {
    type = "string";
  }
  fs_property_type kind;
  if (!kind_from_tag(type.data(), type.size(), &kind))
    throw type_conversion_error("Type conversion error: unknown property type '" +
                                std::string(type) + "'");
  return kind;
}

// Wide text must hold Unicode scalar values only.
void check_wide(wchar_t const* text, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    long c = static_cast<long>(text[i]);
    if (c < 0 || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF))
      throw std::runtime_error("invalid character at offset " + std::to_string(i) +
                               " of the wide XML text");
  }
}

// The printer's output iterator: writes into a buffer grown by doubling
// (never zero-filled), keeping the write position in the iterator (the
// printer passes its iterator along by value and takes it back from every
// call), so that a character costs a compare and a store.
class print_cursor {
 public:
  using iterator_category = std::output_iterator_tag;
  using value_type = void;
  using difference_type = std::ptrdiff_t;
  using pointer = void;
  using reference = void;

  explicit print_cursor(text_buffer& text) : text_(&text), p_(text.data), end_(text.data + text.capacity) {}
  // The characters written so far become the buffer's size.
  void finish() { text_->size = static_cast<std::size_t>(p_ - text_->data); }

  // "*out = c; ++out" writes at the position, then moves on.
  print_cursor& operator*() { return *this; }
  print_cursor& operator=(char c) {
    room();
    *p_ = c;
    return *this;
  }
  print_cursor& operator++() {
    ++p_;
    return *this;
  }
  // "*out++ = c" writes and moves on through the original iterator.
  class post {
   public:
    explicit post(print_cursor* cursor) : cursor_(cursor) {}
    post& operator*() { return *this; }
    post& operator=(char c) {
      cursor_->room();
      *cursor_->p_++ = c;
      return *this;
    }

   private:
    print_cursor* cursor_;
  };
  post operator++(int) { return post(this); }

 private:
  void room() {
    if (p_ != end_) return;
    text_->size = static_cast<std::size_t>(p_ - text_->data);
    text_->grow(std::max<std::size_t>(text_->capacity * 2, 4096));
    p_ = text_->data + text_->size;
    end_ = text_->data + text_->capacity;
  }

  text_buffer* text_;
  char* p_;
  char* end_;
};

}  // namespace

std::vector<char> buffer_of(char const* text) {
  std::size_t size = std::strlen(need_text(text));
  return std::vector<char>(text, text + size + 1);
}

std::vector<char> buffer_of(wchar_t const* text) {
  std::size_t size = std::wcslen(need_text(text));
  check_wide(text, size);
  cstring utf8;
  utf8.assign(text, size, cstring::UTF8);
  return std::vector<char>(utf8.c_str(), utf8.c_str() + utf8.size() + 1);
}

xml_node* root_element(xml_document& doc) {
  xml_node* root = doc.first_node();
  while (root != nullptr && root->type() != rapidxml::node_element) root = root->next_sibling();
  if (root == nullptr) throw std::runtime_error("the XML text has no root element");
  return root;
}

void parse_document(std::vector<char>& buffer, xml_document& doc) {
  std::size_t size = buffer.size() - 1;
  std::string problem = check_utf8(buffer.data(), size);
  if (problem.empty()) problem = check_xml_depth(buffer.data(), size, fs_property_tree_max_xml_depth);
  if (!problem.empty()) throw std::runtime_error(problem);
  doc.parse<0>(buffer.data());
}

std::pair<fs_property_tree_base_impl::items_type, fs_property_tree_base_impl::index_type>
fs_property_tree_base_impl::load_fields(xml_node* node) {
  items_type props = new_items();
  index_type index = new_index();
  for (xml_node* e = node->first_node(); e != nullptr; e = e->next_sibling()) {
    if (e->type() != rapidxml::node_element) continue;
    std::string_view type;
    unsigned long count = 0;
    extract_type_and_count(e, &type, &count);
    fs_property_type kind = settle_kind(e, type);
    check_prop_name(e->name(), e->name_size());
    std::string_view name(e->name(), e->name_size());
    auto slot = index.lower_bound(name);
    if (slot != index.end() && slot->first == name)
      throw duplicate_property_name(std::string("duplicate name used in add ") +
                                    info(kind).dup_word + " property call");
    check_count(props.size() + 1);
    sp property = make_property(kind, this, std::string(name), props.size());
    if (count > 0) {
      // Room reserved for a few values only: a hostile count must not take
      // more memory than the elements present, which are not counted first
      // (a second walk over a large document costs more than regrowing).
      property->reserve_values(std::min<std::size_t>(count, 8));
      property->load_new_xml_value(e);
      // The other values are the next same-named siblings; they are taken
      // out of the document so that they are not read again as properties.
      for (unsigned long i = 1; i < count; ++i) {
        xml_node* sibling = e->next_sibling(e->name(), e->name_size());
        if (sibling == nullptr)
          throw std::runtime_error("property '" + std::string(name) + "' has count " +
                                   std::to_string(count) + " but only " + std::to_string(i) +
                                   " elements");
        property->load_new_xml_value(sibling);
        node->remove_node(sibling);
      }
    }
    index.emplace_hint(slot, property->name_string(), property);
    props.push_back(std::move(property));
  }
  return {std::move(props), std::move(index)};
}

text_buffer fs_property_tree_base_impl::serialize_utf8() const {
  char const* root_name = *name() != '\0' ? name() : "null_tree";
  xml_document doc;
  xml_node* root =
      doc.allocate_node(rapidxml::node_element, root_name, nullptr, std::strlen(root_name), 0);
  doc.append_node(root);
  serialize_fields(doc, root);
  text_buffer text;
  print_cursor out(text);
  out = rapidxml::print(out, doc, 0);
  out.finish();
  return text;
}

exception_interface* fs_property_tree_base_impl::i_serialize_utf8txt(
    text_interface<char>** out) const {
  return guard([&] {
    text_interface<char>*& result = out_param(out);
    result = new text_impl<char>(serialize_utf8());
  });
}

exception_interface* fs_property_tree_base_impl::i_serialize_txt(
    text_interface<wchar_t>** out) const {
  return guard([&] {
    text_interface<wchar_t>*& result = out_param(out);
    text_buffer utf8 = serialize_utf8();
    wcstring wide;
    wide.assign(utf8.data, utf8.size, cstring::UTF8);
    result = new text_impl<wchar_t>(std::move(static_cast<std::wstring&>(wide)));
  });
}

namespace {
template <class Ch>
void load_into(fs_property_tree_base_impl& tree, Ch const* text) {
  std::vector<char> buffer = buffer_of(text);
  xml_document doc;
  parse_document(buffer, doc);
  auto loaded = tree.load_fields(root_element(doc));
  tree.replace_contents(std::move(loaded.first), std::move(loaded.second));
}
}  // namespace

exception_interface* fs_property_tree_base_impl::i_load_utf8txt(char const* text) {
  return guard([&] {
    check_modifiable();
    load_into(*this, text);
  });
}

exception_interface* fs_property_tree_base_impl::i_load_txt(wchar_t const* text) {
  return guard([&] {
    check_modifiable();
    load_into(*this, text);
  });
}

}  // namespace property_tree_details

