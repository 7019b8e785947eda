// The continuous distributions over their parameters, against the exact laws: scales near both ends of the type, shifts
// that leave a value a few bits, shapes on both sides of 1. A value is what the law gives, rounded once: so bins end
// half way between two neighbours, and a shift that eats precision has its exact weights too. Each test of fit is shown
// to reject the same values where a scale or a shape is a tenth greater.
#include <boost/math/distributions/cauchy.hpp>
#include <boost/math/distributions/exponential.hpp>
#include <boost/math/distributions/extreme_value.hpp>
#include <boost/math/distributions/laplace.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/rayleigh.hpp>
#include <boost/math/distributions/uniform.hpp>
#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/gamma.hpp>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <sstream>

#include "fit.hpp"
#include "support.hpp"

namespace hvl::streams::test {
namespace {

namespace bm = boost::math;

constexpr std::size_t values_count = std::size_t{1} << 17;

// A distribution without parameters.
struct standard_law {
  std::function<double(double)> cdf, quantile;
};

template <class D>
standard_law law(const D& d) {
  const auto [low, high] = bm::support(d);
  return {[=, low = low, high = high](double x) { return x <= low    ? 0.0
                                                         : x >= high ? 1.0
                                                                     : bm::cdf(d, x); },
          [=](double p) { return bm::quantile(d, p); }};
}

// X = place(Z), Z of the standard law; `standardise` is its inverse, for a scale or shape `factor` times too great.
struct placement {
  std::function<long double(long double z)> place;
  std::function<long double(long double x, long double factor)> standardise;
};

placement location_scale(long double a, long double scale) {
  return {[=](long double z) { return a + scale * z; },
          [=](long double x, long double factor) { return (x - a) / (scale * factor); }};
}

placement exponential_of(long double m, long double s, long double displacement, long double scale) {
  return {[=](long double z) { return displacement + scale * std::exp(m + s * z); },
          [=](long double x, long double factor) {
            return (std::log(std::max(x - displacement, 0.0L) / scale) - m) / (s * factor);
          }};
}

placement power_of(long double shape, long double a, long double scale) {
  return {[=](long double z) { return a + scale * std::pow(z, 1 / shape); },
          [=](long double x, long double factor) {
            return std::pow(std::max(x - a, 0.0L) / scale, shape * factor);
          }};
}

// Bins of about equal probability that end half way between two neighbours of type T.
template <class T>
std::vector<long double> ends_of_bins(const standard_law& l, const placement& p) {
  constexpr int bins = 128;
  std::vector<long double> ends;
  for (int i = 1; i < bins; ++i) {
    const T value = static_cast<T>(p.place(l.quantile(static_cast<double>(i) / bins)));
    const T next = std::nextafter(value, std::numeric_limits<T>::infinity());
    const long double end = (static_cast<long double>(value) + static_cast<long double>(next)) / 2;
    if (l.cdf(static_cast<double>(p.standardise(end, 1))) < 1) // the last bin is not empty
      ends.push_back(end);
  }
  ends.erase(std::unique(ends.begin(), ends.end()), ends.end());
  return ends;
}

std::vector<double> expected_counts(const std::vector<long double>& ends, const standard_law& l,
                                    const placement& p, long double factor) {
  std::vector<double> expected;
  double below = 0;
  for (const long double end : ends) {
    const double p_end = l.cdf(static_cast<double>(p.standardise(end, factor)));
    expected.push_back((p_end - below) * static_cast<double>(values_count));
    below = p_end;
  }
  expected.push_back((1 - below) * static_cast<double>(values_count));
  return expected;
}

template <class T, class Generate>
void check(const std::string& name, std::int32_t engine, const standard_law& l, const placement& p,
           const Generate& generate) {
  SCOPED_TRACE(name + (sizeof(T) == 4 ? ", float" : ", double"));
  std::vector<T> values(values_count, std::numeric_limits<T>::quiet_NaN());
  ASSERT_EQ(generate(owned_stream(engine), static_cast<std::int64_t>(values_count), values.data()),
            VQS_STATUS_OK);
  ASSERT_TRUE(std::all_of(values.begin(), values.end(), [](T v) { return std::isfinite(v); }));
  const auto ends = ends_of_bins<T>(l, p);
  ASSERT_GE(ends.size(), 12u) << "too few different values to tell laws apart";
  std::vector<std::uint64_t> counts(ends.size() + 1);
  for (const T value : values)
    ++counts[static_cast<std::size_t>(
        std::upper_bound(ends.begin(), ends.end(), static_cast<long double>(value)) - ends.begin())];
  expect_fit(chi_square(counts, expected_counts(ends, l, p, 1)), counts.size());
  EXPECT_GT(chi_square(counts, expected_counts(ends, l, p, 1.1L)), critical_chi_square(counts.size()))
      << "a wrong parameter passes";
}

template <class... T>
std::string named(const char* name, std::int64_t method, T... parameters) {
  std::ostringstream text;
  text << name << ", method " << method << ", parameters";
  ((text << ' ' << parameters), ...);
  return text.str();
}

// A generating function of the stream library with its method, named, at the given parameters.
template <class T, class Function, class... P>
void check_function(const char* name, Function function, std::int64_t method, const standard_law& l,
                    const placement& p, P... parameters) {
  check<T>(named(name, method, parameters...), VQS_ENGINE_PHILOX4X32X10, l, p,
           [=](vqs_stream s, std::int64_t n, T* r) { return function(method, s, n, r, parameters...); });
}

// Scales near the ends of T, and a shift where neighbours are 1/8 apart.
template <class T>
struct extremes {
  T tiny = static_cast<T>(sizeof(T) == 4 ? 1e-30 : 1e-300);
  T huge = static_cast<T>(sizeof(T) == 4 ? 1e28 : 1e290);
  T shift = std::ldexp(T(1), sizeof(T) == 4 ? 20 : 49);
};

template <class T>
class parameters : public ::testing::Test {
 protected:
  template <class Single, class Real64>
  static auto of_type(Single single_precision, Real64 real64) {
    if constexpr (sizeof(T) == 4)
      return single_precision;
    else
      return real64;
  }

  template <class Function>
  static void sweep_location_and_scale(const char* name, Function function,
                                       std::initializer_list<std::int64_t> methods, const standard_law& l) {
    const auto [tiny, huge, shift] = extremes<T>();
    const std::pair<T, T> places[] = {{T(0), T(1)},     {T(0), tiny},  {T(0), huge},
                                      {huge, huge},     {shift, T(1)}, {-1000 * shift, T(1000)},
                                      {T(-3), T(0.01)}, {T(3), T(1e6)}};
    for (const std::int64_t method : methods)
      for (const auto& [a, scale] : places)
        check_function<T>(name, function, method, l, location_scale(a, scale), a, scale);
  }
};

using real_types = ::testing::Types<float, double>;
TYPED_TEST_SUITE(parameters, real_types);

TYPED_TEST(parameters, of_location_and_scale) {
  const auto sweep = [](auto... arguments) { TestFixture::sweep_location_and_scale(arguments...); };
  using methods = std::initializer_list<std::int64_t>;
  const auto of_type = [](auto f, auto d) { return TestFixture::of_type(f, d); };
  sweep("gaussian", of_type(vsRngGaussian_64, vdRngGaussian_64),
        methods{VQS_METHOD_GAUSSIAN_BOX_MULLER, VQS_METHOD_GAUSSIAN_BOX_MULLER2, VQS_METHOD_GAUSSIAN_ICDF},
        law(bm::normal()));
  sweep("exponential", of_type(vsRngExponential_64, vdRngExponential_64), methods{0, VQS_METHOD_ACCURATE},
        law(bm::exponential()));
  sweep("rayleigh", of_type(vsRngRayleigh_64, vdRngRayleigh_64), methods{0, VQS_METHOD_ACCURATE},
        law(bm::rayleigh(std::sqrt(0.5))));
  sweep("laplace", of_type(vsRngLaplace_64, vdRngLaplace_64), methods{0}, law(bm::laplace()));
  sweep("cauchy", of_type(vsRngCauchy_64, vdRngCauchy_64), methods{0}, law(bm::cauchy()));
  // the negative of a greatest value
  const bm::extreme_value greatest;
  sweep("gumbel", of_type(vsRngGumbel_64, vdRngGumbel_64), methods{0},
        standard_law{[=](double x) { return bm::cdf(bm::complement(greatest, -x)); },
                     [=](double p) { return -bm::quantile(bm::complement(greatest, p)); }});
}

TYPED_TEST(parameters, of_lognormal) {
  using T = TypeParam;
  const auto [tiny, huge, shift] = extremes<T>();
  struct set {
    T m, s, displacement, scale;
  };
  const set sets[] = {{T(0), T(0.05), T(0), T(1)},  {T(0), T(3), T(0), T(1)},
                      {T(-20), T(0.5), T(0), T(1)}, {T(20), T(0.5), T(0), T(1)},
                      {T(1), T(0.5), T(0), tiny},   {T(1), T(0.5), T(0), huge},
                      {T(1), T(0.5), shift, T(1)},  {T(0.5), T(0.7), -1000 * shift, T(1000)}};
  const auto function = this->of_type(vsRngLognormal_64, vdRngLognormal_64);
  for (const std::int64_t accuracy : {0, int{VQS_METHOD_ACCURATE}})
    for (const std::int64_t method : {VQS_METHOD_LOGNORMAL_BOX_MULLER2, VQS_METHOD_LOGNORMAL_ICDF})
      for (const set& p : sets)
        check_function<T>("lognormal", function, accuracy | method, law(bm::normal()),
                          exponential_of(p.m, p.s, p.displacement, p.scale), p.m, p.s, p.displacement,
                          p.scale);
}

TYPED_TEST(parameters, of_weibull) {
  using T = TypeParam;
  struct set {
    T shape, a, scale;
  };
  const auto [tiny, huge, shift] = extremes<T>();
  std::vector<set> sets = {
      {T(0.7), shift, T(1)}, {T(4), -1000 * shift, T(1000)}, {T(0.7), T(0), tiny}, {T(4), T(0), huge}};
  for (const double shape : {0.1, 0.3, 0.99, 1.0, 1.01, 2.0, 7.0, 100.0})
    sets.push_back({static_cast<T>(shape), T(0), T(1)});
  for (const std::int64_t method : {0, int{VQS_METHOD_ACCURATE}})
    for (const set& p : sets)
      check_function<T>("weibull", this->of_type(vsRngWeibull_64, vdRngWeibull_64), method,
                        law(bm::exponential()), power_of(p.shape, p.a, p.scale), p.shape, p.a, p.scale);
}

// Of the logarithm: at small shapes most values are far below the least number of a type.
standard_law log_gamma_law(double shape) {
  const double log_coefficient = std::lgamma(shape + 1);
  constexpr double series_below = -30; // where x^shape / Gamma(shape + 1) is all that double holds of the law
  return {[=](double z) {
            return z < series_below ? std::exp(shape * z - log_coefficient) : bm::gamma_p(shape, std::exp(z));
          },
          [=](double p) {
            const double z = (std::log(p) + log_coefficient) / shape;
            return z < series_below ? z : std::log(bm::gamma_p_inv(shape, p));
          }};
}

// The method changes at shape 1, and at 64 + 1/3 the form of the core.
TYPED_TEST(parameters, of_gamma) {
  using T = TypeParam;
  struct set {
    T shape, a, scale;
  };
  const auto [tiny, huge, shift] = extremes<T>();
  std::vector<set> sets = {{T(0.5), T(0), tiny},     {T(2.5), T(0), tiny},
                           {T(0.5), T(0), huge},     {T(2.5), T(0), huge},
                           {T(0.5), shift, T(1)},    {T(2.5), shift, T(1)},
                           {T(100), shift, T(1)},    {T(2.5), -1000 * shift, T(1000)},
                           {T(100), T(-3), T(0.01)}, {T(1e-3), T(0), huge}};
  for (const double shape : {0.01, 0.1, 0.5, 0.999, 1.0, 1.001, 2.5, 30.0, 64.3, 64.4, 1e4, 1e8})
    sets.push_back({static_cast<T>(shape), T(0), T(1)});
  for (const std::int64_t method : {0, int{VQS_METHOD_ACCURATE}})
    for (const set& p : sets)
      check_function<T>("gamma", this->of_type(vsRngGamma_64, vdRngGamma_64), method,
                        log_gamma_law(static_cast<double>(p.shape)), exponential_of(0, 1, p.a, p.scale),
                        p.shape, p.a, p.scale);
}

// Of the odds' logarithm, which small shapes drive far beyond the type.
standard_law log_odds_of_beta(double p, double q) {
  return {[=](double z) {
            return z < 0 ? bm::ibeta(p, q, 1 / (1 + std::exp(-z))) : bm::ibetac(q, p, 1 / (1 + std::exp(z)));
          },
          [=](double f) {
            double complement;
            const double x = bm::ibeta_inv(p, q, f, &complement);
            return std::log(x) - std::log(complement);
          }};
}

placement from_log_odds(long double a, long double scale) {
  return {[=](long double z) { return a + scale / (1 + std::exp(-z)); },
          [=](long double x, long double factor) {
            const long double value = std::clamp((x - a) / scale, 0.0L, 1.0L);
            return (std::log(value) - std::log1p(-value)) / factor;
          }};
}

// The method changes where a shape is 1/2 or 1, and between 5e5 and 1e6.
TYPED_TEST(parameters, of_beta) {
  using T = TypeParam;
  struct set {
    T p, q, a, scale;
  };
  const auto [tiny, huge, shift] = extremes<T>();
  std::vector<set> sets = {{T(2.5), T(1.5), T(0), tiny},
                           {T(0.7), T(3), T(0), huge},
                           {T(2.5), T(1.5), shift, T(20)},
                           {T(0.3), T(0.4), T(-3), T(0.01)},
                           {T(3), T(0.7), -1000 * shift, T(20'000)}};
  const double shapes[] = {0.01, 0.3, 0.5, 0.501, 0.999, 1, 1.001, 2.5, 100, 4e5, 2e6, 1e8};
  for (const double p : shapes)
    for (const double q : shapes)
      if (((p >= 0.3 && q >= 0.3) || p + q < 2) && p < 1e5 * q) // beyond, all values are near 1
        sets.push_back({static_cast<T>(p), static_cast<T>(q), T(0), T(1)});
  for (const set& s : sets)
    check_function<T>("beta", this->of_type(vsRngBeta_64, vdRngBeta_64), 0,
                      log_odds_of_beta(static_cast<double>(s.p), static_cast<double>(s.q)),
                      from_log_odds(s.a, s.scale), s.p, s.q, s.a, s.scale);
}

// Degrees of freedom beyond what float counts exactly take their exact half as shape.
TYPED_TEST(parameters, of_chi_square) {
  using T = TypeParam;
  for (const std::int32_t v : {1, 2, 3, 128, 129, 100'001, 16'777'219, 2'147'483'647})
    check_function<T>("chi_square", this->of_type(vsRngChiSquare_64, vdRngChiSquare_64), 0,
                      log_gamma_law(v / 2.0), exponential_of(0, 1, 0, 2), v);
}

// For every engine, since each scales its words in its own way: mcg59 by (b - a) 2^-59, which the narrowest interval here
// leaves just normal in float. The middles of the shifted intervals are values of the type.
TYPED_TEST(parameters, of_uniform) {
  using T = TypeParam;
  const auto [tiny, huge, shift] = extremes<T>();
  const T narrow = sizeof(T) == 4 ? T(1e-20) : tiny;
  const std::pair<T, T> intervals[] = {{T(0), T(1)},       {T(0), narrow},
                                       {-huge, huge},      {huge, 2 * huge},
                                       {shift, shift + 2}, {-1001 * shift, -1001 * shift + 2048},
                                       {T(-1e-3), T(1e3)}};
  const auto function = this->of_type(vsRngUniform_64, vdRngUniform_64);
  for (const engine_entry& engine : engines)
    for (const std::int64_t method : {VQS_METHOD_UNIFORM_STANDARD, VQS_METHOD_UNIFORM_ACCURATE})
      for (const auto& [a, b] : intervals)
        check<T>(named(engine.name, method, a, b), engine.id, law(bm::uniform()),
                 location_scale(a, static_cast<long double>(b) - a),
                 [function, method, low = a, high = b](vqs_stream s, std::int64_t n, T* r) {
                   return function(method, s, n, r, low, high);
                 });
}

} // namespace
} // namespace hvl::streams::test
