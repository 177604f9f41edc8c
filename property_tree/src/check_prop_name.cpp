#include "check_prop_name.h"

#include <cctype>
#include <cstring>
#include <fs_property_tree_error.h>

namespace property_tree_details {

void check_prop_name(char const* name) {
  check_prop_name(name, name != nullptr ? std::strlen(name) : 0);
}

void check_prop_name(char const* name, std::size_t size) {
  if (name == nullptr || size == 0)
    throw invalid_property_name("empty property name not allowed");
  unsigned char first = static_cast<unsigned char>(name[0]);
  if (std::isdigit(first))
    throw invalid_property_name("property name can not have a number as its first character");
  if (first == '-')
    throw invalid_property_name(
        "property name can not have a dash ('-') as its first character");
  for (std::size_t i = 0; i < size; ++i) {
    unsigned char c = static_cast<unsigned char>(name[i]);
    if (!std::isalnum(c) && c != '_' && c != '-')
      throw invalid_property_name(
          "property name can only have alphabetic letters, numbers, underscores, and dashes");
  }
}

}  // namespace property_tree_details
