#include "quasi.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <stdexcept>

#include "hvl/streams.h"

namespace quality {
namespace {

// Of the first dimensions' polynomials, of both engines; where sobol has none, 1.
constexpr unsigned degrees[] = {1, 1, 2, 3, 3};

std::vector<std::uint32_t> points_of(const hvl::engines::facts& engine, unsigned dimensions,
                                     std::size_t points, std::uint64_t first) {
  std::vector<std::uint32_t> words(points * dimensions);
  vqs_stream stream = nullptr;
  int status = vqsNewStream_64(&stream, engine.identifier, dimensions);
  if (status == VQS_STATUS_OK)
    status = vqsSkipAheadStream_64(stream, first * dimensions);
  if (status == VQS_STATUS_OK)
    status = viRngUniformBits_64(0, stream, static_cast<std::int64_t>(words.size()), words.data());
  if (stream != nullptr)
    vqsDeleteStream_64(&stream);
  if (status != VQS_STATUS_OK)
    throw std::runtime_error(vqsStatusText(status));
  return words;
}

double coordinate(std::uint32_t word) {
  return std::ldexp(static_cast<double>(word), -32);
}

// Whether all elementary intervals with 2^bits[d] parts in dimension d hold equally many points.
bool is_even(const std::vector<std::uint32_t>& points, const std::vector<unsigned>& bits) {
  unsigned all = 0;
  for (const unsigned b : bits)
    all += b;
  std::vector<std::uint32_t> counts(std::size_t{1} << all);
  for (std::size_t p = 0; p < points.size(); p += bits.size()) {
    std::size_t cell = 0;
    for (std::size_t d = 0; d < bits.size(); ++d)
      cell = cell << bits[d] | static_cast<std::size_t>(std::uint64_t{points[p + d]} >> (32 - bits[d]));
    ++counts[cell];
  }
  return std::all_of(counts.begin(), counts.end(), [&](std::uint32_t c) { return c == counts[0]; });
}

// Likewise for every way to share `left` bits out to the dimensions from `next` on.
bool is_even_however(const std::vector<std::uint32_t>& points, std::vector<unsigned>& bits, std::size_t next,
                     unsigned left) {
  if (next + 1 == bits.size()) {
    bits[next] = left;
    return is_even(points, bits);
  }
  for (bits[next] = 0; bits[next] <= left; ++bits[next])
    if (!is_even_however(points, bits, next + 1, left - bits[next]))
      return false;
  return true;
}

} // namespace

unsigned net_parameter(const std::vector<std::uint32_t>& points, unsigned dimensions) {
  unsigned m = 0;
  while (std::size_t{dimensions} << m < points.size())
    ++m;
  std::vector<unsigned> bits(dimensions);
  unsigned t = 0;
  while (!is_even_however(points, bits, 0, m - t))
    ++t;
  return t;
}

// T. T. Warnock, "Computational investigations of low-discrepancy point sets", 1972.
double relative_discrepancy(const std::vector<std::uint32_t>& points, unsigned dimensions) {
  const std::size_t n = points.size() / dimensions;
  std::vector<double> x(points.size());
  std::transform(points.begin(), points.end(), x.begin(), coordinate);
  double singles = 0, pairs = 0;
  for (std::size_t i = 0; i < n; ++i) {
    double single = 1, to_itself = 1;
    for (std::size_t d = 0; d < dimensions; ++d) {
      const double at = x[i * dimensions + d];
      single *= (1 - at * at) / 2;
      to_itself *= 1 - at;
    }
    singles += single;
    pairs += to_itself;
    for (std::size_t k = 0; k < i; ++k) {
      double pair = 2;
      for (std::size_t d = 0; d < dimensions; ++d)
        pair *= 1 - std::max(x[i * dimensions + d], x[k * dimensions + d]);
      pairs += pair;
    }
  }
  const auto count = static_cast<double>(n), s = static_cast<double>(dimensions);
  const double square = std::pow(3, -s) - 2 * singles / count + pairs / (count * count);
  return std::sqrt(square * count / (std::pow(2, -s) - std::pow(3, -s)));
}

// Of the product of (pi / 2) sin(pi x), whose mean is 1.
double relative_integration_error(const std::vector<std::uint32_t>& points, unsigned dimensions) {
  double sum = 0;
  for (std::size_t p = 0; p < points.size(); p += dimensions) {
    double product = 1;
    for (std::size_t d = 0; d < dimensions; ++d)
      product *= std::numbers::pi / 2 * std::sin(std::numbers::pi * coordinate(points[p + d]));
    sum += product;
  }
  const double n = static_cast<double>(points.size()) / dimensions;
  const double variance = std::pow(std::numbers::pi * std::numbers::pi / 8, dimensions) - 1;
  return std::abs(sum / n - 1) / std::sqrt(variance / n);
}

std::vector<measure> quasi_measures(const hvl::engines::facts& engine) {
  std::vector<measure> measures;
  const auto add = [&](const char* what, unsigned dimensions, unsigned m, double limit,
                       const auto& value_of) {
    double worst = 0;
    for (const std::uint64_t block : {0u, 1u, 777u})
      worst =
          std::max(worst, static_cast<double>(value_of(
                              points_of(engine, dimensions, std::size_t{1} << m, block << m), dimensions)));
    measures.push_back(
        {what + (", " + std::to_string(dimensions)) + " dimensions, 2^" + std::to_string(m) + " points",
         worst, limit});
  };
  unsigned t = 0;
  for (unsigned s = 1; s <= std::size(degrees); ++s) {
    t += degrees[s - 1] - 1;
    if (s == 2 || s == 3 || s == 5)
      add("net", s, s == 5 ? 12 : 16, t, net_parameter);
  }
  add("discrepancy", 2, 11, 0.2, relative_discrepancy);
  add("discrepancy", 5, 11, 0.5, relative_discrepancy);
  add("integral", 2, 16, 0.05, relative_integration_error);
  add("integral", 5, 16, 0.05, relative_integration_error);
  return measures;
}

} // namespace quality
