// Value implementations: one class per kind (numeric kinds share a template).
#pragma once
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>
#include <rapidxml/rapidxml.hpp>
#include <fs_property_tree.h>
#include "conversions.h"

namespace property_tree_details {

class fs_property_tree_property_base_impl;
class fs_property_tree_base_impl;
class fs_property_tree_impl;
class xml_writer;

using xml_document = rapidxml::xml_document<char>;
using xml_node = rapidxml::xml_node<char>;

class fs_property_tree_value_base_impl : public fs_property_tree_value {
 public:
  explicit fs_property_tree_value_base_impl(fs_property_tree_property_base_impl* owner) noexcept
      : owner_(owner) {}
  ~fs_property_tree_value_base_impl() override;

  // Values live in their property; destroy() does not free them.
  void destroy() noexcept override {}
  std::size_t pos() const noexcept override { return pos_; }
  bool is_null_value() const noexcept override { return false; }
  void set_pos(std::size_t pos) noexcept { pos_ = pos; }
  fs_property_tree_property_base_impl* owner() const noexcept { return owner_; }

  // This value as a conversion source, and setting it from one.
  virtual source view() const = 0;
  virtual void assign(source const& s) = 0;
  // Reading the value from its XML element, and writing the rest of its
  // element: the open tag named `name` has been written up to its
  // attributes; the value adds "/>" when it has no content, else '>', its
  // content and the closing tag. `indent` is the element's indentation level.
  virtual void load_xml(xml_node* element) = 0;
  virtual void write_xml(xml_writer& w, std::string_view name, int indent) const = 0;
  virtual void check_modifiable() const {}

#define FS_PT_VALUE_IMPL(kind, in_t, out_t)                        \
  exception_interface* i_get_##kind##_val(out_t* out) const override; \
  exception_interface* i_set_##kind##_val(in_t v) override;
  FS_PROPERTY_TREE_SCALAR_KINDS(FS_PT_VALUE_IMPL)
#undef FS_PT_VALUE_IMPL
  exception_interface* i_get_bin_val(unsigned long* size,
                                     unsigned char const** bytes) const override;
  exception_interface* i_set_bin_val(unsigned long size, unsigned char const* bytes) override;
  exception_interface* i_sub_tree_v(fs_property_tree** out) override;
  exception_interface* i_sub_tree_c(fs_property_tree const** out) const override;
  exception_interface* i_sub_tree_property_v(char const* name,
                                             fs_property_tree_property** out) override;
  exception_interface* i_sub_tree_property_c(char const* name,
                                             fs_property_tree_property const** out) const override;
  exception_interface* i_parent_property_v(fs_property_tree_property** out) override;
  exception_interface* i_parent_property_c(fs_property_tree_property const** out) const override;
  exception_interface* i_root_tree_v(fs_property_tree** out) override;
  exception_interface* i_root_tree_c(fs_property_tree const** out) const override;
  exception_interface* i_copy(fs_property_tree_value const* other,
                              fs_property_tree_value** out) override;

  // The nested tree of a tree value; refuses every other kind.
  virtual fs_property_tree* nested_tree() const;

 protected:
  // Converted forms handed out by pointer (a string read from a number...).
  struct conversion_cache {
    std::wstring text;
    _SSGUID guid{};
    std::vector<unsigned char> bytes;
  };
  conversion_cache& cache() const;

 private:
  fs_property_tree_property_base_impl* owner_;
  std::size_t pos_ = 0;
  mutable std::unique_ptr<conversion_cache> cache_;
};

// The value implementation behind an interface pointer; a value from
// elsewhere is refused.
fs_property_tree_value_base_impl const& value_impl_of(fs_property_tree_value const* v);

// The text of an element without element children (data and CDATA joined).
// Usually the element's own value in the document; `storage` holds the text
// only when it has to be joined from several nodes.
std::string_view element_text(xml_node* element, std::string& storage);

// xml_writer::plain_element_rest, for the code that sees xml_writer only
// declared.
void write_plain_element_rest(xml_writer& w, std::string_view name, char const* s, std::size_t n);

template <class T, fs_property_type K>
class fs_property_tree_value_numeric_impl final : public fs_property_tree_value_base_impl {
 public:
  static constexpr fs_property_type kind = K;
  using fs_property_tree_value_base_impl::fs_property_tree_value_base_impl;

  fs_property_type type() const noexcept override { return K; }
  source view() const override { return number_source(K, static_cast<long double>(value_)); }
  void assign(source const& s) override { value_ = to_number<T>(s, K); }
  void load_xml(xml_node* element) override {
    std::string storage;
    std::string_view text = element_text(element, storage);
    value_ = parse_number<T>(text.data(), text.size());
  }
  void write_xml(xml_writer& w, std::string_view name, int) const override {
    char buf[64];
    std::size_t n = format_number(value_, buf);
    write_plain_element_rest(w, name, buf, n);
  }

 private:
  T value_{};
};

using fs_property_tree_value_lng_impl = fs_property_tree_value_numeric_impl<long, fs_property_type::lng>;
using fs_property_tree_value_dbl_impl = fs_property_tree_value_numeric_impl<double, fs_property_type::dbl>;
using fs_property_tree_value_ulng_impl =
    fs_property_tree_value_numeric_impl<unsigned long, fs_property_type::ulng>;
using fs_property_tree_value_int32_impl =
    fs_property_tree_value_numeric_impl<int, fs_property_type::int32>;
using fs_property_tree_value_uint32_impl =
    fs_property_tree_value_numeric_impl<unsigned int, fs_property_type::uint32>;
using fs_property_tree_value_int64_impl =
    fs_property_tree_value_numeric_impl<long long, fs_property_type::int64>;
using fs_property_tree_value_uint64_impl =
    fs_property_tree_value_numeric_impl<unsigned long long, fs_property_type::uint64>;
using fs_property_tree_value_ldbl_impl =
    fs_property_tree_value_numeric_impl<long double, fs_property_type::ldbl>;
using fs_property_tree_value_flt_impl = fs_property_tree_value_numeric_impl<float, fs_property_type::flt>;

class fs_property_tree_value_str_impl final : public fs_property_tree_value_base_impl {
 public:
  static constexpr fs_property_type kind = fs_property_type::str;
  using fs_property_tree_value_base_impl::fs_property_tree_value_base_impl;
  fs_property_type type() const noexcept override { return kind; }
  source view() const override { return text_source(kind, value_.c_str(), value_.size()); }
  void assign(source const& s) override { value_ = to_text(s); }
  void load_xml(xml_node* element) override;
  void write_xml(xml_writer& w, std::string_view name, int indent) const override;

 private:
  std::wstring value_;
};

class fs_property_tree_value_bool_impl final : public fs_property_tree_value_base_impl {
 public:
  static constexpr fs_property_type kind = fs_property_type::boolean;
  using fs_property_tree_value_base_impl::fs_property_tree_value_base_impl;
  fs_property_type type() const noexcept override { return kind; }
  source view() const override { return number_source(kind, value_ ? 1 : 0); }
  void assign(source const& s) override { value_ = to_bool(s); }
  void load_xml(xml_node* element) override;
  void write_xml(xml_writer& w, std::string_view name, int indent) const override;

 private:
  bool value_ = false;
};

class fs_property_tree_value_guid_impl final : public fs_property_tree_value_base_impl {
 public:
  static constexpr fs_property_type kind = fs_property_type::guid;
  using fs_property_tree_value_base_impl::fs_property_tree_value_base_impl;
  fs_property_type type() const noexcept override { return kind; }
  source view() const override { return guid_source(value_); }
  void assign(source const& s) override { value_ = to_guid(s); }
  void load_xml(xml_node* element) override;
  void write_xml(xml_writer& w, std::string_view name, int indent) const override;

 private:
  _SSGUID value_{};
};

class fs_property_tree_value_bin_impl final : public fs_property_tree_value_base_impl {
 public:
  static constexpr fs_property_type kind = fs_property_type::bin;
  using fs_property_tree_value_base_impl::fs_property_tree_value_base_impl;
  fs_property_type type() const noexcept override { return kind; }
  source view() const override { return bin_source(value_.data(), value_.size()); }
  void assign(source const& s) override;
  void load_xml(xml_node* element) override;
  void write_xml(xml_writer& w, std::string_view name, int indent) const override;

 private:
  std::vector<unsigned char> value_;
};

class fs_property_tree_value_xml_impl final : public fs_property_tree_value_base_impl {
 public:
  static constexpr fs_property_type kind = fs_property_type::xml;
  using fs_property_tree_value_base_impl::fs_property_tree_value_base_impl;
  fs_property_type type() const noexcept override { return kind; }
  source view() const override { return text_source(kind, value_.c_str(), value_.size()); }
  void assign(source const& s) override { value_ = to_xml(s); }
  void load_xml(xml_node* element) override;
  void write_xml(xml_writer& w, std::string_view name, int indent) const override;

 private:
  std::wstring value_;  // an XML fragment
};

class fs_property_tree_value_tree_impl final : public fs_property_tree_value_base_impl {
 public:
  static constexpr fs_property_type kind = fs_property_type::tree;
  // Creates the nested tree; refused beyond the nesting limit.
  explicit fs_property_tree_value_tree_impl(fs_property_tree_property_base_impl* owner);
  ~fs_property_tree_value_tree_impl() override;
  fs_property_type type() const noexcept override { return kind; }
  source view() const override;
  void assign(source const& s) override;
  void load_xml(xml_node* element) override;
  void write_xml(xml_writer& w, std::string_view name, int indent) const override;
  fs_property_tree* nested_tree() const override;

 private:
  std::unique_ptr<fs_property_tree_impl> tree_;
};

}  // namespace property_tree_details
