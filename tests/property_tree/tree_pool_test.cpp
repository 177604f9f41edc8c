// The pool a root tree's elements live in: reuse by size class, alignment,
// no overlap across blocks, heap fallback, allocators travelling with their
// memory, and (under AddressSanitizer) released pieces being poisoned.
#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <vector>
#include <gtest/gtest.h>
#include "tree_pool.h"

namespace {

using property_tree_details::pool_allocator;
using property_tree_details::tree_pool;

TEST(TreePool, ReleasedPiecesAreReusedByTheirSizeClassOnly) {
  tree_pool pool;
  void* a = pool.allocate(40);
  void* b = pool.allocate(40);
  pool.deallocate(a, 40);
  EXPECT_NE(a, pool.allocate(100));  // another class does not take it
  EXPECT_EQ(a, pool.allocate(33));   // 33 and 40 share the 48-byte class
  pool.deallocate(b, 40);
  std::size_t blocks = pool.block_bytes();
  // Steady churn of one size class takes no new blocks.
  for (int i = 0; i < 100000; ++i) pool.deallocate(pool.allocate(40), 40);
  EXPECT_EQ(blocks, pool.block_bytes());
}

TEST(TreePool, PiecesAreAlignedAndDoNotOverlapAcrossBlocks) {
  tree_pool pool;
  struct piece {
    unsigned char* p;
    std::size_t size;
  };
  std::vector<piece> pieces;
  for (std::size_t i = 0; i < 20000; ++i) {
    std::size_t size = 1 + (i * 37) % tree_pool::largest;
    auto* p = static_cast<unsigned char*>(pool.allocate(size));
    ASSERT_EQ(0u, reinterpret_cast<std::uintptr_t>(p) % 16) << size;
    std::memset(p, static_cast<int>(i & 0xFF), size);
    pieces.push_back({p, size});
  }
  EXPECT_GT(pool.block_bytes(), std::size_t(64) << 10);  // several blocks were needed
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    for (std::size_t k = 0; k < pieces[i].size; ++k)
      ASSERT_EQ(static_cast<unsigned char>(i & 0xFF), pieces[i].p[k]) << "piece " << i;
  }
  for (piece const& p : pieces) pool.deallocate(p.p, p.size);
}

// Filled until it holds `blocks` bytes in blocks; the pieces in order.
std::vector<void*> fill_to(tree_pool& pool, std::size_t blocks) {
  std::vector<void*> pieces;
  while (pool.block_bytes() < blocks) pieces.push_back(pool.allocate(64));
  return pieces;
}

// The full blocks of a dead pool are kept and the next pool takes them
// before it goes to the heap.
TEST(TreePool, ADeadPoolsFullBlocksServeTheNextPool) {
  // 4 + 4 + 8 + 16 + 32 KiB, then three full blocks.
  std::size_t const size = 4 * tree_pool::full_block;
  std::size_t const full_blocks = 3;
  ASSERT_LE(tree_pool::kept_bytes() + size, tree_pool::kept_block_limit);
  std::size_t kept_while_alive = 0;
  {
    tree_pool pool;
    fill_to(pool, size);
    kept_while_alive = tree_pool::kept_bytes();  // it may have taken blocks kept before
  }
  std::size_t const kept_after = tree_pool::kept_bytes();
  EXPECT_EQ(kept_while_alive + full_blocks * tree_pool::full_block, kept_after);
  tree_pool pool;
  std::vector<void*> pieces = fill_to(pool, size);
  EXPECT_EQ(kept_after - full_blocks * tree_pool::full_block, tree_pool::kept_bytes());
  for (void* p : pieces) pool.deallocate(p, 64);
}

TEST(TreePool, LargeRequestsUseTheHeap) {
  tree_pool pool;
  void* big = pool.allocate(tree_pool::largest + 1);
  EXPECT_EQ(0u, pool.block_bytes());
  pool.deallocate(big, tree_pool::largest + 1);
}

TEST(PoolAllocator, ContainersReturnMemoryWhereItCameFrom) {
  tree_pool pool_a, pool_b;
  using alloc = pool_allocator<std::string>;
  std::vector<std::string, alloc> a{alloc(&pool_a)}, b{alloc(&pool_b)}, heap;
  for (int i = 0; i < 5; ++i) {
    a.push_back("a" + std::to_string(i));
    b.push_back("b" + std::to_string(i));
    heap.push_back("h" + std::to_string(i));
  }
  // Swapping and moving hand the allocator over with the memory; releasing
  // pool memory to the heap (or the other way) would be reported by the
  // sanitizer and corrupt the pools.
  a.swap(heap);
  b = std::move(a);
  EXPECT_EQ(nullptr, b.get_allocator().pool());
  EXPECT_EQ(&pool_a, heap.get_allocator().pool());
  EXPECT_EQ("h4", b.back());
  EXPECT_EQ("a4", heap.back());
  EXPECT_TRUE(alloc(&pool_a) == pool_allocator<int>(&pool_a));
  EXPECT_TRUE(alloc(&pool_a) != alloc(&pool_b));

  using map_alloc = pool_allocator<std::pair<int const, int>>;
  std::map<int, int, std::less<int>, map_alloc> m{std::less<int>(), map_alloc(&pool_b)};
  for (int i = 0; i < 1000; ++i) m[i] = i;
  EXPECT_GT(pool_b.block_bytes(), 0u);
}

#if defined(__SANITIZE_ADDRESS__)
TEST(TreePoolDeathTest, UseAfterReleaseIsReported) {
  EXPECT_DEATH(
      {
        tree_pool pool;
        auto* p = static_cast<volatile char*>(pool.allocate(64));
        pool.deallocate(const_cast<char*>(p), 64);
        p[8] = 1;
      },
      "use-after-poison");
}

// A dead tree's memory is poisoned while its blocks wait for the next pool.
TEST(TreePoolDeathTest, UseOfAKeptBlockIsReported) {
  ASSERT_LE(tree_pool::kept_bytes() + 2 * tree_pool::full_block, tree_pool::kept_block_limit);
  EXPECT_DEATH(
      {
        volatile char* p = nullptr;
        {
          tree_pool pool;
          p = static_cast<char*>(fill_to(pool, 2 * tree_pool::full_block).back());
        }
        p[8] = 1;
      },
      "use-after-poison");
}
#endif

}  // namespace
