// What was built: read by the host (and by `qbfs version`).
#include <qbfsys/buildinfo.h>

#ifndef QB_VERSION
#define QB_VERSION "0.0.0"
#endif
#ifndef QB_BUILD_TYPE
#define QB_BUILD_TYPE ""
#endif
#ifndef QB_SOURCE_REVISION
#define QB_SOURCE_REVISION "unknown"
#endif

#define QB_STR2(x) #x
#define QB_STR(x) QB_STR2(x)

extern "C" FS_EXPORT const QB_BUILDINFO buildinfo = {
    QB_BUILDINFO_MAGIC,
    23,
    QB_VERSION,
    "g++ " __VERSION__,
    QB_BUILD_TYPE[0] != '\0' ? QB_BUILD_TYPE : "unspecified",
    QB_SOURCE_REVISION,
#if defined(__SANITIZE_ADDRESS__)
    "address,undefined",
#else
    "",
#endif
};
