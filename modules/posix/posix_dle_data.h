// The record the posix module hangs on each of its elements (fsys_data):
// what later handles need to reach the file system behind the element.
#pragma once
#include <string>

#include <qbfsys/dle.h>

namespace qbposix {

struct PosixDleData : DLE_FSYS_DATA {
  std::wstring machine_name;  // the machine the element belongs to
  std::string path;           // mount point or root as a narrow path; empty for the machine
  std::string fs_type;        // file-system type from the mount table; may be empty
  std::string device;         // mounted device or source; may be empty
};

// A new record whose destroy function deletes it; null when out of memory.
PosixDleData* posix_dle_data_create();
// The element's record when the element is one of this module's, else null.
PosixDleData* posix_dle_data_of(GENERIC_DLE const* dle);

}  // namespace qbposix
