// Compiled against the staged public headers alone, as a module author's
// code would be: the umbrella header compiles on its own (and with it the
// layout checks each header keeps beside its records), and a few entry
// points link and answer.
#include <qbfsys/qbfsys.h>
#include <qbposix/posix_os_info.h>

#include <cstdio>
#include <cwchar>

static_assert(qb_strm_id("PNAM") == STRM_PATH_NAME, "stream ids are their four letters");

int main() {
  int failures = 0;
  auto check = [&](bool ok, char const* what) {
    if (!ok) {
      std::fprintf(stderr, "failed: %s\n", what);
      ++failures;
    }
  };
  check(std::wcscmp(FS_GetStrmIdString(STRM_GENERIC_DATA), L"STRM_GENERIC_DATA        ") == 0,
        "stream id name");
  check(FS_GetDelimiterFromOSID(85, 0) == L'/', "delimiter");
  STREAM_INFO header{};
  FS_InitStrmInfo(&header, STRM_NT_SPARSE, 1, 2);
  check(header.id == STRM_NT_SPARSE && header.size == 2, "stream header");
  DBLK blk{};
  blk.blk_type = DBLK_KIND_CFDB;
  blk.area.cfdb.attrib2 = 5;
  check(FS_GetAttrib2FromDBLK(nullptr, &blk) == 5, "corrupt-file word 2");
  // A record as a reader of the posix module's blocks meets it: refused when
  // cut short or of an unknown version.
  qbposix::POSIX_OS_INFO info{};
  info.version = qbposix::POSIX_OS_INFO_VERSION;
  info.mode = 0100644;
  qbposix::POSIX_OS_INFO read{};
  check(qbposix::posix_os_info_read(&info, sizeof info, read) && read.mode == 0100644, "posix record");
  check(!qbposix::posix_os_info_read(&info, sizeof info - 1, read), "short posix record");
  info.version = 2;
  check(!qbposix::posix_os_info_read(&info, sizeof info, read), "unknown posix record version");
  return failures == 0 ? 0 : 1;
}
