#include "module_check.h"

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
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

std::string shipped_module_dir() {
  char self[PATH_MAX];
  ssize_t const n = readlink("/proc/self/exe", self, sizeof self - 1);
  if (n > 0) {
    std::string installed(self, static_cast<std::size_t>(n));
    installed = installed.substr(0, installed.rfind('/') + 1) + QB_INSTALLED_MODULE_DIR;
    struct stat st {};
    if (stat(installed.c_str(), &st) == 0 && S_ISDIR(st.st_mode)) return installed;
  }
  return QB_MODULE_DIR;
}

}  // namespace qbfs
