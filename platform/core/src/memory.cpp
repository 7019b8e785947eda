// Locks and aligned memory.
#include <hvl/core.h>

#include <algorithm>
#include <bit>
#include <cstdlib>

void hvl_serv_lock(hvl_serv_lock_t* lock) {
  pthread_mutex_lock(&lock->mutex);
}

void hvl_serv_unlock(hvl_serv_lock_t* lock) {
  pthread_mutex_unlock(&lock->mutex);
}

void* hvl_serv_malloc(size_t bytes, size_t alignment) {
  constexpr std::size_t default_alignment = 64;
  if (alignment == 0)
    alignment = default_alignment;
  if (!std::has_single_bit(alignment))
    return nullptr;
  void* memory = nullptr;
  const std::size_t granted = std::max(alignment, sizeof(void*));
  return ::posix_memalign(&memory, granted, std::max<std::size_t>(bytes, 1)) == 0 ? memory : nullptr;
}

void hvl_serv_free(void* memory) {
  std::free(memory);
}
