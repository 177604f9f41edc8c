// Iteration and container interfaces shared by trees (a container of
// properties) and properties (a container of values), with the public
// iterator fs_property_tree_iterator<T>.
//
// Iterators are positions: a container and an index. Like std::vector
// iterators they are invalidated by changes to their container. Dereferencing
// a position past the end reports std::out_of_range rather than crashing.
#pragma once
#include <cstddef>
#include <iterator>
#include <type_traits>
#include <fs_property_tree_error.h>

namespace property_tree_details {

// What every iterator over elements E offers, whatever its constness; used
// for the ranges given to insert and assign.
template <class E>
class base_property_tree_iterator_type_interface : public base_interface {
 public:
  // Identity of the container and the position in it.
  virtual void const* container_id() const noexcept = 0;
  virtual std::size_t index() const noexcept = 0;
  // The element at `index` of the same container.
  virtual exception_interface* i_element_at_c(std::size_t index, E const** out) const = 0;
};

template <class T>
class fs_property_tree_iterator_interface
    : public base_property_tree_iterator_type_interface<std::remove_const_t<T>> {
 public:
  virtual exception_interface* i_clone(fs_property_tree_iterator_interface** out) const = 0;
  virtual exception_interface* i_deref(T** out) const = 0;
  virtual void advance(std::ptrdiff_t n) noexcept = 0;
};

}  // namespace property_tree_details

template <class T>
class fs_property_tree_iterator {
 public:
  using interface_type = property_tree_details::fs_property_tree_iterator_interface<T>;
  using iterator_category = std::random_access_iterator_tag;
  using value_type = std::remove_const_t<T>;
  using difference_type = std::ptrdiff_t;
  using pointer = T*;
  using reference = T&;

  fs_property_tree_iterator() noexcept = default;
  // Takes ownership of an iterator object made by the library.
  explicit fs_property_tree_iterator(interface_type* adopted)
      : impl_(adopted, property_tree_details::property_tree_interface_destroyer()) {}

  reference operator*() const {
    T* out = nullptr;
    property_tree_details::check(bound()->i_deref(&out));
    return *out;
  }
  pointer operator->() const { return &**this; }
  reference operator[](difference_type n) const { return *(*this + n); }

  fs_property_tree_iterator& operator+=(difference_type n) {
    unshare();
    impl_->advance(n);
    return *this;
  }
  fs_property_tree_iterator& operator-=(difference_type n) { return *this += -n; }
  fs_property_tree_iterator& operator++() { return *this += 1; }
  fs_property_tree_iterator& operator--() { return *this += -1; }
  fs_property_tree_iterator operator++(int) {
    fs_property_tree_iterator old(*this);
    ++*this;
    return old;
  }
  fs_property_tree_iterator operator--(int) {
    fs_property_tree_iterator old(*this);
    --*this;
    return old;
  }
  friend fs_property_tree_iterator operator+(fs_property_tree_iterator it, difference_type n) {
    return it += n;
  }
  friend fs_property_tree_iterator operator+(difference_type n, fs_property_tree_iterator it) {
    return it += n;
  }
  friend fs_property_tree_iterator operator-(fs_property_tree_iterator it, difference_type n) {
    return it -= n;
  }

  // The library object behind this iterator (null for a default iterator).
  interface_type const* get_interface() const noexcept { return impl_.get(); }
  void const* container_id() const noexcept { return impl_ ? impl_->container_id() : nullptr; }
  std::size_t index() const noexcept { return impl_ ? impl_->index() : 0; }

 private:
  interface_type* bound() const {
    if (!impl_) throw std::out_of_range("iterator is not bound to a container");
    return impl_.get();
  }
  // Copies share the library object until one of them moves.
  void unshare() {
    bound();
    if (impl_.use_count() > 1) {
      interface_type* copy = nullptr;
      property_tree_details::check(impl_->i_clone(&copy));
      impl_ = qbclass::shared_ptr<interface_type>(
          copy, property_tree_details::property_tree_interface_destroyer());
    }
  }

  qbclass::shared_ptr<interface_type> impl_;
};

template <class A, class B>
bool operator==(fs_property_tree_iterator<A> const& a, fs_property_tree_iterator<B> const& b) {
  return a.container_id() == b.container_id() && a.index() == b.index();
}
template <class A, class B>
bool operator!=(fs_property_tree_iterator<A> const& a, fs_property_tree_iterator<B> const& b) {
  return !(a == b);
}
template <class A, class B>
bool operator<(fs_property_tree_iterator<A> const& a, fs_property_tree_iterator<B> const& b) {
  return a.index() < b.index();
}
template <class A, class B>
bool operator>(fs_property_tree_iterator<A> const& a, fs_property_tree_iterator<B> const& b) {
  return b < a;
}
template <class A, class B>
bool operator<=(fs_property_tree_iterator<A> const& a, fs_property_tree_iterator<B> const& b) {
  return !(b < a);
}
template <class A, class B>
bool operator>=(fs_property_tree_iterator<A> const& a, fs_property_tree_iterator<B> const& b) {
  return !(a < b);
}
template <class A, class B>
std::ptrdiff_t operator-(fs_property_tree_iterator<A> const& a,
                         fs_property_tree_iterator<B> const& b) {
  return static_cast<std::ptrdiff_t>(a.index()) - static_cast<std::ptrdiff_t>(b.index());
}

namespace property_tree_details {

// A vector-like container of elements E (properties or values). Elements
// given to insert, push_back and assign are copied deeply (and, for a
// property, converted to its kind).
template <class E>
class fs_property_tree_container_interface : public base_interface {
 public:
  using iterator = fs_property_tree_iterator<E>;
  using const_iterator = fs_property_tree_iterator<E const>;
  using iterator_v = fs_property_tree_iterator_interface<E>;
  using iterator_c = fs_property_tree_iterator_interface<E const>;
  using range_iterator = base_property_tree_iterator_type_interface<E>;

  virtual exception_interface* i_size(std::size_t* out) const = 0;
  virtual exception_interface* i_max_size(std::size_t* out) const = 0;
  virtual exception_interface* i_capacity(std::size_t* out) const = 0;
  virtual exception_interface* i_empty(bool* out) const = 0;
  virtual exception_interface* i_reserve(std::size_t n) = 0;
  virtual exception_interface* i_begin_v(iterator_v** out) = 0;
  virtual exception_interface* i_begin_c(iterator_c** out) const = 0;
  virtual exception_interface* i_end_v(iterator_v** out) = 0;
  virtual exception_interface* i_end_c(iterator_c** out) const = 0;
  virtual exception_interface* i_back_v(E** out) = 0;
  virtual exception_interface* i_back_c(E const** out) const = 0;
  virtual exception_interface* i_checked_at_v(std::size_t index, E** out) = 0;
  virtual exception_interface* i_checked_at_c(std::size_t index, E const** out) const = 0;
  virtual exception_interface* i_unchecked_at_v(std::size_t index, E** out) = 0;
  virtual exception_interface* i_unchecked_at_c(std::size_t index, E const** out) const = 0;
  virtual exception_interface* i_clear() = 0;
  virtual exception_interface* i_erase_1(range_iterator const* pos, iterator_v** out) = 0;
  virtual exception_interface* i_erase_2(range_iterator const* first, range_iterator const* last,
                                         iterator_v** out) = 0;
  virtual exception_interface* i_insert_1(range_iterator const* pos, E const* element,
                                          iterator_v** out) = 0;
  virtual exception_interface* i_insert_2(range_iterator const* pos, std::size_t count,
                                          E const* element) = 0;
  virtual exception_interface* i_insert_3(range_iterator const* pos, range_iterator const* first,
                                          range_iterator const* last) = 0;
  virtual exception_interface* i_push_back(E const* element) = 0;
  virtual exception_interface* i_pop_back() = 0;
  virtual exception_interface* i_assign_1(range_iterator const* first,
                                          range_iterator const* last) = 0;
  virtual exception_interface* i_assign_2(std::size_t count, E const* element) = 0;

  // Wrappers: call, and throw what came back.
  std::size_t size() const { return get(&fs_property_tree_container_interface::i_size); }
  std::size_t max_size() const { return get(&fs_property_tree_container_interface::i_max_size); }
  std::size_t capacity() const { return get(&fs_property_tree_container_interface::i_capacity); }
  bool empty() const {
    bool out = true;
    check(i_empty(&out));
    return out;
  }
  void reserve(std::size_t n) { check(i_reserve(n)); }
  iterator begin() { return wrap(&fs_property_tree_container_interface::i_begin_v); }
  iterator end() { return wrap(&fs_property_tree_container_interface::i_end_v); }
  const_iterator begin() const { return wrap_c(&fs_property_tree_container_interface::i_begin_c); }
  const_iterator end() const { return wrap_c(&fs_property_tree_container_interface::i_end_c); }
  const_iterator cbegin() const { return begin(); }
  const_iterator cend() const { return end(); }
  E& back() {
    E* out = nullptr;
    check(i_back_v(&out));
    return *out;
  }
  E const& back() const {
    E const* out = nullptr;
    check(i_back_c(&out));
    return *out;
  }
  E& at(std::size_t index) {
    E* out = nullptr;
    check(i_checked_at_v(index, &out));
    return *out;
  }
  E const& at(std::size_t index) const {
    E const* out = nullptr;
    check(i_checked_at_c(index, &out));
    return *out;
  }
  // Not range-checked, as with std::vector.
  E& operator[](std::size_t index) {
    E* out = nullptr;
    check(i_unchecked_at_v(index, &out));
    return *out;
  }
  E const& operator[](std::size_t index) const {
    E const* out = nullptr;
    check(i_unchecked_at_c(index, &out));
    return *out;
  }
  void clear() { check(i_clear()); }
  template <class P>
  iterator erase(fs_property_tree_iterator<P> const& pos) {
    iterator_v* out = nullptr;
    check(i_erase_1(pos.get_interface(), &out));
    return iterator(out);
  }
  template <class P, class Q>
  iterator erase(fs_property_tree_iterator<P> const& first, fs_property_tree_iterator<Q> const& last) {
    iterator_v* out = nullptr;
    check(i_erase_2(first.get_interface(), last.get_interface(), &out));
    return iterator(out);
  }
  template <class P>
  iterator insert(fs_property_tree_iterator<P> const& pos, E const& element) {
    iterator_v* out = nullptr;
    check(i_insert_1(pos.get_interface(), &element, &out));
    return iterator(out);
  }
  template <class P>
  void insert(fs_property_tree_iterator<P> const& pos, std::size_t count, E const& element) {
    check(i_insert_2(pos.get_interface(), count, &element));
  }
  template <class P, class Q, class R>
  void insert(fs_property_tree_iterator<P> const& pos, fs_property_tree_iterator<Q> const& first,
              fs_property_tree_iterator<R> const& last) {
    check(i_insert_3(pos.get_interface(), first.get_interface(), last.get_interface()));
  }
  void push_back(E const& element) { check(i_push_back(&element)); }
  void pop_back() { check(i_pop_back()); }
  template <class Q, class R>
  void assign(fs_property_tree_iterator<Q> const& first, fs_property_tree_iterator<R> const& last) {
    check(i_assign_1(first.get_interface(), last.get_interface()));
  }
  void assign(std::size_t count, E const& element) { check(i_assign_2(count, &element)); }

 private:
  std::size_t get(exception_interface* (fs_property_tree_container_interface::*f)(std::size_t*)
                      const) const {
    std::size_t out = 0;
    check((this->*f)(&out));
    return out;
  }
  iterator wrap(exception_interface* (fs_property_tree_container_interface::*f)(iterator_v**)) {
    iterator_v* out = nullptr;
    check((this->*f)(&out));
    return iterator(out);
  }
  const_iterator wrap_c(exception_interface* (fs_property_tree_container_interface::*f)(
      iterator_c**) const) const {
    iterator_c* out = nullptr;
    check((this->*f)(&out));
    return const_iterator(out);
  }
};

// A container whose elements carry unique names (the tree).
template <class E>
class fs_property_tree_key_container_interface : public fs_property_tree_container_interface<E> {
 public:
  using typename fs_property_tree_container_interface<E>::iterator;
  using typename fs_property_tree_container_interface<E>::const_iterator;
  using typename fs_property_tree_container_interface<E>::iterator_v;
  using typename fs_property_tree_container_interface<E>::iterator_c;

  virtual exception_interface* i_has_property(char const* name, bool* out) const = 0;
  // The element of that name, or the null element.
  virtual exception_interface* i_get_property_v(char const* name, E** out) = 0;
  virtual exception_interface* i_get_property_c(char const* name, E const** out) const = 0;
  // An iterator at the element of that name, or end.
  virtual exception_interface* i_find_v(char const* name, iterator_v** out) = 0;
  virtual exception_interface* i_find_c(char const* name, iterator_c** out) const = 0;

  bool has_property(char const* name) const {
    bool out = false;
    check(i_has_property(name, &out));
    return out;
  }
  E& get_property(char const* name) {
    E* out = nullptr;
    check(i_get_property_v(name, &out));
    return *out;
  }
  E const& get_property(char const* name) const {
    E const* out = nullptr;
    check(i_get_property_c(name, &out));
    return *out;
  }
  iterator find(char const* name) {
    iterator_v* out = nullptr;
    check(i_find_v(name, &out));
    return iterator(out);
  }
  const_iterator find(char const* name) const {
    iterator_c* out = nullptr;
    check(i_find_c(name, &out));
    return const_iterator(out);
  }
};

}  // namespace property_tree_details
