// Property implementations: a named container of values of one kind.
#pragma once
#include <algorithm>
#include <cstddef>
#include <string>
#include <boost/make_shared.hpp>
#include "container_impl.h"
#include "value_impl.h"

namespace property_tree_details {

// The pool a tree's elements are made in.
tree_pool* pool_of(fs_property_tree_base_impl const* tree) noexcept;

class fs_property_tree_property_base_impl
    : public container_impl<fs_property_tree_property, fs_property_tree_value,
                            fs_property_tree_value_base_impl> {
 public:
  fs_property_tree_property_base_impl(fs_property_tree_base_impl* tree, std::string name,
                                      unsigned long index);
  // Properties live in their tree; destroy() does not free them.
  void destroy() noexcept override {}
  char const* name() const noexcept override { return name_.c_str(); }
  bool is_null_property() const noexcept override { return false; }
  std::string const& name_string() const noexcept { return name_; }
  unsigned long index() const noexcept { return index_; }
  fs_property_tree_base_impl* tree() const noexcept { return tree_; }

  // The XML type tag of this property's kind.
  virtual char const* get_serialize_type() const noexcept = 0;
  // A new default value of this property's kind, not yet in the property.
  virtual sp make_value() = 0;
  // A deep copy of this property made for `tree`.
  virtual boost::shared_ptr<fs_property_tree_property_base_impl> clone_into(
      fs_property_tree_base_impl* tree, unsigned long index) const = 0;

  // Appends a value made elsewhere (it must belong to this property).
  fs_property_tree_value_base_impl& append(sp value);
  // Room for n values (no more than the container limit).
  void reserve_values(std::size_t n) { items_.reserve(std::min(n, max_container_elements)); }
  // Appends a value read from its XML element.
  void load_new_xml_value(xml_node* element);
  // Writes this property's elements under `parent`.
  void write_xml(xml_writer& w, int indent) const;

  exception_interface* i_root_tree_v(fs_property_tree** out) override;
  exception_interface* i_root_tree_c(fs_property_tree const** out) const override;
  exception_interface* i_parent_tree_v(fs_property_tree** out) override;
  exception_interface* i_parent_tree_c(fs_property_tree const** out) const override;
  exception_interface* i_resize(std::size_t n) override;
  exception_interface* i_resize_init(std::size_t n, fs_property_tree_value const* v) override;
  exception_interface* i_append_new_value(fs_property_tree_value** out) override;
#define FS_PT_APPEND_IMPL(kind, in_t, out_t) \
  exception_interface* i_append_new_##kind##_value(in_t v, fs_property_tree_value** out) override;
  FS_PROPERTY_TREE_SCALAR_KINDS(FS_PT_APPEND_IMPL)
#undef FS_PT_APPEND_IMPL
  exception_interface* i_append_new_bin_value(unsigned long size, unsigned char const* bytes,
                                              fs_property_tree_value** out) override;
  exception_interface* i_append_new_sub_tree(fs_property_tree** out) override;

 protected:
  fs_property_tree_value* null_element() const override;
  sp copy_element(fs_property_tree_value const& src, std::size_t index) override;
  void renumber(std::size_t from) override;
  // A value of this kind set from `s`, then appended.
  fs_property_tree_value_base_impl& append_converted(source const& s);

 private:
  fs_property_tree_base_impl* tree_;
  std::string name_;
  unsigned long index_;
};

template <class V>
class fs_property_tree_property_impl final : public fs_property_tree_property_base_impl {
 public:
  using fs_property_tree_property_base_impl::fs_property_tree_property_base_impl;
  fs_property_type type() const noexcept override { return V::kind; }
  char const* get_serialize_type() const noexcept override { return info(V::kind).xml_tag; }
  sp make_value() override { return boost::allocate_shared<V>(pool_allocator<V>(pool()), this); }
  boost::shared_ptr<fs_property_tree_property_base_impl> clone_into(
      fs_property_tree_base_impl* tree, unsigned long index) const override {
    auto copy = boost::allocate_shared<fs_property_tree_property_impl>(
        pool_allocator<fs_property_tree_property_impl>(pool_of(tree)), tree, name_string(), index);
    copy->items_.reserve(items_.size());
    for (sp const& v : items_) {
      sp c = copy->make_value();
      c->assign(v->view());
      copy->append(std::move(c));
    }
    return copy;
  }
};

using fs_property_tree_property_str_impl = fs_property_tree_property_impl<fs_property_tree_value_str_impl>;
using fs_property_tree_property_lng_impl = fs_property_tree_property_impl<fs_property_tree_value_lng_impl>;
using fs_property_tree_property_dbl_impl = fs_property_tree_property_impl<fs_property_tree_value_dbl_impl>;
using fs_property_tree_property_ulng_impl = fs_property_tree_property_impl<fs_property_tree_value_ulng_impl>;
using fs_property_tree_property_int32_impl = fs_property_tree_property_impl<fs_property_tree_value_int32_impl>;
using fs_property_tree_property_uint32_impl =
    fs_property_tree_property_impl<fs_property_tree_value_uint32_impl>;
using fs_property_tree_property_int64_impl = fs_property_tree_property_impl<fs_property_tree_value_int64_impl>;
using fs_property_tree_property_uint64_impl =
    fs_property_tree_property_impl<fs_property_tree_value_uint64_impl>;
using fs_property_tree_property_ldbl_impl = fs_property_tree_property_impl<fs_property_tree_value_ldbl_impl>;
using fs_property_tree_property_flt_impl = fs_property_tree_property_impl<fs_property_tree_value_flt_impl>;
using fs_property_tree_property_bool_impl = fs_property_tree_property_impl<fs_property_tree_value_bool_impl>;
using fs_property_tree_property_guid_impl = fs_property_tree_property_impl<fs_property_tree_value_guid_impl>;
using fs_property_tree_property_bin_impl = fs_property_tree_property_impl<fs_property_tree_value_bin_impl>;
using fs_property_tree_property_xml_impl = fs_property_tree_property_impl<fs_property_tree_value_xml_impl>;
using fs_property_tree_property_tree_impl = fs_property_tree_property_impl<fs_property_tree_value_tree_impl>;

// A new empty property of `kind` for `tree` (names are checked by the caller).
boost::shared_ptr<fs_property_tree_property_base_impl> make_property(
    fs_property_type kind, fs_property_tree_base_impl* tree, std::string name, unsigned long index);

// The property implementation behind an interface pointer.
fs_property_tree_property_base_impl const& property_impl_of(fs_property_tree_property const* p);

}  // namespace property_tree_details
