#include "tree_impl.h"

#include <set>
#include <string_view>
#include "check_prop_name.h"
#include "null_objects.h"

namespace property_tree_details {

fs_property_tree_base_impl::fs_property_tree_base_impl(fs_property_tree_base_impl* root,
                                                       unsigned depth, tree_pool* pool)
    : container_impl(pool), root_(root != nullptr ? root : this), depth_(depth), index_(new_index()) {
  if (depth > fs_property_tree_max_depth)
    throw std::runtime_error("property trees nested deeper than " +
                             std::to_string(fs_property_tree_max_depth) +
                             " levels are not supported");
}

fs_property_tree_base_impl::~fs_property_tree_base_impl() = default;

tree_pool* pool_of(fs_property_tree_base_impl const* tree) noexcept { return tree->pool(); }

fs_property_tree_base_impl const& tree_impl_of(fs_property_tree const* t) {
  if (t == nullptr) throw std::invalid_argument("null tree");
  auto impl = dynamic_cast<fs_property_tree_base_impl const*>(t);
  if (impl == nullptr) throw std::invalid_argument("tree not made by the property tree library");
  return *impl;
}

fs_property_tree_property_base_impl* fs_property_tree_base_impl::find_property(
    char const* name) const {
  auto it = index_.find(std::string_view(need_text(name)));
  return it == index_.end() ? nullptr : it->second.get();
}

fs_property_tree_property_base_impl& fs_property_tree_base_impl::add_with_value(
    fs_property_type kind, char const* name, source const* v) {
  check_modifiable();
  check_prop_name(name);
  if (find_property(name) != nullptr)
    throw duplicate_property_name(std::string("duplicate name used in add ") +
                                  info(kind).dup_word + " property call");
  check_count(items_.size() + 1);
  sp property = make_property(kind, this, name, items_.size());
  if (v != nullptr) {
    auto value = property->make_value();
    value->assign(*v);
    property->append(std::move(value));
  }
  reserve_for(1);
  index_.emplace(property->name_string(), property);
  items_.push_back(property);
  return *property;
}

fs_property_tree_property_base_impl& fs_property_tree_base_impl::add_property(
    fs_property_type kind, char const* name) {
  return add_with_value(kind, name, nullptr);
}

void fs_property_tree_base_impl::replace_contents(items_type&& props) {
  replace_all(std::move(props));
}

void fs_property_tree_base_impl::replace_contents(items_type&& props, index_type&& index) noexcept {
  items_.swap(props);
  index_.swap(index);
}

fs_property_tree_base_impl::items_type fs_property_tree_base_impl::copy_contents(
    fs_property_tree_base_impl const& src) {
  items_type copy = new_items();
  copy.reserve(src.items_.size());
  for (sp const& p : src.items_) copy.push_back(p->clone_into(this, copy.size()));
  return copy;
}

void fs_property_tree_base_impl::write_fields(xml_writer& w, int indent) const {
  for (sp const& p : items_) p->write_xml(w, indent);
}

fs_property_tree_property* fs_property_tree_base_impl::null_element() const {
  return fs_property_tree_property_null::get_null_obj();
}

fs_property_tree_base_impl::sp fs_property_tree_base_impl::copy_element(
    fs_property_tree_property const& src, std::size_t index) {
  fs_property_tree_property_base_impl const& impl = property_impl_of(&src);
  check_prop_name(impl.name());
  return impl.clone_into(this, index);
}

void fs_property_tree_base_impl::check_incoming(items_type const& incoming,
                                                insert_kind kind) const {
  std::set<std::string_view> names;
  for (sp const& p : incoming) {
    bool clash = !names.insert(p->name_string()).second;
    if (kind != insert_kind::assign && index_.count(p->name_string()) != 0) clash = true;
    if (clash) {
      if (kind == insert_kind::push_back)
        throw duplicate_property_name("duplicate property name passed to push back");
      throw duplicate_property_name("duplicate name encountered during insert");
    }
  }
}

void fs_property_tree_base_impl::attached(items_type const& added) {
  std::size_t done = 0;
  try {
    for (sp const& p : added) {
      index_.emplace(p->name_string(), p);
      ++done;
    }
  } catch (...) {
    for (std::size_t i = 0; i < done; ++i) index_.erase(added[i]->name_string());
    throw;
  }
}

void fs_property_tree_base_impl::detached(items_type const& removed) {
  if (items_.empty() || removed.size() == items_.size()) {
    index_.clear();
    return;
  }
  for (sp const& p : removed) index_.erase(p->name_string());
}

exception_interface* fs_property_tree_base_impl::i_root_tree_v(fs_property_tree** out) {
  return guard([&] { out_param(out) = root_; });
}

exception_interface* fs_property_tree_base_impl::i_root_tree_c(fs_property_tree const** out) const {
  return guard([&] { out_param(out) = root_; });
}

exception_interface* fs_property_tree_base_impl::i_has_property(char const* name, bool* out) const {
  return guard([&] { out_param(out) = find_property(name) != nullptr; });
}

exception_interface* fs_property_tree_base_impl::i_get_property_v(
    char const* name, fs_property_tree_property** out) {
  return guard([&] {
    fs_property_tree_property* p = find_property(name);
    out_param(out) = p != nullptr ? p : fs_property_tree_property_null::get_null_obj();
  });
}

exception_interface* fs_property_tree_base_impl::i_get_property_c(
    char const* name, fs_property_tree_property const** out) const {
  return guard([&] {
    fs_property_tree_property const* p = find_property(name);
    out_param(out) = p != nullptr ? p : fs_property_tree_property_null::get_const_null_obj();
  });
}

namespace {
template <class It, class Items>
It* iterator_at(Items const& items, fs_property_tree_property_base_impl const* p) {
  std::size_t index = items.size();
  if (p != nullptr) {
    for (std::size_t i = 0; i < items.size(); ++i)
      if (items[i].get() == p) index = i;
  }
  return new It(&items, index);
}
}  // namespace

exception_interface* fs_property_tree_base_impl::i_find_v(char const* name, iterator_v** out) {
  return guard([&] {
    iterator_v*& result = out_param(out);
    result = iterator_at<iterator_impl<fs_property_tree_property, fs_property_tree_property_base_impl>>(
        items_, find_property(name));
  });
}

exception_interface* fs_property_tree_base_impl::i_find_c(char const* name,
                                                          iterator_c** out) const {
  return guard([&] {
    iterator_c*& result = out_param(out);
    result = iterator_at<
        iterator_impl<fs_property_tree_property const, fs_property_tree_property_base_impl>>(
        items_, find_property(name));
  });
}

#define FS_PT_ADD_IMPL(kind, in_t, out_t)                                                    \
  exception_interface* fs_property_tree_base_impl::i_add_##kind##_property_1(               \
      char const* name, in_t v, fs_property_tree_property** out) {                           \
    return guard([&] {                                                                       \
      fs_property_tree_property*& result = out_param(out);                                   \
      source s = input(v);                                                                   \
      result = &add_with_value(kind_of_##kind, name, &s);                                    \
    });                                                                                      \
  }                                                                                          \
  exception_interface* fs_property_tree_base_impl::i_add_##kind##_property_2(               \
      char const* name, fs_property_tree_property** out) {                                   \
    return guard([&] {                                                                       \
      fs_property_tree_property*& result = out_param(out);                                   \
      result = &add_property(kind_of_##kind, name);                                          \
    });                                                                                      \
  }
namespace {
constexpr fs_property_type kind_of_str = fs_property_type::str;
constexpr fs_property_type kind_of_lng = fs_property_type::lng;
constexpr fs_property_type kind_of_dbl = fs_property_type::dbl;
constexpr fs_property_type kind_of_ulng = fs_property_type::ulng;
constexpr fs_property_type kind_of_int32 = fs_property_type::int32;
constexpr fs_property_type kind_of_uint32 = fs_property_type::uint32;
constexpr fs_property_type kind_of_int64 = fs_property_type::int64;
constexpr fs_property_type kind_of_uint64 = fs_property_type::uint64;
constexpr fs_property_type kind_of_ldbl = fs_property_type::ldbl;
constexpr fs_property_type kind_of_flt = fs_property_type::flt;
constexpr fs_property_type kind_of_bool = fs_property_type::boolean;
constexpr fs_property_type kind_of_guid = fs_property_type::guid;
constexpr fs_property_type kind_of_xml = fs_property_type::xml;
}  // namespace
FS_PROPERTY_TREE_SCALAR_KINDS(FS_PT_ADD_IMPL)
FS_PT_ADD_IMPL(xml, wchar_t const*, wchar_t const*)
#undef FS_PT_ADD_IMPL

exception_interface* fs_property_tree_base_impl::i_add_bin_property_1(
    char const* name, unsigned long size, unsigned char const* bytes,
    fs_property_tree_property** out) {
  return guard([&] {
    fs_property_tree_property*& result = out_param(out);
    source s = bin_source(bytes, size);
    result = &add_with_value(fs_property_type::bin, name, &s);
  });
}

exception_interface* fs_property_tree_base_impl::i_add_bin_property_2(
    char const* name, fs_property_tree_property** out) {
  return guard([&] {
    fs_property_tree_property*& result = out_param(out);
    result = &add_property(fs_property_type::bin, name);
  });
}

exception_interface* fs_property_tree_base_impl::i_add_sub_tree_property(
    char const* name, fs_property_tree_property** out) {
  return guard([&] {
    fs_property_tree_property*& result = out_param(out);
    result = &add_property(fs_property_type::tree, name);
  });
}

exception_interface* fs_property_tree_base_impl::i_clone(fs_property_tree** out) const {
  return guard([&] {
    fs_property_tree*& result = out_param(out);
    std::unique_ptr<fs_property_tree_root_impl> copy(new fs_property_tree_root_impl(name()));
    copy->replace_contents(copy->copy_contents(*this));
    result = copy.release();
  });
}

exception_interface* fs_property_tree_base_impl::i_assign(fs_property_tree const* other) {
  return guard([&] {
    check_modifiable();
    replace_contents(copy_contents(tree_impl_of(other)));
  });
}

fs_property_tree_root_impl::fs_property_tree_root_impl(std::string name)
    : fs_property_tree_base_impl(nullptr, 0, &pool_of_root), name_(std::move(name)) {}

exception_interface* fs_property_tree_root_impl::i_parent_value_v(fs_property_tree_value** out) {
  return guard([&] { out_param(out) = fs_property_tree_value_null::get_null_obj(); });
}

exception_interface* fs_property_tree_root_impl::i_parent_value_c(
    fs_property_tree_value const** out) const {
  return guard([&] { out_param(out) = fs_property_tree_value_null::get_const_null_obj(); });
}

fs_property_tree_impl::fs_property_tree_impl(fs_property_tree_value_tree_impl* owner,
                                             fs_property_tree_base_impl* root, unsigned depth)
    : fs_property_tree_base_impl(root, depth, root->pool()), owner_(owner) {}

char const* fs_property_tree_impl::name() const noexcept { return owner_->owner()->name(); }

exception_interface* fs_property_tree_impl::i_parent_value_v(fs_property_tree_value** out) {
  return guard([&] { out_param(out) = owner_; });
}

exception_interface* fs_property_tree_impl::i_parent_value_c(
    fs_property_tree_value const** out) const {
  return guard([&] { out_param(out) = owner_; });
}

}  // namespace property_tree_details
