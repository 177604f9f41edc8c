#include "xml_print.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace property_tree_details {

namespace {

constexpr int kCompact = -1;  // indentation level of content printed as it is
constexpr std::size_t kFirstCapacity = 4096;
constexpr char kReplacement[] = "\xEF\xBF\xBD";  // U+FFFD in UTF-8
constexpr unsigned char kNonCharLead = 0xEF;     // first byte of U+FFFE and U+FFFF

// Appends to a text buffer, growing it by doubling.
class writer {
 public:
  explicit writer(text_buffer& out) : out_(out) {}
  void put(char c) {
    room(1);
    out_.data[out_.size++] = c;
  }
  void put(char const* s, std::size_t n) {
    if (n == 0) return;
    room(n);
    std::memcpy(out_.data + out_.size, s, n);
    out_.size += n;
  }
  template <std::size_t N>
  void put(char const (&s)[N]) {
    put(s, N - 1);
  }
  void tabs(int n) {
    if (n <= 0) return;
    room(static_cast<std::size_t>(n));
    std::memset(out_.data + out_.size, '\t', static_cast<std::size_t>(n));
    out_.size += static_cast<std::size_t>(n);
  }

 private:
  void room(std::size_t n) {
    if (out_.capacity - out_.size >= n)
      return;
    out_.grow(std::max({out_.capacity * 2, out_.size + n, kFirstCapacity}));
  }
  text_buffer& out_;
};

enum class context { text, attribute };

// Bytes that are not copied as they are: markup characters, control
// characters and the lead byte of U+FFFE/U+FFFF.
struct escape_table {
  std::array<bool, 256> text{};
  std::array<bool, 256> attribute{};
  escape_table() {
    for (int c = 0; c < 0x20; ++c) text[c] = attribute[c] = true;
    text['\t'] = text['\n'] = false;
    for (unsigned char c : {static_cast<unsigned char>('&'), static_cast<unsigned char>('<'),
                            static_cast<unsigned char>('>'), kNonCharLead})
      text[c] = attribute[c] = true;
    attribute['"'] = true;
  }
};
escape_table const kEscapes;

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

void put_reference(writer& w, char c) {
  switch (c) {
    case '\t': w.put("&#9;"); break;
    case '\n': w.put("&#10;"); break;
    case '\r': w.put("&#13;"); break;
    default: w.put("&#32;"); break;
  }
}

void put_escaped(writer& w, char const* s, std::size_t n, context where) {
  std::array<bool, 256> const& special = where == context::text ? kEscapes.text : kEscapes.attribute;
  std::size_t i = 0;
  // Blank-only text would be dropped by the parser; a reference keeps it.
  if (where == context::text && n != 0) {
    std::size_t blanks = 0;
    while (blanks < n && is_blank(s[blanks])) ++blanks;
    if (blanks == n) {
      put_reference(w, s[0]);
      i = 1;
    }
  }
  while (i < n) {
    std::size_t start = i;
    while (i < n && !special[static_cast<unsigned char>(s[i])]) ++i;
    w.put(s + start, i - start);
    if (i == n) break;
    unsigned char const c = static_cast<unsigned char>(s[i]);
    switch (c) {
      case '&': w.put("&amp;"); break;
      case '<': w.put("&lt;"); break;
      case '>': w.put("&gt;"); break;
      case '"': w.put("&quot;"); break;
      case '\t': case '\n': case '\r': put_reference(w, static_cast<char>(c)); break;
      case kNonCharLead:
        if (n - i >= 3 && static_cast<unsigned char>(s[i + 1]) == 0xBF &&
            (static_cast<unsigned char>(s[i + 2]) == 0xBE || static_cast<unsigned char>(s[i + 2]) == 0xBF)) {
          w.put(kReplacement);
          i += 2;
        } else {
          w.put(static_cast<char>(c));
        }
        break;
      default: w.put(kReplacement); break;  // a control character
    }
    ++i;
  }
}

bool has_text_child(xml_node const* element) {
  for (xml_node const* c = element->first_node(); c != nullptr; c = c->next_sibling())
    if (c->type() == rapidxml::node_data || c->type() == rapidxml::node_cdata) return true;
  return false;
}

void print_node(writer& w, xml_node const* node, int indent);

void print_element(writer& w, xml_node const* node, int indent) {
  w.tabs(indent);
  w.put('<');
  w.put(node->name(), node->name_size());
  for (auto const* a = node->first_attribute(); a != nullptr; a = a->next_attribute()) {
    w.put(' ');
    w.put(a->name(), a->name_size());
    w.put("=\"");
    put_escaped(w, a->value(), a->value_size(), context::attribute);
    w.put('"');
  }
  xml_node const* child = node->first_node();
  if (child == nullptr && node->value_size() == 0) {
    w.put("/>");
    return;
  }
  w.put('>');
  if (child == nullptr) {
    put_escaped(w, node->value(), node->value_size(), context::text);
  } else if (child->next_sibling() == nullptr && child->type() == rapidxml::node_data) {
    put_escaped(w, child->value(), child->value_size(), context::text);
  } else if (indent == kCompact || has_text_child(node)) {
    for (; child != nullptr; child = child->next_sibling()) print_node(w, child, kCompact);
  } else {
    w.put('\n');
    for (; child != nullptr; child = child->next_sibling()) {
      print_node(w, child, indent + 1);
      w.put('\n');
    }
    w.tabs(indent);
  }
  w.put("</");
  w.put(node->name(), node->name_size());
  w.put('>');
}

// Documents are parsed without comment, declaration and processing
// instruction nodes and built with elements and text only, so no other kind
// of node reaches the printer.
void print_node(writer& w, xml_node const* node, int indent) {
  switch (node->type()) {
    case rapidxml::node_element: print_element(w, node, indent); break;
    case rapidxml::node_data:
      w.tabs(indent);
      put_escaped(w, node->value(), node->value_size(), context::text);
      break;
    case rapidxml::node_cdata:
      w.tabs(indent);
      w.put("<![CDATA[");
      w.put(node->value(), node->value_size());
      w.put("]]>");
      break;
    default: break;
  }
}

}  // namespace

void print_xml(xml_node const* node, text_buffer& out) {
  writer w(out);
  if (node->type() != rapidxml::node_document) {
    print_node(w, node, 0);
    w.put('\n');
    return;
  }
  for (xml_node const* child = node->first_node(); child != nullptr; child = child->next_sibling()) {
    print_node(w, child, 0);
    w.put('\n');
  }
  w.put('\n');
}

std::string print_content(xml_node const* element) {
  text_buffer out;
  writer w(out);
  if (element->first_node() == nullptr)
    put_escaped(w, element->value(), element->value_size(), context::text);
  for (xml_node const* child = element->first_node(); child != nullptr; child = child->next_sibling())
    print_node(w, child, kCompact);
  return std::string(out.data != nullptr ? out.data : "", out.size);
}

}  // namespace property_tree_details
