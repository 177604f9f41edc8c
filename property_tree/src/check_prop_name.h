// The rules every property name (and a root tree's name) follows.
#pragma once
#include <cstddef>

namespace property_tree_details {

// Throws invalid_property_name when `name` breaks the rules: not empty, no
// digit or '-' first, and only letters, digits, '_' and '-'.
void check_prop_name(char const* name);
void check_prop_name(char const* name, std::size_t size);

}  // namespace property_tree_details
