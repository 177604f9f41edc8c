// `buildinfo`: exported data describing the build of the layer.
#pragma once
#include <cstdint>
#include <qbfsys/fs_export.h>

constexpr std::uint32_t QB_BUILDINFO_MAGIC = 0x51424249;  // "QBBI"

struct QB_BUILDINFO {
  std::uint32_t magic;              // QB_BUILDINFO_MAGIC
  std::uint32_t interface_version;  // the module interface version (23)
  char const* version;              // the layer's version, "major.minor.patch"
  char const* compiler;             // compiler and its version
  char const* build_type;           // CMake build type
  char const* source_revision;      // source revision, or "unknown"
  char const* sanitizers;           // sanitizers compiled in, empty for none
};

// What this build of the layer is; static, never changes.
extern "C" FS_EXPORT const QB_BUILDINFO buildinfo;
