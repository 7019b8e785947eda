// The checks of the distributions' constructors, whose rules are the stream library's, and the records of distributions that
// carry one. Nothing is computed here.
#include <cstdint>
#include <limits>

#include <hvl/float_environment.hpp>
#include <hvl/math/laws.hpp>
#include <hvl/streams_parameters.hpp>
#include <kestro/hvl/exceptions.hpp>
#include <kestro/hvl/rng/detail/parameters.hpp>

#include "distributions/matrix_record.hpp"
#include "distributions/means_record.hpp"
#include "distributions/outcome_record.hpp"
#include "distributions/thresholds.hpp"

namespace kestro::hvl::rng::detail {
namespace {

template <class... Parameters>
void check(const char* distribution, const char* (*rule)(Parameters...), Parameters... parameters) {
  if (const char* const fault = ::hvl::in_default_float_environment([&] { return rule(parameters...); }))
    throw invalid_argument("rng", distribution, fault);
}

template <class T>
const char* matrix_fault(const std::vector<T>* mean, const std::vector<T>* matrix, std::int32_t code) {
  constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
  const auto dimen = static_cast<std::int32_t>(mean->size() < most ? mean->size() : most);
  const char* const fault = ::hvl::streams::gaussian_mv_fault(dimen, code);
  if (fault != nullptr)
    return fault;
  const auto storage = static_cast<::hvl::math::matrix_storage>(code);
  if (mean->size() > most || matrix->size() != ::hvl::math::matrix_elements(storage, mean->size()))
    return "size of t";
  return ::hvl::streams::gaussian_mv_fault(dimen, code, mean->data(), matrix->data());
}

} // namespace

template <class T>
void check_uniform(T a, T b) {
  check("uniform", ::hvl::streams::uniform_fault<T>, a, b);
}

template <class T>
void check_gaussian(T mean, T stddev) {
  check("gaussian", ::hvl::streams::gaussian_fault<T>, mean, stddev);
}

template <class T>
void check_lognormal(T m, T s, T displ, T scale) {
  check("lognormal", ::hvl::streams::lognormal_fault<T>, m, s, displ, scale);
}

template <class T>
void check_weibull(T alpha, T a, T beta) {
  check("weibull", ::hvl::streams::weibull_fault<T>, alpha, a, beta);
}

template <class T>
void check_gamma(T alpha, T a, T beta) {
  check("gamma", ::hvl::streams::gamma_fault<T>, alpha, a, beta);
}

template <class T>
void check_beta(T p, T q, T a, T beta) {
  check("beta", ::hvl::streams::beta_fault<T>, p, q, a, beta);
}

template <class T>
std::shared_ptr<matrix_record> gaussian_mv_record(const std::vector<T>& a, const std::vector<T>& t,
                                                  std::int32_t mstorage) {
  check("gaussian_mv", matrix_fault<T>, &a, &t, mstorage);
  return std::make_shared<matrix_record>(a, t, static_cast<::hvl::math::matrix_storage>(mstorage));
}

void check_chi_square(std::int32_t v) {
  check("chi_square", ::hvl::streams::chi_square_fault, v);
}

void check_geometric(double p) {
  check("geometric", ::hvl::streams::geometric_fault, p);
}

void check_bernoulli(double p) {
  check("bernoulli", ::hvl::streams::bernoulli_fault, p);
}

namespace {

template <class Law, class... P>
std::shared_ptr<threshold_record> law_record(const char* distribution, const char* (*fault)(P...), P... p) {
  check(distribution, fault, p...);
  return Law::has_table(p...) ? std::make_shared<threshold_record>(Law{p...}) : nullptr;
}

} // namespace

std::shared_ptr<threshold_record> poisson_record(double lambda) {
  return law_record<::hvl::math::poisson_law>("poisson", ::hvl::streams::poisson_fault, lambda);
}

std::shared_ptr<threshold_record> binomial_record(std::int32_t ntrial, double p) {
  return law_record<::hvl::math::binomial_law>("binomial", ::hvl::streams::binomial_fault, ntrial, p);
}

std::shared_ptr<threshold_record> hypergeometric_record(std::int32_t l, std::int32_t s, std::int32_t m) {
  return law_record<::hvl::math::hypergeometric_law>("hypergeometric", ::hvl::streams::hypergeometric_fault,
                                                     l, s, m);
}

std::shared_ptr<threshold_record> negative_binomial_record(double a, double p) {
  return law_record<::hvl::math::negative_binomial_law>("negative_binomial",
                                                        ::hvl::streams::negative_binomial_fault, a, p);
}

std::shared_ptr<outcome_record> multinomial_record(std::int32_t ntrial, const std::vector<double>& p) {
  constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
  if (p.empty() || p.size() > most)
    throw invalid_argument("rng", "multinomial", "size of p < 1");
  const auto k = static_cast<std::int32_t>(p.size());
  check("multinomial", ::hvl::streams::multinomial_fault, ntrial, k);
  check("multinomial", ::hvl::streams::multinomial_fault, k, p.data());
  return std::make_shared<outcome_record>(p);
}

std::shared_ptr<means_record> poisson_v_record(std::shared_ptr<const std::vector<double>> lambda) {
  if (lambda->empty())
    throw invalid_argument("rng", "poisson_v", "size of lambda < 0");
  check("poisson_v", ::hvl::streams::poisson_v_fault, std::as_const(*lambda).data(),
        static_cast<std::int64_t>(lambda->size()));
  return std::make_shared<means_record>(std::move(lambda));
}

template <class T>
void check_displaced(const char* distribution, T a, T beta) {
  check(distribution, ::hvl::streams::displaced_fault<T>, a, beta);
}

template <class T>
void check_centred(const char* distribution, T a, T b) {
  check(distribution, ::hvl::streams::centred_fault<T>, a, b);
}

#define KESTRO_HVL_CHECKS(T)                                                                                 \
  template std::shared_ptr<matrix_record> gaussian_mv_record(const std::vector<T>&, const std::vector<T>&,   \
                                                             std::int32_t);                                  \
  template void check_uniform(T, T);                                                                         \
  template void check_gaussian(T, T);                                                                        \
  template void check_lognormal(T, T, T, T);                                                                 \
  template void check_weibull(T, T, T);                                                                      \
  template void check_gamma(T, T, T);                                                                        \
  template void check_beta(T, T, T, T);                                                                      \
  template void check_displaced(const char*, T, T);                                                          \
  template void check_centred(const char*, T, T);
KESTRO_HVL_CHECKS(float)
KESTRO_HVL_CHECKS(double)
#undef KESTRO_HVL_CHECKS
template void check_uniform(std::int32_t, std::int32_t);
template void check_uniform(std::uint32_t, std::uint32_t);

} // namespace kestro::hvl::rng::detail
