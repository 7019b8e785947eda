// The lock and the map behind the caches of native handles.
#include "service/handle_cache.hpp"

#include <gmock/gmock.h>

#include <atomic>
#include <barrier>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "waiting.hpp"

namespace {

using namespace kestro::hvl::gpu;

void* handle(std::uintptr_t value) {
  return reinterpret_cast<void*>(value);
}

void in_threads(int count, const std::function<void(int)>& work) {
  std::vector<std::thread> threads;
  for (int index = 0; index != count; ++index)
    threads.emplace_back(work, index);
  for (std::thread& thread : threads)
    thread.join();
}

TEST(SpinWord, LetsReadersInTogether) {
  spin_word word;
  std::shared_lock first(word);
  std::thread([&] { std::shared_lock second(word); }).join();
}

// Whether a thread that wants `Wanted` is let in while `Held` is held.
template <class Held, class Wanted>
bool enters_beside() {
  spin_word word;
  std::atomic<bool> entered{false};
  Held held(word);
  std::thread other([&] {
    Wanted wanted(word);
    entered = true;
  });
  ::hvl::test::let_others_run();
  const bool result = entered;
  held.unlock();
  other.join();
  EXPECT_TRUE(entered);
  return result;
}

TEST(SpinWord, ShutsOutWhoMustWait) {
  using reading = std::shared_lock<spin_word>;
  using writing = std::unique_lock<spin_word>;
  EXPECT_FALSE((enters_beside<reading, writing>()));
  EXPECT_FALSE((enters_beside<writing, reading>()));
  EXPECT_FALSE((enters_beside<writing, writing>()));
}

TEST(SpinWord, KeepsWritersApartFromReadersAndEachOther) {
  constexpr int rounds = 20000;
  spin_word word;
  long left = 0, right = 0;
  std::atomic<int> torn{0};
  in_threads(4, [&](int index) {
    for (int round = 0; round != rounds; ++round)
      if (index < 2) {
        const std::lock_guard writing(word);
        ++left;
        ++right;
      } else {
        const std::shared_lock reading(word);
        torn += left != right;
      }
  });
  EXPECT_EQ(torn, 0);
  EXPECT_EQ(left, 2L * rounds);
}

TEST(HandleCache, TellsKeysOfOneHashApart) {
  handle_cache<std::string> cache;
  const handle_pair one{handle(0x1230), handle(0x1040)}, swapped{handle(0x1040), handle(0x1230)};
  ASSERT_EQ(handle_pair_hash{}(one), std::size_t{0x1230 ^ 0x1040});
  ASSERT_EQ(handle_pair_hash{}(one), handle_pair_hash{}(swapped));
  EXPECT_EQ(cache.find_or_create(one, [] { return "one"; }), "one");
  EXPECT_EQ(cache.find_or_create(swapped, [] { return "swapped"; }), "swapped");
  EXPECT_EQ(cache.find_or_create(one, [] { return "again"; }), "one");
}

TEST(HandleCache, ReferencesHoldWhileItGrows) {
  handle_cache<std::string> cache;
  const std::string& first = cache.find_or_create({handle(1), nullptr}, [] { return "first"; });
  for (std::uintptr_t key = 2; key != 2000; ++key)
    cache.find_or_create({handle(key), handle(key * 64)}, [] { return "other"; });
  EXPECT_EQ(first, "first");
  EXPECT_EQ(&cache.find_or_create({handle(1), nullptr}, [] { return "new"; }), &first);
}

TEST(HandleCache, AFailedCreationKeepsNothingAndLeavesTheLockFree) {
  handle_cache<std::string> cache;
  const handle_pair key{handle(7), handle(8)};
  EXPECT_THROW(cache.find_or_create(key, []() -> std::string { throw std::runtime_error("refused"); }),
               std::runtime_error);
  std::thread([&] { EXPECT_EQ(cache.find_or_create(key, [] { return "made"; }), "made"); }).join();
}

TEST(HandleCache, ThreadsThatAskForOneKeyGetOneObject) {
  constexpr int keys = 200, threads = 4;
  handle_cache<int> cache;
  std::atomic<int> creations{0};
  std::vector<std::vector<const int*>> seen(threads, std::vector<const int*>(keys));
  std::barrier together(threads);
  in_threads(threads, [&](int index) {
    for (int key = 0; key != keys; ++key) {
      together.arrive_and_wait();
      seen[static_cast<std::size_t>(index)][static_cast<std::size_t>(key)] =
          &cache.find_or_create({handle(static_cast<std::uintptr_t>(key)), nullptr}, [&] {
            ++creations;
            return key;
          });
    }
  });
  EXPECT_EQ(creations, keys);
  for (const auto& one : seen)
    EXPECT_EQ(one, seen.front());
  for (int key = 0; key != keys; ++key)
    EXPECT_EQ(*seen.front()[static_cast<std::size_t>(key)], key);
}

TEST(HandleCache, ClearDestroysOutsideTheLock) {
  handle_cache<std::shared_ptr<void>> cache;
  bool looked_up = false;
  const auto look_up = [&](void*) {
    cache.find_or_create({handle(2), nullptr}, [] { return nullptr; });
    looked_up = true;
  };
  cache.find_or_create({handle(1), nullptr}, [&] { return std::shared_ptr<void>(handle(1), look_up); });
  cache.clear();
  EXPECT_TRUE(looked_up);
}

} // namespace
