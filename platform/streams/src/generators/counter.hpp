// The host's side of the engines that encipher a counter.
#pragma once

#include <algorithm>
#include <iterator>

#include "generators/entry.hpp"
#include "hvl/engines/counter.hpp"

namespace hvl::streams {

template <class Engine>
struct counter_generator {
  using type = Engine;
  using record = typename Engine::record;
  using state = typename Engine::state;

  static constexpr std::size_t key_words = std::size(state{}.key);
  static constexpr std::uint32_t words_per_thread = 1 << 16;
  static constexpr record_field fields[] = {{16, 4, key_words + 5}};

  // The key, then the counter, from their least words on; missing words are 0.
  static int seed_words(record& r, std::span<const std::uint32_t> words) {
    const auto word = [&](std::size_t i) { return i < words.size() ? words[i] : 0u; };
    state s{};
    for (std::size_t i = 0; i < key_words; ++i)
      s.key[i] = word(i);
    for (std::size_t i = 0; i < 4; ++i)
      s.counter[i] = word(key_words + i);
    Engine::store(s, r);
    return VQS_STATUS_OK;
  }

  static int seed(record& r, std::uint64_t value) { return seed_words(r, words_of_seed(value)); }

  static bool in_range(const record& r) { return r.remaining <= 4; }

  static void draw(record& r, std::uint32_t* out, std::size_t count) {
    state s = Engine::state_of(r);
    engines::counter128 counter = s.next_block();
    std::uint32_t words[4];
    if (s.remaining != 0 && count != 0) {
      Engine::block(s, counter - 1, words);
      while (s.remaining != 0 && count != 0) {
        *out++ = words[4 - s.remaining--];
        --count;
      }
    }
    while (count != 0) {
      Engine::block(s, counter, words);
      counter = counter + 1;
      const std::size_t here = std::min<std::size_t>(count, 4);
      out = std::copy_n(words, here, out);
      count -= here;
      s.remaining = static_cast<std::uint32_t>(4 - here);
    }
    s.set_next_block(counter);
    Engine::store(s, r);
  }

  // The sequence has 2^130 words, so of a longer count only the low 130 bits matter.
  static void advance(record& r, std::span<const std::uint64_t> count) {
    const auto word = [&](std::size_t i) { return i < count.size() ? count[i] : std::uint64_t{0}; };
    std::uint64_t low = word(0);
    std::uint64_t middle = word(1);
    std::uint64_t high = word(2);
    if (low < r.remaining && middle == 0 && (high & 3) == 0) {
      r.remaining -= static_cast<std::uint32_t>(low);
      return;
    }
    const bool borrow = low < r.remaining;
    low -= r.remaining;
    high -= static_cast<std::uint64_t>(borrow && middle == 0);
    middle -= static_cast<std::uint64_t>(borrow);
    const engines::counter128 blocks{low >> 2 | middle << 62, middle >> 2 | high << 62};
    const std::uint32_t into = static_cast<std::uint32_t>(low & 3);
    state s = Engine::state_of(r);
    s.set_next_block(s.next_block() + blocks + (into == 0 ? 0 : 1));
    s.remaining = into == 0 ? 0 : 4 - into;
    Engine::store(s, r);
  }
};

} // namespace hvl::streams
