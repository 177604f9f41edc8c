// Cutting a path string into steps.
//
// A path is a list of steps separated by '/': a property name with an
// optional position in brackets ("b[2]"), "." for this tree or ".." for the
// parent tree. A leading '/' starts at the root. Blanks around names, before
// '/' and inside brackets are ignored. Names in paths allow letters, digits
// and '_' only (no '-'). Deliberate quirks of the grammar: after "[1 ]" the
// next step may follow without '/', so "a[1 ]b" is (a,1),(b,0); a path may
// begin with '[' (an empty name); and "a[1 " at the end is accepted because
// its step was already emitted. A position that does not fit an unsigned
// long is refused ("position out of range").
#pragma once
#include <utility>
#include <vector>
#include <qbhost/strings.h>

namespace property_tree_details {

// Appends the steps of `path` to `steps`; throws invalid_property_name.
void evaluate_query(char const* path, std::vector<std::pair<cstring, unsigned long>>& steps);

}  // namespace property_tree_details
