// A module built apart from the layer: it sees only the public headers and
// fills trees made by the layer through the interface.
#include <string>
#include <fs_property_tree.h>

#define FILLER_API extern "C" __attribute__((visibility("default")))

// Fills `tree` with one property of several kinds and a nested tree.
FILLER_API void filler_fill(fs_property_tree* tree) {
  tree->add_str_property("module_name", L"filler \x00e9");
  fs_property_tree_property& counts = tree->add_uint64_property("counts", 1ULL);
  counts.append_new_str_value(L"2");  // converted by the layer
  unsigned char bytes[] = {0xde, 0xad, 0xbe, 0xef};
  tree->add_bin_property("blob", sizeof bytes, bytes);
  fs_property_tree& nested = tree->add_sub_tree_property("nested").append_new_sub_tree();
  nested.add_bool_property("flag", true);
  nested.add_dbl_property("ratio", 0.25);
  for (auto it = tree->begin(); it != tree->end(); ++it) {
    if (it->type() == fs_property_type::str) it->at(0).set_str_val(L"filler \x00e9 (seen)");
  }
}

// Lets the duplicate-name exception made in this module's wrapper escape.
FILLER_API void filler_add_twice(fs_property_tree* tree) {
  tree->add_lng_property("twice", 1L);
  tree->add_lng_property("twice", 2L);
}

// Catches inside the module; returns the kind of exception seen and its text.
FILLER_API int filler_catch_conversion(fs_property_tree* tree, std::string* message) {
  try {
    tree->add_sub_tree_property("sub").append_new_lng_value(1L);
  } catch (invalid_property_name const&) {
    return 1;
  } catch (std::runtime_error const&) {
    return 2;
  } catch (std::exception const& e) {
    *message = e.what();
    return 3;
  }
  return 0;
}
