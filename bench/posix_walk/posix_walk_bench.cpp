// Reading every object of a tree (by default /usr/include) through the
// layer: attach, walk with find-first/next and change into each directory,
// open, read every stream, close. The anchor is a plain nftw over the same
// tree that opens and reads every regular file with the same buffer size.
// Both run in the same process, alternately, after one warm-up pass each,
// so the page cache serves both alike. The figures are the best of the
// rounds; the ratio is also given as the median of each round's ratio,
// which holds up better on a machine shared with other work.
//
// Usage: bench_posix_walk [tree] [rounds]
#include <fcntl.h>
#include <ftw.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <qbhost/zprintf.h>

#include "posix_layer.h"

namespace {

constexpr std::size_t kBuffer = 1u << 20;
constexpr int kOpenFds = 64;
constexpr int kDefaultRounds = 5;
constexpr double kMega = 1e6;

struct Figures {
  std::uint64_t objects = 0;
  std::uint64_t bytes = 0;
  double seconds = 0;
};

Figures g_plain;
std::vector<char> g_buffer(kBuffer);

int plain_visit(char const* path, struct stat const* st, int, struct FTW*) {
  ++g_plain.objects;
  if (!S_ISREG(st->st_mode)) return 0;
  int fd = open(path, O_RDONLY | O_NOATIME);
  if (fd < 0) return 0;
  for (ssize_t n; (n = read(fd, g_buffer.data(), kBuffer)) > 0;)
    g_plain.bytes += static_cast<std::uint64_t>(n);
  close(fd);
  return 0;
}

double now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

Figures plain_walk(std::string const& tree) {
  g_plain = Figures{};
  double const start = now();
  nftw(tree.c_str(), plain_visit, kOpenFds, FTW_PHYS);
  g_plain.seconds = now() - start;
  --g_plain.objects;  // the tree's own root is not one of its objects
  return g_plain;
}

Figures layer_walk(qbtest::PosixSession& session, std::string const& tree) {
  Figures f;
  double const start = now();
  FSYS_HAND_STRUCT* hand = session.attach(tree);
  if (hand == nullptr) return f;
  qbtest::WalkTotals totals;
  auto sink = [](STREAM_INFO const&, unsigned char*, unsigned) { return FS_SUCCESS; };
  qbtest::walk(hand, [&](DBLK* blk) { qbtest::read_object(hand, blk, nullptr, sink, totals); });
  FS_DetachDLE(hand);
  f.seconds = now() - start;
  f.objects = totals.objects;
  f.bytes = totals.bytes;
  if (!totals.failures.empty())
    std::fprintf(stderr, "%zu objects failed to read\n", totals.failures.size());
  return f;
}

void print(char const* what, Figures const& f) {
  std::printf("%-6s %8llu objects %10.1f MB  %8.3f s  %10.0f objects/s  %8.1f MB/s\n", what,
              static_cast<unsigned long long>(f.objects), static_cast<double>(f.bytes) / kMega,
              f.seconds, static_cast<double>(f.objects) / f.seconds,
              static_cast<double>(f.bytes) / kMega / f.seconds);
}

}  // namespace

int main(int argc, char** argv) {
  std::string const tree = argc > 1 ? argv[1] : "/usr/include";
  int const rounds = std::max(1, argc > 2 ? std::atoi(argv[2]) : kDefaultRounds);
  qbhost::zprintf_set_threshold(-1);  // the layer's attach and detach lines stay quiet
  qbtest::PosixSession session(QB_MODULE_DIR, {tree});
  if (!session.ok()) {
    std::fprintf(stderr, "the posix module could not be loaded from %s\n", QB_MODULE_DIR);
    return 1;
  }
  plain_walk(tree);  // warm-up
  layer_walk(session, tree);
  Figures best_plain, best_layer;
  std::vector<double> ratios;
  for (int i = 0; i < rounds; ++i) {
    Figures const p = plain_walk(tree), l = layer_walk(session, tree);
    if (best_plain.seconds == 0 || p.seconds < best_plain.seconds) best_plain = p;
    if (best_layer.seconds == 0 || l.seconds < best_layer.seconds) best_layer = l;
    ratios.push_back(p.seconds / l.seconds);
  }
  std::sort(ratios.begin(), ratios.end());
  std::printf("tree %s, best of %d rounds\n", tree.c_str(), rounds);
  print("plain", best_plain);
  print("layer", best_layer);
  std::printf(
      "layer/plain: %.1f%% of the objects per second (best against best), %.1f%% (median round)\n",
      100.0 * best_plain.seconds / best_layer.seconds, 100.0 * ratios[ratios.size() / 2]);
  return 0;
}
