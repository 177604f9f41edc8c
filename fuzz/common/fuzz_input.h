// Reading choices out of a fuzz input: little-endian numbers of 1 to 4
// bytes, zero once the input is used up.
#pragma once
#include <cstddef>
#include <cstdint>

namespace qbfuzz {

struct Input {
  std::uint8_t const* data;
  std::size_t size;
  std::size_t at = 0;
  std::uint32_t take(std::size_t bytes) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < bytes && at < size; ++i)
      value |= std::uint32_t{data[at++]} << (8 * i);
    return value;
  }
  bool done() const { return at >= size; }
};

}  // namespace qbfuzz
