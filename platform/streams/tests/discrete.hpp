// What the suites of discrete distributions share.
#pragma once

#include <functional>

#include "support.hpp"

namespace hvl::streams::test {

inline constexpr std::int32_t poison = -7;

using generator = std::function<int(vqs_stream, std::int64_t, std::int32_t*)>;

inline std::vector<std::int32_t> generated(vqs_stream stream, std::size_t n, const generator& generate) {
  std::vector<std::int32_t> values(n + 1, poison); // never a null pointer
  EXPECT_EQ(generate(stream, static_cast<std::int64_t>(n), values.data()), VQS_STATUS_OK);
  EXPECT_EQ(values.back(), poison) << "written behind the end";
  values.pop_back();
  return values;
}

inline generator poisson(double lambda) {
  return [=](vqs_stream s, std::int64_t n, std::int32_t* r) { return viRngPoisson_64(0, s, n, r, lambda); };
}
inline generator bernoulli(double p) {
  return [=](vqs_stream s, std::int64_t n, std::int32_t* r) { return viRngBernoulli_64(0, s, n, r, p); };
}
inline generator binomial(std::int32_t trials, double p) {
  return
      [=](vqs_stream s, std::int64_t n, std::int32_t* r) { return viRngBinomial_64(0, s, n, r, trials, p); };
}
inline generator hypergeometric(std::int32_t l, std::int32_t s, std::int32_t m) {
  return [=](vqs_stream stream, std::int64_t n, std::int32_t* r) {
    return viRngHypergeometric_64(0, stream, n, r, l, s, m);
  };
}
inline generator negative_binomial(double a, double p) {
  return [=](vqs_stream s, std::int64_t n, std::int32_t* r) { return viRngNegbinomial_64(0, s, n, r, a, p); };
}
// So many values, each with the mean.
inline generator poisson_v(double mean) {
  return [=](vqs_stream s, std::int64_t n, std::int32_t* r) {
    const std::vector<double> means(static_cast<std::size_t>(n) + 1, mean);
    return viRngPoissonV_64(0, s, n, r, means.data());
  };
}

} // namespace hvl::streams::test
