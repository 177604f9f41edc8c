// The staging buffer of an object handle: sizes in whole units, growing and
// dropping it.
#pragma once
#include <cstdint>
#include <cstdlib>

#include <qbfsys/file_hand.h>

namespace fsys {

// The capacity that holds `need` bytes: its low twelve bits cleared plus one
// unit, so an exact multiple still gets one more unit. 0 when that does not
// fit 32 bits.
inline std::uint32_t stage_units_for(std::uint32_t need) {
  std::uint64_t const units = (std::uint64_t{need} & ~std::uint64_t{FS_STAGE_UNIT - 1}) + FS_STAGE_UNIT;
  return units > UINT32_MAX ? 0 : static_cast<std::uint32_t>(units);
}

// Replaces the buffer by a zero-filled one that holds `need` bytes; what it
// held is dropped. False (buffer unchanged) when memory runs out.
inline bool stage_replace(_FILE_HAND_STRUCT* obj, std::uint32_t need) {
  std::uint32_t const capacity = stage_units_for(need);
  void* fresh = capacity == 0 ? nullptr : std::calloc(1, capacity);
  if (fresh == nullptr) return false;
  std::free(obj->stageBuf);
  obj->stageBuf = static_cast<unsigned char*>(fresh);
  obj->stageCap = capacity;
  return true;
}

// Grows the buffer to hold `need` bytes keeping what it holds. False
// (buffer unchanged) when memory runs out.
inline bool stage_grow(_FILE_HAND_STRUCT* obj, std::uint32_t need) {
  std::uint32_t const capacity = stage_units_for(need);
  void* grown = capacity == 0 ? nullptr : std::realloc(obj->stageBuf, capacity);
  if (grown == nullptr) return false;
  obj->stageBuf = static_cast<unsigned char*>(grown);
  obj->stageCap = capacity;
  return true;
}

inline void stage_free(_FILE_HAND_STRUCT* obj) {
  std::free(obj->stageBuf);
  obj->stageBuf = nullptr;
  obj->stageCap = 0;
  obj->stagePos = 0;
  obj->stageCount = 0;
}

}  // namespace fsys
