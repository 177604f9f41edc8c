// The process-wide null tree, null property and null value: what lookups
// that find nothing hand out. They are empty, read as defaults and refuse
// every change with modify_null_obj ("can not modify a null object").
#pragma once
#include "tree_impl.h"

namespace property_tree_details {

class fs_property_tree_null final : public fs_property_tree_base_impl {
 public:
  static fs_property_tree_null* get_null_obj();
  static fs_property_tree_null const* get_const_null_obj();

  void destroy() noexcept override {}
  char const* name() const noexcept override { return ""; }
  bool is_root() const noexcept override { return false; }
  bool is_null_tree() const noexcept override { return true; }
  exception_interface* i_parent_value_v(fs_property_tree_value** out) override;
  exception_interface* i_parent_value_c(fs_property_tree_value const** out) const override;
  // The one change a null tree allows: a new, empty root named "null_tree".
  exception_interface* i_clone(fs_property_tree** out) const override;
  fs_property_tree_null() : fs_property_tree_base_impl(nullptr, 0, nullptr) {}

 protected:
  void check_modifiable() const override;
};

class fs_property_tree_property_null final : public fs_property_tree_property_base_impl {
 public:
  static fs_property_tree_property_null* get_null_obj();
  static fs_property_tree_property_null const* get_const_null_obj();

  fs_property_tree_property_null();
  fs_property_type type() const noexcept override { return fs_property_type::str; }
  bool is_null_property() const noexcept override { return true; }
  char const* get_serialize_type() const noexcept override { return "string"; }
  sp make_value() override;
  boost::shared_ptr<fs_property_tree_property_base_impl> clone_into(
      fs_property_tree_base_impl* tree, unsigned long index) const override;

 protected:
  void check_modifiable() const override;
};

class fs_property_tree_value_null final : public fs_property_tree_value_base_impl {
 public:
  static fs_property_tree_value_null* get_null_obj();
  static fs_property_tree_value_null const* get_const_null_obj();

  fs_property_tree_value_null();
  bool is_null_value() const noexcept override { return true; }
  fs_property_type type() const noexcept override { return fs_property_type::str; }
  source view() const override { return null_source(); }
  void assign(source const& s) override;
  void load_xml(xml_node* element) override;
  void write_xml(xml_writer& w, std::string_view name, int indent) const override;
  void check_modifiable() const override;
  fs_property_tree* nested_tree() const override;
};

}  // namespace property_tree_details
