// Reference-counted module records.
#include <qbfsys/dll_instance.h>

#include <qbhost/zprintf.h>

RefCounter::RefCounter() : count_(0) {}

RefCounter::~RefCounter() = default;

void RefCounter::Destroy() { delete this; }

void RefCounter::AddRef() {
  token_.acquire();
  ++count_;
  token_.release();
}

void RefCounter::Release() {
  token_.acquire();
  std::int64_t left = --count_;
  token_.release();
  if (left == 0) Destroy();
}

DllInstance::DllInstance(wchar_t const* moduleName) : name(moduleName ? moduleName : L"") {}

DllInstance::~DllInstance() {
  // The handle is deliberately not closed: tables copied out of the module
  // may still be referenced by handles and DLEs.
  if (handle != nullptr) QB_Zprintf(0, L"  unloading %ls", name.c_str());
}
