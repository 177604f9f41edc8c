// Walking a path from a tree to a nested tree.
#include "evaluate_query.h"
#include "null_objects.h"
#include "tree_impl.h"

namespace property_tree_details {

namespace {
// Lookups that find nothing lead to the null tree, like every other lookup
// of the tree; a value that is not a tree is refused by sub_tree().
fs_property_tree* walk(fs_property_tree* start, char const* path) {
  std::vector<std::pair<cstring, unsigned long>> steps;
  evaluate_query(path, steps);
  fs_property_tree* current = path[0] == '/' ? &start->root_tree() : start;
  for (auto const& step : steps) {
    if (step.first == ".") continue;
    if (step.first == "..") {
      // The tree holding the property that owns this tree's value; from a
      // root (whose parent value is the null value) the null tree.
      current = &current->parent_value().parent_property().parent_tree();
      continue;
    }
    fs_property_tree_property& property = current->get_property(step.first.c_str());
    if (step.second >= property.size()) {
      current = fs_property_tree_null::get_null_obj();
      continue;
    }
    current = &property[step.second].sub_tree();
  }
  return current;
}
}  // namespace

exception_interface* fs_property_tree_base_impl::i_query_sub_tree_v(char const* path,
                                                                    fs_property_tree** out) {
  return guard([&] {
    fs_property_tree*& result = out_param(out);
    result = walk(this, need_text(path));
  });
}

exception_interface* fs_property_tree_base_impl::i_query_sub_tree_c(
    char const* path, fs_property_tree const** out) const {
  return guard([&] {
    fs_property_tree const*& result = out_param(out);
    result = walk(const_cast<fs_property_tree_base_impl*>(this), need_text(path));
  });
}

}  // namespace property_tree_details
