#include "value_impl.h"
#include "xml_print.h"

#include "null_objects.h"
#include "property_impl.h"
#include "tree_impl.h"

namespace property_tree_details {

fs_property_tree_value_base_impl::~fs_property_tree_value_base_impl() = default;

fs_property_tree_value_base_impl::conversion_cache& fs_property_tree_value_base_impl::cache()
    const {
  if (!cache_) cache_.reset(new conversion_cache());
  return *cache_;
}

fs_property_tree_value_base_impl const& value_impl_of(fs_property_tree_value const* v) {
  if (v == nullptr) throw std::invalid_argument("null value");
  auto impl = dynamic_cast<fs_property_tree_value_base_impl const*>(v);
  if (impl == nullptr) throw std::invalid_argument("value not made by the property tree library");
  return *impl;
}

// Numbers and bools are read through the conversions; str, guid and bin hand
// out their own storage when the kinds agree and the cache otherwise.
#define FS_PT_GET_NUMBER(kind, T)                                                      \
  exception_interface* fs_property_tree_value_base_impl::i_get_##kind##_val(T* out) const { \
    return guard([&] { out_param(out) = to_number<T>(view(), fs_property_type::kind); }); \
  }
FS_PT_GET_NUMBER(lng, long)
FS_PT_GET_NUMBER(dbl, double)
FS_PT_GET_NUMBER(ulng, unsigned long)
FS_PT_GET_NUMBER(int32, int)
FS_PT_GET_NUMBER(uint32, unsigned int)
FS_PT_GET_NUMBER(int64, long long)
FS_PT_GET_NUMBER(uint64, unsigned long long)
FS_PT_GET_NUMBER(ldbl, long double)
FS_PT_GET_NUMBER(flt, float)
#undef FS_PT_GET_NUMBER

exception_interface* fs_property_tree_value_base_impl::i_get_bool_val(bool* out) const {
  return guard([&] { out_param(out) = to_bool(view()); });
}

exception_interface* fs_property_tree_value_base_impl::i_get_str_val(wchar_t const** out) const {
  return guard([&] {
    wchar_t const*& result = out_param(out);
    source s = view();
    if (!s.is_null && (s.kind == fs_property_type::str || s.kind == fs_property_type::xml)) {
      result = s.text;
    } else {
      std::wstring text = to_text(s);
      conversion_cache& c = cache();
      c.text.swap(text);
      result = c.text.c_str();
    }
  });
}

exception_interface* fs_property_tree_value_base_impl::i_get_guid_val(_SSGUID const** out) const {
  return guard([&] {
    _SSGUID const*& result = out_param(out);
    source s = view();
    if (!s.is_null && s.kind == fs_property_type::guid) {
      result = s.guid;
    } else {
      _SSGUID g = to_guid(s);
      conversion_cache& c = cache();
      c.guid = g;
      result = &c.guid;
    }
  });
}

exception_interface* fs_property_tree_value_base_impl::i_get_bin_val(
    unsigned long* size, unsigned char const** bytes) const {
  return guard([&] {
    unsigned long& n = out_param(size);
    unsigned char const*& p = out_param(bytes);
    source s = view();
    if (!s.is_null && s.kind == fs_property_type::bin) {
      n = s.byte_count;
      p = s.bytes;
    } else {
      std::vector<unsigned char> converted;
      to_bin(s, converted);
      conversion_cache& c = cache();
      c.bytes.swap(converted);
      n = c.bytes.size();
      p = c.bytes.data();
    }
  });
}

#define FS_PT_SET(kind, in_t, out_t)                                              \
  exception_interface* fs_property_tree_value_base_impl::i_set_##kind##_val(in_t v) { \
    return guard([&] {                                                            \
      check_modifiable();                                                         \
      assign(input(v));                                                           \
    });                                                                           \
  }
FS_PROPERTY_TREE_SCALAR_KINDS(FS_PT_SET)
#undef FS_PT_SET

exception_interface* fs_property_tree_value_base_impl::i_set_bin_val(unsigned long size,
                                                                     unsigned char const* bytes) {
  return guard([&] {
    check_modifiable();
    assign(bin_source(bytes, size));
  });
}

fs_property_tree* fs_property_tree_value_base_impl::nested_tree() const {
  refuse_kind(type(), fs_property_type::tree);
}

exception_interface* fs_property_tree_value_base_impl::i_sub_tree_v(fs_property_tree** out) {
  return guard([&] { out_param(out) = nested_tree(); });
}

exception_interface* fs_property_tree_value_base_impl::i_sub_tree_c(
    fs_property_tree const** out) const {
  return guard([&] { out_param(out) = nested_tree(); });
}

exception_interface* fs_property_tree_value_base_impl::i_sub_tree_property_v(
    char const* name, fs_property_tree_property** out) {
  return guard([&] { out_param(out) = &nested_tree()->get_property(name); });
}

exception_interface* fs_property_tree_value_base_impl::i_sub_tree_property_c(
    char const* name, fs_property_tree_property const** out) const {
  return guard([&] {
    fs_property_tree const* tree = nested_tree();
    out_param(out) = &tree->get_property(name);
  });
}

exception_interface* fs_property_tree_value_base_impl::i_parent_property_v(
    fs_property_tree_property** out) {
  return guard([&] { out_param(out) = owner_; });
}

exception_interface* fs_property_tree_value_base_impl::i_parent_property_c(
    fs_property_tree_property const** out) const {
  return guard([&] { out_param(out) = owner_; });
}

exception_interface* fs_property_tree_value_base_impl::i_root_tree_v(fs_property_tree** out) {
  return guard([&] { out_param(out) = owner_->tree()->root(); });
}

exception_interface* fs_property_tree_value_base_impl::i_root_tree_c(
    fs_property_tree const** out) const {
  return guard([&] { out_param(out) = owner_->tree()->root(); });
}

exception_interface* fs_property_tree_value_base_impl::i_copy(fs_property_tree_value const* other,
                                                              fs_property_tree_value** out) {
  return guard([&] {
    fs_property_tree_value*& result = out_param(out);
    check_modifiable();
    assign(value_impl_of(other).view());
    result = this;
  });
}

std::string_view element_text(xml_node* element, std::string& storage) {
  xml_node* child = element->first_node();
  if (child == nullptr) return std::string_view(element->value(), element->value_size());
  // The common case: the parser's one data node holds all of the text.
  if (child->next_sibling() == nullptr &&
      (child->type() == rapidxml::node_data || child->type() == rapidxml::node_cdata))
    return std::string_view(child->value(), child->value_size());
  storage.clear();
  for (; child != nullptr; child = child->next_sibling()) {
    if (child->type() == rapidxml::node_data || child->type() == rapidxml::node_cdata)
      storage.append(child->value(), child->value_size());
  }
  return storage;
}

fs_property_tree_value_tree_impl::fs_property_tree_value_tree_impl(
    fs_property_tree_property_base_impl* owner)
    : fs_property_tree_value_base_impl(owner) {
  fs_property_tree_base_impl* parent = owner->tree();
  tree_.reset(new fs_property_tree_impl(this, parent->root(), parent->depth() + 1));
}

fs_property_tree_value_tree_impl::~fs_property_tree_value_tree_impl() = default;

source fs_property_tree_value_tree_impl::view() const { return tree_source(tree_.get()); }

void fs_property_tree_value_tree_impl::assign(source const& s) {
  check_tree_source(s);
  if (s.is_null) {
    tree_->replace_contents(tree_->new_items());
  } else {
    tree_->replace_contents(tree_->copy_contents(tree_impl_of(s.tree)));
  }
}

void fs_property_tree_value_tree_impl::load_xml(xml_node* element) {
  auto loaded = tree_->load_fields(element);
  tree_->replace_contents(std::move(loaded.first), std::move(loaded.second));
}

void fs_property_tree_value_tree_impl::write_xml(xml_writer& w, std::string_view name,
                                                 int indent) const {
  if (tree_->items().empty()) {
    w.raw("/>", 2);
    return;
  }
  w.raw(">\n", 2);
  tree_->write_fields(w, indent + 1);
  w.tabs(indent);
  w.close(name);
}

fs_property_tree* fs_property_tree_value_tree_impl::nested_tree() const { return tree_.get(); }

}  // namespace property_tree_details
