// The tree the module serves: a few text files, an empty directory and one
// file larger than the read unit, so that a reader sees several calls.
#include "memfs.h"

namespace memfs {
namespace {

constexpr std::size_t kLargeFileBytes = 100000;

Node file(wchar_t const* name, std::string data) { return {name, false, std::move(data), {}}; }

Node build() {
  std::string large(kLargeFileBytes, '\0');
  for (std::size_t i = 0; i < large.size(); ++i) large[i] = static_cast<char>('a' + i % 26);
  Node docs{L"docs", true, {}, {file(L"guide.txt", "Walk, open, read, close.\n"), {L"empty", true, {}, {}}}};
  return {L"", true, {}, {file(L"README.txt", "Served from memory.\n"), docs, file(L"large.bin", large)}};
}

}  // namespace

Node const& memfs_root() {
  static Node const root = build();
  return root;
}

}  // namespace memfs
