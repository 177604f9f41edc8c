// _FILE_HAND_STRUCT: the handle of one open object, made by the file system
// that opened it and released through its close-object operation.
//
// Only the leading fields that the handle lifecycle touches are defined so
// far; object I/O extends the record with further fields after these, so the
// order of the fields below must not change.
#pragma once
#include <cstdint>

#include <qbfsys/fs_types.h>

struct _FILE_HAND_STRUCT {
  FSYS_HAND_STRUCT* fsh;     // the file-system handle the object was opened on
  unsigned char* stage;      // staging buffer (grows in 4,096-byte units); freed at detach
  std::uint32_t stageCap;    // capacity of `stage` in bytes
};
