#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>
#include <vector>

#include "../../detail/export.hpp"
#include "record.hpp"

namespace kestro::hvl::rng::detail {

/// What the constructors of the distributions refuse: throw `invalid_argument("rng", distribution, info)`, the info
/// naming the parameter. Compiled into the library, so that neither the caller's floating-point environment nor options
/// such as -ffast-math decide.
template <class T>
KESTRO_HVL_API void check_uniform(T a, T b);
template <class T>
KESTRO_HVL_API void check_gaussian(T mean, T stddev);
template <class T>
KESTRO_HVL_API void check_lognormal(T m, T s, T displ, T scale);
template <class T>
KESTRO_HVL_API void check_weibull(T alpha, T a, T beta);
template <class T>
KESTRO_HVL_API void check_gamma(T alpha, T a, T beta);
template <class T>
KESTRO_HVL_API void check_beta(T p, T q, T a, T beta);
/// For the vectors of gaussian_mv.
template <class T>
KESTRO_HVL_API std::shared_ptr<matrix_record>
gaussian_mv_record(const std::vector<T>& a, const std::vector<T>& t, std::int32_t mstorage);
KESTRO_HVL_API void check_chi_square(std::int32_t v);
KESTRO_HVL_API void check_geometric(double p);
KESTRO_HVL_API void check_bernoulli(double p);

/// exponential, rayleigh, gumbel
template <class T>
KESTRO_HVL_API void check_displaced(const char* distribution, T a, T beta);

/// laplace, cauchy
template <class T>
KESTRO_HVL_API void check_centred(const char* distribution, T a, T b);

/// Checks the parameters and makes the record that goes with them; null where they need none.
KESTRO_HVL_API std::shared_ptr<threshold_record> poisson_record(double lambda);
KESTRO_HVL_API std::shared_ptr<threshold_record> binomial_record(std::int32_t ntrial, double p);
KESTRO_HVL_API std::shared_ptr<threshold_record> hypergeometric_record(std::int32_t l, std::int32_t s,
                                                                       std::int32_t m);
KESTRO_HVL_API std::shared_ptr<threshold_record> negative_binomial_record(double a, double p);
KESTRO_HVL_API std::shared_ptr<outcome_record> multinomial_record(std::int32_t ntrial,
                                                                  const std::vector<double>& p);
KESTRO_HVL_API std::shared_ptr<means_record>
poisson_v_record(std::shared_ptr<const std::vector<double>> lambda);

template <class T, class... Allowed>
inline constexpr bool is_one_of = (std::is_same_v<T, Allowed> || ...);

} // namespace kestro::hvl::rng::detail
