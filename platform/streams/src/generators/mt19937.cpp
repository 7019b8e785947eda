// Seeding: the authors' of 2002.
#include "generators/mt19937.hpp"

#include <algorithm>

#include "generators/block.hpp"
#include "generators/entry.hpp"

namespace hvl::streams {
namespace {

using record_type = vqs_mt19937_record;
constexpr engines::mt19937::recurrence recurrence{};
constexpr std::size_t n = recurrence.size;
constexpr std::size_t m = recurrence.middle;

void init_genrand(record_type& r, std::uint32_t seed) {
  r.words[0] = seed;
  for (std::uint32_t i = 1; i < n; ++i)
    r.words[i] = 1812433253u * (r.words[i - 1] ^ (r.words[i - 1] >> 30)) + i;
  r.position = n;
}

void init_by_array(record_type& r, std::span<const std::uint32_t> key) {
  init_genrand(r, 19650218u);
  std::uint32_t* const x = r.words;
  std::size_t i = 1;
  const auto advance = [&] {
    if (++i == n) {
      x[0] = x[n - 1];
      i = 1;
    }
  };
  for (std::size_t round = 0, j = 0; round < std::max(n, key.size()); ++round) {
    x[i] = (x[i] ^ ((x[i - 1] ^ (x[i - 1] >> 30)) * 1664525u)) + key[j] + static_cast<std::uint32_t>(j);
    advance();
    j = j + 1 == key.size() ? 0 : j + 1;
  }
  for (std::size_t round = 0; round < n - 1; ++round) {
    x[i] = (x[i] ^ ((x[i - 1] ^ (x[i - 1] >> 30)) * 1566083941u)) - static_cast<std::uint32_t>(i);
    advance();
  }
  x[0] = recurrence.upper;
}

struct block {
  using type = engines::mt19937;
  static constexpr std::uint32_t words = n;
  static constexpr std::uint64_t blocks_worth_a_jump = 2048; // a jump whose polynomial is new

  static void next(std::uint32_t* x) { mt19937_next_block(x); }
  static void jump(std::uint32_t* x, big_count blocks) {
    multiply(blocks, words);
    mt19937_jump(x, blocks);
  }
};

struct generator : block_generator<block> {
  static constexpr std::uint32_t words_per_thread = 1 << 22;
  static constexpr record_field fields[] = {{16, 4, n + 1}};

  // No word at all seeds as the authors' default does.
  static int seed_words(record_type& r, std::span<const std::uint32_t> words) {
    if (words.empty())
      init_genrand(r, 5489u);
    else
      init_by_array(r, words);
    return VQS_STATUS_OK;
  }

  // A seed of more than 32 bits is a list of two words.
  static int seed(record_type& r, std::uint64_t value) {
    if (value >> 32 == 0)
      init_genrand(r, static_cast<std::uint32_t>(value));
    else
      init_by_array(r, words_of_seed(value));
    return VQS_STATUS_OK;
  }

  // Of the first word only the top bit belongs to the state. So where it is the next output, its lower bits are not
  // free: they are what the twist that made the block's last word took from it.
  static bool gives_first_word(const record_type& r) {
    const std::uint32_t joined = recurrence.joined(r.words[n - 1], r.words[m - 1]);
    return ((r.words[0] ^ joined) & ~recurrence.upper) == 0;
  }

  static bool in_range(const record_type& r) {
    const bool any = (r.words[0] & recurrence.upper) != 0 ||
                     std::any_of(r.words + 1, r.words + n, [](std::uint32_t word) { return word != 0; });
    return any && r.position <= n && (r.position != 0 || gives_first_word(r));
  }
};

} // namespace

void mt19937_next_block(std::uint32_t* x) noexcept {
  for (std::size_t i = 0; i < n - m; ++i)
    x[i] = recurrence.twist(x[i], x[i + 1], x[i + m]);
  for (std::size_t i = n - m; i < n - 1; ++i)
    x[i] = recurrence.twist(x[i], x[i + 1], x[i + m - n]);
  x[n - 1] = recurrence.twist(x[n - 1], x[0], x[m - 1]);
}

const engine mt19937_engine = entry<generator>();

} // namespace hvl::streams
