// The names of the properties one load has made so far, each with its
// property's index: an open-addressing table with linear probing over names
// that stay in the parsed document, sized once for the most names the load
// can meet. A load of n elements then takes one allocation instead of one
// node per property, and a lookup reads one or two adjacent slots instead of
// following a chain of nodes scattered over the heap.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>

namespace property_tree_details {

// A 64-bit hash of name[0, size), eight bytes at a time: element names are
// short, and a byte-at-a-time hash would spend longer on them than the probe.
inline std::uint64_t hash_name(char const* name, std::size_t size) noexcept {
  constexpr std::uint64_t k_odd = 0x9E3779B97F4A7C15ULL;
  auto mix = [](std::uint64_t x) {
    x ^= x >> 32;
    x *= 0xD6E8FEB86659FD93ULL;
    x ^= x >> 32;
    return x;
  };
  std::uint64_t h = (size + 1) * k_odd;
  for (; size >= 8; name += 8, size -= 8) {
    std::uint64_t word;
    std::memcpy(&word, name, 8);
    h = mix((h ^ word) * k_odd);
  }
  if (size > 0) {
    std::uint64_t word = 0;
    std::memcpy(&word, name, size);
    h = mix((h ^ word) * k_odd);
  }
  return mix(h * k_odd);
}

class name_table {
 public:
  // Room for up to `most` names. Names must be NUL-terminated where they lie
  // (the parser writes a terminator after each element name) and outlive
  // the table.
  explicit name_table(std::size_t most) {
    std::size_t want = most + most / 2 + 1;  // load factor at most 2/3
    std::size_t capacity = 16;
    while (capacity < want) capacity *= 2;
    slots_.reset(new slot[capacity]());
    mask_ = capacity - 1;
  }

  // Asks the processor to fetch the slot where the name of hash `h` starts
  // its probe. A large table misses the cache on nearly every lookup; a walk
  // that prefetches the next name's slot while it works on the current one
  // finds it loaded.
  void prefetch(std::uint64_t h) const noexcept { __builtin_prefetch(&slots_[home(h)], 1); }

  // The index stored for name[0, size), whose hash_name is `h`, and false,
  // or, when the name is new, `index` (now stored) and true. No more than
  // `most` names may be added.
  std::pair<std::uint32_t, bool> find_or_add(char const* name, std::size_t size, std::uint64_t h,
                                             std::uint32_t index) noexcept {
    std::uint32_t const tag = static_cast<std::uint32_t>(h);
    for (std::size_t i = home(h);; i = (i + 1) & mask_) {
      slot& s = slots_[i];
      if (s.name == nullptr) {
        s = slot{name, tag, index};
        return {index, true};
      }
      // Both names end in NUL, so comparing up to size + 1 characters tells
      // a longer stored name from this one and stops at the end of a shorter
      // one.
      if (s.tag == tag && std::strncmp(s.name, name, size + 1) == 0) return {s.index, false};
    }
  }

 private:
  struct slot {
    char const* name;  // null: empty
    std::uint32_t tag;
    std::uint32_t index;
  };
  static_assert(sizeof(slot) == 16, "four slots per cache line");
  // The high bits choose the slot, the low ones are the tag: a tag match is
  // then rarely a coincidence of the slot choice as well.
  std::size_t home(std::uint64_t h) const noexcept { return static_cast<std::size_t>(h >> 32) & mask_; }
  std::unique_ptr<slot[]> slots_;
  std::size_t mask_ = 0;
};

}  // namespace property_tree_details
