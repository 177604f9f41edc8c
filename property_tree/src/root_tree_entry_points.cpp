// The library's entry points for root trees: create_root_tree,
// load_root_tree, utf8load_root_tree.
#include "check_prop_name.h"
#include "tree_impl.h"

namespace property_tree_details {
namespace {
template <class Ch>
std::unique_ptr<fs_property_tree_root_impl> load_root(Ch const* text) {
  std::vector<char> buffer = buffer_of(text);
  xml_document doc;
  parse_document(buffer, fs_property_tree_max_xml_depth, doc);
  xml_node* root = root_element(doc);
  check_prop_name(root->name(), root->name_size());
  std::unique_ptr<fs_property_tree_root_impl> tree(
      new fs_property_tree_root_impl(std::string(root->name(), root->name_size())));
  auto loaded = tree->load_fields(root);
  tree->replace_contents(std::move(loaded.first), std::move(loaded.second));
  return tree;
}

}  // namespace
}  // namespace property_tree_details

using namespace property_tree_details;

extern "C" FS_EXPORT exception_interface* create_root_tree(char const* name,
                                                           fs_property_tree** out) {
  return guard([&] {
    fs_property_tree*& result = out_param(out);
    check_prop_name(name);
    result = new fs_property_tree_root_impl(name);
  });
}

extern "C" FS_EXPORT exception_interface* load_root_tree(wchar_t const* xml,
                                                         fs_property_tree** out) {
  return guard([&] {
    fs_property_tree*& result = out_param(out);
    result = load_root(xml).release();
  });
}

extern "C" FS_EXPORT exception_interface* utf8load_root_tree(char const* xml,
                                                             fs_property_tree** out) {
  return guard([&] {
    fs_property_tree*& result = out_param(out);
    result = load_root(xml).release();
  });
}
