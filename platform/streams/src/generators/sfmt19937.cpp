// Seeding: the authors' of SFMT 1.3 and later.
#include "generators/sfmt19937.hpp"

#include <algorithm>

#include "generators/block.hpp"
#include "generators/entry.hpp"
#include "generators/init_by_array.hpp"

namespace hvl::streams {
namespace {

using record_type = vqs_sfmt19937_record;
constexpr std::uint32_t n = 624;

// The authors' period certification: a state whose parity is even could lie in a short cycle.
void certify_period(std::uint32_t* x) {
  const std::uint32_t parity = (x[0] & 1) ^ (x[3] & 0x13C9E684);
  if (__builtin_parity(parity) == 0)
    x[0] ^= 1;
}

void init_gen_rand(record_type& r, std::uint32_t seed) {
  init_genrand(r.words, seed);
  r.position = n;
  certify_period(r.words);
}

void init_by_array(record_type& r, std::span<const std::uint32_t> key) {
  constexpr std::uint32_t lag = 11;
  constexpr std::uint32_t middle = (n - lag) / 2;
  std::uint32_t* const x = r.words;
  std::fill_n(x, n, 0x8B8B8B8Bu);
  std::uint32_t i = 0;
  const auto neighbours = [&](const auto& mix) {
    return mix(mix(x[i], x[(i + middle) % n]), x[(i + n - 1) % n]);
  };
  const auto mixed = [](std::uint32_t word, std::uint32_t factor) { return (word ^ word >> 27) * factor; };
  const auto exclusive = [](std::uint32_t a, std::uint32_t b) { return a ^ b; };
  const auto sum = [](std::uint32_t a, std::uint32_t b) { return a + b; };
  const auto add_step = [&](std::uint32_t addend) {
    const std::uint32_t word = mixed(neighbours(exclusive), 1664525);
    x[(i + middle) % n] += word;
    x[(i + middle + lag) % n] += word + addend;
    x[i] = word + addend;
    i = (i + 1) % n;
  };
  add_step(static_cast<std::uint32_t>(key.size()));
  const std::size_t rounds = std::max<std::size_t>(key.size() + 1, n) - 1;
  for (std::size_t j = 0; j < rounds; ++j)
    add_step(i + (j < key.size() ? key[j] : 0));
  for (std::uint32_t j = 0; j < n; ++j) {
    const std::uint32_t word = mixed(neighbours(sum), 1566083941);
    x[(i + middle) % n] ^= word;
    x[(i + middle + lag) % n] ^= word - i;
    x[i] = word - i;
    i = (i + 1) % n;
  }
  r.position = n;
  certify_period(x);
}

struct block {
  using type = engines::sfmt19937;
  static constexpr std::uint32_t words = n;
  static constexpr std::uint64_t blocks_worth_a_jump = 2048; // a jump whose polynomial is new

  static void next(record_type& r) { sfmt19937_next_block(r.words); }
  static void jump(record_type& r, big_count blocks) {
    multiply(blocks, words / type::recurrence::unit);
    sfmt19937_jump(r.words, blocks);
  }
};

struct generator : block_generator<block> {
  static constexpr std::uint32_t words_per_thread = 1 << 22;
  static constexpr record_field fields[] = {{16, 4, n + 1}};

  static int seed_words(record_type& r, std::span<const std::uint32_t> words) {
    init_by_array(r, words);
    return VQS_STATUS_OK;
  }

  // A seed of more than 32 bits is a list of two words.
  static int seed(record_type& r, std::uint64_t value) {
    if (value >> 32 == 0)
      init_gen_rand(r, static_cast<std::uint32_t>(value));
    else
      init_by_array(r, words_of_seed(value));
    return VQS_STATUS_OK;
  }

  static bool in_range(const record_type& r) {
    return r.position <= n && std::any_of(r.words, r.words + n, [](std::uint32_t word) { return word != 0; });
  }
};

} // namespace

const engine sfmt19937_engine = entry<generator>();

} // namespace hvl::streams
