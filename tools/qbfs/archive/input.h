// Opening what the archive commands read and where they work: an archive
// file or standard input ("-"), and an existing directory.
#pragma once
#include <memory>
#include <string>

#include "archive_reader.h"

namespace qbfs::archive {

// An archive opened for reading, with its header checked.
class ArchiveInput {
 public:
  ArchiveInput() = default;
  ~ArchiveInput();
  ArchiveInput(ArchiveInput const&) = delete;
  ArchiveInput& operator=(ArchiveInput const&) = delete;

  // Opens `name` ("-": standard input, which must not be a terminal) and
  // reads its header. On failure prints "<command>: <why>" on standard
  // error and returns the exit code (2 for bad usage, else 1); 0 on success.
  int open(std::string const& name, char const* command);
  ArchiveReader& reader() { return *reader_; }

 private:
  int fd_ = -1;
  std::unique_ptr<ArchiveReader> reader_;
};

// The real path of an existing directory `dir` into `resolved`. On failure
// prints "<command>: cannot use the directory 'DIR': <why>" and returns 1.
int resolve_directory(char const* command, std::string const& dir, std::string& resolved);

}  // namespace qbfs::archive
