#include "generators/mt2203.hpp"

#include "generators/block.hpp"
#include "generators/entry.hpp"
#include "generators/init_by_array.hpp"
#include "generators/mt2203_table.hpp"

namespace hvl::streams {
namespace {

using record_type = vqs_mt2203_record;
using recurrence_type = engines::mt2203::recurrence;
constexpr std::uint32_t n = recurrence_type::size;
static_assert(std::size(mt2203_members) == engines::mt2203::about.members);

const mt2203_member& parameters_of(const record_type& r) {
  return mt2203_members[engines::member_of<engines::mt2203>(r)];
}

struct block {
  using type = engines::mt2203;
  static constexpr std::uint32_t words = n;
  static constexpr std::uint64_t blocks_worth_a_jump = 1024;

  static void next(record_type& r) { type::recurrence_of(r).next_block(r.words); }
  static void jump(record_type& r, big_count blocks) {
    multiply(blocks, words);
    mt2203_jump(type::recurrence_of(r), r.words, blocks);
  }
};

struct key {
  std::span<const std::uint32_t> words;
  std::uint32_t last;

  std::size_t size() const { return words.size() + 1; }
  std::uint32_t operator[](std::size_t i) const { return i < words.size() ? words[i] : last; }
};

struct generator : block_generator<block> {
  static constexpr std::uint32_t words_per_thread = 1 << 20;
  static constexpr record_field fields[] = {{16, 4, n + 1 + 3}};

  // The member's index ends the list: members of one seed begin unrelated.
  static int seed_words(record_type& r, std::span<const std::uint32_t> words) {
    init_by_array(r.words, key{words, static_cast<std::uint32_t>(engines::member_of<type>(r))});
    r.position = n;
    const mt2203_member& parameters = parameters_of(r);
    r.matrix = parameters.matrix;
    r.tempering_b = parameters.tempering_b;
    r.tempering_c = parameters.tempering_c;
    return VQS_STATUS_OK;
  }

  static int seed(record_type& r, std::uint64_t value) { return seed_words(r, words_of_seed(value)); }

  static bool in_range(const record_type& r) {
    const mt2203_member& parameters = parameters_of(r);
    return r.matrix == parameters.matrix && r.tempering_b == parameters.tempering_b &&
           r.tempering_c == parameters.tempering_c && type::recurrence_of(r).is_block(r.words, r.position);
  }
};

} // namespace

const engine mt2203_engine = entry<generator>();

} // namespace hvl::streams
