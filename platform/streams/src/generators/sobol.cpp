#include "hvl/engines/sobol.hpp"

#include "generators/digital_sequence.hpp"
#include "generators/sobol_table.hpp"

namespace hvl::streams {
namespace {

constexpr std::uint32_t bits = digital_tables::bits;

// Reads the row of bits of sobol_numbers.
class table_reader {
 public:
  // A number of `count` bits, the least one first.
  std::uint32_t operator()(std::uint32_t count) {
    std::uint32_t number = 0;
    for (std::uint32_t i = 0; i < count; ++i, ++at_)
      number |= (sextet(at_ / 6) >> (5 - at_ % 6) & 1) << i;
    return number;
  }

 private:
  static constexpr std::size_t line = sizeof(sobol_numbers[0]) - 1;

  static std::uint32_t sextet(std::size_t i) {
    const char c = sobol_numbers[i / line][i % line];
    if (c >= 'a')
      return static_cast<std::uint32_t>(c - 'a' + 26);
    if (c >= 'A')
      return static_cast<std::uint32_t>(c - 'A');
    return static_cast<std::uint32_t>(c == '+' ? 62 : c == '/' ? 63 : c - '0' + 52);
  }

  std::size_t at_ = 0;
};

struct source {
  using type = engines::sobol;

  template <class Put>
  static void fill(std::uint32_t dimensions, const Put& put) {
    for (std::uint32_t k = 0; k < bits; ++k)
      put(0, k, 1u << (bits - 1 - k));
    table_reader read;
    std::uint32_t dimension = 1;
    for (std::uint32_t degree = 1; dimension < dimensions; ++degree)
      for (std::uint32_t i = 0; i < sobol_degrees[degree - 1] && dimension < dimensions; ++i, ++dimension)
        fill_dimension(degree, read,
                       [&](std::uint32_t k, std::uint32_t number) { put(dimension, k, number); });
  }

  // The numbers themselves.
  static int numbers_of(std::uint32_t dimensions, std::span<const std::uint32_t> words,
                        std::vector<std::uint32_t>& numbers) {
    if (words.size() != std::size_t{bits} * dimensions)
      return VQS_STATUS_BAD_PARAMETER;
    numbers.assign(words.begin(), words.end());
    return VQS_STATUS_OK;
  }

 private:
  template <class Put>
  static void fill_dimension(std::uint32_t degree, table_reader& read, const Put& put) {
    const std::uint32_t inner = read(degree - 1); // the coefficient of x^i at bit i - 1
    std::uint32_t v[bits];
    for (std::uint32_t k = 0; k < bits; ++k) {
      if (k < degree) {
        v[k] = (2 * read(k) + 1) << (bits - 1 - k);
      } else {
        v[k] = v[k - degree] ^ v[k - degree] >> degree;
        for (std::uint32_t j = 1; j < degree; ++j)
          v[k] ^= (inner >> (degree - j - 1) & 1) != 0 ? v[k - j] : 0;
      }
      put(k, v[k]);
    }
  }
};

} // namespace

const engine sobol_engine = entry<digital_generator<source>>();

} // namespace hvl::streams
