#pragma once

#include <cstdint>
#include <exception>
#include <vector>

#include <hvl/streams_parameters.hpp>
#include <kestro/hvl/offload.h>
#include <kestro/hvl/rng/distributions/gaussian_mv.hpp>
#include <kestro/hvl/rng/distributions/multinomial.hpp>
#include <kestro/hvl/rng/distributions/poisson_v.hpp>

#include "offload/omp_driver.hpp"

namespace kestro::hvl::rng::detail::openmp {

/// What an entry point does with the parameters of its distribution before the driver has a say.
template <class Distribution>
struct entry {
  template <class... Parameters>
  static bool accepts(const Parameters&...) {
    return true;
  }

  /// May throw; at the boundary that ends the process.
  template <class... Parameters>
  static Distribution make(std::int64_t, const Parameters&... parameters) {
    return Distribution(parameters...);
  }
};

/// Arrays of as many elements as dimension and storage say; what is wrong with these the constructor finds.
template <class T>
struct entry<gaussian_mv<T>> {
  static bool accepts(std::int32_t, std::int32_t, const T*, const T*) { return true; }

  static gaussian_mv<T> make(std::int64_t, std::int32_t dimen, std::int32_t mstorage, const T* a,
                             const T* t) {
    const bool is_sound = ::hvl::streams::gaussian_mv_fault(dimen, mstorage) == nullptr;
    const std::size_t dimension = dimen > 0 ? static_cast<std::size_t>(dimen) : 0;
    const std::size_t elements =
        is_sound ? ::hvl::math::matrix_elements(static_cast<::hvl::math::matrix_storage>(mstorage), dimension)
                 : 0;
    return gaussian_mv<T>({a, a + dimension}, {t, t + elements}, static_cast<gaussian_mv_storage>(mstorage));
  }
};

/// `p` has as many probabilities as there are outcomes; what is wrong with these the constructor finds.
template <>
struct entry<multinomial<std::int32_t>> {
  static bool accepts(std::int32_t trials, std::int32_t outcomes, const double*) {
    return trials >= 0 && outcomes >= 1;
  }
  static multinomial<std::int32_t> make(std::int64_t, std::int32_t trials, std::int32_t outcomes,
                                        const double* p) {
    return {trials, p == nullptr ? std::vector<double>() : std::vector<double>(p, p + outcomes)};
  }
};

/// `lambda` has n means.
template <>
struct entry<poisson_v<std::int32_t>> {
  static bool accepts(const double*) { return true; }
  static poisson_v<std::int32_t> make(std::int64_t n, const double* lambda) {
    return poisson_v<std::int32_t>(n < 1 || lambda == nullptr ? std::vector<double>()
                                                              : std::vector<double>(lambda, lambda + n));
  }
};

/// The body of every entry point. Not to throw is the boundary's promise to C: what leaves the building of the
/// distribution ends the process.
template <class Distribution, class... Parameters>
std::int32_t offload(std::int64_t method, void* stream, std::int64_t n, typename Distribution::result_type* r,
                     void* interop, const Parameters&... parameters) noexcept {
  if (method != 0 || !entry<Distribution>::accepts(parameters...))
    return KESTRO_HVL_OFFLOAD_BAD_ARGUMENT;
  try {
    return omp_driver(entry<Distribution>::make(n, parameters...), stream, n, r, interop);
  } catch (...) {
    std::terminate(); // which says what was thrown, as the exception is still there
  }
}

} // namespace kestro::hvl::rng::detail::openmp
