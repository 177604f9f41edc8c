// Fuzzes FS_CompareFileSpec and FS_LiteralComp. Input: a flags byte, an
// options byte, a split byte, then characters (mostly drawn from the ones
// the rules treat specially). Every string lives in a heap block of exactly
// its count, so the sanitizer sees any read past a count. Checks: results in
// range, and case-insensitive matching equals case-sensitive matching of the
// folded strings (the C locale folds only 'A' to 'Z').
#include <qbfsys/fs_filespec.h>

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace {

wchar_t char_of(std::uint8_t b) {
  static wchar_t const special[] = {L'a', L'b', L'A', L'B', L'.', L'*', L'?', L'\0'};
  return b < 0xC0 ? special[b & 7] : static_cast<wchar_t>(b * 1021);
}

std::unique_ptr<wchar_t[]> copy(wchar_t const* s, int n, bool fold) {
  std::unique_ptr<wchar_t[]> out(new wchar_t[n]);
  for (int i = 0; i < n; ++i) out[i] = fold ? tolower64(s[i]) : s[i];
  return out;
}

void check(bool ok) {
  if (!ok) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  if (size < 3 || size > 3 + 2 * 4096) return 0;
  int const flags = static_cast<std::int8_t>(data[0]) % 16;
  int const partial = data[1] & 1;
  int const literal = (data[1] >> 1) & 1;
  int const total = static_cast<int>(size - 3);
  int const nameLen = total == 0 ? 0 : data[2] % (total + 1);
  int const specLen = total - nameLen;

  std::unique_ptr<wchar_t[]> all(new wchar_t[total > 0 ? total : 1]);
  for (int i = 0; i < total; ++i) all[i] = char_of(data[3 + i]);

  auto name = copy(all.get(), nameLen, false);
  auto spec = copy(all.get() + nameLen, specLen, false);
  int const r = FS_CompareFileSpec(name.get(), static_cast<short>(nameLen), spec.get(),
                                   static_cast<short>(specLen), 0, partial, flags);
  check(r >= 0 && r <= 2);

  auto foldedName = copy(name.get(), nameLen, true);
  auto foldedSpec = copy(spec.get(), specLen, true);
  check(FS_CompareFileSpec(foldedName.get(), static_cast<short>(nameLen), foldedSpec.get(),
                           static_cast<short>(specLen), 1, partial, flags) == r);

  int const count = nameLen < specLen ? nameLen : specLen;
  short const m = FS_LiteralComp(spec.get(), name.get(), static_cast<short>(count), 0, literal);
  check(m >= (count > 0 ? -1 : 0) && m <= count);
  return 0;
}
