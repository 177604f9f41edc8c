#include "tree_pool.h"

#include <algorithm>
#include <mutex>

namespace property_tree_details {

namespace {
// Blocks start small (most trees are small) and double up to 64 KiB, a size
// the heap serves from its arenas (larger ones would be fresh mappings whose
// pages fault in on every load).
constexpr std::size_t first_block = 4096;

// Full-size blocks of dead pools, linked through their first word. Only
// full-size blocks are kept: they are most of a large tree, and a small
// tree's few small blocks are cheap to take from the heap. Under
// AddressSanitizer a kept block is poisoned but for its link.
struct kept_block {
  kept_block* next;
};

struct kept_blocks {
  std::mutex lock;
  kept_block* first = nullptr;
  std::size_t bytes = 0;
};

// Never destroyed: a root may die during static destruction, after a static
// list would be gone.
kept_blocks& kept() {
  static kept_blocks* const blocks = new kept_blocks;
  return *blocks;
}

// A kept full-size block, or null when none is kept.
void* take_kept_block() {
  kept_blocks& k = kept();
  std::lock_guard<std::mutex> hold(k.lock);
  kept_block* block = k.first;
  if (block == nullptr) return nullptr;
  k.first = block->next;
  k.bytes -= tree_pool::full_block;
  QB_POOL_UNPOISON(block, tree_pool::full_block);
  return block;
}
}  // namespace

std::size_t tree_pool::kept_bytes() noexcept {
  kept_blocks& k = kept();
  std::lock_guard<std::mutex> hold(k.lock);
  return k.bytes;
}

tree_pool::~tree_pool() {
  {
    kept_blocks& k = kept();
    std::lock_guard<std::mutex> hold(k.lock);
    block_header** link = &blocks_;
    while (*link != nullptr && k.bytes + full_block <= kept_block_limit) {
      block_header* block = *link;
      if (block->size != full_block) {
        link = &block->next;
        continue;
      }
      *link = block->next;
      QB_POOL_UNPOISON(block, full_block);
      auto* kept_one = reinterpret_cast<kept_block*>(block);
      kept_one->next = k.first;
      k.first = kept_one;
      k.bytes += full_block;
      QB_POOL_POISON(reinterpret_cast<char*>(block) + sizeof(kept_block),
                     full_block - sizeof(kept_block));
    }
  }
  while (blocks_ != nullptr) {
    block_header* next = blocks_->next;
    QB_POOL_UNPOISON(blocks_, blocks_->size);
    ::operator delete(blocks_);
    blocks_ = next;
  }
}

void tree_pool::new_block() {
  static_assert(sizeof(block_header) <= granule, "the block header fits in one granule");
  std::size_t size = std::min(std::max(block_bytes_, first_block), full_block);
  // The header takes one granule so that the pieces stay 16-byte aligned.
  void* memory = size == full_block ? take_kept_block() : nullptr;
  if (memory == nullptr) memory = ::operator new(size);
  auto* block = static_cast<block_header*>(memory);
  block->next = blocks_;
  block->size = size;
  blocks_ = block;
  block_bytes_ += size;
  cursor_ = reinterpret_cast<char*>(block) + granule;
  end_ = reinterpret_cast<char*>(block) + size;
  QB_POOL_POISON(cursor_, size - granule);
}

}  // namespace property_tree_details
