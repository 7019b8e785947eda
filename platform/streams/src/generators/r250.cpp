#include "generators/r250.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

#include "generators/entry.hpp"
#include "generators/polynomial.hpp"
#include "generators/power_of_x.hpp"
#include "generators/split_mix.hpp"
#include "hvl/streams_detail.h"
#include "stream.hpp"

namespace hvl::streams {
namespace {

using record_type = vqs_r250_record;
constexpr engines::r250::recurrence recurrence{};
constexpr std::uint32_t n = recurrence.size;
constexpr std::uint32_t m = recurrence.middle;

// Bit columns are linearly independent exactly when the words span all 32 bits. Otherwise some bits of every output
// would be the exclusive or of others, for ever.
bool columns_are_independent(const std::uint32_t* words) {
  std::uint32_t basis[32] = {}; // basis[b] has bit b as its highest
  int rank = 0;
  for (std::uint32_t k = 0; k < n && rank < 32; ++k)
    for (std::uint32_t word = words[k]; word != 0;) {
      std::uint32_t& with_top = basis[31 - std::countl_zero(word)];
      if (with_top == 0) {
        with_top = word;
        ++rank;
        break;
      }
      word ^= with_top;
    }
  return rank == 32;
}

// The authors' cure: a diagonal of ones with zeros above it, in 32 words spread over the state.
void set_diagonal(std::uint32_t* words) {
  for (std::uint32_t i = 0; i < 32; ++i) {
    std::uint32_t& word = words[7 * i + 3];
    const std::uint32_t diagonal = std::uint32_t{1} << (31 - i);
    word = (word & (diagonal - 1)) | diagonal;
  }
}

void fill(std::uint32_t* words, std::uint32_t first, std::uint64_t seed) {
  split_mix64 next(seed);
  for (std::uint32_t k = first; k < n; ++k)
    words[k] = static_cast<std::uint32_t>(next() >> 32);
}

struct generator {
  using type = engines::r250;

  static constexpr std::uint32_t words_per_thread = 1 << 16;
  static constexpr record_field fields[] = {{16, 4, n + 1}};

  static int seed(record_type& r, std::uint64_t value) {
    fill(r.words, 0, value);
    set_diagonal(r.words);
    return VQS_STATUS_OK;
  }

  // Missing words are spread from those given, so that short lists give unrelated states.
  static int seed_words(record_type& r, std::span<const std::uint32_t> words) {
    const std::size_t given = std::min<std::size_t>(words.size(), n);
    std::copy_n(words.begin(), given, r.words);
    std::uint64_t mixed = given;
    for (std::size_t k = 0; k < given; ++k)
      mixed = split_mix64(mixed ^ words[k])();
    fill(r.words, static_cast<std::uint32_t>(given), mixed);
    if (!columns_are_independent(r.words))
      set_diagonal(r.words);
    return VQS_STATUS_OK;
  }

  static bool in_range(const record_type& r) { return r.position < n && columns_are_independent(r.words); }

  static void draw(record_type& r, std::uint32_t* out, std::size_t count) {
    std::uint32_t position = r.position;
    for (std::size_t i = 0; i < count; ++i) {
      out[i] = r.words[position] ^= r.words[position < n - m ? position + m : position + m - n];
      position = position + 1 == n ? 0 : position + 1;
    }
    r.position = position;
  }

  // A word keeps its place in the ring, which is its number modulo 250.
  static void advance(record_type& r, std::span<const std::uint64_t> count) {
    std::uint32_t words[n];
    std::rotate_copy(r.words, r.words + r.position, r.words + n, words);
    r250_jump(words, count);
    std::uint64_t place = 0;
    for (std::size_t i = count.size(); i-- != 0;)
      place = (place * ((~std::uint64_t{0} % n) + 1) + count[i] % n) % n;
    r.position = static_cast<std::uint32_t>((r.position + place) % n);
    std::rotate_copy(words, words + n - r.position, words + n, r.words);
  }
};

constexpr std::size_t polynomial_words = std::tuple_size_v<r250_polynomial>;
constexpr std::size_t top_bit = n % polynomial_bits;

struct field {
  static constexpr std::size_t degree = n;
  using polynomial = r250_polynomial;
  static polynomial squared(const polynomial& p);
  static void multiply_by_x(polynomial& p);
};

r250_polynomial field::squared(const r250_polynomial& p) {
  std::uint64_t square[2 * polynomial_words + 1] = {};
  for (std::size_t i = 0; i < polynomial_words; ++i) {
    square[2 * i] = spread(static_cast<std::uint32_t>(p[i]));
    square[2 * i + 1] = spread(static_cast<std::uint32_t>(p[i] >> 32));
  }
  // x^(250 + k) is x^(147 + k) + x^k; from the top, 64 coefficients at a time
  for (std::size_t i = polynomial_words; i-- != 0;) {
    std::uint64_t* const from = square + polynomial_words - 1 + i;
    const std::uint64_t high = from[0] >> top_bit | from[1] << (polynomial_bits - top_bit);
    from[0] &= (std::uint64_t{1} << top_bit) - 1;
    from[1] = 0;
    xor_word_at(square, m + polynomial_bits * i, high);
    xor_word_at(square, polynomial_bits * i, high);
  }
  return {square[0], square[1], square[2], square[3]};
}

void field::multiply_by_x(r250_polynomial& p) {
  for (std::size_t i = polynomial_words; i-- != 0;)
    p[i] = p[i] << 1 | (i == 0 ? 0 : p[i - 1] >> (polynomial_bits - 1));
  if ((p.back() >> top_bit & 1) != 0) {
    p.back() ^= std::uint64_t{1} << top_bit;
    p[m / polynomial_bits] ^= std::uint64_t{1} << m % polynomial_bits;
    p[0] ^= 1;
  }
}

} // namespace

r250_polynomial r250_power_of_x(std::span<const std::uint64_t> exponent) noexcept {
  return power_of_x(field(), exponent);
}

// H. Haramoto, M. Matsumoto, P. L'Ecuyer, "A fast jump ahead algorithm for linear recurrences in a polynomial space",
// SETA 2008: word `distance` + j is the exclusive or of the words i + j over the set bits i of x^distance.
void r250_jump(std::uint32_t* words, std::span<const std::uint64_t> distance) noexcept {
  const r250_polynomial power = r250_power_of_x(distance);
  std::uint32_t sequence[2 * n];
  std::copy_n(words, n, sequence);
  for (std::uint32_t k = 0; k < n; ++k)
    sequence[n + k] = recurrence.next(sequence + k);
  std::fill_n(words, n, 0u);
  for (std::size_t i = 0; i < n; ++i)
    if ((power[i / polynomial_bits] >> i % polynomial_bits & 1) != 0)
      for (std::size_t j = 0; j < n; ++j)
        words[j] ^= sequence[i + j];
}

const engine r250_engine = entry<generator>();

} // namespace hvl::streams

using namespace hvl::streams;

int vqsR250JumpPolynomial(uint64_t distance, uint32_t* polynomial_out) {
  return guarded([&]() -> int {
    if (polynomial_out == nullptr)
      return VQS_STATUS_NULL_POINTER;
    if (distance-- == 0)
      return VQS_STATUS_BAD_PARAMETER;
    const r250_polynomial power = r250_power_of_x(std::span(&distance, 1));
    std::memcpy(polynomial_out, power.data(), sizeof power);
    return VQS_STATUS_OK;
  });
}
