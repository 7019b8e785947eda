// As mt19937's jumps, in units of four words: the sequence of units is annulled by a polynomial with thousands of terms.
#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "generators/dense_field.hpp"
#include "generators/power_of_x.hpp"
#include "generators/sfmt19937.hpp"
#include "generators/sfmt19937_polynomial.hpp"
#include "hvl/streams_detail.h"
#include "stream.hpp"

namespace hvl::streams {
namespace {

using recurrence_type = engines::sfmt19937::recurrence;
constexpr recurrence_type recurrence{};
constexpr std::size_t unit = recurrence.unit;
constexpr std::size_t block_words = unit * recurrence.units;
constexpr std::size_t pad =
    recurrence.size - block_words; // read in front of a block, and without effect there
static_assert(sfmt19937_degree == recurrence.degree);

constexpr std::size_t polynomial_words = sfmt19937_degree / polynomial_bits;

// Continues the sequence behind `pad` words and a block by `count` words, whole units.
void extend(std::uint32_t* x, std::size_t count) {
  for (std::size_t k = 0; k < count; k += unit)
    for (std::size_t place = 0; place < unit; ++place)
      x[k + place + recurrence.size] = recurrence.next(x + k + place, static_cast<int>(place));
}

struct field {
  using dense = dense_field<polynomial_words>;
  static constexpr std::size_t degree = dense::degree;
  using polynomial = dense::polynomial;

  static void multiply_by_x(polynomial& p) { modulus().multiply_by_x(p); }
  static polynomial squared(const polynomial& p) { return modulus().squared(p); }

 private:
  static const dense& modulus() {
    static const dense modulus(std::to_array(sfmt19937_coefficients));
    return modulus;
  }
};

} // namespace

void sfmt19937_next_block(std::uint32_t* block) noexcept {
  std::uint32_t x[pad + 2 * block_words] = {};
  std::copy_n(block, block_words, x + pad);
  extend(x, block_words);
  std::copy_n(x + pad + block_words, block_words, block);
}

void sfmt19937_jump(std::uint32_t* block, std::span<const std::uint64_t> distance) {
  const auto power = power_cache<field>::get(distance);
  std::vector<std::uint32_t> sequence(pad + unit * (sfmt19937_degree - 1) + block_words);
  std::copy_n(block, block_words, sequence.begin() + pad);
  extend(sequence.data(), sequence.size() - pad - block_words);
  best_kernels().xor_windows(block, sequence.data() + pad, unit, power->data(), sfmt19937_degree);
}

} // namespace hvl::streams

using namespace hvl::streams;

int vqsSfmt19937JumpPolynomial(uint64_t distance, uint32_t* polynomial_out) {
  return guarded([&]() -> int {
    if (polynomial_out == nullptr)
      return VQS_STATUS_NULL_POINTER;
    if (distance == 0 || distance % unit != 0)
      return VQS_STATUS_BAD_PARAMETER;
    const std::uint64_t exponent = distance / unit - 1;
    const auto power = power_cache<field>::get(std::span(&exponent, 1));
    std::memcpy(polynomial_out, power->data(), sizeof *power);
    return VQS_STATUS_OK;
  });
}
