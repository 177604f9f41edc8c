// What the archive commands show a person on standard error: their own
// messages, the layer's messages (which would otherwise cut through the
// progress line), a progress line on a terminal and the closing summary.
#pragma once
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>

#include "../layer_lines.h"

namespace qbfs::archive {

class Console {
 public:
  // `command` prefixes every message ("qbfs backup"). The progress line is
  // drawn only when standard error is a terminal and `quiet` is false.
  // `layer_messages` false keeps the layer's messages off standard error:
  // its start-up and attach lines would drown what matters, and every
  // failure of an object is reported by the command itself with the
  // handle's last error.
  Console(std::string command, bool quiet, bool layer_messages);
  ~Console();
  Console(Console const&) = delete;
  Console& operator=(Console const&) = delete;

  // "<command>: <text>" on standard error, `text` escaped for the
  // terminal (terminal_text); the layer's messages are escaped the same way.
  void message(std::string const& text);
  // Redraws the progress line at most a few times a second.
  void progress(std::uint64_t objects, std::uint64_t bytes, bool force = false);
  // Clears the progress line and prints the summary (to `out`), e.g.
  // "qbfs backup: 1,234 objects, 56.7 MB in 1.2 s (47.2 MB/s); 3 excluded".
  // A quiet console prints no summary on standard error: quiet leaves only
  // the errors there.
  void summary(std::uint64_t objects, std::uint64_t bytes, std::string const& rest, std::FILE* out);
  // How many layer messages arrived so far.
  unsigned layer_messages() const { return layer_messages_; }
  double elapsed() const;

 private:
  static void hook(void* context, int level, wchar_t const* line);
  void clear_line();

  std::string command_;
  bool quiet_;
  bool live_;         // a progress line may be on screen
  bool show_layer_;
  bool drawn_ = false;
  int saved_threshold_;  // the level of the layer's lines the run prints
  unsigned layer_messages_ = 0;
  std::chrono::steady_clock::time_point start_, last_draw_;
  LineRedirect redirect_{&Console::hook, this};
};

// "1.2 MB", "345 kB", "17 B".
std::string human_bytes(double bytes);
// "12,345".
std::string grouped(std::uint64_t n);

}  // namespace qbfs::archive
