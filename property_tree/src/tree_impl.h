// Tree implementations: the tree body (properties in insertion order plus an
// index by name, kept in step), root trees and nested trees.
#pragma once
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include "property_impl.h"

namespace property_tree_details {

// Byte-wise name order (the order of std::string), compared inline: names
// are short, and most of a lookup's time would go to calling memcmp.
struct name_order {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const noexcept {
    std::size_t n = a.size() < b.size() ? a.size() : b.size();
    for (std::size_t i = 0; i < n; ++i) {
      if (a[i] != b[i])
        return static_cast<unsigned char>(a[i]) < static_cast<unsigned char>(b[i]);
    }
    return a.size() < b.size();
  }
};

class fs_property_tree_base_impl
    : public container_impl<fs_property_tree, fs_property_tree_property,
                            fs_property_tree_property_base_impl> {
 public:
  // A root passes null for `root` and its own pool; `depth` is 0 for a root.
  // Nested trees draw on their root's pool; the null tree has none.
  fs_property_tree_base_impl(fs_property_tree_base_impl* root, unsigned depth, tree_pool* pool);
  ~fs_property_tree_base_impl() override;

  bool is_null_tree() const noexcept override { return false; }
  fs_property_tree_base_impl* root() const noexcept { return root_; }
  unsigned depth() const noexcept { return depth_; }

  fs_property_tree_property_base_impl* find_property(char const* name) const;
  // Adds an empty property (the i_add_..._2 rules: name check, then the
  // kind's duplicate message).
  fs_property_tree_property_base_impl& add_property(fs_property_type kind, char const* name);
  // Keyed by a copy of each name: a lookup then compares bytes held in the
  // index's own nodes instead of reaching into every property it passes.
  using index_type =
      std::map<std::string, sp, name_order, pool_allocator<std::pair<std::string const, sp>>>;
  // An empty index drawing on this tree's pool.
  index_type new_index() const { return index_type(name_order(), index_type::allocator_type(pool())); }
  // Replaces all properties with `props` (made for this tree, names unique).
  void replace_contents(items_type&& props);
  // The same with the name index already built.
  void replace_contents(items_type&& props, index_type&& index) noexcept;
  // A deep copy of `src`'s properties made for this tree.
  items_type copy_contents(fs_property_tree_base_impl const& src);
  // Writes every property's elements at indentation level `indent`.
  void write_fields(xml_writer& w, int indent) const;
  // The properties read from the element children of `node`, with their index.
  std::pair<items_type, index_type> load_fields(xml_node* node);

  exception_interface* i_root_tree_v(fs_property_tree** out) override;
  exception_interface* i_root_tree_c(fs_property_tree const** out) const override;
  exception_interface* i_has_property(char const* name, bool* out) const override;
  exception_interface* i_get_property_v(char const* name, fs_property_tree_property** out) override;
  exception_interface* i_get_property_c(char const* name,
                                        fs_property_tree_property const** out) const override;
  exception_interface* i_find_v(char const* name, iterator_v** out) override;
  exception_interface* i_find_c(char const* name, iterator_c** out) const override;
  exception_interface* i_query_sub_tree_v(char const* path, fs_property_tree** out) override;
  exception_interface* i_query_sub_tree_c(char const* path,
                                          fs_property_tree const** out) const override;
#define FS_PT_ADD_IMPL(kind, in_t, out_t)                                              \
  exception_interface* i_add_##kind##_property_1(char const* name, in_t v,              \
                                                 fs_property_tree_property** out) override; \
  exception_interface* i_add_##kind##_property_2(char const* name,                      \
                                                 fs_property_tree_property** out) override;
  FS_PROPERTY_TREE_SCALAR_KINDS(FS_PT_ADD_IMPL)
  FS_PT_ADD_IMPL(xml, wchar_t const*, wchar_t const*)
#undef FS_PT_ADD_IMPL
  exception_interface* i_add_bin_property_1(char const* name, unsigned long size,
                                            unsigned char const* bytes,
                                            fs_property_tree_property** out) override;
  exception_interface* i_add_bin_property_2(char const* name,
                                            fs_property_tree_property** out) override;
  exception_interface* i_add_sub_tree_property(char const* name,
                                               fs_property_tree_property** out) override;
  exception_interface* i_serialize_txt(text_interface<wchar_t>** out) const override;
  exception_interface* i_serialize_utf8txt(text_interface<char>** out) const override;
  exception_interface* i_load_txt(wchar_t const* text) override;
  exception_interface* i_load_utf8txt(char const* text) override;
  exception_interface* i_clone(fs_property_tree** out) const override;
  exception_interface* i_assign(fs_property_tree const* other) override;

  // The UTF-8 XML document of this tree.
  text_buffer serialize_utf8() const;

 protected:
  fs_property_tree_property* null_element() const override;
  sp copy_element(fs_property_tree_property const& src, std::size_t index) override;
  void check_incoming(items_type const& incoming, insert_kind kind) const override;
  void attached(items_type const& added) override;
  void detached(items_type const& removed) override;

 private:
  // Adds a property of `kind` with the value `v` (none when v is null).
  fs_property_tree_property_base_impl& add_with_value(fs_property_type kind, char const* name,
                                                      source const* v);

  fs_property_tree_base_impl* root_;
  unsigned depth_;
  index_type index_;
};

// Holds a root's pool in a base constructed before, and destroyed after, the
// tree body whose elements live in it.
struct root_pool_holder {
  tree_pool pool_of_root;
};

class fs_property_tree_root_impl final : private root_pool_holder,
                                         public fs_property_tree_base_impl {
 public:
  explicit fs_property_tree_root_impl(std::string name);
  void destroy() noexcept override { delete this; }
  char const* name() const noexcept override { return name_.c_str(); }
  bool is_root() const noexcept override { return true; }
  exception_interface* i_parent_value_v(fs_property_tree_value** out) override;
  exception_interface* i_parent_value_c(fs_property_tree_value const** out) const override;

 private:
  std::string name_;
};

class fs_property_tree_impl final : public fs_property_tree_base_impl {
 public:
  fs_property_tree_impl(fs_property_tree_value_tree_impl* owner, fs_property_tree_base_impl* root,
                        unsigned depth);
  // A nested tree lives in its value; destroy() does not free it.
  void destroy() noexcept override {}
  char const* name() const noexcept override;
  bool is_root() const noexcept override { return false; }
  exception_interface* i_parent_value_v(fs_property_tree_value** out) override;
  exception_interface* i_parent_value_c(fs_property_tree_value const** out) const override;

 private:
  fs_property_tree_value_tree_impl* owner_;
};

// The tree implementation behind an interface pointer.
fs_property_tree_base_impl const& tree_impl_of(fs_property_tree const* t);

// Parses the NUL-terminated UTF-8 XML text in `buffer` (as buffer_of makes
// it) in place, after the character and markup checks of xml_check.h with
// `depth_limit` levels of nesting; closing tags must match, no element may
// name an attribute twice (refused as the parser's error "duplicate
// attribute name"), and a second root element is refused. The document keeps
// pointers into `buffer`, which must stay alive. Throws std::runtime_error or
// the parser's error.
void parse_document(std::vector<char>& buffer, unsigned depth_limit, xml_document& doc);

}  // namespace property_tree_details

namespace property_tree_details {
// A private, NUL-terminated UTF-8 copy of XML text for the parser (wide text
// is checked and converted first).
std::vector<char> buffer_of(char const* text);
std::vector<char> buffer_of(wchar_t const* text);
// The document's first element; refused when there is none.
xml_node* root_element(xml_document& doc);
}  // namespace property_tree_details
