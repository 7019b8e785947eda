#pragma once

#include <atomic>
#include <cstdint>

namespace kestro::hvl::gpu {

/// A lock for many readers or one writer in one word: bit 0 is the writer, each reader counts two. It spins
/// and never sleeps, so what it guards must be short. Works with std::shared_lock and std::lock_guard.
class spin_word {
 public:
  void lock_shared() noexcept {
    word_.fetch_add(reader, std::memory_order_acquire);
    while (word_.load(std::memory_order_acquire) & writer)
      pause();
  }
  void unlock_shared() noexcept { word_.fetch_sub(reader, std::memory_order_release); }

  void lock() noexcept {
    std::uint32_t free = 0;
    while (!word_.compare_exchange_weak(free, writer, std::memory_order_acquire, std::memory_order_relaxed)) {
      free = 0;
      pause();
    }
  }
  // A subtraction, since readers may have announced themselves meanwhile.
  void unlock() noexcept { word_.fetch_sub(writer, std::memory_order_release); }

 private:
  static constexpr std::uint32_t writer = 1;
  static constexpr std::uint32_t reader = 2;

  static void pause() noexcept { __builtin_ia32_pause(); }

  std::atomic<std::uint32_t> word_{0};
};

} // namespace kestro::hvl::gpu
