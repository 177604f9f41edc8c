// Basic types of the property tree interface: the GUID record, the value
// kinds, the exceptions, and the exception objects that carry a failure back
// across the library boundary.
//
// No exception ever leaves the library: every i_... operation returns an
// exception object (null on success) and the inline wrappers on the caller's
// side turn it back into a thrown exception with rethrow().
#pragma once
#include <cstddef>
#include <cstring>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <qbclass/shared_ptr.h>

// A 16-byte GUID record. Its text form is "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}"
// in upper-case hexadecimal: Data1, Data2, Data3 as numbers, then the eight
// bytes of Data4 in order. Reading accepts either case, with or without the
// braces.
struct _SSGUID {
  unsigned int Data1;
  unsigned short Data2;
  unsigned short Data3;
  unsigned char Data4[8];
};

inline bool operator==(_SSGUID const& a, _SSGUID const& b) noexcept {
  return a.Data1 == b.Data1 && a.Data2 == b.Data2 && a.Data3 == b.Data3 &&
         std::memcmp(a.Data4, b.Data4, sizeof a.Data4) == 0;
}
inline bool operator!=(_SSGUID const& a, _SSGUID const& b) noexcept { return !(a == b); }

// The fifteen value kinds, in the order of the kind table.
enum class fs_property_type : int {
  str, lng, dbl, ulng, int32, uint32, int64, uint64, ldbl, flt, boolean, guid, bin, xml, tree
};

namespace property_tree_details {
// An exception with a message of its own; base of the tree's exceptions.
class message_exception : public std::exception {
 public:
  explicit message_exception(std::string message) : message_(std::move(message)) {}
  char const* what() const noexcept override { return message_.c_str(); }

 private:
  std::string message_;
};
}  // namespace property_tree_details

class invalid_property_name : public std::exception {
 public:
  explicit invalid_property_name(std::string message) : message_(std::move(message)) {}
  char const* what() const noexcept override { return message_.c_str(); }

 private:
  std::string message_;
};

class duplicate_property_name : public std::exception {
 public:
  explicit duplicate_property_name(std::string message) : message_(std::move(message)) {}
  char const* what() const noexcept override { return message_.c_str(); }

 private:
  std::string message_;
};

class modify_null_obj : public std::exception {
 public:
  explicit modify_null_obj(std::string message = "can not modify a null object")
      : message_(std::move(message)) {}
  char const* what() const noexcept override { return message_.c_str(); }

 private:
  std::string message_;
};

// Raised inside the library for a refused conversion between kinds. It has no
// category of its own: callers receive it as a std::exception with its message.
class type_conversion_error : public std::exception {
 public:
  explicit type_conversion_error(std::string message) : message_(std::move(message)) {}
  char const* what() const noexcept override { return message_.c_str(); }

 private:
  std::string message_;
};

namespace property_tree_details {

// Root of every interface: objects are released with destroy(), never delete.
class base_interface {
 public:
  virtual void destroy() noexcept = 0;

 protected:
  base_interface() = default;
  base_interface(base_interface const&) = default;
  base_interface& operator=(base_interface const&) = default;
  virtual ~base_interface() = default;
};

// Which kind of exception a returned exception object stands for.
enum class exception_category : int {
  invalid_property_name = 1,
  duplicate_property_name,
  modify_null_obj,
  bad_alloc,
  out_of_range,
  runtime_error,
  exception,
  unknown
};

class exception_interface : public base_interface {
 public:
  virtual exception_category category() const noexcept = 0;
  virtual char const* what() const noexcept = 0;
};

struct property_tree_exception_destroyer {
  void operator()(exception_interface* e) const noexcept {
    if (e != nullptr) e->destroy();
  }
};

struct property_tree_interface_destroyer {
  template <class T>
  void operator()(T* p) const noexcept {
    if (p != nullptr) p->destroy();
  }
};

// Text handed out by the library (serialized XML): read it, then destroy().
template <class Ch>
class text_interface : public base_interface {
 public:
  virtual Ch const* data() const noexcept = 0;
  virtual std::size_t size() const noexcept = 0;
};

// Throws the exception that `e` stands for and releases `e`.
[[noreturn]] inline void rethrow(exception_interface* e) {
  qbclass::shared_ptr<exception_interface> held(e, property_tree_exception_destroyer());
  std::string message = held->what();
  exception_category category = held->category();
  held.reset();
  switch (category) {
    case exception_category::invalid_property_name: throw invalid_property_name(message);
    case exception_category::duplicate_property_name: throw duplicate_property_name(message);
    case exception_category::modify_null_obj: throw modify_null_obj(message);
    case exception_category::bad_alloc: throw std::bad_alloc();
    case exception_category::out_of_range: throw std::out_of_range(message);
    case exception_category::runtime_error: throw std::runtime_error(message);
    default: throw message_exception(message);
  }
}

inline void check(exception_interface* e) {
  if (e != nullptr) rethrow(e);
}

}  // namespace property_tree_details
