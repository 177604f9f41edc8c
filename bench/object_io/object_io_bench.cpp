// Staged object I/O against its floor. A module serves an object from
// memory in 64 KiB units (it asks for at least 64 KiB per call, so the
// layer stages); the caller reads or writes 4 KiB or 100-byte pieces
// through FS_ReadObj / FS_WriteObj. The floor, ChunkedCopy, moves the same
// bytes through a plain 64 KiB ring with the same piece sizes: the two
// copies a byte needs when the sizes differ, and nothing else.
//
// Each run first checks that the bytes arrive unchanged, then times.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include <qbfsys/qbfsys.h>

namespace {

constexpr std::uint32_t kUnit = 64 * 1024;
constexpr std::size_t kObjectBytes = 16u << 20;

struct MemoryObject {
  std::vector<unsigned char> source;
  std::vector<unsigned char> sink;
  std::size_t at = 0;
};
MemoryObject g_object;

FS_STATUS read_unit(_FILE_HAND_STRUCT*, unsigned char* buffer, unsigned int* size, unsigned int* need,
                    STREAM_INFO*) {
  std::size_t const left = g_object.source.size() - g_object.at;
  std::size_t const n = std::min<std::size_t>({*size, kUnit, left});
  std::memcpy(buffer, g_object.source.data() + g_object.at, n);
  g_object.at += n;
  *size = static_cast<unsigned int>(n);
  *need = kUnit;
  return n == 0 ? FS_ERR_OBJ_NO_DATA : FS_SUCCESS;
}

FS_STATUS write_unit(_FILE_HAND_STRUCT*, unsigned char* data, unsigned int* size, unsigned int* need,
                     STREAM_INFO* header) {
  if (header->id == STRM_INVALID) {
    std::memcpy(g_object.sink.data() + g_object.at, data, *size);
    g_object.at += *size;
  }
  *need = kUnit;
  return FS_SUCCESS;
}

_FUNC_LIST memory_table() {
  _FUNC_LIST t{};
  t.OpenObj = [](FSYS_HAND_STRUCT* h, _FILE_HAND_STRUCT** out, DBLK*, OPEN_MODE) -> FS_STATUS {
    *out = static_cast<_FILE_HAND_STRUCT*>(std::calloc(1, sizeof(_FILE_HAND_STRUCT)));
    (*out)->fsysHand = h;
    return FS_SUCCESS;
  };
  t.ReadObj = read_unit;
  t.WriteObj = write_unit;
  t.CloseObj = [](_FILE_HAND_STRUCT* o, void**, void**) -> FS_STATUS { return std::free(o), FS_SUCCESS; };
  return t;
}

struct Session {
  Session() {
    if (g_object.source.empty()) {
      g_object.source.resize(kObjectBytes);
      for (std::size_t i = 0; i < kObjectBytes; ++i) g_object.source[i] = static_cast<unsigned char>(i * 131 + 7);
      g_object.sink.resize(kObjectBytes);
    }
    FS_OpenFileSys(&hand, 3, &cfg, &table);
  }
  ~Session() { FS_CloseFileSys(hand); }
  _FILE_HAND_STRUCT* open() {
    _FILE_HAND_STRUCT* obj = nullptr;
    DBLK blk{};
    FS_OpenObj(hand, &obj, &blk, FS_READ);
    g_object.at = 0;
    return obj;
  }
  QB_CFG cfg{};
  _FUNC_LIST table = memory_table();
  FSYS_HAND_STRUCT* hand = nullptr;
};

// Reads the whole object in `piece`-byte reads into `out`.
void read_object(Session& s, std::uint32_t piece, std::vector<unsigned char>& out) {
  _FILE_HAND_STRUCT* obj = s.open();
  std::size_t at = 0;
  for (;;) {
    unsigned int size = piece, need = 1;
    STREAM_INFO header{};
    if (FS_ReadObj(obj, out.data() + at, &size, &need, &header) != FS_SUCCESS) break;
    at += size;
  }
  FS_CloseObj(obj, nullptr, nullptr);
}

void write_object(Session& s, std::uint32_t piece) {
  _FILE_HAND_STRUCT* obj = s.open();
  STREAM_INFO header{};
  FS_InitStrmInfo(&header, STRM_GENERIC_DATA, 0, 0);
  unsigned int size = 0, need = 1;
  FS_WriteObj(obj, nullptr, &size, &need, &header);
  for (std::size_t at = 0; at < kObjectBytes; at += piece) {
    size = static_cast<unsigned int>(std::min<std::size_t>(piece, kObjectBytes - at));
    STREAM_INFO data_header{};
    FS_WriteObj(obj, g_object.source.data() + at, &size, &need, &data_header);
  }
  FS_CloseObj(obj, nullptr, nullptr);
}

void chunked_copy(std::uint32_t piece, std::vector<unsigned char>& ring, std::vector<unsigned char>& out) {
  std::size_t at = 0;
  while (at < kObjectBytes) {
    std::size_t const unit = std::min<std::size_t>(kUnit, kObjectBytes - at);
    std::memcpy(ring.data(), g_object.source.data() + at, unit);
    for (std::size_t pos = 0; pos < unit; pos += piece) {
      std::size_t const n = std::min<std::size_t>(piece, unit - pos);
      std::memcpy(out.data() + at + pos, ring.data() + pos, n);
    }
    at += unit;
  }
}

void check(bool ok, benchmark::State& state) {
  if (!ok) state.SkipWithError("the bytes did not arrive unchanged");
}

void BM_ChunkedCopy(benchmark::State& state) {
  Session s;
  auto const piece = static_cast<std::uint32_t>(state.range(0));
  std::vector<unsigned char> ring(kUnit), out(kObjectBytes);
  chunked_copy(piece, ring, out);
  check(out == g_object.source, state);
  for (auto _ : state) {
    chunked_copy(piece, ring, out);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kObjectBytes));
}

void BM_StagedRead(benchmark::State& state) {
  Session s;
  auto const piece = static_cast<std::uint32_t>(state.range(0));
  std::vector<unsigned char> out(kObjectBytes);
  read_object(s, piece, out);
  check(out == g_object.source, state);
  for (auto _ : state) {
    read_object(s, piece, out);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kObjectBytes));
}

void BM_StagedWrite(benchmark::State& state) {
  Session s;
  auto const piece = static_cast<std::uint32_t>(state.range(0));
  std::fill(g_object.sink.begin(), g_object.sink.end(), 0);
  write_object(s, piece);
  check(g_object.sink == g_object.source, state);
  for (auto _ : state) {
    write_object(s, piece);
    benchmark::DoNotOptimize(g_object.sink.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kObjectBytes));
}

BENCHMARK(BM_ChunkedCopy)->Arg(4096)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StagedRead)->Arg(4096)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StagedWrite)->Arg(4096)->Arg(100)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
