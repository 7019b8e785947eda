// As mt19937's jumps, modulo x^37 times the member's own characteristic polynomial, which follows from its twist constant.
#include <algorithm>
#include <cstring>

#include "generators/dense_field.hpp"
#include "generators/mt2203.hpp"
#include "generators/power_of_x.hpp"
#include "hvl/streams_detail.h"
#include "stream.hpp"

namespace hvl::streams {
namespace {

using recurrence_type = engines::mt2203::recurrence;
constexpr std::size_t n = recurrence_type::size;
using field = dense_field<recurrence_type::degree / polynomial_bits>;

// M. Matsumoto, T. Nishimura, "Mersenne Twister", ACM TOMACS 8 (1998), appendix A: with P = x^69 + x^34 and
// Q = x^68 + x^33, the polynomial is the sum of the terms 31 - i over the set bits i of the twist constant, and of term 32;
// term e is P^e up to 27 and P^27 Q^(e - 27) beyond. As P = x^34 (x^35 + 1), and Q is P / x, a term has the monomials with
// x^(35 s) for which the binomial coefficient of e and s is odd: the set bits of s are among those of e.
constexpr std::size_t padding = field::degree - 2203; // the power of x in front

field::polynomial low_terms(std::uint32_t matrix) {
  field::polynomial low{};
  const auto add = [&low](std::size_t exponent) {
    if (exponent < field::degree)
      low[exponent / polynomial_bits] ^= std::uint64_t{1} << exponent % polynomial_bits;
  };
  for (std::size_t e = 0; e <= 32; ++e)
    if (e == 32 || (matrix >> (31 - e) & 1) != 0)
      for (std::size_t s = 0; s <= e; ++s)
        if ((s & ~e) == 0)
          add(padding + 34 * e - (e > 27 ? e - 27 : 0) + 35 * s);
  return low;
}

// By as many words as `count` says, less one: of the first word of a state only upper bits belong to it, so windows
// start at the second. The count is not 0.
field::polynomial power_before(std::uint32_t matrix, std::span<const std::uint64_t> count) {
  std::vector<std::uint64_t> exponent(count.begin(), count.end());
  for (std::uint64_t& word : exponent)
    if (word-- != 0)
      break;
  return power_of_x(field(low_terms(matrix)), exponent);
}

} // namespace

void mt2203_jump(const recurrence_type& recurrence, std::uint32_t* words,
                 std::span<const std::uint64_t> distance) {
  const field::polynomial power = power_before(recurrence.matrix, distance);
  std::uint32_t sequence[field::degree + n];
  std::copy_n(words, n, sequence);
  for (std::size_t k = 0; k < field::degree; ++k)
    sequence[n + k] = recurrence.next(sequence + k);
  std::uint32_t sum[n] = {};
  for (std::size_t i = 0; i < field::degree; ++i)
    if ((power[i / polynomial_bits] >> i % polynomial_bits & 1) != 0)
      for (std::size_t j = 0; j < n; ++j)
        sum[j] ^= sequence[1 + i + j];
  std::copy_n(sum, n, words);
}

} // namespace hvl::streams

using namespace hvl::streams;

int vqsMt2203JumpPolynomial(uint32_t matrix, uint64_t distance, uint32_t* polynomial_out) {
  return guarded([&]() -> int {
    if (polynomial_out == nullptr)
      return VQS_STATUS_NULL_POINTER;
    if (distance == 0)
      return VQS_STATUS_BAD_PARAMETER;
    const auto power = power_before(matrix, std::span(&distance, 1));
    std::memcpy(polynomial_out, power.data(), sizeof power);
    return VQS_STATUS_OK;
  });
}
