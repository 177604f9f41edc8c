// The utility library's debug-print factory.
//
// One factory serves the process at a time: get_debug_print_factory hands out
// the live one, or makes a new one when none is alive. Print interfaces share
// the factory's state (rules, hook), so an interface keeps working if the
// factory is released first; neither may outlive this library's mapping.
//
// An interface's state follows the enable() calls made so far, in order: each
// sets every path that begins with its prefix. A new factory starts with all
// paths disabled, then enables the comma-separated prefixes in the QB_TRACE
// environment variable (QB_TRACE=engine,modules/disk); an unset or empty
// QB_TRACE enables nothing.
#include <qbhost/debug_print.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <new>
#include <set>
#include <type_traits>
#include <string>
#include <utility>
#include <vector>

namespace {

class print_impl;

// What a factory and its interfaces share.
struct print_state {
  std::recursive_mutex mutex;  // a hook may print through other interfaces
  std::vector<std::pair<std::string, bool>> rules;
  std::set<print_impl*> live;
  debug_print_factory::hook hook = nullptr;
  void* hook_context = nullptr;

  bool enabled_for(std::string const& path) const {
    bool on = false;
    for (auto const& rule : rules)
      if (path.compare(0, rule.first.size(), rule.first) == 0) on = rule.second;
    return on;
  }
};

class print_impl final : public debug_print_interface {
 public:
  print_impl(std::shared_ptr<print_state> state, std::string path)
      : state_(std::move(state)), path_(std::move(path)) {
    std::lock_guard<std::recursive_mutex> lock(state_->mutex);
    enabled_.store(state_->enabled_for(path_), std::memory_order_relaxed);
    state_->live.insert(this);
  }
  ~print_impl() override {
    std::lock_guard<std::recursive_mutex> lock(state_->mutex);
    state_->live.erase(this);
  }

  bool enabled() const override { return enabled_.load(std::memory_order_relaxed); }
  char const* source_path() const override { return path_.c_str(); }

  void print(int line, char const* text) override {
    if (!enabled()) return;
    if (text == nullptr) text = "";
    try {
      std::lock_guard<std::recursive_mutex> lock(state_->mutex);
      if (state_->hook != nullptr) {
        state_->hook(state_->hook_context, path_.c_str(), line, text);
        return;
      }
      std::string out = path_ + "(" + std::to_string(line) + "): " + text;
      if (out.back() != '\n') out.push_back('\n');
      std::fwrite(out.data(), 1, out.size(), stderr);
    } catch (...) {
      // Out of memory while tracing: the line is dropped.
    }
  }

  void set_enabled(bool on) { enabled_.store(on, std::memory_order_relaxed); }
  std::string const& path() const { return path_; }

 private:
  std::shared_ptr<print_state> state_;
  std::string path_;
  std::atomic<bool> enabled_{false};
};

class factory_impl final : public debug_print_factory {
 public:
  factory_impl() : state_(std::make_shared<print_state>()) {
    char const* trace = std::getenv("QB_TRACE");
    if (trace == nullptr) return;
    std::string const list(trace);
    std::size_t start = 0;
    while (start <= list.size()) {
      std::size_t end = list.find(',', start);
      if (end == std::string::npos) end = list.size();
      if (end > start) enable(list.substr(start, end - start).c_str(), true);
      start = end + 1;
    }
  }

  qbclass::shared_ptr<debug_print_interface> create(char const* source_path) override {
    try {
      return qbclass::shared_ptr<debug_print_interface>(
          new print_impl(state_, source_path != nullptr ? source_path : ""));
    } catch (...) {
      return qbclass::shared_ptr<debug_print_interface>();
    }
  }

  void enable(char const* prefix, bool on) override {
    try {
      std::string const p = (prefix != nullptr) ? prefix : "";
      std::lock_guard<std::recursive_mutex> lock(state_->mutex);
      // A rule is overridden by a later one whose prefix is a prefix of its
      // own; dropping it keeps the list as short as the distinct settings.
      auto& rules = state_->rules;
      for (auto it = rules.begin(); it != rules.end();)
        it = (it->first.compare(0, p.size(), p) == 0) ? rules.erase(it) : it + 1;
      rules.emplace_back(p, on);
      for (print_impl* printer : state_->live)
        if (printer->path().compare(0, p.size(), p) == 0) printer->set_enabled(on);
    } catch (...) {
      // Out of memory: the setting is not recorded.
    }
  }

  void set_hook(hook function, void* context) override {
    std::lock_guard<std::recursive_mutex> lock(state_->mutex);
    state_->hook = function;
    state_->hook_context = context;
  }

 private:
  std::shared_ptr<print_state> state_;
};

std::mutex g_factory_mutex;
qbclass::weak_ptr<debug_print_factory> g_factory;

}  // namespace

extern "C" __attribute__((visibility("default"))) void get_debug_print_factory(
    qbclass::shared_ptr<debug_print_factory>* out) {
  if (out == nullptr) return;
  try {
    std::lock_guard<std::mutex> lock(g_factory_mutex);
    if (!g_factory.expired()) {
      try {
        *out = g_factory.lock();
        return;
      } catch (qbclass::bad_weak_ptr const&) {
        // Released between the test and the lock: make a new one.
      }
    }
    // The deleter (and so the factory's destruction) is this library's code.
    qbclass::shared_ptr<debug_print_factory> made(new factory_impl);
    g_factory = made;
    *out = std::move(made);
  } catch (...) {
    out->reset();
  }
}

// The entry point must keep the declared type.
static_assert(std::is_same<decltype(get_debug_print_factory), get_debug_print_factory_fn>::value,
              "get_debug_print_factory does not match get_debug_print_factory_fn");
