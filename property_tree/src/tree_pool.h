// The memory of one root tree. A tree is thousands of small objects
// (properties, values with their shared-pointer counts, name-index nodes,
// value vectors); carving them from blocks the root owns turns each
// allocation into a list pop or a pointer bump and each release into a list
// push, and keeps a tree's objects close together.
//
// Pieces are kept in size classes of 16 bytes up to 256 bytes; a released
// piece waits on its class's free list for the next request of that class
// and the blocks are released only when the root dies. So a tree that
// keeps changing stays within what its largest state needed per class.
// Larger requests, and allocators made without a pool (temporary vectors),
// use the general heap.
//
// A dying root's full-size blocks are kept, up to kept_block_limit bytes in
// the whole process, for the next pools to take before the heap. Without
// them a process that loads and drops large trees in turn hands the whole
// tree back to the heap at every drop; the heap returns a free top that
// large to the system, and the next load faults in every page of its tree
// again, which costs more than building it.
//
// Under AddressSanitizer free pieces are poisoned, so that a use after
// release is still reported although the memory stays in the pool.
//
// A pool serves one root and everything nested in it; nothing allocated
// from it may outlive the root (trees copy, never share, elements).
#pragma once
#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#define QB_POOL_POISON(p, n) ASAN_POISON_MEMORY_REGION(p, n)
#define QB_POOL_UNPOISON(p, n) ASAN_UNPOISON_MEMORY_REGION(p, n)
#else
#define QB_POOL_POISON(p, n) ((void)(p), (void)(n))
#define QB_POOL_UNPOISON(p, n) ((void)(p), (void)(n))
#endif
#include <cstddef>
#include <limits>
#include <new>
#include <type_traits>

namespace property_tree_details {

class tree_pool {
 public:
  static constexpr std::size_t granule = 16;
  static constexpr std::size_t classes = 16;
  static constexpr std::size_t largest = granule * classes;
  // The size of all blocks after a pool's first few.
  static constexpr std::size_t full_block = std::size_t(64) << 10;
  // The most bytes of full-size blocks kept between pools, process-wide.
  static constexpr std::size_t kept_block_limit = std::size_t(64) << 20;

  tree_pool() noexcept = default;
  tree_pool(tree_pool const&) = delete;
  tree_pool& operator=(tree_pool const&) = delete;
  ~tree_pool();

  void* allocate(std::size_t bytes) {
    if (bytes > largest) return ::operator new(bytes);
    std::size_t c = class_of(bytes);
    std::size_t size = (c + 1) * granule;
    if (free_node* n = free_[c]) {
      QB_POOL_UNPOISON(n, size);
      free_[c] = n->next;
      return n;
    }
    if (static_cast<std::size_t>(end_ - cursor_) < size) new_block();
    void* p = cursor_;
    cursor_ += size;
    QB_POOL_UNPOISON(p, size);
    return p;
  }

  void deallocate(void* p, std::size_t bytes) noexcept {
    if (bytes > largest) {
      ::operator delete(p);
      return;
    }
    std::size_t c = class_of(bytes);
    free_node* n = static_cast<free_node*>(p);
    n->next = free_[c];
    free_[c] = n;
    QB_POOL_POISON(p, (c + 1) * granule);
  }

  // Bytes taken in blocks, from the heap or from kept blocks (what the
  // tree's small objects use, free lists included).
  std::size_t block_bytes() const noexcept { return block_bytes_; }

  // Bytes of full-size blocks kept for the next pools, in the whole process.
  static std::size_t kept_bytes() noexcept;

 private:
  struct free_node {
    free_node* next;
  };
  struct block_header {
    block_header* next;
    std::size_t size;
  };
  static std::size_t class_of(std::size_t bytes) noexcept {
    return bytes == 0 ? 0 : (bytes - 1) / granule;
  }
  void new_block();

  free_node* free_[classes] = {};
  char* cursor_ = nullptr;
  char* end_ = nullptr;
  block_header* blocks_ = nullptr;
  std::size_t block_bytes_ = 0;
};

// A standard allocator over a tree pool; without a pool it uses the heap.
// The allocator travels with the memory it made (propagated on copy, move
// and swap), so a container always returns memory where it came from.
template <class T>
class pool_allocator {
 public:
  static_assert(alignof(T) <= tree_pool::granule, "pool pieces are 16-byte aligned");
  using value_type = T;
  using propagate_on_container_copy_assignment = std::true_type;
  using propagate_on_container_move_assignment = std::true_type;
  using propagate_on_container_swap = std::true_type;
  using is_always_equal = std::false_type;

  pool_allocator() noexcept = default;
  explicit pool_allocator(tree_pool* pool) noexcept : pool_(pool) {}
  template <class U>
  pool_allocator(pool_allocator<U> const& other) noexcept : pool_(other.pool()) {}

  T* allocate(std::size_t n) {
    if (n > std::numeric_limits<std::size_t>::max() / sizeof(T)) throw std::bad_array_new_length();
    std::size_t bytes = n * sizeof(T);
    return static_cast<T*>(pool_ != nullptr ? pool_->allocate(bytes) : ::operator new(bytes));
  }
  void deallocate(T* p, std::size_t n) noexcept {
    if (pool_ != nullptr) pool_->deallocate(p, n * sizeof(T));
    else ::operator delete(p);
  }
  tree_pool* pool() const noexcept { return pool_; }

  template <class U>
  bool operator==(pool_allocator<U> const& other) const noexcept {
    return pool_ == other.pool();
  }
  template <class U>
  bool operator!=(pool_allocator<U> const& other) const noexcept {
    return pool_ != other.pool();
  }

 private:
  tree_pool* pool_ = nullptr;
};

}  // namespace property_tree_details
