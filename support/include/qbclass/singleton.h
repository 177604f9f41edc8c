// qbclass process-wide singletons.
//
// singleton_storage<T, Storage>::get() builds the one T on first use and hands
// out shared pointers to it. Storage says where the object lives:
//   - object_controller: in the storage's own raw, 8-byte-aligned bytes (no
//     heap allocation for the object); destroyed in place;
//   - pointer_controller: on the heap; handed-out pointers may then safely
//     outlive the storage.
// The storage's shared pointer is released at process exit (in the reverse
// order of first use, like a function-local static); the object itself goes
// when the last handed-out pointer goes. After that release, get() returns an
// empty pointer instead of building the object a second time.
//
// A plain flag is set while the object's constructor or destructor runs; if
// that code reaches get() of the same singleton again, get() throws
// reentrant_exception rather than recursing or deadlocking. First use is
// expected on one thread (start-up): the flag is not a lock.
#pragma once
#include <exception>
#include <new>
#include <utility>
#include <qbclass/shared_ptr.h>

namespace qbclass {
namespace singleton_details {

class reentrant_exception : public std::exception {
 public:
  char const* what() const noexcept override {
    return "singleton creation and/or destuction code can not be recursively called.";
  }
};

// The state of one singleton that must stay readable at any time, even while
// static destructors run: trivially destructible and zero-initialised.
template <class T>
struct raw_state {
  alignas(8) unsigned char bytes[sizeof(T)];
  bool busy;      // construction or destruction is running
  bool released;  // the storage gave up its reference at process exit
};

// Holds the object in the storage's raw bytes.
struct object_controller {
  template <class T>
  class deleter {
   public:
    explicit deleter(raw_state<T>* state) noexcept : state_(state) {}
    void operator()(T* p) const noexcept {
      state_->busy = true;
      p->~T();
      state_->busy = false;
    }

   private:
    raw_state<T>* state_;
  };
  template <class T>
  static T* construct(raw_state<T>& state) {
    return ::new (static_cast<void*>(state.bytes)) T();
  }
};

// Holds the object on the heap.
struct pointer_controller {
  template <class T>
  class deleter {
   public:
    explicit deleter(raw_state<T>* state) noexcept : state_(state) {}
    void operator()(T* p) const noexcept {
      state_->busy = true;
      delete p;
      state_->busy = false;
    }

   private:
    raw_state<T>* state_;
  };
  template <class T>
  static T* construct(raw_state<T>&) {
    return new T();
  }
};

template <class T, class Storage = object_controller>
class singleton_storage {
 public:
  // The singleton, built on first use. Throws reentrant_exception when called
  // from the object's own constructor or destructor, and whatever T's
  // constructor throws (the next call then tries again). Empty after the
  // storage was released at process exit.
  static shared_ptr<T> get() {
    raw_state<T>& state = state_;
    if (state.busy) throw reentrant_exception();
    if (state.released) return shared_ptr<T>();
    // The holder is registered for destruction only once the object is
    // built, so it is released before anything that the object's own
    // construction set up (libraries it opened, statics it touched).
    static holder h(build(state));
    return h.instance;
  }

 private:
  using deleter = typename Storage::template deleter<T>;

  struct holder {
    explicit holder(shared_ptr<T> p) noexcept : instance(std::move(p)) {}
    holder(holder const&) = delete;
    holder& operator=(holder const&) = delete;
    ~holder() {
      state_.released = true;
      instance.reset();
    }
    shared_ptr<T> instance;
  };

  static shared_ptr<T> build(raw_state<T>& state) {
    state.busy = true;
    T* object = nullptr;
    try {
      object = Storage::construct(state);
    } catch (...) {
      state.busy = false;
      throw;
    }
    state.busy = false;
    // Should the control object not fit in memory, the shared pointer
    // destroys the object through the deleter before std::bad_alloc
    // propagates.
    return shared_ptr<T>(object, deleter(&state));
  }

  static inline raw_state<T> state_{};
};

}  // namespace singleton_details
}  // namespace qbclass
