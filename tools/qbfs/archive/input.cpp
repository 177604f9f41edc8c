#include "input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "archive_terminal_text.h"

namespace qbfs::archive {

ArchiveInput::~ArchiveInput() {
  if (fd_ > STDIN_FILENO) close(fd_);
}

int ArchiveInput::open(std::string const& name, char const* command) {
  auto refuse = [&](std::string const& why, int code) {
    std::fprintf(stderr, "%s: %s\n", command, terminal_text(why).c_str());
    return code;
  };
  if (name == "-") {
    if (isatty(STDIN_FILENO) == 1)
      return refuse("standard input is a terminal; pipe an archive into it or name a file", 2);
    fd_ = STDIN_FILENO;
  } else {
    // Opened without blocking so that a FIFO without a writer cannot hang
    // the open; reads block as usual afterwards.
    fd_ = ::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat st {};
    if (fd_ < 0 || fstat(fd_, &st) != 0)
      return refuse("cannot open the archive '" + name + "': " + std::strerror(errno), 1);
    if (S_ISDIR(st.st_mode)) return refuse("the archive '" + name + "' is a directory", 1);
    fcntl(fd_, F_SETFL, fcntl(fd_, F_GETFL) & ~O_NONBLOCK);
  }
  reader_ = std::make_unique<ArchiveReader>(fd_);
  std::string why;
  if (!reader_->open(why)) return refuse("cannot read '" + name + "': " + why, 1);
  return 0;
}

int resolve_directory(char const* command, std::string const& dir, std::string& resolved) {
  char path[PATH_MAX];
  struct stat st {};
  char const* why = nullptr;
  if (realpath(dir.c_str(), path) == nullptr || stat(path, &st) != 0)
    why = std::strerror(errno);
  else if (!S_ISDIR(st.st_mode))
    why = "it is not a directory";
  if (why != nullptr) {
    std::fprintf(stderr, "%s: cannot use the directory '%s': %s\n", command, terminal_text(dir).c_str(), why);
    return 1;
  }
  resolved = path;
  return 0;
}

}  // namespace qbfs::archive
