// mcg31m1: P. L'Ecuyer, "Tables of linear congruential generators of different sizes and good lattice
// structure", Mathematics of Computation 68 (1999). mcg59: modulus 2^59, multiplier 13^13.
#include "generators/mcg.hpp"

#include "engine.hpp"
#include "generators/power.hpp"

namespace hvl::streams {
namespace {

template <class Arithmetic>
struct mcg {
  using record_type = typename Arithmetic::record;
  using word = typename Arithmetic::word;

  static record_type& as_record(void* record) { return *static_cast<record_type*>(record); }

  static word power_of(word base, std::span<const std::uint64_t> exponent) {
    return power(base, exponent, word{1}, Arithmetic::product);
  }

  static void seed(void* record, std::uint64_t value) noexcept {
    record_type& r = as_record(record);
    r.a = Arithmetic::multiplier;
    r.x = Arithmetic::residue(value);
    if (r.x == 0)
      r.x = 1;
  }

  // The list spells one seed, low word first; words past the second are ignored.
  static void seed_words(void* record, std::span<const std::uint32_t> words) noexcept {
    const std::uint64_t low = words.empty() ? 0 : words[0];
    const std::uint64_t high = words.size() < 2 ? 0 : words[1];
    seed(record, high << 32 | low);
  }

  static void draw(void* record, void* words, std::size_t count) noexcept {
    record_type& r = as_record(record);
    auto* out = static_cast<word*>(words);
    word x = r.x;
    for (std::size_t i = 0; i < count; ++i) {
      out[i] = x;
      x = Arithmetic::product(x, r.a);
    }
    r.x = x;
  }

  static void skip(void* record, std::span<const std::uint64_t> count) {
    record_type& r = as_record(record);
    r.x = Arithmetic::product(r.x, power_of(r.a, count));
  }

  static void leapfrog(void* record, std::uint64_t index, std::uint64_t stride) noexcept {
    record_type& r = as_record(record);
    skip(record, std::span(&index, 1));
    r.a = power_of(r.a, std::span(&stride, 1));
  }
};

bool in_range31(const void* record) noexcept {
  const auto& r = *static_cast<const vqs_mcg31m1_record*>(record);
  constexpr std::uint32_t m = mcg31m1_arithmetic::modulus;
  return r.x != 0 && r.x < m && r.a != 0 && r.a < m;
}

bool in_range59(const void* record) noexcept {
  const auto& r = *static_cast<const vqs_mcg59_record*>(record);
  constexpr std::uint64_t most = mcg59_arithmetic::mask;
  return r.x != 0 && r.x <= most && r.a % 2 == 1 && r.a <= most;
}

constexpr record_field fields31[] = {{16, 4, 2}};
constexpr record_field fields59[] = {{16, 8, 2}};

using mcg31 = mcg<mcg31m1_arithmetic>;
using mcg59 = mcg<mcg59_arithmetic>;

} // namespace

const engine mcg31m1_engine = {
    VQS_ENGINE_MCG31M1,
    "mcg31m1",
    word_kind::unsigned32,
    word_scale::mcg31m1,
    false,
    sizeof(vqs_mcg31m1_record),
    1 << 16,
    fields31,
    mcg31::seed,
    mcg31::seed_words,
    in_range31,
    mcg31::draw,
    mcg31::skip,
    mcg31::leapfrog,
};

const engine mcg59_engine = {
    VQS_ENGINE_MCG59,
    "mcg59",
    word_kind::unsigned64,
    word_scale::mcg59,
    true,
    sizeof(vqs_mcg59_record),
    1 << 16,
    fields59,
    mcg59::seed,
    mcg59::seed_words,
    in_range59,
    mcg59::draw,
    mcg59::skip,
    mcg59::leapfrog,
};

} // namespace hvl::streams
