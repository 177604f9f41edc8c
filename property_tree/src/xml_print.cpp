#include "xml_print.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <type_traits>

#include "xml_check.h"

namespace property_tree_details {

namespace {

constexpr std::size_t kFirstCapacity = 4096;
constexpr char kReplacement[] = "\xEF\xBF\xBD";   // U+FFFD in UTF-8
constexpr unsigned long kReplacementChar = 0xFFFD;
constexpr unsigned char kNonCharLead = 0xEF;      // first byte of U+FFFE and U+FFFF
constexpr std::size_t kMostBytesPerWide = 6;      // "&amp;", "&#13;" or four UTF-8 bytes

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

bool is_blank(unsigned long c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// The escape of an ASCII character that is special, or null for a control
// character without one.
char const* escape_of(unsigned char c) {
  switch (c) {
    case '&': return "&amp;";
    case '<': return "&lt;";
    case '>': return "&gt;";
    case '"': return "&quot;";
    case '\t': return "&#9;";
    case '\n': return "&#10;";
    case '\r': return "&#13;";
    case ' ': return "&#32;";
    default: return nullptr;
  }
}

// Whether the first character of blank-only text must be a reference.
template <class Ch>
bool blank_only(Ch const* s, std::size_t n) {
  if (n == 0) return false;
  for (std::size_t i = 0; i < n; ++i)
    if (!is_blank(static_cast<unsigned long>(s[i]))) return false;
  return true;
}

char* put(char* p, char const* s) {
  while (*s != '\0') *p++ = *s++;
  return p;
}

char* put_utf8(char* p, unsigned long c) {
  if (c < 0x80) {
    *p++ = static_cast<char>(c);
  } else if (c < 0x800) {
    *p++ = static_cast<char>(0xC0 | (c >> 6));
    *p++ = static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    *p++ = static_cast<char>(0xE0 | (c >> 12));
    *p++ = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    *p++ = static_cast<char>(0x80 | (c & 0x3F));
  } else {
    *p++ = static_cast<char>(0xF0 | (c >> 18));
    *p++ = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    *p++ = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    *p++ = static_cast<char>(0x80 | (c & 0x3F));
  }
  return p;
}

bool has_text_child(xml_node const* element) {
  for (xml_node const* c = element->first_node(); c != nullptr; c = c->next_sibling())
    if (c->type() == rapidxml::node_data || c->type() == rapidxml::node_cdata) return true;
  return false;
}

void escaped(xml_writer& w, char const* s, std::size_t n, context where) {
  std::array<bool, 256> const& special =
      where == context::text ? kEscapes.text : kEscapes.attribute;
  std::size_t i = 0;
  if (where == context::text && blank_only(s, n)) {
    w.raw(std::string_view(escape_of(static_cast<unsigned char>(s[0]))));
    i = 1;
  }
  while (i < n) {
    std::size_t start = i;
    while (i < n && !special[static_cast<unsigned char>(s[i])]) ++i;
    w.raw(s + start, i - start);
    if (i == n) break;
    unsigned char const c = static_cast<unsigned char>(s[i]);
    if (c == kNonCharLead) {
      bool const non_char = n - i >= 3 && static_cast<unsigned char>(s[i + 1]) == 0xBF &&
                            (static_cast<unsigned char>(s[i + 2]) & 0xFE) == 0xBE;
      if (non_char) {
        w.raw(std::string_view(kReplacement));
        i += 2;
      } else {
        w.raw(static_cast<char>(c));
      }
    } else if (char const* e = escape_of(c)) {
      w.raw(std::string_view(e));
    } else {
      w.raw(std::string_view(kReplacement));  // a control character
    }
    ++i;
  }
}

}  // namespace

void xml_writer::grow(std::size_t n) {
  out_.grow(std::max({out_.capacity * 2, out_.size + n, kFirstCapacity}));
}

void xml_writer::raw(char const* s, std::size_t n) {
  if (n == 0) return;
  room(n);
  std::memcpy(out_.data + out_.size, s, n);
  out_.size += n;
}

void xml_writer::tabs(int n) {
  if (n <= 0) return;
  room(static_cast<std::size_t>(n));
  std::memset(out_.data + out_.size, '\t', static_cast<std::size_t>(n));
  out_.size += static_cast<std::size_t>(n);
}

void xml_writer::text(char const* s, std::size_t n) { escaped(*this, s, n, context::text); }

void xml_writer::wide_text(wchar_t const* s, std::size_t n) {
  room(n * kMostBytesPerWide);
  char* p = out_.data + out_.size;
  std::size_t i = 0;
  if (blank_only(s, n)) {
    p = put(p, escape_of(static_cast<unsigned char>(s[0])));
    i = 1;
  }
  for (; i < n; ++i) {
    unsigned long c = static_cast<unsigned long>(static_cast<std::make_unsigned_t<wchar_t>>(s[i]));
    if (c < 0x80) {
      if (!kEscapes.text[c]) {
        *p++ = static_cast<char>(c);
      } else if (char const* e = escape_of(static_cast<unsigned char>(c))) {
        p = put(p, e);
      } else {
        p = put(p, kReplacement);
      }
    } else {
      p = put_utf8(p, is_xml_char(c) ? c : kReplacementChar);
    }
  }
  out_.size = static_cast<std::size_t>(p - out_.data);
}

void xml_writer::attribute(std::string_view name, char const* value, std::size_t n) {
  raw(' ');
  raw(name);
  raw("=\"", 2);
  escaped(*this, value, n, context::attribute);
  raw('"');
}

void xml_writer::close(std::string_view name) {
  room(name.size() + 3);
  raw("</", 2);
  raw(name);
  raw('>');
}

void xml_writer::plain_element_rest(std::string_view name, char const* s, std::size_t n) {
  if (n == 0) {
    raw("/>", 2);
    return;
  }
  raw('>');
  raw(s, n);
  close(name);
}

void xml_writer::wide_element_rest(std::string_view name, std::wstring const& text) {
  if (text.empty()) {
    raw("/>", 2);
    return;
  }
  raw('>');
  wide_text(text.data(), text.size());
  close(name);
}

void xml_writer::element_rest(std::string_view name, xml_node const* content, int indent) {
  xml_node const* child = content->first_node();
  if (child == nullptr && content->value_size() == 0) {
    raw("/>", 2);
    return;
  }
  raw('>');
  if (child == nullptr) {
    text(content->value(), content->value_size());
  } else if (child->next_sibling() == nullptr && child->type() == rapidxml::node_data) {
    text(child->value(), child->value_size());
  } else if (indent == kCompact || has_text_child(content)) {
    for (; child != nullptr; child = child->next_sibling()) node(child, kCompact);
  } else {
    raw('\n');
    for (; child != nullptr; child = child->next_sibling()) {
      node(child, indent + 1);
      raw('\n');
    }
    tabs(indent);
  }
  close(name);
}

// Documents are parsed without comment, declaration and processing
// instruction nodes, so no other kind of node reaches the writer.
void xml_writer::node(xml_node const* n, int indent) {
  switch (n->type()) {
    case rapidxml::node_element: {
      tabs(indent);
      raw('<');
      std::string_view name(n->name(), n->name_size());
      raw(name);
      for (auto const* a = n->first_attribute(); a != nullptr; a = a->next_attribute())
        attribute(std::string_view(a->name(), a->name_size()), a->value(), a->value_size());
      element_rest(name, n, indent);
      break;
    }
    case rapidxml::node_data:
      tabs(indent);
      text(n->value(), n->value_size());
      break;
    case rapidxml::node_cdata:
      tabs(indent);
      raw("<![CDATA[", 9);
      raw(n->value(), n->value_size());
      raw("]]>", 3);
      break;
    default: break;
  }
}

std::string print_content(xml_node const* element) {
  text_buffer out;
  xml_writer w(out);
  if (element->first_node() == nullptr) w.text(element->value(), element->value_size());
  for (xml_node const* c = element->first_node(); c != nullptr; c = c->next_sibling())
    w.node(c, xml_writer::kCompact);
  return std::string(out.data != nullptr ? out.data : "", out.size);
}

}  // namespace property_tree_details
