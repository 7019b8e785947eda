#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "../detail/parameters.hpp"
#include "../detail/record.hpp"

namespace kestro::hvl::rng {

namespace poisson_v_method {
struct standard {};
} // namespace poisson_v_method

/// Poisson numbers of many means: value i of a call has the mean lambda[i mod the number of means].
///
/// Below a mean of 10 by adding up probabilities, else by transformed rejection; so the values are others than those of
/// `poisson`. Two words a value. Values that would exceed 2^31 - 1 are 2^31 - 1, for either result type.
template <class T = std::int32_t, class Method = poisson_v_method::standard>
class poisson_v {
  static_assert(detail::is_one_of<T, std::int32_t, std::uint32_t>, "poisson_v yields int or unsigned int");
  static_assert(detail::is_one_of<Method, poisson_v_method::standard>);

 public:
  using result_type = T;
  using method_type = Method;

  poisson_v() : poisson_v(std::vector<double>{0.5}) {}

  /// Throws `invalid_argument`: "size of lambda < 0" where there is no mean, "lambda < 0" unless every one is finite and at
  /// least 0.
  explicit poisson_v(std::vector<double> lambda)
      : lambda_(std::make_shared<const std::vector<double>>(std::move(lambda))),
        record_(detail::poisson_v_record(lambda_)) {}

  // A move is a copy, so that no object is without its means.
  poisson_v(const poisson_v&) = default;
  poisson_v& operator=(const poisson_v&) = default;

  const std::vector<double>& lambda() const { return *lambda_; }

 private:
  friend struct detail::distribution_access;

  std::shared_ptr<const std::vector<double>> lambda_;
  std::shared_ptr<detail::means_record> record_;
};

} // namespace kestro::hvl::rng
