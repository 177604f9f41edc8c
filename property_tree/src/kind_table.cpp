#include "kind_table.h"

#include <string_view>

namespace property_tree_details {

namespace {
// Indexed by fs_property_type. The wording differs between the message
// families on purpose (articles, "uuid" against "guid", "boolean" against
// "bool"); callers match these texts exactly.
kind_info const kinds[] = {
    {"string", "string", "a string", "a string", "string", "string"},
    {"int", "long", "a long", "a long", "long", "long"},
    {"dbl", "double", "a double", "a double", "double", "double"},
    {"uint", "unsigned long", "a unsigned long", "a unsigned long", "unsigned long",
     "unsigned long"},
    {"int32", "32-bit int", "a 32-bit int", "a 32-bit int", "32-bit int", "int32"},
    {"uint32", "32-bit unsigned int", "an unsigned 32-bit int", "an unsigned 32-bit int",
     "32-bit unsigned int", "uint32"},
    {"int64", "64-bit int", "a 64-bit int", "a 64-bit int", "64-bit int", "int64"},
    {"uint64", "64-bit unsigned int", "an unsigned 64-bit int", "an unsigned 64-bit int",
     "64-bit unsigned int", "uint64"},
    {"ldbl", "long double", "a long double", "a long double", "long double", "long double"},
    {"flt", "float", "a float", "a float", "float", "float"},
    {"bool", "bool", "a bool", "a boolean", "boolean", "bool"},
    {"guid", "guid", "a guid", "a uuid", "uuid", "guid"},
    {"bin", "binary", "a binary", "a binary", "binary", "binary"},
    {"xml", "xml", "an xml doc", "an xml doc", "xml", "xml"},
    {"rec", "sub-tree", "a tree", "a tree", "tree", "tree"},
};
}  // namespace

kind_info const& info(fs_property_type kind) noexcept {
  return kinds[static_cast<int>(kind)];
}

bool kind_from_tag(char const* text, std::size_t size, fs_property_type* out) noexcept {
  // The fifteen tags are distinct, so the documented matching order cannot
  // change the result: they are told apart by length and first letter, then
  // compared whole.
  if (text == nullptr) return false;
  std::string_view const wanted(text, size);
  fs_property_type kind;
  switch (size) {
    case 3:
      switch (text[0]) {
        case 'i': kind = fs_property_type::lng; break;
        case 'd': kind = fs_property_type::dbl; break;
        case 'f': kind = fs_property_type::flt; break;
        case 'x': kind = fs_property_type::xml; break;
        case 'b': kind = fs_property_type::bin; break;
        case 'r': kind = fs_property_type::tree; break;
        default: return false;
      }
      break;
    case 4:
      switch (text[0]) {
        case 'u': kind = fs_property_type::ulng; break;
        case 'l': kind = fs_property_type::ldbl; break;
        case 'b': kind = fs_property_type::boolean; break;
        case 'g': kind = fs_property_type::guid; break;
        default: return false;
      }
      break;
    case 5:
      kind = text[3] == '3' ? fs_property_type::int32 : fs_property_type::int64;
      break;
    case 6:
      kind = text[0] == 's'    ? fs_property_type::str
             : text[4] == '3' ? fs_property_type::uint32
                              : fs_property_type::uint64;
      break;
    default:
      return false;
  }
  if (wanted != info(kind).xml_tag) return false;
  *out = kind;
  return true;
}

bool is_numeric(fs_property_type kind) noexcept {
  switch (kind) {
    case fs_property_type::lng:
    case fs_property_type::dbl:
    case fs_property_type::ulng:
    case fs_property_type::int32:
    case fs_property_type::uint32:
    case fs_property_type::int64:
    case fs_property_type::uint64:
    case fs_property_type::ldbl:
    case fs_property_type::flt:
      return true;
    default:
      return false;
  }
}

}  // namespace property_tree_details
