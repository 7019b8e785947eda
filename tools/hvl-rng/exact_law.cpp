#include "exact_law.hpp"

#include "make_distribution.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace hvl_rng {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

// The standard laws, in the variable z = (x - displacement) / scale.

double normal(double z) {
  return std::exp(-z * z / 2) * std::numbers::inv_sqrtpi / std::numbers::sqrt2;
}

double laplace_density(double z) {
  return std::exp(-std::fabs(z)) / 2;
}

double cauchy_density(double z) {
  return std::numbers::inv_pi / (1 + z * z);
}

// ln of an exponential variable: P(Z <= z) = 1 - exp(-e^z).
double gumbel_density(double z) {
  return std::exp(z - std::exp(z));
}

// Of (-ln u)^(1/alpha): P(Z > z) = exp(-z^alpha).
double weibull_density(double alpha, double z) {
  return alpha * std::pow(z, alpha - 1) * std::exp(-std::pow(z, alpha));
}

// By its logarithm: large shapes overflow the powers and the gamma function.
double gamma_density(double alpha, double z) {
  const double power = alpha == 1 ? 0 : (alpha - 1) * std::log(z);
  return std::exp(power - z - std::lgamma(alpha));
}

double lognormal_density(double m, double s, double z) {
  return z == 0 ? 0 : normal((std::log(z) - m) / s) / (z * s);
}

template <class Standard>
exact_law on_the_line(double displacement, double scale, Standard standard) {
  return {[=](double x) { return standard((x - displacement) / scale) / scale; }, -infinity, infinity, false};
}

template <class Standard>
exact_law above(double displacement, double scale, Standard standard) {
  return {[=](double x) { return x < displacement ? 0 : standard((x - displacement) / scale) / scale; },
          displacement, infinity, false};
}

exact_law constant(double lower, double upper, double height, bool is_discrete) {
  return {[=](double x) { return lower <= x && x <= upper ? height : 0; }, lower, upper, is_discrete};
}

// One overload for each family. Parameters are taken as `double`, whatever the value type.

template <class T, class M>
exact_law law_of(const rng::uniform<T, M>& of) {
  constexpr bool is_discrete = std::is_integral_v<T>;
  const double a = of.a(), b = of.b();
  return constant(a, is_discrete ? b - 1 : b, 1 / (b - a), is_discrete);
}

template <class T>
exact_law law_of(const rng::uniform_bits<T>&) {
  const double values = std::ldexp(1.0, std::numeric_limits<T>::digits);
  return constant(0, values - 1, 1 / values, true);
}

template <class T, class M>
exact_law law_of(const rng::gaussian<T, M>& of) {
  return on_the_line(of.mean(), of.stddev(), normal);
}

template <class T, class M>
exact_law law_of(const rng::lognormal<T, M>& of) {
  const double m = of.m(), s = of.s();
  return above(of.displ(), of.scale(), [=](double z) { return lognormal_density(m, s, z); });
}

template <class T, class M>
exact_law law_of(const rng::exponential<T, M>& of) {
  return above(of.a(), of.beta(), [](double z) { return weibull_density(1, z); });
}

template <class T, class M>
exact_law law_of(const rng::laplace<T, M>& of) {
  return on_the_line(of.a(), of.b(), laplace_density);
}

template <class T, class M>
exact_law law_of(const rng::weibull<T, M>& of) {
  const double alpha = of.alpha();
  return above(of.a(), of.beta(), [=](double z) { return weibull_density(alpha, z); });
}

template <class T, class M>
exact_law law_of(const rng::rayleigh<T, M>& of) {
  return above(of.a(), of.beta(), [](double z) { return weibull_density(2, z); });
}

template <class T, class M>
exact_law law_of(const rng::gumbel<T, M>& of) {
  return on_the_line(of.a(), of.beta(), gumbel_density);
}

template <class T, class M>
exact_law law_of(const rng::cauchy<T, M>& of) {
  return on_the_line(of.a(), of.b(), cauchy_density);
}

template <class T, class M>
exact_law law_of(const rng::gamma<T, M>& of) {
  const double alpha = of.alpha();
  return above(of.a(), of.beta(), [=](double z) { return gamma_density(alpha, z); });
}

template <class T, class M>
exact_law law_of(const rng::chi_square<T, M>& of) {
  const double alpha = of.v() / 2.0;
  return above(0, 2, [=](double z) { return gamma_density(alpha, z); });
}

// Of all elements of the vectors together.
template <class T, class M>
exact_law law_of(const rng::gaussian_mv<T, M>& of) {
  struct element {
    double mean, deviation;
  };
  std::vector<element> elements;
  auto t = of.t().begin();
  for (std::size_t k = 0; k < of.a().size(); ++k) { // packed, as the program's options have it
    double variance = 0;
    for (std::size_t j = 0; j <= k; ++j, ++t)
      variance += static_cast<double>(*t) * static_cast<double>(*t);
    elements.push_back({static_cast<double>(of.a()[k]), std::sqrt(variance)});
  }
  return {[=](double x) {
            double sum = 0;
            for (const element& e : elements)
              sum += normal((x - e.mean) / e.deviation) / e.deviation;
            return sum / static_cast<double>(elements.size());
          },
          -infinity, infinity, false};
}

template <class T, class M>
exact_law law_of(const rng::beta<T, M>& of) {
  const double p = of.p(), q = of.q(), a = of.a(), scale = of.scale();
  const double log_constant = std::lgamma(p + q) - std::lgamma(p) - std::lgamma(q);
  const auto power = [](double exponent, double base) {
    return exponent == 0 ? 0 : exponent * std::log(base);
  };
  return {[=](double x) {
            const double z = (x - a) / scale;
            return z < 0 || z > 1 ? 0
                                  : std::exp(log_constant + power(p - 1, z) + power(q - 1, 1 - z)) / scale;
          },
          a, a + scale, false};
}

// The largest integer stands for all beyond it too.
template <class T, class M>
exact_law law_of(const rng::geometric<T, M>& of) {
  constexpr double largest = std::numeric_limits<std::int32_t>::max();
  const double p = of.p();
  return {[=](double k) {
            const double reached = k < 0 || k > largest ? 0 : std::pow(1 - p, k);
            return k == largest ? reached : p * reached;
          },
          0, largest, true};
}

template <class T, class M>
exact_law law_of(const rng::bernoulli<T, M>& of) {
  const double p = of.p();
  return {[=](double k) { return k == 1 ? p : k == 0 ? 1 - p : 0; }, 0, 1, true};
}

// The largest integer stands for all beyond it too; where that matters no plot shows it.
double poisson_probability(double lambda, double k) {
  return k < 0         ? 0
         : lambda == 0 ? (k == 0 ? 1 : 0)
                       : std::exp(k * std::log(lambda) - lambda - std::lgamma(k + 1));
}

template <class T, class M>
exact_law law_of(const rng::poisson<T, M>& of) {
  return {[lambda = of.lambda()](double k) { return poisson_probability(lambda, k); }, 0,
          std::numeric_limits<std::int32_t>::max(), true};
}

template <class T, class M>
exact_law law_of(const rng::poisson_v<T, M>& of) {
  return {[means = of.lambda()](double k) {
            double sum = 0;
            for (const double lambda : means)
              sum += poisson_probability(lambda, k);
            return sum / static_cast<double>(means.size());
          },
          0, std::numeric_limits<std::int32_t>::max(), true};
}

// ln of how many ways there are to choose k of n.
double log_choose(double n, double k) {
  return k < 0 || k > n ? -INFINITY : std::lgamma(n + 1) - std::lgamma(k + 1) - std::lgamma(n - k + 1);
}

// x ln y, also where both are 0.
double times_log(double x, double y) {
  return x == 0 ? 0 : x * std::log(y);
}

double binomial_probability(double n, double p, double k) {
  return std::exp(log_choose(n, k) + times_log(k, p) + times_log(n - k, 1 - p));
}

template <class T, class M>
exact_law law_of(const rng::binomial<T, M>& of) {
  const double n = of.ntrial(), p = of.p();
  return {[=](double k) { return binomial_probability(n, p, k); }, 0, n, true};
}

// Of all elements of the vectors together.
template <class T, class M>
exact_law law_of(const rng::multinomial<T, M>& of) {
  const double n = of.ntrial();
  return {[n, all = of.p()](double k) {
            double sum = 0;
            for (const double p : all)
              sum += binomial_probability(n, p, k);
            return sum / static_cast<double>(all.size());
          },
          0, n, true};
}

template <class T, class M>
exact_law law_of(const rng::hypergeometric<T, M>& of) {
  const double l = of.l(), s = of.s(), m = of.m();
  return {[=](double k) { return std::exp(log_choose(m, k) + log_choose(l - m, s - k) - log_choose(l, s)); },
          std::max(0.0, s + m - l), std::min(s, m), true};
}

template <class T, class M>
exact_law law_of(const rng::negative_binomial<T, M>& of) {
  const double a = of.a(), p = of.p();
  return {[=](double k) {
            return k < 0 ? 0
                         : std::exp(std::lgamma(a + k) - std::lgamma(a) - std::lgamma(k + 1) +
                                    a * std::log(p) + times_log(k, 1 - p));
          },
          0, std::numeric_limits<std::int32_t>::max(), true};
}

template <class Distribution>
exact_law make_law(const distribution_entry& entry, const parameter_values& parameters) {
  const auto distribution = make_distribution<Distribution>(entry.name, parameters);
  if constexpr (requires { law_of(distribution); })
    return law_of(distribution);
  else
    throw failure(exit_status::usage, fmt::format("--distribution {}: has no density to plot", entry.name));
}

using law_function = exact_law (*)(const distribution_entry&, const parameter_values&);

template <class... Distributions>
constexpr auto all_laws(type_list<Distributions...>) {
  return std::array<law_function, sizeof...(Distributions)>{&make_law<Distributions>...};
}

} // namespace

exact_law find_law(const distribution_entry& distribution, const parameter_values& parameters) {
  static constexpr auto laws = all_laws(distribution_list());
  require_known(distribution, parameters);
  return laws[distribution.index](distribution, parameters);
}

} // namespace hvl_rng
