#include "property_impl.h"

#include "null_objects.h"
#include "tree_impl.h"
#include "xml_print.h"

namespace property_tree_details {

fs_property_tree_property_base_impl::fs_property_tree_property_base_impl(
    fs_property_tree_base_impl* tree, std::string name, unsigned long index)
    : container_impl(tree->pool()), tree_(tree), name_(std::move(name)), index_(index) {}

fs_property_tree_property_base_impl const& property_impl_of(fs_property_tree_property const* p) {
  if (p == nullptr) throw std::invalid_argument("null property");
  auto impl = dynamic_cast<fs_property_tree_property_base_impl const*>(p);
  if (impl == nullptr) throw std::invalid_argument("property not made by the property tree library");
  return *impl;
}

fs_property_tree_value_base_impl& fs_property_tree_property_base_impl::append(sp value) {
  check_count(items_.size() + 1);
  value->set_pos(items_.size());
  items_.push_back(std::move(value));
  return *items_.back();
}

fs_property_tree_value_base_impl& fs_property_tree_property_base_impl::append_converted(
    source const& s) {
  check_modifiable();
  sp value = make_value();
  value->assign(s);
  return append(std::move(value));
}

void fs_property_tree_property_base_impl::load_new_xml_value(xml_node* element) {
  sp value = make_value();
  value->load_xml(element);
  append(std::move(value));
}

// One element per value, each on its own line; the first carries "type" and
// "count", and a property without values is one element without content.
void fs_property_tree_property_base_impl::write_xml(xml_writer& w, int indent) const {
  std::size_t const count = items_.size();
  std::string_view const name = name_;
  for (std::size_t i = 0; i == 0 || i < count; ++i) {
    w.tabs(indent);
    w.raw('<');
    w.raw(name);
    if (i == 0) {
      std::string_view type = get_serialize_type();
      w.attribute("type", type.data(), type.size());
      char buf[32];
      std::size_t n = format_number(static_cast<unsigned long>(count), buf);
      w.attribute("count", buf, n);
    }
    if (i < count) items_[i]->write_xml(w, name, indent);
    else w.raw("/>", 2);
    w.raw('\n');
  }
}

fs_property_tree_value* fs_property_tree_property_base_impl::null_element() const {
  return fs_property_tree_value_null::get_null_obj();
}

fs_property_tree_property_base_impl::sp fs_property_tree_property_base_impl::copy_element(
    fs_property_tree_value const& src, std::size_t) {
  sp value = make_value();
  value->assign(value_impl_of(&src).view());
  return value;
}

void fs_property_tree_property_base_impl::renumber(std::size_t from) {
  for (std::size_t i = from; i < items_.size(); ++i) items_[i]->set_pos(i);
}

exception_interface* fs_property_tree_property_base_impl::i_root_tree_v(fs_property_tree** out) {
  return guard([&] { out_param(out) = tree_->root(); });
}

exception_interface* fs_property_tree_property_base_impl::i_root_tree_c(
    fs_property_tree const** out) const {
  return guard([&] { out_param(out) = tree_->root(); });
}

exception_interface* fs_property_tree_property_base_impl::i_parent_tree_v(fs_property_tree** out) {
  return guard([&] { out_param(out) = tree_; });
}

exception_interface* fs_property_tree_property_base_impl::i_parent_tree_c(
    fs_property_tree const** out) const {
  return guard([&] { out_param(out) = tree_; });
}

exception_interface* fs_property_tree_property_base_impl::i_resize(std::size_t n) {
  return guard([&] {
    check_modifiable();
    check_count(n);
    if (n <= items_.size()) {
      erase_range(n, items_.size());
      return;
    }
    items_type added = new_items();
    added.reserve(n - items_.size());
    while (items_.size() + added.size() < n) added.push_back(make_value());
    insert_items(items_.size(), std::move(added), insert_kind::insert);
  });
}

exception_interface* fs_property_tree_property_base_impl::i_resize_init(
    std::size_t n, fs_property_tree_value const* v) {
  return guard([&] {
    check_modifiable();
    check_count(n);
    source s = value_impl_of(v).view();
    if (n <= items_.size()) {
      erase_range(n, items_.size());
      return;
    }
    items_type added = new_items();
    added.reserve(n - items_.size());
    while (items_.size() + added.size() < n) {
      sp value = make_value();
      value->assign(s);
      added.push_back(std::move(value));
    }
    insert_items(items_.size(), std::move(added), insert_kind::insert);
  });
}

exception_interface* fs_property_tree_property_base_impl::i_append_new_value(
    fs_property_tree_value** out) {
  return guard([&] {
    fs_property_tree_value*& result = out_param(out);
    check_modifiable();
    result = &append(make_value());
  });
}

#define FS_PT_APPEND_IMPL(kind, in_t, out_t)                                                 \
  exception_interface* fs_property_tree_property_base_impl::i_append_new_##kind##_value(     \
      in_t v, fs_property_tree_value** out) {                                                \
    return guard([&] {                                                                       \
      fs_property_tree_value*& result = out_param(out);                                      \
      result = &append_converted(input(v));                                                  \
    });                                                                                      \
  }
FS_PROPERTY_TREE_SCALAR_KINDS(FS_PT_APPEND_IMPL)
#undef FS_PT_APPEND_IMPL

exception_interface* fs_property_tree_property_base_impl::i_append_new_bin_value(
    unsigned long size, unsigned char const* bytes, fs_property_tree_value** out) {
  return guard([&] {
    fs_property_tree_value*& result = out_param(out);
    result = &append_converted(bin_source(bytes, size));
  });
}

exception_interface* fs_property_tree_property_base_impl::i_append_new_sub_tree(
    fs_property_tree** out) {
  return guard([&] {
    fs_property_tree*& result = out_param(out);
    check_modifiable();
    if (type() != fs_property_type::tree) refuse_kind(fs_property_type::tree, type());
    result = append(make_value()).nested_tree();
  });
}

boost::shared_ptr<fs_property_tree_property_base_impl> make_property(
    fs_property_type kind, fs_property_tree_base_impl* tree, std::string name,
    unsigned long index) {
  switch (kind) {
#define FS_PT_MAKE(k, cls) \
  case fs_property_type::k:                                                           \
    return boost::allocate_shared<cls>(pool_allocator<cls>(tree->pool()), tree, std::move(name), \
                                       index);
    FS_PT_MAKE(str, fs_property_tree_property_str_impl)
    FS_PT_MAKE(lng, fs_property_tree_property_lng_impl)
    FS_PT_MAKE(dbl, fs_property_tree_property_dbl_impl)
    FS_PT_MAKE(ulng, fs_property_tree_property_ulng_impl)
    FS_PT_MAKE(int32, fs_property_tree_property_int32_impl)
    FS_PT_MAKE(uint32, fs_property_tree_property_uint32_impl)
    FS_PT_MAKE(int64, fs_property_tree_property_int64_impl)
    FS_PT_MAKE(uint64, fs_property_tree_property_uint64_impl)
    FS_PT_MAKE(ldbl, fs_property_tree_property_ldbl_impl)
    FS_PT_MAKE(flt, fs_property_tree_property_flt_impl)
    FS_PT_MAKE(boolean, fs_property_tree_property_bool_impl)
    FS_PT_MAKE(guid, fs_property_tree_property_guid_impl)
    FS_PT_MAKE(bin, fs_property_tree_property_bin_impl)
    FS_PT_MAKE(xml, fs_property_tree_property_xml_impl)
    FS_PT_MAKE(tree, fs_property_tree_property_tree_impl)
#undef FS_PT_MAKE
  }
  throw std::invalid_argument("unknown property kind");
}

}  // namespace property_tree_details
