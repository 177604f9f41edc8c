#include "null_objects.h"

namespace property_tree_details {

namespace {
[[noreturn]] void refuse_change() { throw modify_null_obj("can not modify a null object"); }
}  // namespace

fs_property_tree_null* fs_property_tree_null::get_null_obj() {
  static fs_property_tree_null* const instance = new fs_property_tree_null();  // never freed
  return instance;
}

fs_property_tree_null const* fs_property_tree_null::get_const_null_obj() { return get_null_obj(); }

void fs_property_tree_null::check_modifiable() const { refuse_change(); }

exception_interface* fs_property_tree_null::i_parent_value_v(fs_property_tree_value** out) {
  return guard([&] { out_param(out) = fs_property_tree_value_null::get_null_obj(); });
}

exception_interface* fs_property_tree_null::i_parent_value_c(
    fs_property_tree_value const** out) const {
  return guard([&] { out_param(out) = fs_property_tree_value_null::get_const_null_obj(); });
}

exception_interface* fs_property_tree_null::i_clone(fs_property_tree** out) const {
  return ::create_root_tree("null_tree", out);
}

fs_property_tree_property_null::fs_property_tree_property_null()
    : fs_property_tree_property_base_impl(fs_property_tree_null::get_null_obj(), std::string(), 0) {}

fs_property_tree_property_null* fs_property_tree_property_null::get_null_obj() {
  static fs_property_tree_property_null* const instance = new fs_property_tree_property_null();
  return instance;
}

fs_property_tree_property_null const* fs_property_tree_property_null::get_const_null_obj() {
  return get_null_obj();
}

void fs_property_tree_property_null::check_modifiable() const { refuse_change(); }

fs_property_tree_property_base_impl::sp fs_property_tree_property_null::make_value() {
  refuse_change();
}

boost::shared_ptr<fs_property_tree_property_base_impl> fs_property_tree_property_null::clone_into(
    fs_property_tree_base_impl*, unsigned long) const {
  refuse_change();
}

fs_property_tree_value_null::fs_property_tree_value_null()
    : fs_property_tree_value_base_impl(fs_property_tree_property_null::get_null_obj()) {}

fs_property_tree_value_null* fs_property_tree_value_null::get_null_obj() {
  static fs_property_tree_value_null* const instance = new fs_property_tree_value_null();
  return instance;
}

fs_property_tree_value_null const* fs_property_tree_value_null::get_const_null_obj() {
  return get_null_obj();
}

void fs_property_tree_value_null::assign(source const&) { refuse_change(); }
void fs_property_tree_value_null::load_xml(xml_node*) { refuse_change(); }
void fs_property_tree_value_null::write_xml(xml_writer& w, std::string_view name, int) const {
  write_plain_element_rest(w, name, nullptr, 0);
}
void fs_property_tree_value_null::check_modifiable() const { refuse_change(); }

fs_property_tree* fs_property_tree_value_null::nested_tree() const {
  return fs_property_tree_null::get_null_obj();
}

}  // namespace property_tree_details
