// QB::stricmp_internal / QB::strnicmp_internal: case-insensitive compares of
// wide strings that do not depend on the process locale.
//
// Characters are compared after simple case folding (one character to one
// character) for Latin (ASCII, Latin-1, Extended-A/B, Extended Additional),
// Greek, Cyrillic, Armenian, Georgian, Glagolitic, Deseret, the letterlike
// compatibility signs (Kelvin, Ohm, Angstrom), Roman numerals, circled and
// full-width letters. Other characters compare by value. Folding never
// changes a string's length, so "ß" does not equal "ss". Results order by the
// folded code points.
#include <qbhost/strings.h>

#include <cstdint>
#include <iterator>

namespace {

enum class fold : std::uint8_t {
  shift,  // every character in the range adds `delta`
  even,   // alternating pairs starting on an even code point: upper, lower
  odd,    // alternating pairs starting on an odd code point: upper, lower
};

struct fold_range {
  char32_t first;
  char32_t last;
  fold kind;
  std::int32_t delta;
};

// Sorted by `first`; ranges do not overlap.
constexpr fold_range kFolds[] = {
    {0x0041, 0x005A, fold::shift, 32},     // A-Z
    {0x00B5, 0x00B5, fold::shift, 775},    // micro sign -> Greek mu
    {0x00C0, 0x00D6, fold::shift, 32},     // Latin-1 capitals
    {0x00D8, 0x00DE, fold::shift, 32},
    {0x0100, 0x012F, fold::even, 1},       // Latin Extended-A
    {0x0132, 0x0137, fold::even, 1},
    {0x0139, 0x0148, fold::odd, 1},
    {0x014A, 0x0177, fold::even, 1},
    {0x0178, 0x0178, fold::shift, -121},   // Y with diaeresis
    {0x0179, 0x017E, fold::odd, 1},
    {0x017F, 0x017F, fold::shift, -268},   // long s -> s
    {0x01CD, 0x01DC, fold::odd, 1},        // Latin Extended-B (regular parts)
    {0x01DE, 0x01EF, fold::even, 1},
    {0x01F8, 0x021F, fold::even, 1},
    {0x0222, 0x0233, fold::even, 1},
    {0x0386, 0x0386, fold::shift, 38},     // Greek
    {0x0388, 0x038A, fold::shift, 37},
    {0x038C, 0x038C, fold::shift, 64},
    {0x038E, 0x038F, fold::shift, 63},
    {0x0391, 0x03A1, fold::shift, 32},
    {0x03A3, 0x03AB, fold::shift, 32},
    {0x03C2, 0x03C2, fold::shift, 1},      // final sigma
    {0x03D8, 0x03EF, fold::even, 1},
    {0x0400, 0x040F, fold::shift, 80},     // Cyrillic
    {0x0410, 0x042F, fold::shift, 32},
    {0x0460, 0x0481, fold::even, 1},
    {0x048A, 0x04BF, fold::even, 1},
    {0x04C0, 0x04C0, fold::shift, 15},
    {0x04C1, 0x04CE, fold::odd, 1},
    {0x04D0, 0x052F, fold::even, 1},
    {0x0531, 0x0556, fold::shift, 48},     // Armenian
    {0x10A0, 0x10C5, fold::shift, 7264},   // Georgian
    {0x1E00, 0x1E95, fold::even, 1},       // Latin Extended Additional
    {0x1E9E, 0x1E9E, fold::shift, -7615},  // capital sharp s
    {0x1EA0, 0x1EFF, fold::even, 1},
    {0x2126, 0x2126, fold::shift, -7517},  // Ohm sign -> omega
    {0x212A, 0x212A, fold::shift, -8383},  // Kelvin sign -> k
    {0x212B, 0x212B, fold::shift, -8262},  // Angstrom sign -> a with ring
    {0x2160, 0x216F, fold::shift, 16},     // Roman numerals
    {0x24B6, 0x24CF, fold::shift, 26},     // circled letters
    {0x2C00, 0x2C2F, fold::shift, 48},     // Glagolitic
    {0xFF21, 0xFF3A, fold::shift, 32},     // full-width A-Z
    {0x10400, 0x10427, fold::shift, 40},   // Deseret
};

char32_t fold_char(wchar_t w) {
  auto const c = static_cast<char32_t>(static_cast<std::uint32_t>(w));
  if (c < 0x41) return c;
  if (c <= 0x7F) return (c <= 0x5A) ? c + 32 : c;
  // Binary search for the last range whose first character is <= c.
  std::size_t lo = 0, hi = std::size(kFolds);
  while (lo < hi) {
    std::size_t const mid = (lo + hi) / 2;
    if (kFolds[mid].first <= c) lo = mid + 1;
    else hi = mid;
  }
  if (lo == 0) return c;
  fold_range const& r = kFolds[lo - 1];
  if (c > r.last) return c;
  switch (r.kind) {
    case fold::shift:
      return static_cast<char32_t>(static_cast<std::int64_t>(c) + r.delta);
    case fold::even:
      return (c % 2 == 0) ? c + 1 : c;
    case fold::odd:
      return (c % 2 == 1) ? c + 1 : c;
  }
  return c;
}

int compare(wchar_t const* a, wchar_t const* b, std::size_t count) {
  if (a == nullptr || b == nullptr) return (a == b) ? 0 : (a == nullptr ? -1 : 1);
  for (std::size_t i = 0; i < count; ++i) {
    char32_t const x = fold_char(a[i]);
    char32_t const y = fold_char(b[i]);
    if (x != y) return x < y ? -1 : 1;
    if (x == 0) break;
  }
  return 0;
}

}  // namespace

namespace QB {

int stricmp_internal(wchar_t const* a, wchar_t const* b) {
  return compare(a, b, static_cast<std::size_t>(-1));
}

int strnicmp_internal(wchar_t const* a, wchar_t const* b, std::size_t count) {
  return compare(a, b, count);
}

}  // namespace QB
