#include "hvl/engines/niederreiter.hpp"

#include "generators/digital_sequence.hpp"

namespace hvl::streams {
namespace {

constexpr std::uint32_t bits = digital_tables::bits;

// Polynomials over GF(2), the coefficient of x^i at bit i.
std::uint32_t degree_of(std::uint64_t p) {
  return static_cast<std::uint32_t>(std::bit_width(p)) - 1;
}

std::uint64_t product(std::uint64_t a, std::uint64_t b) {
  std::uint64_t p = 0;
  for (; b != 0; b &= b - 1)
    p ^= a << std::countr_zero(b);
  return p;
}

bool divides(std::uint32_t divisor, std::uint32_t p) {
  while (std::bit_width(p) >= std::bit_width(divisor))
    p ^= divisor << (std::bit_width(p) - std::bit_width(divisor));
  return p == 0;
}

// The irreducible ones up to degree 15, in the order of degree and value.
const std::vector<std::uint32_t>& irreducible_polynomials() {
  static const std::vector<std::uint32_t> all = [] {
    constexpr std::uint32_t end = 1 << 16;
    std::vector<bool> composite(end);
    std::vector<std::uint32_t> found;
    for (std::uint32_t p = 2; p < end; ++p) {
      if (composite[p])
        continue;
      found.push_back(p);
      for (std::uint32_t q = 2; degree_of(p) + degree_of(q) < 16; ++q)
        composite[product(p, q)] = true;
    }
    return found;
  }();
  return all;
}

// Of a degree up to 31, so that a proper divisor is among those above.
bool is_irreducible(std::uint32_t p) {
  for (const std::uint32_t divisor : irreducible_polynomials()) {
    if (2 * degree_of(divisor) > degree_of(p))
      break;
    if (divides(divisor, p))
      return false;
  }
  return true;
}

// Row after row of the generator matrix. Each group of `degree` rows comes from the next power b of the polynomial p: its
// rows are stretches, each one place further on, of the sequence whose recurrence has the coefficients of b and whose first
// terms are 0 up to the degree of the power before and 1 from there on.
void fill_dimension(std::uint32_t p, std::uint32_t (&numbers)[bits]) {
  const std::uint32_t degree = degree_of(p);
  std::uint64_t power = 1;
  std::uint32_t power_degree = 0;
  for (std::uint32_t row = 0; row < bits;) {
    const std::uint32_t zeros = power_degree;
    power = product(power, p);
    power_degree += degree;
    bool sequence[2 * bits] = {};
    for (std::uint32_t i = zeros; i < bits + degree; ++i) {
      sequence[i] = i < power_degree;
      if (i >= power_degree)
        for (std::uint64_t terms = power ^ std::uint64_t{1} << power_degree; terms != 0; terms &= terms - 1)
          sequence[i] ^= sequence[i - power_degree + static_cast<std::uint32_t>(std::countr_zero(terms))];
    }
    for (std::uint32_t i = 0; i < degree && row < bits; ++i, ++row)
      for (std::uint32_t k = 0; k < bits; ++k)
        numbers[k] |= static_cast<std::uint32_t>(sequence[i + k]) << (bits - 1 - row);
  }
}

struct source {
  using type = engines::niederreiter;

  template <class Put>
  static void fill(std::uint32_t dimensions, const Put& put) {
    for (std::uint32_t d = 0; d < dimensions; ++d) {
      std::uint32_t numbers[bits] = {};
      fill_dimension(irreducible_polynomials()[d], numbers);
      for (std::uint32_t k = 0; k < bits; ++k)
        put(d, k, numbers[k]);
    }
  }

  // From one irreducible polynomial for each dimension, all different.
  static int numbers_of(std::uint32_t dimensions, std::span<const std::uint32_t> words,
                        std::vector<std::uint32_t>& numbers) {
    if (words.size() != dimensions)
      return VQS_STATUS_BAD_PARAMETER;
    std::vector<std::uint32_t> sorted(words.begin(), words.end());
    std::sort(sorted.begin(), sorted.end());
    if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end())
      return VQS_STATUS_BAD_PARAMETER;
    numbers.reserve(std::size_t{bits} * dimensions);
    for (const std::uint32_t p : words) {
      if (p < 2 || !is_irreducible(p))
        return VQS_STATUS_BAD_PARAMETER;
      std::uint32_t of_dimension[bits] = {};
      fill_dimension(p, of_dimension);
      numbers.insert(numbers.end(), of_dimension, of_dimension + bits);
    }
    return VQS_STATUS_OK;
  }
};

} // namespace

const engine niederreiter_engine = entry<digital_generator<source>>();

} // namespace hvl::streams
