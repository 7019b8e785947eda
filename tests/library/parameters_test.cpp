// A distribution's constructor and the stream library's function take the same parameters.
#include <cfenv>
#include <limits>

#include <hvl/streams.h>
#include <immintrin.h>

#include "support.hpp"

namespace kestro::hvl::rng::test {
namespace {

template <class T>
std::vector<T> hard_values() {
  using limits = std::numeric_limits<T>;
  if constexpr (limits::is_integer)
    return {limits::min(), limits::min() + 1, T(-1), T(0), T(1), limits::max() - 1, limits::max()};
  else
    return {limits::quiet_NaN(),
            -limits::infinity(),
            limits::infinity(),
            -limits::max(),
            limits::max(),
            -limits::max() / 2,
            limits::max() * T(0.75),
            limits::min(),
            limits::denorm_min(),
            -limits::denorm_min(),
            T(0),
            -T(0),
            T(1),
            T(-1),
            T(1) + limits::epsilon()};
}

/// Calls `check` with every combination of `Count` hard values, of which at most `others` are not 1.
template <class T, int Count, class Check, class... Chosen>
void for_each_combination(const Check& check, int others, Chosen... chosen) {
  if constexpr (Count == 0)
    check(chosen...);
  else
    for (const T value : hard_values<T>())
      if (value == T(1) || others != 0)
        for_each_combination<T, Count - 1>(check, value == T(1) ? others : others - 1, chosen..., value);
}

/// The verdicts on all combinations, one character each; `function` is the C function.
template <class Distribution, int Count, class Parameter = typename Distribution::result_type, class Function>
std::string verdicts(Function function) {
  vqs_stream stream = nullptr;
  EXPECT_EQ(vqsNewStream_64(&stream, VQS_ENGINE_MRG32K3A, 1), VQS_STATUS_OK);
  std::string all;
  const auto check = [&](auto... parameters) {
    bool taken = true;
    try {
      Distribution distribution(parameters...);
    } catch (const invalid_argument&) {
      taken = false;
    }
    typename Distribution::result_type value = 0;
    const int status = function(0, stream, 0, &value, parameters...);
    EXPECT_EQ(status, taken ? VQS_STATUS_OK : VQS_STATUS_BAD_PARAMETER)
        << ::testing::PrintToString(std::make_tuple(parameters...));
    all += taken ? '+' : '-';
  };
  for_each_combination<Parameter, Count>(check, 2);
  EXPECT_EQ(vqsDeleteStream_64(&stream), VQS_STATUS_OK);
  EXPECT_NE(all.find('+'), std::string::npos);
  EXPECT_NE(all.find('-'), std::string::npos);
  return all;
}

std::string all_verdicts() {
  return verdicts<uniform<float>, 2>(vsRngUniform_64) + verdicts<uniform<double>, 2>(vdRngUniform_64) +
         verdicts<uniform<int>, 2>(viRngUniform_64) + verdicts<uniform<unsigned>, 2>(viRngUniformU_64) +
         verdicts<gaussian<float>, 2>(vsRngGaussian_64) + verdicts<gaussian<double>, 2>(vdRngGaussian_64) +
         verdicts<lognormal<float>, 4>(vsRngLognormal_64) +
         verdicts<lognormal<double>, 4>(vdRngLognormal_64) +
         verdicts<exponential<float>, 2>(vsRngExponential_64) +
         verdicts<exponential<double>, 2>(vdRngExponential_64) +
         verdicts<laplace<float>, 2>(vsRngLaplace_64) + verdicts<laplace<double>, 2>(vdRngLaplace_64) +
         verdicts<weibull<float>, 3>(vsRngWeibull_64) + verdicts<weibull<double>, 3>(vdRngWeibull_64) +
         verdicts<rayleigh<float>, 2>(vsRngRayleigh_64) + verdicts<rayleigh<double>, 2>(vdRngRayleigh_64) +
         verdicts<gumbel<float>, 2>(vsRngGumbel_64) + verdicts<gumbel<double>, 2>(vdRngGumbel_64) +
         verdicts<cauchy<float>, 2>(vsRngCauchy_64) + verdicts<cauchy<double>, 2>(vdRngCauchy_64) +
         verdicts<gamma<float>, 3>(vsRngGamma_64) + verdicts<gamma<double>, 3>(vdRngGamma_64) +
         verdicts<beta<float>, 4>(vsRngBeta_64) + verdicts<beta<double>, 4>(vdRngBeta_64) +
         verdicts<chi_square<float>, 1, std::int32_t>(vsRngChiSquare_64) +
         verdicts<chi_square<double>, 1, std::int32_t>(vdRngChiSquare_64) +
         verdicts<geometric<int>, 1, double>(viRngGeometric_64) +
         verdicts<bernoulli<int>, 1, double>(viRngBernoulli_64) +
         verdicts<poisson<int>, 1, double>(viRngPoisson_64) +
         verdicts<hypergeometric<int>, 3>(viRngHypergeometric_64) +
         verdicts<negative_binomial<int>, 2, double>(viRngNegbinomial_64);
}

TEST(parameters_test, class_and_function_agree_in_every_environment) {
  const std::string expected = all_verdicts();
  for (const int rounding : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    ASSERT_EQ(std::fesetround(rounding), 0);
    EXPECT_EQ(all_verdicts(), expected);
  }
  std::fesetround(FE_TONEAREST);
  const unsigned before = _mm_getcsr();
  _mm_setcsr(before | 0x8040); // flushes subnormal results and arguments
  EXPECT_EQ(all_verdicts(), expected);
  _mm_setcsr(before);
}

} // namespace
} // namespace kestro::hvl::rng::test
