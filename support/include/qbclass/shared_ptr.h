// qbclass shared and weak pointers.
//
// A shared_ptr is a pointer to the object and a pointer to a control object
// (shared_ptr_details::controller) holding two atomic 32-bit counts, strong and
// weak, both 1 at creation. The weak count carries one extra reference for all
// strong owners together, so the control object outlives the object until the
// last weak pointer goes. The deleter lives in the control object, which is
// created by the module that created the pointer: an object made in one module
// is always destroyed by code of that module.
//
// Unlike std::weak_ptr, weak_ptr::lock() throws bad_weak_ptr when the object is
// gone: a dead weak pointer is an error in this class library, not a state.
#pragma once
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <type_traits>
#include <utility>

namespace qbclass {

class bad_weak_ptr : public std::exception {
 public:
  char const* what() const noexcept override { return "weak pointer failed to resolve"; }
};

namespace shared_ptr_details {

class controller {
 public:
  controller() noexcept : strong_(1), weak_(1) {}
  controller(controller const&) = delete;
  controller& operator=(controller const&) = delete;
  virtual ~controller() = default;
  // Destroys the object through the deleter.
  virtual void delete_obj() noexcept = 0;
  // Destroys this control object.
  virtual void delete_me() noexcept = 0;

  void add_strong() noexcept { strong_.fetch_add(1, std::memory_order_relaxed); }
  void add_weak() noexcept { weak_.fetch_add(1, std::memory_order_relaxed); }
  void release_strong() noexcept {
    if (strong_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      delete_obj();
      release_weak();
    }
  }
  void release_weak() noexcept {
    if (weak_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete_me();
  }
  // Adds a strong reference only while the object is alive.
  bool try_add_strong() noexcept {
    std::int32_t n = strong_.load(std::memory_order_relaxed);
    while (n > 0) {
      if (strong_.compare_exchange_weak(n, n + 1, std::memory_order_acq_rel,
                                        std::memory_order_relaxed))
        return true;
    }
    return false;
  }
  std::int32_t strong_count() const noexcept { return strong_.load(std::memory_order_acquire); }
  std::int32_t weak_count() const noexcept { return weak_.load(std::memory_order_acquire); }

 private:
  std::atomic<std::int32_t> strong_;
  std::atomic<std::int32_t> weak_;
};

template <class T, class Deleter>
class controller_impl final : public controller {
 public:
  controller_impl(T* object, Deleter const& deleter) : object_(object), deleter_(deleter) {}
  void delete_obj() noexcept override {
    T* p = object_;
    object_ = nullptr;
    deleter_(p);
  }
  void delete_me() noexcept override { delete this; }

 private:
  T* object_;
  Deleter deleter_;
};

}  // namespace shared_ptr_details

template <class T>
struct default_deleter {
  void operator()(T* p) const noexcept { delete p; }
};

template <class T>
class weak_ptr;
template <class T>
class shared_ptr;

template <class T>
class internal_weak;

namespace shared_ptr_details {
template <class U, class V, class X>
void attach_internal_weak(shared_ptr<U>& owner, V* object, internal_weak<X> const* self);
}  // namespace shared_ptr_details

// Base for objects that keep a weak pointer to themselves: the shared pointer
// that first owns such an object tells it so (set_internal_weak). Classes
// derived from such an object inherit the hook.
template <class T>
class internal_weak {
 public:
  shared_ptr<T> shared_from_this() const { return weak_self_.lock(); }

 protected:
  internal_weak() = default;
  internal_weak(internal_weak const&) {}
  internal_weak& operator=(internal_weak const&) { return *this; }
  ~internal_weak() = default;

 private:
  template <class U, class V, class X>
  friend void shared_ptr_details::attach_internal_weak(shared_ptr<U>& owner, V* object,
                                                       internal_weak<X> const* self);
  mutable weak_ptr<T> weak_self_;
};

namespace shared_ptr_details {
// Chosen when V derives from some internal_weak<X>; X is deduced through the
// derived-to-base conversion. The first owner that is still alive stays the
// owner: wrapping an owned object again (as external_deleter does) does not
// re-point it.
template <class U, class V, class X>
void attach_internal_weak(shared_ptr<U>& owner, V* object, internal_weak<X> const* self) {
  if (self != nullptr && self->weak_self_.expired())
    self->weak_self_ = shared_ptr<X>(owner, static_cast<X*>(object));
}
template <class U, class V>
void attach_internal_weak(shared_ptr<U>&, V*, ...) {}
}  // namespace shared_ptr_details

// Tells an object that keeps a weak pointer to itself who owns it; a no-op for
// every other type.
template <class U, class V>
void set_internal_weak(shared_ptr<U>& owner, V* object) {
  shared_ptr_details::attach_internal_weak(owner, object, object);
}

template <class T>
class shared_ptr {
 public:
  using element_type = T;

  shared_ptr() noexcept = default;
  shared_ptr(std::nullptr_t) noexcept {}
  template <class U>
  explicit shared_ptr(U* p) {
    reset(p, default_deleter<U>());
  }
  template <class U, class Deleter>
  shared_ptr(U* p, Deleter const& d) {
    reset(p, d);
  }
  shared_ptr(shared_ptr const& o) noexcept : ptr_(o.ptr_), ctl_(o.ctl_) { add(); }
  shared_ptr(shared_ptr&& o) noexcept : ptr_(o.ptr_), ctl_(o.ctl_) {
    o.ptr_ = nullptr;
    o.ctl_ = nullptr;
  }
  template <class U, class = std::enable_if_t<std::is_convertible<U*, T*>::value>>
  shared_ptr(shared_ptr<U> const& o) noexcept : ptr_(o.ptr_), ctl_(o.ctl_) {
    add();
  }
  // Aliasing: shares ownership with `owner` but points at `p`.
  template <class U>
  shared_ptr(shared_ptr<U> const& owner, T* p) noexcept : ptr_(p), ctl_(owner.ctl_) {
    add();
  }
  template <class U, class = std::enable_if_t<std::is_convertible<U*, T*>::value>>
  explicit shared_ptr(weak_ptr<U> const& w) {
    if (w.ctl_ == nullptr || !w.ctl_->try_add_strong()) throw bad_weak_ptr();
    ptr_ = w.ptr_;
    ctl_ = w.ctl_;
  }
  ~shared_ptr() { release(); }

  shared_ptr& operator=(shared_ptr const& o) noexcept {
    shared_ptr(o).swap(*this);
    return *this;
  }
  shared_ptr& operator=(shared_ptr&& o) noexcept {
    shared_ptr(std::move(o)).swap(*this);
    return *this;
  }
  template <class U>
  shared_ptr& operator=(shared_ptr<U> const& o) noexcept {
    shared_ptr(o).swap(*this);
    return *this;
  }

  void reset() noexcept { shared_ptr().swap(*this); }
  template <class U>
  void reset(U* p) {
    reset(p, default_deleter<U>());
  }
  // Takes ownership of `p`; if the control object cannot be allocated, `p` is
  // destroyed through `d` and std::bad_alloc propagates.
  template <class U, class Deleter>
  void reset(U* p, Deleter const& d) {
    shared_ptr fresh;
    if (p != nullptr) {
      try {
        fresh.ctl_ = new shared_ptr_details::controller_impl<U, Deleter>(p, d);
      } catch (...) {
        Deleter cleanup(d);
        cleanup(p);
        throw;
      }
      fresh.ptr_ = p;
      set_internal_weak(fresh, p);
    }
    fresh.swap(*this);
  }

  void swap(shared_ptr& o) noexcept {
    std::swap(ptr_, o.ptr_);
    std::swap(ctl_, o.ctl_);
  }

  T* get() const noexcept { return ptr_; }
  T* operator->() const noexcept { return ptr_; }
  template <class U = T, class = std::enable_if_t<!std::is_void<U>::value>>
  U& operator*() const noexcept {
    return *ptr_;
  }
  explicit operator bool() const noexcept { return ptr_ != nullptr; }
  long use_count() const noexcept { return ctl_ ? ctl_->strong_count() : 0; }
  bool unique() const noexcept { return use_count() == 1; }

 private:
  template <class U>
  friend class shared_ptr;
  template <class U>
  friend class weak_ptr;

  void add() noexcept {
    if (ctl_) ctl_->add_strong();
  }
  void release() noexcept {
    if (ctl_) ctl_->release_strong();
    ctl_ = nullptr;
    ptr_ = nullptr;
  }

  T* ptr_ = nullptr;
  shared_ptr_details::controller* ctl_ = nullptr;
};

template <class T, class U>
bool operator==(shared_ptr<T> const& a, shared_ptr<U> const& b) noexcept {
  return a.get() == b.get();
}
template <class T, class U>
bool operator!=(shared_ptr<T> const& a, shared_ptr<U> const& b) noexcept {
  return a.get() != b.get();
}
template <class T>
bool operator==(shared_ptr<T> const& a, std::nullptr_t) noexcept {
  return a.get() == nullptr;
}
template <class T>
bool operator!=(shared_ptr<T> const& a, std::nullptr_t) noexcept {
  return a.get() != nullptr;
}

template <class T, class U>
shared_ptr<T> static_pointer_cast(shared_ptr<U> const& p) noexcept {
  return shared_ptr<T>(p, static_cast<T*>(p.get()));
}
template <class T, class U>
shared_ptr<T> dynamic_pointer_cast(shared_ptr<U> const& p) noexcept {
  T* q = dynamic_cast<T*>(p.get());
  return q ? shared_ptr<T>(p, q) : shared_ptr<T>();
}

template <class T>
class weak_ptr {
 public:
  weak_ptr() noexcept = default;
  template <class U, class = std::enable_if_t<std::is_convertible<U*, T*>::value>>
  weak_ptr(shared_ptr<U> const& s) noexcept : ptr_(s.ptr_), ctl_(s.ctl_) {
    if (ctl_) ctl_->add_weak();
  }
  weak_ptr(weak_ptr const& o) noexcept : ptr_(o.ptr_), ctl_(o.ctl_) {
    if (ctl_) ctl_->add_weak();
  }
  weak_ptr(weak_ptr&& o) noexcept : ptr_(o.ptr_), ctl_(o.ctl_) {
    o.ptr_ = nullptr;
    o.ctl_ = nullptr;
  }
  ~weak_ptr() { reset(); }
  weak_ptr& operator=(weak_ptr const& o) noexcept {
    weak_ptr(o).swap(*this);
    return *this;
  }
  weak_ptr& operator=(weak_ptr&& o) noexcept {
    weak_ptr(std::move(o)).swap(*this);
    return *this;
  }
  template <class U>
  weak_ptr& operator=(shared_ptr<U> const& s) noexcept {
    weak_ptr(s).swap(*this);
    return *this;
  }

  void reset() noexcept {
    if (ctl_) ctl_->release_weak();
    ctl_ = nullptr;
    ptr_ = nullptr;
  }
  void swap(weak_ptr& o) noexcept {
    std::swap(ptr_, o.ptr_);
    std::swap(ctl_, o.ctl_);
  }
  bool expired() const noexcept { return ctl_ == nullptr || ctl_->strong_count() == 0; }
  long use_count() const noexcept { return ctl_ ? ctl_->strong_count() : 0; }
  // A shared pointer to the object; throws bad_weak_ptr when it is gone.
  shared_ptr<T> lock() const { return shared_ptr<T>(*this); }

 private:
  template <class U>
  friend class shared_ptr;
  T* ptr_ = nullptr;
  shared_ptr_details::controller* ctl_ = nullptr;
};

// A deleter for an object owned by another module: destroying the pointer
// drops the reference held on that owner, whose own deleter (code of the
// module that made the object) frees it.
template <class T>
class external_deleter {
 public:
  explicit external_deleter(shared_ptr<T> const& owner) : owner_(owner) {}
  void operator()(T*) noexcept { owner_.reset(); }

 private:
  shared_ptr<T> owner_;
};

}  // namespace qbclass
