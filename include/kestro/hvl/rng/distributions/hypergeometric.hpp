#pragma once

#include <cstdint>
#include <memory>

#include "../detail/parameters.hpp"
#include "../detail/record.hpp"

namespace kestro::hvl::rng {

namespace hypergeometric_method {
struct standard {};
} // namespace hypergeometric_method

/// How many are marked of a sample of s, drawn without putting back from a lot of l that holds m marked. Mean s m / l.
///
/// By inversion at variances up to 2^20, through a table that all copies of the distribution share and the first call
/// builds; by transformed rejection beyond. Two words a value; of an inversion the second one refines the first, so that
/// probabilities hold far into the tail.
template <class T = std::int32_t, class Method = hypergeometric_method::standard>
class hypergeometric {
  static_assert(detail::is_one_of<T, std::int32_t, std::uint32_t>,
                "hypergeometric yields int or unsigned int");
  static_assert(detail::is_one_of<Method, hypergeometric_method::standard>);

 public:
  using result_type = T;
  using method_type = Method;

  hypergeometric() : hypergeometric(1, 1, 1) {}

  /// Throws `invalid_argument` ("l < 0", "s is not in [0, l]", "m is not in [0, l]") for any other parameters.
  hypergeometric(std::int32_t l, std::int32_t s, std::int32_t m)
      : l_(l), s_(s), m_(m), record_(detail::hypergeometric_record(l, s, m)) {}

  // A move is a copy, so that no object is without its record.
  hypergeometric(const hypergeometric&) = default;
  hypergeometric& operator=(const hypergeometric&) = default;

  std::int32_t l() const { return l_; }
  std::int32_t s() const { return s_; }
  std::int32_t m() const { return m_; }

 private:
  friend struct detail::distribution_access;

  std::int32_t l_, s_, m_;
  std::shared_ptr<detail::threshold_record> record_;
};

} // namespace kestro::hvl::rng
