// Loading of the host's debug-print factory and the per-path interface cache.
#include <qbclass/debug_print_keep_alive.h>

#include <dlfcn.h>
#include <utility>

namespace qbclass {
namespace {

// One reference on the opened utility library: closed when the last holder
// goes, and exactly once.
class library_handle {
 public:
  explicit library_handle(void* handle) noexcept : handle_(handle) {}
  library_handle(library_handle const&) = delete;
  library_handle& operator=(library_handle const&) = delete;
  ~library_handle() { dlclose(handle_); }
  void* get() const noexcept { return handle_; }

 private:
  void* handle_;
};

// Deleter of the factory as the keep-alive holds it: drops the reference the
// library handed out (the library's own code frees the factory), then the
// reference on the library, so the library stays loaded while the factory
// lives.
class factory_deleter {
 public:
  factory_deleter(shared_ptr<debug_print_factory> factory, shared_ptr<library_handle> library)
      : factory_(std::move(factory)), library_(std::move(library)) {}
  void operator()(debug_print_factory*) noexcept {
    factory_.reset();
    library_.reset();
  }

 private:
  shared_ptr<debug_print_factory> factory_;
  shared_ptr<library_handle> library_;
};

}  // namespace

debug_print_keep_alive::debug_print_keep_alive() {
  void* raw = dlopen(library_name, RTLD_NOW);
  if (raw == nullptr) return;
  // From here on every way out, including an exception, closes the library
  // unless the factory took its reference.
  shared_ptr<library_handle> library(new library_handle(raw));
  auto* get_factory =
      reinterpret_cast<get_debug_print_factory_fn*>(dlsym(library->get(), entry_point));
  if (get_factory == nullptr) return;
  shared_ptr<debug_print_factory> got;
  get_factory(&got);
  if (!got) return;
  debug_print_factory* factory = got.get();
  factory_.reset(factory, factory_deleter(std::move(got), std::move(library)));
}

shared_ptr<debug_print_keep_alive> debug_print_keep_alive::instance() {
  return singleton_details::singleton_storage<debug_print_keep_alive>::get();
}

shared_ptr<debug_print_interface> debug_print_keep_alive::print_interface(
    std::string const& source_path) {
  if (!factory_) return shared_ptr<debug_print_interface>();
  std::lock_guard<std::mutex> guard(cache_lock_);
  auto found = cache_.find(source_path);
  if (found != cache_.end()) return found->second;
  shared_ptr<debug_print_interface> made = factory_->create(source_path.c_str());
  // An empty result (the factory ran out of memory) is not cached: the next
  // trace asks again.
  if (made) cache_.emplace(source_path, made);
  return made;
}

}  // namespace qbclass
