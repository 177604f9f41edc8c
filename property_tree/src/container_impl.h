// The vector behind trees (properties) and properties (values): every
// container operation of the interface, over a vector of shared pointers in
// insertion order, with hooks for what trees and properties add (the name
// index, value positions, refusals of the null objects).
#pragma once
#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <vector>
#include <boost/shared_ptr.hpp>
#include <fs_property_tree_container.h>
#include "exception_impl.h"
#include "tree_pool.h"

namespace property_tree_details {

// More elements than this in one container are refused (std::length_error)
// before any memory is taken, so a huge count cannot exhaust memory.
constexpr std::size_t max_container_elements = std::size_t(1) << 26;

// The elements of a container, in insertion order, kept in the root's pool.
template <class EImpl>
using element_vector =
    std::vector<boost::shared_ptr<EImpl>, pool_allocator<boost::shared_ptr<EImpl>>>;

template <class T, class EImpl>
class iterator_impl final : public fs_property_tree_iterator_interface<T> {
 public:
  using E = std::remove_const_t<T>;
  using items_type = element_vector<EImpl>;

  iterator_impl(items_type const* items, std::size_t index) noexcept
      : items_(items), index_(index) {}
  void destroy() noexcept override { delete this; }
  void const* container_id() const noexcept override { return items_; }
  std::size_t index() const noexcept override { return index_; }
  exception_interface* i_element_at_c(std::size_t index, E const** out) const override {
    return guard([&] { out_param(out) = &element(index); });
  }
  exception_interface* i_clone(fs_property_tree_iterator_interface<T>** out) const override {
    return guard([&] { out_param(out) = new iterator_impl(*this); });
  }
  exception_interface* i_deref(T** out) const override {
    return guard([&] { out_param(out) = &element(index_); });
  }
  void advance(std::ptrdiff_t n) noexcept override {
    index_ += static_cast<std::size_t>(n);
  }

 private:
  EImpl& element(std::size_t index) const {
    if (index >= items_->size()) throw std::out_of_range("iterator is not dereferenceable");
    return *(*items_)[index];
  }
  items_type const* items_;
  std::size_t index_;
};

template <class Interface, class E, class EImpl>
class container_impl : public Interface {
 public:
  using sp = boost::shared_ptr<EImpl>;
  using items_type = element_vector<EImpl>;
  using iterator_v = fs_property_tree_iterator_interface<E>;
  using iterator_c = fs_property_tree_iterator_interface<E const>;
  using range_iterator = base_property_tree_iterator_type_interface<E>;

  exception_interface* i_size(std::size_t* out) const override {
    return guard([&] { out_param(out) = items_.size(); });
  }
  exception_interface* i_max_size(std::size_t* out) const override {
    return guard([&] { out_param(out) = max_container_elements; });
  }
  exception_interface* i_capacity(std::size_t* out) const override {
    return guard([&] { out_param(out) = items_.capacity(); });
  }
  exception_interface* i_empty(bool* out) const override {
    return guard([&] { out_param(out) = items_.empty(); });
  }
  exception_interface* i_reserve(std::size_t n) override {
    return guard([&] {
      check_modifiable();
      check_count(n);
      items_.reserve(n);
    });
  }
  exception_interface* i_begin_v(iterator_v** out) override {
    return guard([&] { out_param(out) = make_iterator(0); });
  }
  exception_interface* i_begin_c(iterator_c** out) const override {
    return guard([&] { out_param(out) = make_const_iterator(0); });
  }
  exception_interface* i_end_v(iterator_v** out) override {
    return guard([&] { out_param(out) = make_iterator(items_.size()); });
  }
  exception_interface* i_end_c(iterator_c** out) const override {
    return guard([&] { out_param(out) = make_const_iterator(items_.size()); });
  }
  exception_interface* i_back_v(E** out) override {
    return guard([&] { out_param(out) = &checked(items_.size() - 1); });
  }
  exception_interface* i_back_c(E const** out) const override {
    return guard([&] { out_param(out) = &checked(items_.size() - 1); });
  }
  exception_interface* i_checked_at_v(std::size_t index, E** out) override {
    return guard([&] { out_param(out) = &checked(index); });
  }
  exception_interface* i_checked_at_c(std::size_t index, E const** out) const override {
    return guard([&] { out_param(out) = &checked(index); });
  }
  // Unchecked as the interface promises, but never reading outside the
  // vector: an index out of range yields the container's null element.
  exception_interface* i_unchecked_at_v(std::size_t index, E** out) override {
    return guard([&] { out_param(out) = index < items_.size() ? items_[index].get() : null_element(); });
  }
  exception_interface* i_unchecked_at_c(std::size_t index, E const** out) const override {
    return guard([&] { out_param(out) = index < items_.size() ? items_[index].get() : null_element(); });
  }
  exception_interface* i_clear() override {
    return guard([&] {
      check_modifiable();
      replace_all(new_items());
    });
  }
  exception_interface* i_erase_1(range_iterator const* pos, iterator_v** out) override {
    return guard([&] {
      check_modifiable();
      std::size_t at = position(pos);
      if (at >= items_.size()) throw std::out_of_range("erase position is past the end");
      erase_range(at, at + 1);
      out_param(out) = make_iterator(at);
    });
  }
  exception_interface* i_erase_2(range_iterator const* first, range_iterator const* last,
                                 iterator_v** out) override {
    return guard([&] {
      check_modifiable();
      std::size_t from = position(first), to = position(last);
      if (from > to) throw std::out_of_range("erase range is reversed");
      erase_range(from, to);
      out_param(out) = make_iterator(from);
    });
  }
  exception_interface* i_insert_1(range_iterator const* pos, E const* element,
                                  iterator_v** out) override {
    return guard([&] {
      check_modifiable();
      std::size_t at = position(pos);
      items_type incoming = new_items();
      incoming.push_back(copy_element(need_element(element), at));
      insert_items(at, std::move(incoming), insert_kind::insert);
      out_param(out) = make_iterator(at);
    });
  }
  exception_interface* i_insert_2(range_iterator const* pos, std::size_t count,
                                  E const* element) override {
    return guard([&] {
      check_modifiable();
      std::size_t at = position(pos);
      insert_items(at, copies(count, need_element(element), at), insert_kind::insert);
    });
  }
  exception_interface* i_insert_3(range_iterator const* pos, range_iterator const* first,
                                  range_iterator const* last) override {
    return guard([&] {
      check_modifiable();
      std::size_t at = position(pos);
      insert_items(at, copy_range(first, last, at), insert_kind::insert);
    });
  }
  exception_interface* i_push_back(E const* element) override {
    return guard([&] {
      check_modifiable();
      items_type incoming = new_items();
      incoming.push_back(copy_element(need_element(element), items_.size()));
      insert_items(items_.size(), std::move(incoming), insert_kind::push_back);
    });
  }
  exception_interface* i_pop_back() override {
    return guard([&] {
      check_modifiable();
      if (items_.empty()) throw std::out_of_range("pop_back on an empty container");
      erase_range(items_.size() - 1, items_.size());
    });
  }
  exception_interface* i_assign_1(range_iterator const* first,
                                  range_iterator const* last) override {
    return guard([&] {
      check_modifiable();
      items_type incoming = copy_range(first, last, 0);
      check_incoming(incoming, insert_kind::assign);
      replace_all(std::move(incoming));
    });
  }
  exception_interface* i_assign_2(std::size_t count, E const* element) override {
    return guard([&] {
      check_modifiable();
      items_type incoming = copies(count, need_element(element), 0);
      check_incoming(incoming, insert_kind::assign);
      replace_all(std::move(incoming));
    });
  }

  items_type const& items() const noexcept { return items_; }
  // The pool of the root this container belongs to (null: the heap).
  tree_pool* pool() const noexcept { return pool_; }
  // An empty vector drawing on the same pool as this container's.
  items_type new_items() const { return items_type(pool_allocator<sp>(pool_)); }

 protected:
  explicit container_impl(tree_pool* pool) noexcept
      : items_(pool_allocator<sp>(pool)), pool_(pool) {}

  enum class insert_kind { insert, push_back, assign };

  // Null objects refuse every change.
  virtual void check_modifiable() const {}
  // The null element handed out for positions that hold nothing.
  virtual E* null_element() const = 0;
  // A deep copy of `src` made for this container, to be placed at `index`.
  virtual sp copy_element(E const& src, std::size_t index) = 0;
  // Refuses incoming elements (duplicate names); for insert and push_back
  // against the current elements too, for assign among themselves only.
  virtual void check_incoming(items_type const& incoming, insert_kind kind) const {
    (void)incoming;
    (void)kind;
  }
  // Called after elements entered or left the vector (index, positions).
  virtual void attached(items_type const& added) { (void)added; }
  virtual void detached(items_type const& removed) { (void)removed; }
  virtual void renumber(std::size_t from) { (void)from; }

  static void check_count(std::size_t n) {
    if (n > max_container_elements)
      throw std::length_error("too many elements for a property tree container");
  }

  EImpl& checked(std::size_t index) const {
    if (index >= items_.size()) throw std::out_of_range("property tree index out of range");
    return *items_[index];
  }

  void insert_items(std::size_t at, items_type&& incoming, insert_kind kind) {
    check_count(items_.size() + incoming.size());
    check_incoming(incoming, kind);
    reserve_for(incoming.size());
    attached(incoming);
    // Cannot throw: the capacity is there and shared pointers move freely.
    items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(at),
                  std::make_move_iterator(incoming.begin()),
                  std::make_move_iterator(incoming.end()));
    renumber(at);
  }

  // Room for `more` elements, growing geometrically.
  void reserve_for(std::size_t more) {
    std::size_t need = items_.size() + more;
    if (need > items_.capacity()) items_.reserve(std::max(need, 2 * items_.capacity()));
  }

  void erase_range(std::size_t from, std::size_t to) {
    items_type removed(items_.begin() + static_cast<std::ptrdiff_t>(from),
                       items_.begin() + static_cast<std::ptrdiff_t>(to), items_.get_allocator());
    detached(removed);
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(from),
                 items_.begin() + static_cast<std::ptrdiff_t>(to));
    renumber(from);
  }

  // Replaces all elements; the old ones die after the swap.
  void replace_all(items_type&& incoming) {
    items_type old = new_items();
    old.swap(items_);
    detached(old);
    try {
      attached(incoming);
    } catch (...) {
      items_.swap(old);
      attached(items_);
      throw;
    }
    items_.swap(incoming);
    renumber(0);
  }

  items_type items_;

 private:
  tree_pool* pool_;
  iterator_v* make_iterator(std::size_t index) {
    return new iterator_impl<E, EImpl>(&items_, index);
  }
  iterator_c* make_const_iterator(std::size_t index) const {
    return new iterator_impl<E const, EImpl>(&items_, index);
  }
  std::size_t position(range_iterator const* it) const {
    if (it == nullptr) throw std::invalid_argument("null iterator");
    if (it->container_id() != &items_)
      throw std::invalid_argument("iterator does not belong to this container");
    if (it->index() > items_.size()) throw std::out_of_range("iterator is past the end");
    return it->index();
  }
  static E const& need_element(E const* element) {
    if (element == nullptr) throw std::invalid_argument("null element");
    return *element;
  }
  items_type copies(std::size_t count, E const& element, std::size_t at) {
    check_count(items_.size() + count);
    items_type out = new_items();
    out.reserve(count);
    for (std::size_t i = 0; i < count; ++i) out.push_back(copy_element(element, at + i));
    return out;
  }
  items_type copy_range(range_iterator const* first, range_iterator const* last, std::size_t at) {
    if (first == nullptr || last == nullptr) throw std::invalid_argument("null iterator");
    if (first->container_id() != last->container_id())
      throw std::invalid_argument("iterators of different containers");
    if (first->index() > last->index()) throw std::out_of_range("iterator range is reversed");
    std::size_t count = last->index() - first->index();
    check_count(items_.size() + count);
    items_type out = new_items();
    out.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
      E const* element = nullptr;
      check(first->i_element_at_c(first->index() + i, &element));
      out.push_back(copy_element(*element, at + i));
    }
    return out;
  }
};

}  // namespace property_tree_details
