// The sanitizer allocator keeps its own books (the C library's statistics
// then see nothing), so the counter asks whichever allocator is in use. The
// C library's figure still counts chunks held in its per-thread cache as in
// use; that cache is bounded, so it fills during a short warm-up and does not
// grow with the work measured.
#include <qbhost/heap_counters.h>

#include <dirent.h>
#include <malloc.h>

#if defined(__SANITIZE_ADDRESS__)
// The sanitizer runtime's allocator statistics (its public interface; the
// header that declares it is not installed with every compiler).
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace qbhost {

std::size_t heap_bytes_in_use() {
#if defined(__SANITIZE_ADDRESS__)
  return __sanitizer_get_current_allocated_bytes();
#else
  // Freed chunks waiting in the fast bins count as allocated in uordblks;
  // they are free to the program.
  struct mallinfo2 const info = mallinfo2();
  return info.uordblks - info.fsmblks;
#endif
}

std::size_t open_descriptors() {
  DIR* dir = opendir("/proc/self/fd");
  if (dir == nullptr) return 0;
  std::size_t count = 0;
  while (dirent const* entry = readdir(dir)) {
    if (entry->d_name[0] != '.') ++count;
  }
  closedir(dir);
  // The listing's own descriptor is not one the process holds.
  return count > 0 ? count - 1 : 0;
}

}  // namespace qbhost
