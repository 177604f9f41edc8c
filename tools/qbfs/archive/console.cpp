#include "console.h"

#include <unistd.h>

#include "archive_terminal_text.h"

namespace qbfs::archive {
namespace {

constexpr auto kRedrawEvery = std::chrono::milliseconds(200);
constexpr int kLayerLevel = 0;  // the level at which the layer's messages are shown

}  // namespace

Console::Console(std::string command, bool quiet, bool layer_messages)
    : command_(std::move(command)),
      quiet_(quiet),
      live_(!quiet && isatty(STDERR_FILENO) == 1),
      show_layer_(layer_messages),
      saved_threshold_(layer_lines_level()),
      start_(std::chrono::steady_clock::now()),
      last_draw_(start_) {}

Console::~Console() { clear_line(); }

void Console::hook(void* context, int level, wchar_t const* line) {
  auto* self = static_cast<Console*>(context);
  if (level > kLayerLevel || level > self->saved_threshold_) return;
  ++self->layer_messages_;
  if (!self->show_layer_) return;
  self->clear_line();
  print_layer_line(stderr, line);  // escaped: modules quote names as they are
}

void Console::message(std::string const& text) {
  clear_line();
  std::fprintf(stderr, "%s: %s\n", command_.c_str(), terminal_text(text).c_str());
}

double Console::elapsed() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
}

void Console::progress(std::uint64_t objects, std::uint64_t bytes, bool force) {
  if (!live_) return;
  auto const now = std::chrono::steady_clock::now();
  if (!force && now - last_draw_ < kRedrawEvery) return;
  last_draw_ = now;
  double const seconds = elapsed();
  unsigned const whole = static_cast<unsigned>(seconds);
  std::fprintf(stderr, "\r\033[K%s objects  %s  %s/s  %u:%02u", grouped(objects).c_str(),
               human_bytes(static_cast<double>(bytes)).c_str(),
               human_bytes(seconds > 0 ? static_cast<double>(bytes) / seconds : 0).c_str(),
               whole / 60, whole % 60);
  std::fflush(stderr);
  drawn_ = true;
}

void Console::clear_line() {
  if (!drawn_) return;
  std::fputs("\r\033[K", stderr);
  drawn_ = false;
}

void Console::summary(std::uint64_t objects, std::uint64_t bytes, std::string const& rest,
                      std::FILE* out) {
  clear_line();
  // Quiet leaves only errors on standard error; a summary asked for on
  // standard output is the command's result and stays.
  if (quiet_ && out == stderr) return;
  double const seconds = elapsed();
  std::fprintf(out, "%s: %s objects, %s in %.1f s (%s/s)%s%s\n", command_.c_str(),
               grouped(objects).c_str(), human_bytes(static_cast<double>(bytes)).c_str(), seconds,
               human_bytes(seconds > 0 ? static_cast<double>(bytes) / seconds : 0).c_str(),
               rest.empty() ? "" : "; ", terminal_text(rest).c_str());
  std::fflush(out);
}

std::string human_bytes(double bytes) {
  static char const* const kUnits[] = {"B", "kB", "MB", "GB", "TB"};
  std::size_t unit = 0;
  while (bytes >= 1000 && unit + 1 < sizeof kUnits / sizeof *kUnits) {
    bytes /= 1000;
    ++unit;
  }
  char text[32];
  std::snprintf(text, sizeof text, unit == 0 ? "%.0f %s" : "%.1f %s", bytes, kUnits[unit]);
  return text;
}

std::string grouped(std::uint64_t n) {
  std::string digits = std::to_string(n), out;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) out += ',';
    out += digits[i];
  }
  return out;
}

}  // namespace qbfs::archive
