// H. Haramoto, M. Matsumoto, P. L'Ecuyer, "A fast jump ahead algorithm for linear recurrences in a polynomial
// space", SETA 2008: with g = x^n modulo the characteristic polynomial, word n + j of the sequence is the
// exclusive or of the words i + j over the set bits i of g.
#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

#include "generators/mt19937.hpp"
#include "generators/mt19937_polynomial.hpp"
#include "generators/polynomial.hpp"
#include "hvl/core.h"
#include "hvl/streams_detail.h"
#include "simd/kernels.hpp"
#include "stream.hpp"

namespace hvl::streams {
namespace {

constexpr std::size_t bits = polynomial_bits;
constexpr std::size_t mt19937_words = engines::mt19937::recurrence::size;
constexpr std::size_t polynomial_words = (mt19937_degree + bits - 1) / bits;
static_assert(polynomial_words * 2 == mt19937_words);

using polynomial = std::array<std::uint64_t, polynomial_words>;

polynomial squared(const polynomial& p) {
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

void multiply_by_x(polynomial& p) {
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

using big_count = std::vector<std::uint64_t>; // least significant word first, no leading zero

polynomial power_of_x(const big_count& exponent) {
  std::size_t left =
      exponent.empty() ? 0
                       : bits * exponent.size() - static_cast<std::size_t>(std::countl_zero(exponent.back()));
  const auto next_bit = [&] {
    --left;
    return exponent[left / bits] >> left % bits & 1;
  };
  std::size_t low_power = 0; // the first bits, while the power needs no reduction
  while (left != 0 && 2 * low_power + 1 < mt19937_degree)
    low_power = 2 * low_power + next_bit();
  polynomial p{};
  p[low_power / bits] = std::uint64_t{1} << low_power % bits;
  while (left != 0) {
    p = squared(p);
    if (next_bit() != 0)
      multiply_by_x(p);
  }
  return p;
}

// The powers used last: a split over threads and a repeated skip ask for the same ones again and again.
class power_cache {
 public:
  std::shared_ptr<const polynomial> get(const big_count& exponent) {
    {
      const std::scoped_lock lock(mutex_);
      for (auto it = entries_.begin(); it != entries_.end(); ++it)
        if (it->exponent == exponent) {
          entries_.splice(entries_.begin(), entries_, it);
          return it->power;
        }
    }
    auto power = std::make_shared<const polynomial>(power_of_x(exponent));
    const std::scoped_lock lock(mutex_);
    entries_.push_front({exponent, power});
    if (entries_.size() > 16)
      entries_.pop_back();
    return power;
  }

 private:
  struct entry {
    big_count exponent;
    std::shared_ptr<const polynomial> power;
  };
  std::mutex mutex_;
  std::list<entry> entries_;
};

std::shared_ptr<const polynomial> cached_power_of_x(const big_count& exponent) {
  static power_cache cache;
  return cache.get(exponent);
}

bool is_zero(std::span<const std::uint64_t> count) {
  return std::all_of(count.begin(), count.end(), [](std::uint64_t word) { return word == 0; });
}

// count - 1, without leading zeros; count is not 0.
big_count decremented(std::span<const std::uint64_t> count) {
  big_count result(count.begin(), count.end());
  for (std::uint64_t& word : result)
    if (word-- != 0)
      break;
  while (!result.empty() && result.back() == 0)
    result.pop_back();
  return result;
}

} // namespace

// The low 31 bits of the first word are no part of the state and do not follow from the words behind it. So
// the power is one less than the distance, and the windows start at the second word.
void mt19937_jump(std::uint32_t* words, std::span<const std::uint64_t> distance) {
  if (is_zero(distance))
    return;
  const std::shared_ptr<const polynomial> power = cached_power_of_x(decremented(distance));
  constexpr std::size_t blocks = mt19937_degree / mt19937_words + 2;
  std::vector<std::uint32_t> sequence(blocks * mt19937_words + 1);
  std::copy_n(words, mt19937_words, sequence.begin());
  for (std::size_t b = 1; b < blocks; ++b) {
    std::uint32_t* const block = sequence.data() + b * mt19937_words;
    std::copy_n(block - mt19937_words, mt19937_words, block);
    mt19937_next_block(block);
  }
  const kernel_set* kernels = kernels_for(hvl_serv_isa());
  (kernels != nullptr ? *kernels : scalar::kernels)
      .xor_windows(words, sequence.data() + 1, power->data(), mt19937_degree);
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
    if (distance == 0)
      return VQS_STATUS_BAD_PARAMETER;
    const auto power = cached_power_of_x(decremented(std::span(&distance, 1)));
    std::memcpy(polynomial_out, power->data(), sizeof *power);
    return VQS_STATUS_OK;
  });
}
