// What `qbfs validate` was asked to do.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace qbfs::validate {

constexpr unsigned kDefaultTimeoutSeconds = 20;
constexpr unsigned kDefaultAttachCycles = 50;
constexpr unsigned kDefaultMaxObjects = 200;
// Elements attached by the walk, read and cycle checks; a module that finds
// every mount of a machine is sampled, not swept.
constexpr unsigned kDefaultMaxElements = 4;

struct ValidateOptions {
  std::string module;                 // the module file, as given
  std::vector<std::wstring> roots;    // offered to the module as backup roots
  std::string write_dir;              // restore target; empty: no restore check
  std::uint64_t seed = 0;             // drives the read sizes
  unsigned timeout_seconds = kDefaultTimeoutSeconds;  // per check
  unsigned attach_cycles = kDefaultAttachCycles;
  unsigned max_objects = kDefaultMaxObjects;          // per element walked
  unsigned max_elements = kDefaultMaxElements;
  bool drive_scan = false;
  bool json = false;
};

}  // namespace qbfs::validate
