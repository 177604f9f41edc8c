// The outcome of one validator check and the report that collects them.
#pragma once
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace qbfs::validate {

enum class Outcome { passed, failed, skipped };

// One check's verdict. `detail` says, for a failure, what was expected and
// what came; for a skip, why the check could not run; for a pass, what was
// covered (counts), so that a pass over nothing is visible as such.
struct CheckResult {
  std::string id;
  Outcome outcome = Outcome::skipped;
  std::string detail;
};

CheckResult passed(std::string detail);
CheckResult failed(std::string detail);
CheckResult skipped(std::string detail);

// "passed", "failed" or "skipped".
char const* outcome_name(Outcome outcome);

// Collects the checks of one run in the order they ran.
class Report {
 public:
  void add(CheckResult result) { results_.push_back(std::move(result)); }
  std::vector<CheckResult> const& results() const { return results_; }
  // The first result with this id, or null.
  CheckResult const* find(std::string const& id) const;
  bool any_failed() const;
  // One line per check, then "N passed, N failed, N skipped".
  void write_text(std::FILE* out, std::string const& module, std::uint64_t seed) const;
  // {"module":..., "seed":..., "checks":[{"id","outcome","detail"}...],
  //  "summary":{"passed":N,"failed":N,"skipped":N}}
  void write_json(std::FILE* out, std::string const& module, std::uint64_t seed) const;

 private:
  std::vector<CheckResult> results_;
};

}  // namespace qbfs::validate
