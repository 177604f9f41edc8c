#include "restore_policy.h"

#include <sys/stat.h>

#include <cstring>

#include "stat_view.h"

namespace qbfs::archive {

bool RestorePolicy::admit(std::uint8_t os_id, std::vector<unsigned char>& os_info, std::string& why) const {
  qbposix::POSIX_OS_INFO info{};
  if (!stat_view(os_id, os_info, info)) return true;
  if (refuse_devices && (S_ISCHR(info.mode) || S_ISBLK(info.mode))) {
    why = std::string(S_ISCHR(info.mode) ? "a character" : "a block") + " device node; refused (--no-devices)";
    return false;
  }
  std::uint32_t mode = info.mode;
  if (clear_setid) mode &= ~static_cast<std::uint32_t>(S_ISUID | S_ISGID);
  if (apply_umask) mode &= ~static_cast<std::uint32_t>(umask & (S_IRWXU | S_IRWXG | S_IRWXO));
  if (mode != info.mode) {
    info.mode = mode;
    std::memcpy(os_info.data(), &info, sizeof info);
  }
  return true;
}

}  // namespace qbfs::archive
