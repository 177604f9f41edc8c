#include "check_result.h"

#include <algorithm>

#include "../archive/archive_terminal_text.h"

namespace qbfs::validate {
namespace {

constexpr unsigned kFirstPrintable = 0x20;

// Control characters are written as \u00XX; everything else (UTF-8
// included) passes through, which JSON allows.
std::string json_string(std::string const& text) {
  std::string out = "\"";
  for (char c : text) {
    auto const u = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (u < kFirstPrintable) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", u);
      out += escaped;
    } else {
      out += c;
    }
  }
  return out + "\"";
}

}  // namespace

CheckResult passed(std::string detail) { return {{}, Outcome::passed, std::move(detail)}; }
CheckResult failed(std::string detail) { return {{}, Outcome::failed, std::move(detail)}; }
CheckResult skipped(std::string detail) { return {{}, Outcome::skipped, std::move(detail)}; }

char const* outcome_name(Outcome outcome) {
  switch (outcome) {
    case Outcome::passed: return "passed";
    case Outcome::failed: return "failed";
    case Outcome::skipped: return "skipped";
  }
  return "?";
}

CheckResult const* Report::find(std::string const& id) const {
  auto it = std::find_if(results_.begin(), results_.end(),
                         [&](CheckResult const& r) { return r.id == id; });
  return it == results_.end() ? nullptr : &*it;
}

bool Report::any_failed() const {
  return std::any_of(results_.begin(), results_.end(),
                     [](CheckResult const& r) { return r.outcome == Outcome::failed; });
}

void Report::write_text(std::FILE* out, std::string const& module, std::uint64_t seed) const {
  // The text form is read on a terminal: the module's name and the details
  // (which quote what the module said and named) are escaped for it.
  std::fprintf(out, "validating %s (seed %llu)\n", archive::terminal_text(module).c_str(),
               static_cast<unsigned long long>(seed));
  unsigned counts[3] = {0, 0, 0};
  for (CheckResult const& r : results_) {
    ++counts[static_cast<int>(r.outcome)];
    std::fprintf(out, "%-8s %-18s %s\n", outcome_name(r.outcome), r.id.c_str(),
                 archive::terminal_text(r.detail).c_str());
  }
  std::fprintf(out, "%u passed, %u failed, %u skipped\n", counts[0], counts[1], counts[2]);
}

void Report::write_json(std::FILE* out, std::string const& module, std::uint64_t seed) const {
  unsigned counts[3] = {0, 0, 0};
  std::fprintf(out, "{\"module\":%s,\"seed\":%llu,\"checks\":[", json_string(module).c_str(),
               static_cast<unsigned long long>(seed));
  for (std::size_t i = 0; i < results_.size(); ++i) {
    CheckResult const& r = results_[i];
    ++counts[static_cast<int>(r.outcome)];
    std::fprintf(out, "%s{\"id\":%s,\"outcome\":\"%s\",\"detail\":%s}", i == 0 ? "" : ",",
                 json_string(r.id).c_str(), outcome_name(r.outcome),
                 json_string(r.detail).c_str());
  }
  std::fprintf(out, "],\"summary\":{\"passed\":%u,\"failed\":%u,\"skipped\":%u}}\n", counts[0],
               counts[1], counts[2]);
}

}  // namespace qbfs::validate
