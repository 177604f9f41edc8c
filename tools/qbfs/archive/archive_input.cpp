#include "archive_input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace qbfs::archive {

int open_archive(std::string const& name, std::string& why, int& exit_code) {
  exit_code = 1;
  if (name == "-") {
    if (isatty(STDIN_FILENO) == 1) {
      why = "standard input is a terminal; pipe an archive into it or name a file";
      exit_code = 2;
      return -1;
    }
    return STDIN_FILENO;
  }
  int const fd = open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  struct stat st {};
  if (fd < 0 || fstat(fd, &st) != 0) {
    why = "cannot open the archive '" + name + "': " + std::strerror(errno);
    if (fd >= 0) close(fd);
    return -1;
  }
  if (S_ISDIR(st.st_mode)) {
    why = "the archive '" + name + "' is a directory";
    close(fd);
    return -1;
  }
  // Opened without blocking so that a FIFO without a writer cannot hang
  // the open; reads block as usual from here on.
  fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
  return fd;
}

}  // namespace qbfs::archive
