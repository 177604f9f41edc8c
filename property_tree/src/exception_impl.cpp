#include "exception_impl.h"

namespace property_tree_details {

namespace {
// Handed out when no exception object can be allocated; never freed.
class static_bad_alloc final : public exception_interface {
 public:
  void destroy() noexcept override {}
  exception_category category() const noexcept override { return exception_category::bad_alloc; }
  char const* what() const noexcept override { return "std::bad_alloc"; }
};
static_bad_alloc out_of_memory;
}  // namespace

exception_impl::exception_impl(exception_category category, char const* message)
    : category_(category), message_(message != nullptr ? message : "") {}

void exception_impl::destroy() noexcept { delete this; }

exception_interface* make_exception(exception_category category, char const* message) noexcept {
  try {
    return new exception_impl(category, message);
  } catch (...) {
    return &out_of_memory;
  }
}

}  // namespace property_tree_details
