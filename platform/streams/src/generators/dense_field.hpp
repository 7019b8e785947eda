// Arithmetic modulo a polynomial over GF(2) with many terms, whose degree is a whole number of words: a square is
// reduced by multiples of it that are kept in a table.
#pragma once

#include <algorithm>
#include <array>
#include <memory>

#include "generators/polynomial.hpp"
#include "simd/kernels.hpp"

namespace hvl::streams {

template <std::size_t Words>
class dense_field { // a Field of power_of_x
 public:
  static constexpr std::size_t degree = polynomial_bits * Words;
  using polynomial = std::array<std::uint64_t, Words>;

  // Modulo x^degree + low.
  explicit dense_field(const polynomial& low) : low_(low) {
    polynomial row = low; // of x^j, which is what x^(degree + j) is reduced to
    for (std::size_t j = 0; j < 8; ++j, multiply_by_x(row))
      for (std::size_t q = 0; q < 16; ++q)
        if ((q >> j % 4 & 1) != 0)
          for (std::size_t i = 0; i < Words; ++i)
            (*rows_)[16 * (j / 4) + q][i] ^= row[i];
  }

  void multiply_by_x(polynomial& p) const {
    const std::uint64_t top = p.back() >> (polynomial_bits - 1);
    for (std::size_t i = Words; i-- != 0;) {
      p[i] = p[i] << 1 | (i == 0 ? 0 : p[i - 1] >> (polynomial_bits - 1));
      p[i] ^= (0 - top) & low_[i];
    }
  }

  polynomial squared(const polynomial& p) const {
    std::array<std::uint64_t, 2 * Words> square;
    for (std::size_t i = 0; i < Words; ++i) {
      square[2 * i] = spread(static_cast<std::uint32_t>(p[i]));
      square[2 * i + 1] = spread(static_cast<std::uint32_t>(p[i] >> 32));
    }
    best_kernels().fold_bytes(square.data(), rows_->front().data(), Words);
    polynomial reduced;
    std::copy_n(square.begin(), Words, reduced.begin());
    return reduced;
  }

 private:
  polynomial low_;
  // Row q < 16: the coefficients below x^degree of that multiple whose coefficients from there on are those of q; row
  // 16 + q: of q x^4.
  std::unique_ptr<std::array<polynomial, 32>> rows_ = std::make_unique<std::array<polynomial, 32>>();
};

} // namespace hvl::streams
