#include "tree_pool.h"

#include <algorithm>

namespace property_tree_details {

namespace {
// Blocks start small (most trees are small) and double up to 64 KiB, a size
// the heap serves from its arenas (larger ones would be fresh mappings whose
// pages fault in on every load).
constexpr std::size_t first_block = 4096;
constexpr std::size_t biggest_block = std::size_t(64) << 10;
}  // namespace

tree_pool::~tree_pool() {
  while (blocks_ != nullptr) {
    block_header* next = blocks_->next;
    QB_POOL_UNPOISON(blocks_, blocks_->size);
    ::operator delete(blocks_);
    blocks_ = next;
  }
}

void tree_pool::new_block() {
  static_assert(sizeof(block_header) <= granule, "the block header fits in one granule");
  std::size_t size = std::min(std::max(block_bytes_, first_block), biggest_block);
  // The header takes one granule so that the pieces stay 16-byte aligned.
  auto* block = static_cast<block_header*>(::operator new(size));
  block->next = blocks_;
  block->size = size;
  blocks_ = block;
  block_bytes_ += size;
  cursor_ = reinterpret_cast<char*>(block) + granule;
  end_ = reinterpret_cast<char*>(block) + size;
  QB_POOL_POISON(cursor_, size - granule);
}

}  // namespace property_tree_details
