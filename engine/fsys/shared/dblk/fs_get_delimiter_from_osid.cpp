// FS_GetDelimiterFromOSID: the path delimiter by OS id. The version does not
// matter: no OS changed its delimiter between versions.
#include <algorithm>
#include <iterator>

#include <qbfsys/dblk_access.h>

namespace {
// OS ids by delimiter; every id not listed uses the backslash.
constexpr unsigned short kColonIds[] = {3, 4, 5, 21};
constexpr unsigned short kSlashIds[] = {20, 49, 57, 62, 72, 85};
constexpr unsigned short kInNameIds[] = {32, 38, 39, 56, 58, 64, 70, 80, 84};

template <std::size_t N>
bool listed(unsigned short const (&ids)[N], unsigned short id) {
  return std::find(std::begin(ids), std::end(ids), id) != std::end(ids);
}
}  // namespace

unsigned short FS_GetDelimiterFromOSID(unsigned short osId, unsigned short /*osVersion*/) {
  if (listed(kColonIds, osId)) return FS_DELIMITER_COLON;
  if (listed(kSlashIds, osId)) return FS_DELIMITER_SLASH;
  if (listed(kInNameIds, osId)) return FS_DELIMITER_IN_NAME;
  return FS_DELIMITER_BACKSLASH;
}
