// check_walk and check_read_framing (object_checks.h).
#include <random>
#include <string>

#include <qbfsys/handles.h>

#include "layer_harness.h"
#include "object_checks.h"
#include "object_reader.h"
#include "tree_walk.h"

namespace qbfs::validate {
namespace {

std::string counts_text(WalkCounts const& c) {
  std::string text = std::to_string(c.objects) + " objects (" + std::to_string(c.directories) +
                     " directories, " + std::to_string(c.files) + " files)";
  if (c.object_errors > 0) text += ", " + std::to_string(c.object_errors) + " reported unreadable";
  if (c.capped) text += ", stopped at the object limit";
  return text;
}

// Walks every attach target, calling `on_file` for each file.
CheckResult walk_targets(ValidateOptions const& options, LayerHarness& harness,
                         FileVisitor const& on_file, WalkCounts& total) {
  for (GENERIC_DLE* dle : harness.attach_targets()) {
    std::string problem;
    FSYS_HAND_STRUCT* hand = attach_element(harness, dle, problem);
    if (hand == nullptr) return failed(problem);
    WalkCounts counts;
    problem = walk_tree(hand, options.max_objects, on_file, counts);
    FS_DetachDLE(hand);
    if (!problem.empty()) return failed(element_name(dle) + ": " + problem);
    total.objects += counts.objects;
    total.directories += counts.directories;
    total.files += counts.files;
    total.object_errors += counts.object_errors;
    total.capped = total.capped || counts.capped;
  }
  return passed({});
}

}  // namespace

CheckResult check_walk(ValidateOptions const& options) {
  LayerHarness harness(options);
  std::string why_not;
  if (!ready_to_walk(harness, why_not)) return skipped(why_not);
  WalkCounts total;
  CheckResult result = walk_targets(
      options, harness,
      [](FSYS_HAND_STRUCT*, DBLK&, std::string const&) { return std::string(); }, total);
  if (result.outcome == Outcome::passed) result.detail = counts_text(total);
  return result;
}

CheckResult check_read_framing(ValidateOptions const& options) {
  LayerHarness harness(options);
  std::string why_not;
  if (!ready_to_walk(harness, why_not)) return skipped(why_not);
  std::mt19937_64 rng(options.seed);
  unsigned read = 0;
  unsigned unreadable = 0;
  std::size_t streams = 0;
  std::uint64_t bytes = 0;
  WalkCounts total;
  CheckResult result = walk_targets(
      options, harness,
      [&](FSYS_HAND_STRUCT* hand, DBLK& blk, std::string const& path) {
        ReadOutcome const r = read_object(hand, blk, path, rng, nullptr);
        if (r.unreadable) ++unreadable;
        else ++read;
        streams += r.streams.size();
        bytes += r.bytes;
        return r.problem;
      },
      total);
  if (result.outcome != Outcome::passed) return result;
  if (total.files == 0) return skipped("the walk found no file to read (" + counts_text(total) + ")");
  return passed(std::to_string(read) + " files read (" + std::to_string(streams) + " streams, " +
                std::to_string(bytes) + " bytes)" +
                (unreadable > 0 ? ", " + std::to_string(unreadable) + " reported unreadable" : ""));
}

}  // namespace qbfs::validate
