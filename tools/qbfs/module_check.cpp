#include "module_check.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

namespace qbfs {

std::string check_module(std::string const& path) {
  struct stat st;
  if (stat(path.c_str(), &st) != 0) return std::strerror(errno);
  if (S_ISDIR(st.st_mode)) return "it is a directory";
  if (!S_ISREG(st.st_mode)) return "it is not a regular file";
  // The handle stays open for the life of the process, as the layer keeps
  // every module it loads.
  if (dlopen(path.c_str(), RTLD_NOW) != nullptr) return std::string();
  char const* why = dlerror();
  return why != nullptr ? why : "the loader gave no reason";
}

}  // namespace qbfs
