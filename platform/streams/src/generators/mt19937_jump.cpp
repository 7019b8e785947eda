// H. Haramoto, M. Matsumoto, P. L'Ecuyer, "A fast jump ahead algorithm for linear recurrences in a polynomial
// space", SETA 2008: with g = x^n modulo the characteristic polynomial, word n + j of the sequence is the
// exclusive or of the words i + j over the set bits i of g.
#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "generators/mt19937.hpp"
#include "generators/mt19937_polynomial.hpp"
#include "generators/polynomial.hpp"
#include "generators/power_of_x.hpp"
#include "hvl/streams_detail.h"
#include "simd/kernels.hpp"
#include "stream.hpp"

namespace hvl::streams {
namespace {

constexpr std::size_t bits = polynomial_bits;
constexpr std::size_t mt19937_words = engines::mt19937::recurrence::size;
constexpr std::size_t polynomial_words = (mt19937_degree + bits - 1) / bits;
static_assert(polynomial_words * 2 == mt19937_words);

struct field {
  static constexpr std::size_t degree = mt19937_degree;
  using polynomial = std::array<std::uint64_t, polynomial_words>;
  static polynomial squared(const polynomial& p);
  static void multiply_by_x(polynomial& p);
};

field::polynomial field::squared(const polynomial& p) {
  constexpr std::size_t top_word = mt19937_degree / bits;
  constexpr std::size_t top_bit = mt19937_degree % bits;
  std::array<std::uint64_t, 2 * polynomial_words + 1> square{};
  for (std::size_t i = 0; i < polynomial_words; ++i) {
    square[2 * i] = spread(static_cast<std::uint32_t>(p[i]));
    square[2 * i + 1] = spread(static_cast<std::uint32_t>(p[i] >> 32));
  }
  // From the top, 64 coefficients at a time: x^(degree + k) is the sum of x^(e + k), all of which lie below
  // the 64 just folded, the greatest exponent being 623 below the degree.
  static_assert(mt19937_degree - mt19937_exponents[std::size(mt19937_exponents) - 1] >= bits);
  for (std::size_t i = polynomial_words; i-- != 0;) {
    const std::uint64_t high = square[top_word + i] >> top_bit | square[top_word + i + 1] << (bits - top_bit);
    square[top_word + i] &= (std::uint64_t{1} << top_bit) - 1;
    square[top_word + i + 1] = 0;
    if (high != 0)
      for (const std::size_t exponent : mt19937_exponents)
        xor_word_at(square.data(), exponent + bits * i, high);
  }
  polynomial reduced;
  std::copy_n(square.begin(), polynomial_words, reduced.begin());
  return reduced;
}

void field::multiply_by_x(polynomial& p) {
  std::uint64_t carry = 0;
  for (std::uint64_t& word : p) {
    const std::uint64_t next = word >> (bits - 1);
    word = word << 1 | carry;
    carry = next;
  }
  constexpr std::uint64_t degree_bit = std::uint64_t{1} << mt19937_degree % bits;
  if ((p.back() & degree_bit) != 0) {
    p.back() ^= degree_bit;
    for (const std::size_t exponent : mt19937_exponents)
      p[exponent / bits] ^= std::uint64_t{1} << exponent % bits;
  }
}

// By as many words as count says, less one; null for 0.
power_cache<field>::shared_polynomial power_before(std::span<const std::uint64_t> count) {
  std::vector<std::uint64_t> exponent(count.begin(), count.end());
  for (std::uint64_t& word : exponent)
    if (word-- != 0)
      return power_cache<field>::get(exponent);
  return nullptr;
}

} // namespace

// The low 31 bits of the first word are no part of the state and do not follow from the words behind it. So
// the power is one less than the distance, and the windows start at the second word.
void mt19937_jump(std::uint32_t* words, std::span<const std::uint64_t> distance) {
  const auto power = power_before(distance);
  if (power == nullptr)
    return;
  constexpr std::size_t blocks = mt19937_degree / mt19937_words + 2;
  std::vector<std::uint32_t> sequence(blocks * mt19937_words + 1);
  std::copy_n(words, mt19937_words, sequence.begin());
  for (std::size_t b = 1; b < blocks; ++b) {
    std::uint32_t* const block = sequence.data() + b * mt19937_words;
    std::copy_n(block - mt19937_words, mt19937_words, block);
    engines::mt19937::recurrence().next_block(block);
  }
  best_kernels().xor_windows(words, sequence.data() + 1, 1, power->data(), mt19937_degree);
}

} // namespace hvl::streams

using namespace hvl::streams;

int vqsMt19937Jump(uint32_t* words, uint64_t distance) {
  return guarded([&]() -> int {
    if (words == nullptr)
      return VQS_STATUS_NULL_POINTER;
    mt19937_jump(words, std::span(&distance, 1));
    return VQS_STATUS_OK;
  });
}

int vqsMt19937JumpPolynomial(uint64_t distance, uint32_t* polynomial_out) {
  return guarded([&]() -> int {
    if (polynomial_out == nullptr)
      return VQS_STATUS_NULL_POINTER;
    const auto power = power_before(std::span(&distance, 1));
    if (power == nullptr)
      return VQS_STATUS_BAD_PARAMETER;
    std::memcpy(polynomial_out, power->data(), sizeof *power);
    return VQS_STATUS_OK;
  });
}
