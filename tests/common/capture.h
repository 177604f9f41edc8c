// Captures what the layer prints: host debug-print lines (QB_Zprintf) and
// trace lines of the debug-print interfaces. Standard error stays quiet while
// a capture is alive.
#pragma once
#include <algorithm>
#include <string>
#include <vector>

#include <qbclass/debug_print_keep_alive.h>
#include <qbhost/zprintf.h>

namespace qbtest {

class MessageCapture {
 public:
  MessageCapture() {
    qbhost::zprintf_set_threshold(-1);
    qbhost::zprintf_set_hook(&MessageCapture::on_line, this);
  }
  ~MessageCapture() {
    qbhost::zprintf_set_hook(nullptr, nullptr);
    qbhost::zprintf_set_threshold(0);
  }
  MessageCapture(MessageCapture const&) = delete;
  MessageCapture& operator=(MessageCapture const&) = delete;

  std::vector<std::wstring> const& lines() const { return lines_; }
  void clear() { lines_.clear(); }
  bool has(std::wstring const& line) const {
    return std::find(lines_.begin(), lines_.end(), line) != lines_.end();
  }
  std::size_t count(std::wstring const& line) const {
    return static_cast<std::size_t>(std::count(lines_.begin(), lines_.end(), line));
  }
  // Index of the first line equal to `line`, or -1.
  long index_of(std::wstring const& line) const {
    auto it = std::find(lines_.begin(), lines_.end(), line);
    return it == lines_.end() ? -1 : static_cast<long>(it - lines_.begin());
  }
  bool has_prefix(std::wstring const& prefix) const {
    return std::any_of(lines_.begin(), lines_.end(),
                       [&](std::wstring const& l) { return l.compare(0, prefix.size(), prefix) == 0; });
  }

 private:
  static void on_line(void* self, int, wchar_t const* line) {
    static_cast<MessageCapture*>(self)->lines_.emplace_back(line);
  }
  std::vector<std::wstring> lines_;
};

// Enables the trace interfaces under `prefix` and records their lines as
// "<path>(<line>): <text>".
class TraceCapture {
 public:
  explicit TraceCapture(char const* prefix) : prefix_(prefix) {
    auto keep = qbclass::debug_print_keep_alive::instance();
    if (keep && keep->factory()) {
      factory_ = keep->factory();
      factory_->set_hook(&TraceCapture::on_line, this);
      factory_->enable(prefix_.c_str(), true);
    }
  }
  ~TraceCapture() {
    if (factory_) {
      factory_->enable(prefix_.c_str(), false);
      factory_->set_hook(nullptr, nullptr);
    }
  }
  TraceCapture(TraceCapture const&) = delete;
  TraceCapture& operator=(TraceCapture const&) = delete;

  bool available() const { return static_cast<bool>(factory_); }
  std::vector<std::string> const& lines() const { return lines_; }
  bool has(std::string const& line) const {
    return std::find(lines_.begin(), lines_.end(), line) != lines_.end();
  }

 private:
  static void on_line(void* self, char const* path, int line, char const* text) {
    static_cast<TraceCapture*>(self)->lines_.push_back(std::string(path) + "(" +
                                                       std::to_string(line) + "): " + text);
  }
  std::string prefix_;
  qbclass::shared_ptr<debug_print_factory> factory_;
  std::vector<std::string> lines_;
};

}  // namespace qbtest
