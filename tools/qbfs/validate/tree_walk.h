// A depth-first walk of the objects below an attached handle, made the way
// a backup job makes it: find-first and find-next in each directory, into a
// directory block with ChangeIntoDDB and back with ChangeDirUp, every object
// handed to a visitor while its directory is current.
#pragma once
#include <functional>
#include <string>

#include <qbfsys/dblk.h>
#include <qbfsys/handles.h>

namespace qbfs::validate {

// Directories deeper than this are listed but not entered.
constexpr unsigned kMaxWalkDepth = 64;

struct WalkCounts {
  unsigned objects = 0;      // blocks the finds delivered
  unsigned directories = 0;
  unsigned files = 0;
  unsigned object_errors = 0;  // finds that returned FS_STATUS_EXT_ERROR
  bool capped = false;       // stopped at the object limit
};

// Called for each file block (kind 9), its directory current on `hand`,
// with its path below the root. Returns a problem text, or empty to go on.
using FileVisitor =
    std::function<std::string(FSYS_HAND_STRUCT* hand, DBLK& blk, std::string const& path)>;

// Walks at most `max_objects` objects. Returns the first problem (what was
// expected and what came), or empty.
std::string walk_tree(FSYS_HAND_STRUCT* hand, unsigned max_objects, FileVisitor const& on_file,
                      WalkCounts& counts);

// The block's name (its OS name element, 4-byte characters) in UTF-8.
std::string block_name(DBLK const& blk);

}  // namespace qbfs::validate
