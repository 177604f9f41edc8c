// The exception objects and texts returned across the library boundary, and
// guard(), the one handler every i_... operation runs its body in.
#pragma once
#include <algorithm>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <fs_property_tree_error.h>

namespace property_tree_details {

class exception_impl final : public exception_interface {
 public:
  exception_impl(exception_category category, char const* message);
  void destroy() noexcept override;
  exception_category category() const noexcept override { return category_; }
  char const* what() const noexcept override { return message_.c_str(); }

 private:
  exception_category category_;
  std::string message_;
};

// A new exception object; when even that cannot be allocated, a shared
// bad_alloc object whose destroy() does nothing.
exception_interface* make_exception(exception_category category, char const* message) noexcept;

template <class Body>
exception_interface* guard(Body&& body) noexcept {
  try {
    body();
    return nullptr;
  } catch (invalid_property_name const& e) {
    return make_exception(exception_category::invalid_property_name, e.what());
  } catch (duplicate_property_name const& e) {
    return make_exception(exception_category::duplicate_property_name, e.what());
  } catch (modify_null_obj const& e) {
    return make_exception(exception_category::modify_null_obj, e.what());
  } catch (std::bad_alloc const& e) {
    return make_exception(exception_category::bad_alloc, e.what());
  } catch (std::out_of_range const& e) {
    return make_exception(exception_category::out_of_range, e.what());
  } catch (std::runtime_error const& e) {
    return make_exception(exception_category::runtime_error, e.what());
  } catch (std::exception const& e) {
    return make_exception(exception_category::exception, e.what());
  } catch (...) {
    return make_exception(exception_category::unknown, "unexpected property tree error");
  }
}

// The target of an output parameter; a null one is refused.
template <class T>
T& out_param(T* p) {
  if (p == nullptr) throw std::invalid_argument("null output pointer");
  return *p;
}

// A name or string argument; a null one is refused.
inline char const* need_text(char const* p) {
  if (p == nullptr) throw std::invalid_argument("null string pointer");
  return p;
}
inline wchar_t const* need_text(wchar_t const* p) {
  if (p == nullptr) throw std::invalid_argument("null string pointer");
  return p;
}

// Serialized text handed to the caller.
// Text grown in place without being zero-filled first (what the XML printer
// writes into).
struct text_buffer {
  std::unique_ptr<char[]> storage;
  char* data = nullptr;
  std::size_t size = 0;
  std::size_t capacity = 0;

  // Keeps the `size` characters written so far.
  void grow(std::size_t new_capacity) {
    std::unique_ptr<char[]> bigger(new char[new_capacity]);
    if (size != 0) std::memcpy(bigger.get(), data, std::min(size, new_capacity));
    storage = std::move(bigger);
    data = storage.get();
    capacity = new_capacity;
  }
};

template <class Ch>
class text_impl final : public text_interface<Ch> {
 public:
  explicit text_impl(std::basic_string<Ch>&& text)
      : text_(std::move(text)), data_(text_.data()), size_(text_.size()) {}
  explicit text_impl(text_buffer&& text)
      : buffer_(std::move(text.storage)), data_(buffer_.get()), size_(text.size) {}
  void destroy() noexcept override { delete this; }
  Ch const* data() const noexcept override { return data_; }
  std::size_t size() const noexcept override { return size_; }

 private:
  std::basic_string<Ch> text_;
  std::unique_ptr<char[]> buffer_;
  Ch const* data_;
  std::size_t size_;
};

}  // namespace property_tree_details
