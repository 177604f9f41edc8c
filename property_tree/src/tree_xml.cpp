// The XML form of a tree: writing (write_fields through the writer) and
// reading (load_fields over a parsed document).
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>
#include <qbhost/strings.h>
#include "check_prop_name.h"
#include "name_table.h"
#include "tree_impl.h"
#include "xml_check.h"
#include "xml_print.h"

namespace property_tree_details {

namespace {

// `node` when it is an element, else its first following sibling that is.
xml_node* next_element(xml_node* node) {
  while (node != nullptr && node->type() != rapidxml::node_element) node = node->next_sibling();
  return node;
}

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

// A property's place in name order: its name's first eight bytes as a
// big-endian number (zero-padded; names hold no NUL) decide most
// comparisons without reading the name itself, whose bytes lie scattered
// over the document.
struct order_entry {
  std::uint64_t key;
  std::string_view name;
  std::size_t index;
};

std::uint64_t order_key(std::string_view name) {
  unsigned char bytes[8] = {};
  std::memcpy(bytes, name.data(), std::min<std::size_t>(name.size(), sizeof bytes));
  std::uint64_t key = 0;
  for (unsigned char b : bytes) key = key << 8 | b;
  return key;
}

// name_order on the names: equal keys mean both names have the same first
// eight bytes (both shorter would make them equal, and names are unique).
bool order_entry_less(order_entry const& a, order_entry const& b) {
  if (a.key != b.key) return a.key < b.key;
  return name_order()(a.name, b.name);
}

// Elements with more attributes than this have their names sorted to find
// a repeat; fewer are compared pair by pair, which costs less than sorting.
constexpr std::size_t few_attributes = 16;

std::string_view attribute_name(rapidxml::xml_attribute<char> const* a) {
  return std::string_view(a->name(), a->name_size());
}

// Refuses an element that names one attribute twice. The parser takes such
// an element and keeps both attributes, but a document with one is not
// well-formed XML, and a later reader could take either value, so it is
// refused with the parser's kind of error, as a mismatched closing tag is.
void check_unique_attributes(xml_node const* element) {
  rapidxml::xml_attribute<char> const* first = element->first_attribute();
  if (first == nullptr || first->next_attribute() == nullptr) return;
  std::size_t count = 0;
  auto const* rest = first;  // the attributes not yet counted
  for (; rest != nullptr && count <= few_attributes; rest = rest->next_attribute()) ++count;
  if (rest == nullptr) {
    for (auto const* later = first->next_attribute(); later != nullptr;
         later = later->next_attribute())
      for (auto const* earlier = first; earlier != later; earlier = earlier->next_attribute())
        if (attribute_name(later) == attribute_name(earlier))
          throw rapidxml::parse_error("duplicate attribute name", later->name());
    return;
  }
  for (; rest != nullptr; rest = rest->next_attribute()) ++count;
  std::vector<rapidxml::xml_attribute<char> const*> sorted;
  sorted.reserve(count);
  for (auto const* a = first; a != nullptr; a = a->next_attribute()) sorted.push_back(a);
  std::sort(sorted.begin(), sorted.end(), [](auto const* a, auto const* b) {
    return attribute_name(a) < attribute_name(b);
  });
  auto repeat = std::adjacent_find(sorted.begin(), sorted.end(), [](auto const* a, auto const* b) {
    return attribute_name(a) == attribute_name(b);
  });
  if (repeat != sorted.end())
    throw rapidxml::parse_error("duplicate attribute name", (*(repeat + 1))->name());
}

// Every element of the parsed document `doc`, in document order.
void check_all_attributes(xml_node const* doc) {
  xml_node const* n = doc->first_node();
  while (n != nullptr) {
    if (n->type() == rapidxml::node_element) check_unique_attributes(n);
    if (n->first_node() != nullptr) {
      n = n->first_node();
      continue;
    }
    while (n != doc && n->next_sibling() == nullptr) n = n->parent();
    n = n != doc ? n->next_sibling() : nullptr;
  }
}

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

void parse_document(std::vector<char>& buffer, unsigned depth_limit, xml_document& doc) {
  char* text = buffer.data();
  std::size_t const size = buffer.size() - 1;
  std::string problem = check_characters(text, size);
  if (problem.empty()) problem = check_markup(text, size, depth_limit);
  if (!problem.empty()) throw std::runtime_error(problem);
  doc.parse<rapidxml::parse_validate_closing_tags>(text);
  check_all_attributes(&doc);
  // Only the first element is read; a second one makes the text no XML
  // document at all.
  xml_node* root = doc.first_node();
  while (root != nullptr && root->type() != rapidxml::node_element) root = root->next_sibling();
  for (xml_node* n = root != nullptr ? root->next_sibling() : nullptr; n != nullptr;
       n = n->next_sibling())
    if (n->type() == rapidxml::node_element)
      throw std::runtime_error("the XML text has a second root element '" +
                               std::string(n->name(), n->name_size()) + "'");
}

// One walk over the children: an element whose name is a property still
// owed values (its first element's "count" not yet reached) is that
// property's next value, any other element starts a property. This takes the
// same elements as searching the following siblings by name for each
// property, without walking the siblings again for every value.
// The elements are counted first: the count bounds the properties, so the
// name table, the property vector and the bookkeeping are each allocated
// once. It also bounds the values: each property reserves room for its
// "count" from a budget of one value per element, so a document of lying
// counts cannot reserve more than its elements would fill. Counting reads
// two fields of each sibling, far less than a table that grows and rehashes.
// During the walk names are looked up in that table: a lookup in the ordered
// name index chases a pointer per level, and in a tree of many properties
// each of those misses the cache. The table misses too once it outgrows the
// cache, so the walk hashes the next element's name one step ahead and
// prefetches its slot. The index is built once at the end, in name order,
// each node put at the end of the map.
std::pair<fs_property_tree_base_impl::items_type, fs_property_tree_base_impl::index_type>
fs_property_tree_base_impl::load_fields(xml_node* node) {
  struct owed {
    unsigned long count;  // the values promised
    unsigned long taken;  // the values read so far
  };
  std::size_t elements = 0;
  for (xml_node* e = node->first_node(); e != nullptr; e = e->next_sibling())
    if (e->type() == rapidxml::node_element) ++elements;
  // More properties than the limit are refused below before any is added,
  // so the table never needs room for more.
  std::size_t const most_properties = std::min(elements, max_container_elements + 1);
  items_type props = new_items();
  props.reserve(most_properties);
  std::vector<owed> owing;  // by property, in document order
  owing.reserve(most_properties);
  std::vector<order_entry> order;  // by property, sorted at the end
  order.reserve(most_properties);
  name_table position(most_properties);  // name to property
  std::size_t still_owed = 0;
  std::size_t value_budget = elements;
  xml_node* next = next_element(node->first_node());
  std::uint64_t next_hash = next != nullptr ? hash_name(next->name(), next->name_size()) : 0;
  for (xml_node* e = next; e != nullptr; e = next) {
    std::uint64_t const hash = next_hash;
    next = next_element(e->next_sibling());
    if (next != nullptr) {
      next_hash = hash_name(next->name(), next->name_size());
      position.prefetch(next_hash);
    }
    std::string_view name(e->name(), e->name_size());
    auto const [at, added] = position.find_or_add(name.data(), name.size(), hash,
                                                  static_cast<std::uint32_t>(props.size()));
    if (!added) {
      owed& o = owing[at];
      if (o.taken < o.count) {
        props[at]->load_new_xml_value(e);
        if (++o.taken == o.count) --still_owed;
        continue;
      }
    }
    std::string_view type;
    unsigned long count = 0;
    extract_type_and_count(e, &type, &count);
    fs_property_type kind = settle_kind(e, type);
    check_prop_name(e->name(), e->name_size());
    if (!added)
      throw duplicate_property_name(std::string("duplicate name used in add ") +
                                    info(kind).dup_word + " property call");
    check_count(props.size() + 1);
    sp property = make_property(kind, this, std::string(name), props.size());
    owing.push_back(owed{count, 0});
    order.push_back(order_entry{order_key(name), name, props.size()});
    if (count > 0) {
      std::size_t const room = std::min<std::size_t>(count, value_budget);
      property->reserve_values(room);
      value_budget -= room;
      property->load_new_xml_value(e);
      owing.back().taken = 1;
      if (count > 1) ++still_owed;
    }
    props.push_back(std::move(property));
  }
  if (still_owed != 0) {
    for (std::size_t i = 0; i < owing.size(); ++i) {
      if (owing[i].taken < owing[i].count)
        throw std::runtime_error("property '" + props[i]->name_string() + "' has count " +
                                 std::to_string(owing[i].count) + " but only " +
                                 std::to_string(owing[i].taken) + " elements");
    }
  }
  std::sort(order.begin(), order.end(), order_entry_less);
  index_type index = new_index();
  for (order_entry const& entry : order)
    index.emplace_hint(index.end(), std::piecewise_construct, std::forward_as_tuple(entry.name),
                       std::forward_as_tuple(props[entry.index]));
  return {std::move(props), std::move(index)};
}

text_buffer fs_property_tree_base_impl::serialize_utf8() const {
  std::string_view root_name = *name() != '\0' ? name() : "null_tree";
  text_buffer text;
  xml_writer w(text);
  w.raw('<');
  w.raw(root_name);
  if (items_.empty()) {
    w.raw("/>", 2);
  } else {
    w.raw(">\n", 2);
    write_fields(w, 1);
    w.close(root_name);
  }
  w.raw("\n\n", 2);
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
  parse_document(buffer, fs_property_tree_max_xml_depth, doc);
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

