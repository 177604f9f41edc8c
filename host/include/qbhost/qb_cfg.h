// The host's configuration record, handed unchanged to every file system.
// The layer reads only `drive_scan_flag`; the rest is for the modules.
#pragma once
#include <cstddef>
#include <cstdint>

struct QB_CFG {
  // Non-zero admits file-system indices 9 and 12 to drive finding.
  std::uint32_t drive_scan_flag;
  // Module options; no bit is defined by the layer.
  std::uint32_t module_flags;
  // Directory roots a module offers instead of what it finds itself, as a
  // null-terminated array of wide paths; null means "find them".
  wchar_t const* const* roots;
  // The name this machine goes by; null means the system's host name.
  wchar_t const* machine_name;
};
static_assert(offsetof(QB_CFG, drive_scan_flag) == 0, "the layer reads the flag at offset 0");
