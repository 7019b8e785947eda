#pragma once

#include <cstdint>
#include <memory>

#include "../detail/parameters.hpp"
#include "../detail/record.hpp"

namespace kestro::hvl::rng {

namespace poisson_method {
struct standard {};
} // namespace poisson_method

/// How many events happen that are independent and of which lambda are expected: k with probability
/// exp(-lambda) lambda^k / k!. Mean and variance lambda.
///
/// By inversion at means up to 2^20, through a table that all copies of the distribution share and the first call builds; by
/// transformed rejection beyond. Two words a value; of an inversion the second one refines the first, so that probabilities
/// hold far into the tail. Values that would exceed 2^31 - 1 are 2^31 - 1, for either result type: more than one in 1e10
/// from a mean of 2147190000 on, all but one in 1e10 from 2147780000 on.
template <class T = std::int32_t, class Method = poisson_method::standard>
class poisson {
  static_assert(detail::is_one_of<T, std::int32_t, std::uint32_t>, "poisson yields int or unsigned int");
  static_assert(detail::is_one_of<Method, poisson_method::standard>);

 public:
  using result_type = T;
  using method_type = Method;

  poisson() : poisson(0.5) {}

  /// Throws `invalid_argument` ("lambda < 0") unless lambda is finite and at least 0.
  explicit poisson(double lambda) : lambda_(lambda), record_(detail::poisson_record(lambda)) {}

  // A move is a copy, so that no object is without its record.
  poisson(const poisson&) = default;
  poisson& operator=(const poisson&) = default;

  double lambda() const { return lambda_; }

 private:
  friend struct detail::distribution_access;

  double lambda_;
  std::shared_ptr<detail::threshold_record> record_;
};

} // namespace kestro::hvl::rng
