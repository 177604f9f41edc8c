// The property tree: a typed tree of named properties with an XML form.
//
// A tree holds properties in insertion order; names are unique within a tree.
// A property has a name, one value kind and an ordered list of values of that
// kind; a value of kind tree owns a nested tree. The classes here are abstract
// interfaces implemented inside libqbfsys.so: every operation i_... reports
// failure by returning an exception object, and the inline wrappers (the
// lower-case names without the i_ prefix) throw it again on the caller's
// side. Failures arrive as invalid_property_name, duplicate_property_name,
// modify_null_obj, std::bad_alloc, std::out_of_range, std::runtime_error or,
// for everything else (conversion refusals, boost conversion errors, XML
// parser errors), a std::exception carrying the message.
//
// Choices made where the behaviour is not fixed elsewhere:
// - Nesting: a tree nests at most fs_property_tree_max_depth levels below its
//   root, and an XML document at most fs_property_tree_max_xml_depth element
//   levels; deeper input is refused with std::runtime_error, so no operation
//   recurses without bound.
// - Conversions beyond the listed refusals: numbers convert among themselves
//   with range checks; a bool reads as 0 or 1 and a number becomes a bool only
//   when it is 0 or 1 (fractions truncate); strings and xml text read as
//   numbers, bools and GUIDs by lexical conversion (an unsigned kind refuses a
//   leading '-'); a GUID becomes a binary of its 16 bytes; a binary or GUID
//   never becomes a number; an xml value reads like a string.
// - A null value reads as the default of the asked kind (0, "", false, the
//   zero GUID, no bytes) and refuses every change.
// - Text: bool values are written "1"/"0"; GUIDs as described at _SSGUID;
//   floating values with the full precision of their type.
// - Strings: wide characters that are not Unicode scalar values (surrogates,
//   above U+10FFFF) and characters XML cannot carry (control characters other
//   than tab, line feed and carriage return; U+FFFE, U+FFFF) are written as
//   U+FFFD; text to load must be valid UTF-8 or valid wide text, otherwise the
//   load fails. Blank-only text and carriage returns are written as character
//   references so that they read back unchanged; an xml fragment that mixes
//   text and elements is written without indentation. Whatever loads can be
//   written again, and writing a loaded tree, loading and writing it again
//   gives the same text.
// - XML text must be well-formed: a load refuses control characters,
//   character references to anything but an XML character, an '&' that starts
//   no reference, a closing tag that does not match its element and a second
//   root element. An xml value that would not load back (not well-formed, or
//   nested beyond the document limit where it sits) is refused on writing.
// - XML reading: a property whose "count" promises more same-named sibling
//   elements than follow is refused with std::runtime_error (nothing is
//   loaded); a "type" that names no kind is a type_conversion_error; a root
//   element name must follow the property-name rules.
// - Null pointers given for names, strings or output are refused with an
//   exception object, never dereferenced.
#pragma once
#include <cstddef>
#include <string>
#include <vector>
#include <fs_property_tree_container.h>
#include <fs_property_tree_error.h>
#include <qbfsys/fs_export.h>

class fs_property_tree;
class fs_property_tree_property;
class fs_property_tree_value;

// Deepest nesting of trees below a root, and of elements in an XML document.
constexpr unsigned fs_property_tree_max_depth = 256;
constexpr unsigned fs_property_tree_max_xml_depth = 512;

// The kinds with a one-argument value: X(kind, input type, output type).
#define FS_PROPERTY_TREE_SCALAR_KINDS(X)            \
  X(str, wchar_t const*, wchar_t const*)            \
  X(lng, long, long)                                \
  X(dbl, double, double)                            \
  X(ulng, unsigned long, unsigned long)             \
  X(int32, int, int)                                \
  X(uint32, unsigned int, unsigned int)             \
  X(int64, long long, long long)                    \
  X(uint64, unsigned long long, unsigned long long) \
  X(ldbl, long double, long double)                 \
  X(flt, float, float)                              \
  X(bool, bool, bool)                               \
  X(guid, _SSGUID const&, _SSGUID const*)

// One value of a property.
class fs_property_tree_value : public property_tree_details::base_interface {
 public:
  using exception_interface = property_tree_details::exception_interface;

  virtual std::size_t pos() const noexcept = 0;
  virtual bool is_null_value() const noexcept = 0;
  virtual fs_property_type type() const noexcept = 0;

#define FS_PT_VALUE_ACCESS(kind, in_t, out_t)                  \
  virtual exception_interface* i_get_##kind##_val(out_t* out) const = 0; \
  virtual exception_interface* i_set_##kind##_val(in_t v) = 0;
  FS_PROPERTY_TREE_SCALAR_KINDS(FS_PT_VALUE_ACCESS)
#undef FS_PT_VALUE_ACCESS
  virtual exception_interface* i_get_bin_val(unsigned long* size,
                                             unsigned char const** bytes) const = 0;
  virtual exception_interface* i_set_bin_val(unsigned long size, unsigned char const* bytes) = 0;

  virtual exception_interface* i_sub_tree_v(fs_property_tree** out) = 0;
  virtual exception_interface* i_sub_tree_c(fs_property_tree const** out) const = 0;
  virtual exception_interface* i_sub_tree_property_v(char const* name,
                                                     fs_property_tree_property** out) = 0;
  virtual exception_interface* i_sub_tree_property_c(
      char const* name, fs_property_tree_property const** out) const = 0;
  virtual exception_interface* i_parent_property_v(fs_property_tree_property** out) = 0;
  virtual exception_interface* i_parent_property_c(fs_property_tree_property const** out) const = 0;
  virtual exception_interface* i_root_tree_v(fs_property_tree** out) = 0;
  virtual exception_interface* i_root_tree_c(fs_property_tree const** out) const = 0;
  // Sets this value from `other`, converted to this value's kind.
  virtual exception_interface* i_copy(fs_property_tree_value const* other,
                                      fs_property_tree_value** out) = 0;

  // Wrappers.
#define FS_PT_VALUE_WRAP(kind, in_t, out_t)                  \
  out_t get_##kind##_val() const {                           \
    out_t out{};                                             \
    property_tree_details::check(i_get_##kind##_val(&out));  \
    return out;                                              \
  }                                                          \
  fs_property_tree_value& set_##kind##_val(in_t v) {         \
    property_tree_details::check(i_set_##kind##_val(v));     \
    return *this;                                            \
  }
  FS_PROPERTY_TREE_SCALAR_KINDS(FS_PT_VALUE_WRAP)
#undef FS_PT_VALUE_WRAP
  std::vector<unsigned char> get_bin_val() const {
    unsigned long size = 0;
    unsigned char const* bytes = nullptr;
    property_tree_details::check(i_get_bin_val(&size, &bytes));
    if (size == 0) return std::vector<unsigned char>();
    return std::vector<unsigned char>(bytes, bytes + size);
  }
  fs_property_tree_value& set_bin_val(unsigned long size, unsigned char const* bytes) {
    property_tree_details::check(i_set_bin_val(size, bytes));
    return *this;
  }
  inline fs_property_tree& sub_tree();
  inline fs_property_tree const& sub_tree() const;
  inline fs_property_tree_property& sub_tree_property(char const* name);
  inline fs_property_tree_property const& sub_tree_property(char const* name) const;
  inline fs_property_tree_property& parent_property();
  inline fs_property_tree_property const& parent_property() const;
  inline fs_property_tree& root_tree();
  inline fs_property_tree const& root_tree() const;
  fs_property_tree_value& copy(fs_property_tree_value const& other) {
    fs_property_tree_value* out = nullptr;
    property_tree_details::check(i_copy(&other, &out));
    return *out;
  }

 protected:
  fs_property_tree_value() = default;
  fs_property_tree_value(fs_property_tree_value const&) = delete;
  fs_property_tree_value& operator=(fs_property_tree_value const&) = delete;
};

// One named property: a container of values of its kind.
class fs_property_tree_property
    : public property_tree_details::fs_property_tree_container_interface<fs_property_tree_value> {
 public:
  using exception_interface = property_tree_details::exception_interface;

  virtual char const* name() const noexcept = 0;
  virtual fs_property_type type() const noexcept = 0;
  virtual bool is_null_property() const noexcept = 0;
  virtual exception_interface* i_root_tree_v(fs_property_tree** out) = 0;
  virtual exception_interface* i_root_tree_c(fs_property_tree const** out) const = 0;
  virtual exception_interface* i_parent_tree_v(fs_property_tree** out) = 0;
  virtual exception_interface* i_parent_tree_c(fs_property_tree const** out) const = 0;
  virtual exception_interface* i_resize(std::size_t n) = 0;
  virtual exception_interface* i_resize_init(std::size_t n, fs_property_tree_value const* v) = 0;

  // Appending: a default value, a value converted from any input type, or a
  // new nested tree (tree properties only).
  virtual exception_interface* i_append_new_value(fs_property_tree_value** out) = 0;
#define FS_PT_APPEND(kind, in_t, out_t) \
  virtual exception_interface* i_append_new_##kind##_value(in_t v, fs_property_tree_value** out) = 0;
  FS_PROPERTY_TREE_SCALAR_KINDS(FS_PT_APPEND)
#undef FS_PT_APPEND
  virtual exception_interface* i_append_new_bin_value(unsigned long size,
                                                      unsigned char const* bytes,
                                                      fs_property_tree_value** out) = 0;
  virtual exception_interface* i_append_new_sub_tree(fs_property_tree** out) = 0;

  // Wrappers.
  inline fs_property_tree& root_tree();
  inline fs_property_tree const& root_tree() const;
  inline fs_property_tree& parent_tree();
  inline fs_property_tree const& parent_tree() const;
  void resize(std::size_t n) { property_tree_details::check(i_resize(n)); }
  void resize(std::size_t n, fs_property_tree_value const& v) {
    property_tree_details::check(i_resize_init(n, &v));
  }
  fs_property_tree_value& append_new_value() {
    fs_property_tree_value* out = nullptr;
    property_tree_details::check(i_append_new_value(&out));
    return *out;
  }
#define FS_PT_APPEND_WRAP(kind, in_t, out_t)                         \
  fs_property_tree_value& append_new_##kind##_value(in_t v) {        \
    fs_property_tree_value* out = nullptr;                           \
    property_tree_details::check(i_append_new_##kind##_value(v, &out)); \
    return *out;                                                     \
  }
  FS_PROPERTY_TREE_SCALAR_KINDS(FS_PT_APPEND_WRAP)
#undef FS_PT_APPEND_WRAP
  fs_property_tree_value& append_new_bin_value(unsigned long size, unsigned char const* bytes) {
    fs_property_tree_value* out = nullptr;
    property_tree_details::check(i_append_new_bin_value(size, bytes, &out));
    return *out;
  }
  inline fs_property_tree& append_new_sub_tree();

 protected:
  fs_property_tree_property() = default;
  fs_property_tree_property(fs_property_tree_property const&) = delete;
  fs_property_tree_property& operator=(fs_property_tree_property const&) = delete;
};

// A tree: a container of uniquely named properties.
class fs_property_tree
    : public property_tree_details::fs_property_tree_key_container_interface<
          fs_property_tree_property> {
 public:
  using exception_interface = property_tree_details::exception_interface;

  // A root tree's own name; for a nested tree the name of the property that
  // owns it.
  virtual char const* name() const noexcept = 0;
  virtual bool is_root() const noexcept = 0;
  virtual bool is_null_tree() const noexcept = 0;
  virtual exception_interface* i_root_tree_v(fs_property_tree** out) = 0;
  virtual exception_interface* i_root_tree_c(fs_property_tree const** out) const = 0;
  // The tree value that owns a nested tree (the null value for a root).
  virtual exception_interface* i_parent_value_v(fs_property_tree_value** out) = 0;
  virtual exception_interface* i_parent_value_c(fs_property_tree_value const** out) const = 0;
  // The nested tree reached by `path`: steps separated by '/', each a property
  // name with an optional value position ("a/b[2]/c"), "." or ".."; a leading
  // '/' starts at the root; names allow letters, digits and '_' only.
  // A step naming a missing property or a position past its values leads to
  // the null tree (and stays there); a step whose value is not a tree fails
  // with the conversion error; ".." from a root leads to the null tree.
  virtual exception_interface* i_query_sub_tree_v(char const* path, fs_property_tree** out) = 0;
  virtual exception_interface* i_query_sub_tree_c(char const* path,
                                                  fs_property_tree const** out) const = 0;

  // Adding properties; a name must be new in this tree.
#define FS_PT_ADD(kind, in_t, out_t)                                                    \
  virtual exception_interface* i_add_##kind##_property_1(char const* name, in_t v,       \
                                                         fs_property_tree_property** out) = 0; \
  virtual exception_interface* i_add_##kind##_property_2(char const* name,               \
                                                         fs_property_tree_property** out) = 0;
  FS_PROPERTY_TREE_SCALAR_KINDS(FS_PT_ADD)
  FS_PT_ADD(xml, wchar_t const*, wchar_t const*)
#undef FS_PT_ADD
  virtual exception_interface* i_add_bin_property_1(char const* name, unsigned long size,
                                                    unsigned char const* bytes,
                                                    fs_property_tree_property** out) = 0;
  virtual exception_interface* i_add_bin_property_2(char const* name,
                                                    fs_property_tree_property** out) = 0;
  virtual exception_interface* i_add_sub_tree_property(char const* name,
                                                       fs_property_tree_property** out) = 0;

  // XML text (see the XML notes at the top of this file).
  virtual exception_interface* i_serialize_txt(
      property_tree_details::text_interface<wchar_t>** out) const = 0;
  virtual exception_interface* i_serialize_utf8txt(
      property_tree_details::text_interface<char>** out) const = 0;
  // Replace the contents from XML; on failure the tree is left as it was.
  virtual exception_interface* i_load_txt(wchar_t const* text) = 0;
  virtual exception_interface* i_load_utf8txt(char const* text) = 0;
  // A new root tree (same name) holding a deep copy; release it with destroy().
  virtual exception_interface* i_clone(fs_property_tree** out) const = 0;
  // Replace the contents with a deep copy of `other`.
  virtual exception_interface* i_assign(fs_property_tree const* other) = 0;

  // Wrappers.
  fs_property_tree& root_tree() {
    fs_property_tree* out = nullptr;
    property_tree_details::check(i_root_tree_v(&out));
    return *out;
  }
  fs_property_tree const& root_tree() const {
    fs_property_tree const* out = nullptr;
    property_tree_details::check(i_root_tree_c(&out));
    return *out;
  }
  fs_property_tree_value& parent_value() {
    fs_property_tree_value* out = nullptr;
    property_tree_details::check(i_parent_value_v(&out));
    return *out;
  }
  fs_property_tree_value const& parent_value() const {
    fs_property_tree_value const* out = nullptr;
    property_tree_details::check(i_parent_value_c(&out));
    return *out;
  }
  fs_property_tree& query_sub_tree(char const* path) {
    fs_property_tree* out = nullptr;
    property_tree_details::check(i_query_sub_tree_v(path, &out));
    return *out;
  }
  fs_property_tree const& query_sub_tree(char const* path) const {
    fs_property_tree const* out = nullptr;
    property_tree_details::check(i_query_sub_tree_c(path, &out));
    return *out;
  }
#define FS_PT_ADD_WRAP(kind, in_t, out_t)                                   \
  fs_property_tree_property& add_##kind##_property(char const* name, in_t v) { \
    fs_property_tree_property* out = nullptr;                               \
    property_tree_details::check(i_add_##kind##_property_1(name, v, &out)); \
    return *out;                                                            \
  }                                                                         \
  fs_property_tree_property& add_##kind##_property(char const* name) {      \
    fs_property_tree_property* out = nullptr;                               \
    property_tree_details::check(i_add_##kind##_property_2(name, &out));    \
    return *out;                                                            \
  }
  FS_PROPERTY_TREE_SCALAR_KINDS(FS_PT_ADD_WRAP)
  FS_PT_ADD_WRAP(xml, wchar_t const*, wchar_t const*)
#undef FS_PT_ADD_WRAP
  fs_property_tree_property& add_bin_property(char const* name, unsigned long size,
                                              unsigned char const* bytes) {
    fs_property_tree_property* out = nullptr;
    property_tree_details::check(i_add_bin_property_1(name, size, bytes, &out));
    return *out;
  }
  fs_property_tree_property& add_bin_property(char const* name) {
    fs_property_tree_property* out = nullptr;
    property_tree_details::check(i_add_bin_property_2(name, &out));
    return *out;
  }
  fs_property_tree_property& add_sub_tree_property(char const* name) {
    fs_property_tree_property* out = nullptr;
    property_tree_details::check(i_add_sub_tree_property(name, &out));
    return *out;
  }
  std::wstring serialize_txt() const {
    property_tree_details::text_interface<wchar_t>* out = nullptr;
    property_tree_details::check(i_serialize_txt(&out));
    return take(out);
  }
  std::string serialize_utf8txt() const {
    property_tree_details::text_interface<char>* out = nullptr;
    property_tree_details::check(i_serialize_utf8txt(&out));
    return take(out);
  }
  void load_txt(wchar_t const* text) { property_tree_details::check(i_load_txt(text)); }
  void load_utf8txt(char const* text) { property_tree_details::check(i_load_utf8txt(text)); }
  // The caller owns the clone and releases it with destroy().
  fs_property_tree* clone() const {
    fs_property_tree* out = nullptr;
    property_tree_details::check(i_clone(&out));
    return out;
  }
  fs_property_tree& operator=(fs_property_tree const& other) {
    property_tree_details::check(i_assign(&other));
    return *this;
  }

 protected:
  fs_property_tree() = default;
  fs_property_tree(fs_property_tree const&) = delete;

 private:
  template <class Ch>
  static std::basic_string<Ch> take(property_tree_details::text_interface<Ch>* text) {
    qbclass::shared_ptr<property_tree_details::text_interface<Ch>> held(
        text, property_tree_details::property_tree_interface_destroyer());
    return std::basic_string<Ch>(held->data(), held->size());
  }
};

// Wrappers that need the complete tree and property classes.
#define FS_PT_OUT_WRAP(Owner, Result, fn, call)                      \
  inline Result& Owner::fn() {                                       \
    Result* out = nullptr;                                           \
    property_tree_details::check(call##_v(&out));                    \
    return *out;                                                     \
  }                                                                  \
  inline Result const& Owner::fn() const {                           \
    Result const* out = nullptr;                                     \
    property_tree_details::check(call##_c(&out));                    \
    return *out;                                                     \
  }
FS_PT_OUT_WRAP(fs_property_tree_value, fs_property_tree, sub_tree, i_sub_tree)
FS_PT_OUT_WRAP(fs_property_tree_value, fs_property_tree_property, parent_property,
               i_parent_property)
FS_PT_OUT_WRAP(fs_property_tree_value, fs_property_tree, root_tree, i_root_tree)
FS_PT_OUT_WRAP(fs_property_tree_property, fs_property_tree, root_tree, i_root_tree)
FS_PT_OUT_WRAP(fs_property_tree_property, fs_property_tree, parent_tree, i_parent_tree)
#undef FS_PT_OUT_WRAP

inline fs_property_tree_property& fs_property_tree_value::sub_tree_property(char const* name) {
  fs_property_tree_property* out = nullptr;
  property_tree_details::check(i_sub_tree_property_v(name, &out));
  return *out;
}
inline fs_property_tree_property const& fs_property_tree_value::sub_tree_property(
    char const* name) const {
  fs_property_tree_property const* out = nullptr;
  property_tree_details::check(i_sub_tree_property_c(name, &out));
  return *out;
}
inline fs_property_tree& fs_property_tree_property::append_new_sub_tree() {
  fs_property_tree* out = nullptr;
  property_tree_details::check(i_append_new_sub_tree(&out));
  return *out;
}

// Entry points of the library, unmangled. Each returns null or the exception
// object; on failure *out is not set.
extern "C" {
// An empty root tree; the name follows the property-name rules.
FS_EXPORT property_tree_details::exception_interface* create_root_tree(char const* name,
                                                                       fs_property_tree** out);
// A root tree read from XML text, named by the document's first element.
FS_EXPORT property_tree_details::exception_interface* load_root_tree(wchar_t const* xml,
                                                                     fs_property_tree** out);
FS_EXPORT property_tree_details::exception_interface* utf8load_root_tree(char const* xml,
                                                                         fs_property_tree** out);
}

// Holding a root tree: released through destroy() when the last copy goes.
using fs_property_tree_ptr = qbclass::shared_ptr<fs_property_tree>;

inline fs_property_tree_ptr fs_property_tree_adopt(fs_property_tree* root) {
  return fs_property_tree_ptr(root, property_tree_details::property_tree_interface_destroyer());
}
inline fs_property_tree_ptr fs_property_tree_create(char const* name) {
  fs_property_tree* out = nullptr;
  property_tree_details::check(create_root_tree(name, &out));
  return fs_property_tree_adopt(out);
}
inline fs_property_tree_ptr fs_property_tree_load(wchar_t const* xml) {
  fs_property_tree* out = nullptr;
  property_tree_details::check(load_root_tree(xml, &out));
  return fs_property_tree_adopt(out);
}
inline fs_property_tree_ptr fs_property_tree_load_utf8(char const* xml) {
  fs_property_tree* out = nullptr;
  property_tree_details::check(utf8load_root_tree(xml, &out));
  return fs_property_tree_adopt(out);
}
