// The record of a loaded file-system module and its reference counting.
//
// RefCounter: a signed 64-bit count guarded by an ACE_Token. DllInstance: one
// module (dynamic-loader handle, name, interface version, resolve and find
// order). RefPointer<T>: the smart pointer held in each element of `dlls`.
// A module is never unloaded from the process: destroying its record does
// not give the handle back to the dynamic loader, because tables copied out of
// it may still be referenced.
#pragma once
#include <cstdint>
#include <string>
#include <utility>

#include <ace/Token.h>
#include <qbfsys/fs_export.h>

class FS_EXPORT RefCounter {
 public:
  RefCounter();
  RefCounter(RefCounter const&) = delete;
  RefCounter& operator=(RefCounter const&) = delete;
  virtual ~RefCounter();
  // Deletes the record; called when the last reference goes.
  virtual void Destroy();

  void AddRef();
  // Drops one reference; at zero the record destroys itself.
  void Release();
  std::int64_t RefCount() const { return count_; }

 private:
  std::int64_t count_;
  ACE_Token token_;
};

class FS_EXPORT DllInstance : public RefCounter {
 public:
  explicit DllInstance(wchar_t const* name);
  ~DllInstance() override;

  void* handle = nullptr;        // what the dynamic loader returned; null if loading failed
  std::wstring name;             // the module name as the host gave it
  std::int32_t version = 23;     // interface version
  std::int32_t resolveOrder = 1; // pass in which its file systems resolve device names
  std::int32_t findOrder = 1;    // pass in which its file systems find drives
};

template <class T>
class RefPointer {
 public:
  RefPointer() = default;
  explicit RefPointer(T* p) : p_(p) {
    if (p_) p_->AddRef();
  }
  RefPointer(RefPointer const& o) : p_(o.p_) {
    if (p_) p_->AddRef();
  }
  RefPointer(RefPointer&& o) noexcept : p_(o.p_) { o.p_ = nullptr; }
  ~RefPointer() { reset(); }
  RefPointer& operator=(RefPointer const& o) {
    RefPointer(o).swap(*this);
    return *this;
  }
  RefPointer& operator=(RefPointer&& o) noexcept {
    RefPointer(std::move(o)).swap(*this);
    return *this;
  }
  // Adds a reference to the new record, then drops the one on the old.
  RefPointer& operator=(T* p) {
    RefPointer(p).swap(*this);
    return *this;
  }
  void reset() {
    T* old = p_;
    p_ = nullptr;
    if (old) old->Release();
  }
  void swap(RefPointer& o) noexcept { std::swap(p_, o.p_); }
  T* get() const { return p_; }
  T* operator->() const { return p_; }
  explicit operator bool() const { return p_ != nullptr; }

 private:
  T* p_ = nullptr;
};
