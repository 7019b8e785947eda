// Seeding: the authors' of 2002.
#include "generators/mt19937.hpp"

#include "generators/block.hpp"
#include "generators/entry.hpp"
#include "generators/init_by_array.hpp"

namespace hvl::streams {
namespace {

using record_type = vqs_mt19937_record;
constexpr engines::mt19937::recurrence recurrence{};
constexpr std::uint32_t n = recurrence.size;

struct block {
  using type = engines::mt19937;
  static constexpr std::uint32_t words = n;
  static constexpr std::uint64_t blocks_worth_a_jump = 2048; // a jump whose polynomial is new

  static void next(record_type& r) { recurrence.next_block(r.words); }
  static void jump(record_type& r, big_count blocks) {
    multiply(blocks, words);
    mt19937_jump(r.words, blocks);
  }
};

struct generator : block_generator<block> {
  static constexpr std::uint32_t words_per_thread = 1 << 22;
  static constexpr record_field fields[] = {{16, 4, n + 1}};

  // No word at all seeds as the authors' default does.
  static int seed_words(record_type& r, std::span<const std::uint32_t> words) {
    if (words.empty())
      return seed(r, 5489);
    init_by_array(r.words, words);
    r.position = n;
    return VQS_STATUS_OK;
  }

  // A seed of more than 32 bits is a list of two words.
  static int seed(record_type& r, std::uint64_t value) {
    if (value >> 32 != 0)
      return seed_words(r, words_of_seed(value));
    init_genrand(r.words, static_cast<std::uint32_t>(value));
    r.position = n;
    return VQS_STATUS_OK;
  }

  static bool in_range(const record_type& r) { return recurrence.is_block(r.words, r.position); }
};

} // namespace

const engine mt19937_engine = entry<generator>();

} // namespace hvl::streams
