#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "../detail/parameters.hpp"
#include "../detail/record.hpp"

namespace kestro::hvl::rng {

namespace gaussian_mv_method {
/// The normal numbers of `gaussian_method::box_muller2`.
struct box_muller2 {};
} // namespace gaussian_mv_method

/// How a lower triangular matrix stands in memory.
enum class gaussian_mv_storage : std::int32_t {
  full,    ///< all rows; nothing above the diagonal is read
  packed,  ///< one, two, three, ... elements of the rows, one row after the other
  diagonal ///< the diagonal; all else is 0
};

/// Vectors a + T z, z independent standard normal numbers: mean a, covariance T T'. T need not have full rank.
///
/// The n of `generate` counts vectors; each is dimen() consecutive values. A word a value; where n dimen() is odd, one word is
/// wasted, as by box_muller2. Elements of T reach a device once, with the first call there.
template <class T = float, class Method = gaussian_mv_method::box_muller2>
class gaussian_mv {
  static_assert(detail::is_one_of<T, float, double>, "gaussian_mv yields float or double");
  static_assert(detail::is_one_of<Method, gaussian_mv_method::box_muller2>);

 public:
  using result_type = T;
  using method_type = Method;

  gaussian_mv() : gaussian_mv({T(0), T(0)}, {T(1), T(0), T(1)}) {}

  /// The dimension is the size of a. Throws `invalid_argument` ("dimen <= 0" without elements, "mstorage is none of 0, 1, 2",
  /// "size of t", "a is not finite", "t is not finite").
  gaussian_mv(std::vector<T> a, std::vector<T> t, gaussian_mv_storage mstorage = gaussian_mv_storage::packed)
      : parameters_(std::make_shared<const parameters>(parameters{std::move(a), std::move(t), mstorage})),
        record_(detail::gaussian_mv_record(parameters_->a, parameters_->t,
                                           static_cast<std::int32_t>(mstorage))) {}

  // A move is a copy, so that no object is without its record.
  gaussian_mv(const gaussian_mv&) = default;
  gaussian_mv& operator=(const gaussian_mv&) = default;

  std::int32_t dimen() const { return static_cast<std::int32_t>(a().size()); }
  gaussian_mv_storage mstorage() const { return parameters_->mstorage; }
  const std::vector<T>& a() const { return parameters_->a; }
  const std::vector<T>& t() const { return parameters_->t; }

 private:
  friend struct detail::distribution_access;

  struct parameters {
    std::vector<T> a, t;
    gaussian_mv_storage mstorage;
  };
  std::shared_ptr<const parameters> parameters_; // shared by copies, as the record is
  std::shared_ptr<detail::matrix_record> record_;
};

} // namespace kestro::hvl::rng
