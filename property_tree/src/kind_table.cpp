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
  struct tag_kind {
    std::string_view tag;
    fs_property_type kind;
  };
  // In the order the XML reader documents (the tags are distinct, so the
  // order cannot change the result).
  static constexpr tag_kind order[] = {
      {"string", fs_property_type::str},    {"int", fs_property_type::lng},
      {"uint", fs_property_type::ulng},     {"int32", fs_property_type::int32},
      {"uint32", fs_property_type::uint32}, {"int64", fs_property_type::int64},
      {"uint64", fs_property_type::uint64}, {"dbl", fs_property_type::dbl},
      {"ldbl", fs_property_type::ldbl},     {"flt", fs_property_type::flt},
      {"xml", fs_property_type::xml},       {"bool", fs_property_type::boolean},
      {"guid", fs_property_type::guid},     {"bin", fs_property_type::bin},
      {"rec", fs_property_type::tree}};
  if (text == nullptr) return false;
  std::string_view wanted(text, size);
  for (tag_kind const& t : order) {
    if (t.tag == wanted) {
      *out = t.kind;
      return true;
    }
  }
  return false;
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
