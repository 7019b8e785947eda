#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "../detail/parameters.hpp"
#include "../detail/record.hpp"

namespace kestro::hvl::rng {

namespace multinomial_method {
struct standard {};
} // namespace multinomial_method

/// How many of `ntrial` independent trials have each of several outcomes, whose probabilities are p. The counts of a vector add
/// up to ntrial, and an outcome of probability 0 has none.
///
/// The n of `generate` counts vectors; each is dimen() consecutive values. One outcome after the other takes a binomial number
/// of the trials that are left, by inversion at means below 16 and by transformed rejection beyond. A word a value, refined by
/// a hash of itself and of its neighbours, so that probabilities hold down to 2^-53.
template <class T = std::int32_t, class Method = multinomial_method::standard>
class multinomial {
  static_assert(detail::is_one_of<T, std::int32_t, std::uint32_t>, "multinomial yields int or unsigned int");
  static_assert(detail::is_one_of<Method, multinomial_method::standard>);

 public:
  using result_type = T;
  using method_type = Method;

  multinomial() : multinomial(5, {0.5, 0.5}) {}

  /// Throws `invalid_argument`: "ntrial < 0", "size of p < 1" where there is no outcome, "p is not in [0, 1]" unless every
  /// element is, "p does not add up to 1" unless the sum differs from 1 by at most 1e-8; p is then divided by it.
  multinomial(std::int32_t ntrial, std::vector<double> p)
      : ntrial_(ntrial), p_(std::make_shared<const std::vector<double>>(std::move(p))),
        record_(detail::multinomial_record(ntrial, *p_)) {}

  // A move is a copy, so that no object is without its record.
  multinomial(const multinomial&) = default;
  multinomial& operator=(const multinomial&) = default;

  /// How many outcomes there are.
  std::int32_t dimen() const { return static_cast<std::int32_t>(p_->size()); }
  std::int32_t ntrial() const { return ntrial_; }
  const std::vector<double>& p() const { return *p_; }

 private:
  friend struct detail::distribution_access;

  std::int32_t ntrial_;
  std::shared_ptr<const std::vector<double>> p_; // shared by copies, as the record is
  std::shared_ptr<detail::outcome_record> record_;
};

} // namespace kestro::hvl::rng
