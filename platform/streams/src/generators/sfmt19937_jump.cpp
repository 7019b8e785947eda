// As mt19937's jumps, in units of four words: the sequence of units is annulled by a polynomial with thousands of terms,
// so a square is reduced by multiples of it that are kept in a table.
#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <vector>

#include "generators/polynomial.hpp"
#include "generators/power_of_x.hpp"
#include "generators/sfmt19937.hpp"
#include "generators/sfmt19937_polynomial.hpp"
#include "hvl/core.h"
#include "hvl/streams_detail.h"
#include "simd/kernels.hpp"
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

const kernel_set& kernels() {
  const kernel_set* const best = kernels_for(hvl_serv_isa());
  return best != nullptr ? *best : scalar::kernels;
}

// Continues the sequence behind `pad` words and a block by `count` words, whole units.
void extend(std::uint32_t* x, std::size_t count) {
  for (std::size_t k = 0; k < count; k += unit)
    for (std::size_t place = 0; place < unit; ++place)
      x[k + place + recurrence.size] = recurrence.next(x + k + place, static_cast<int>(place));
}

struct field {
  static constexpr std::size_t degree = sfmt19937_degree;
  using polynomial = std::array<std::uint64_t, polynomial_words>;

  static void multiply_by_x(polynomial& p) {
    const std::uint64_t top = p.back() >> (polynomial_bits - 1);
    for (std::size_t i = polynomial_words; i-- != 0;) {
      p[i] = p[i] << 1 | (i == 0 ? 0 : p[i - 1] >> (polynomial_bits - 1));
      p[i] ^= (0 - top) & sfmt19937_coefficients[i];
    }
  }

  static polynomial squared(const polynomial& p) {
    std::array<std::uint64_t, 2 * polynomial_words> square;
    for (std::size_t i = 0; i < polynomial_words; ++i) {
      square[2 * i] = spread(static_cast<std::uint32_t>(p[i]));
      square[2 * i + 1] = spread(static_cast<std::uint32_t>(p[i] >> 32));
    }
    static const multiples table;
    kernels().fold_bytes(square.data(), table.rows->front().data(), polynomial_words);
    polynomial reduced;
    std::copy_n(square.begin(), polynomial_words, reduced.begin());
    return reduced;
  }

 private:
  // Row q < 16: the coefficients below x^degree of that multiple whose coefficients from there on are those of q; row
  // 16 + q: of q x^4.
  struct multiples {
    std::unique_ptr<std::array<polynomial, 32>> rows = std::make_unique<std::array<polynomial, 32>>();

    multiples() {
      polynomial row; // of x^j, which is what x^(degree + j) is reduced to
      std::copy_n(sfmt19937_coefficients, polynomial_words, row.begin());
      for (std::size_t j = 0; j < 8; ++j, multiply_by_x(row))
        for (std::size_t q = 0; q < 16; ++q)
          if ((q >> j % 4 & 1) != 0)
            for (std::size_t i = 0; i < polynomial_words; ++i)
              (*rows)[16 * (j / 4) + q][i] ^= row[i];
    }
  };
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
  kernels().xor_windows(block, sequence.data() + pad, unit, power->data(), sfmt19937_degree);
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
