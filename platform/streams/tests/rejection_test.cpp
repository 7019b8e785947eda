// Rejection leaves no trace: values whose first attempt is accepted, and values that a hash makes in the place of one that is
// not, both follow the law.
#include <boost/math/distributions/beta.hpp>
#include <boost/math/distributions/binomial.hpp>
#include <boost/math/distributions/gamma.hpp>
#include <boost/math/distributions/negative_binomial.hpp>
#include <boost/math/distributions/poisson.hpp>

#include <limits>

#include "continuous_members.hpp"
#include "law_fit.hpp"

namespace hvl::streams::test {
namespace {

namespace bm = boost::math;
using O = math::scalar_ops<double>;
constexpr std::int32_t greatest = std::numeric_limits<std::int32_t>::max();
constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

struct attempt {
  bool accepted;
  double proposed; // the value where it is accepted
};

struct rejected_law {
  std::string name;
  std::function<std::vector<double>(vqs_stream, std::size_t)> values;
  std::function<std::vector<attempt>(vqs_stream, std::size_t)> first_attempts;
  distribution_function law;
  double low, high; // all but a negligible part of the law lies above the one, and below the other
  bool integers;
};

// The words of values that take `words` each.
struct words_of {
  words_of(vqs_stream stream, std::size_t n, std::size_t words)
      : cell(uniform_coefficients(about_engine_of(stream).scale, 0.0, 1.0).scale),
        centred(uniforms<double>(copy_of(stream), n * words, -0.5, 0.5)),
        unit(uniforms<double>(copy_of(stream), n * words, 0.0, 1.0)), bits(copy_of(stream).bits(n * words)) {}
  double cell;
  std::vector<double> centred, unit;
  std::vector<std::uint32_t> bits;
};

attempt transformed(double u, double v, double cell, const std::uint32_t (&own)[2],
                    const math::rejection_law& law) {
  const auto proposal = math::rejection_proposed<O>(u, v, law);
  const double part = v < math::rejection_coarse_v ? math::rejection_refinement(own) : 0.5;
  return {proposal.squeezed || math::rejection_accepts<O>(proposal, math::refined<O>(v, part, cell), law),
          math::rejection_result<O>(proposal.k)};
}

rejected_law integers_by(const std::string& name, const generator& generate, const math::rejection_law& by,
                         const distribution_function& law) {
  return {name,
          [=](vqs_stream s, std::size_t n) {
            const auto values = generated(s, n, generate);
            return std::vector<double>(values.begin(), values.end());
          },
          [=](vqs_stream s, std::size_t n) {
            const words_of w(s, n, 2);
            std::vector<attempt> all;
            for (std::size_t i = 0; i < 2 * n; i += 2)
              all.push_back(transformed(w.centred[i], w.unit[i + 1], w.cell, {w.bits[i], w.bits[i + 1]}, by));
            return all;
          },
          law,
          std::max(by.least, by.mode - 8 * by.b) - 1,
          std::min(by.greatest, by.mode + 8 * by.b),
          true};
}

rejected_law multinomial_row(std::int32_t trials, double p) {
  const auto by = math::binomial_rejection_of<O>(trials, p, 1 - p);
  rejected_law row = integers_by("multinomial", {}, by,
                                 [=](double k) { return cdf(bm::binomial_distribution<>(trials, p), k); });
  row.values = [=](vqs_stream s, std::size_t n) {
    const double both[] = {p, 1 - p};
    std::vector<std::int32_t> counts(2 * n);
    EXPECT_EQ(viRngMultinomial_64(0, s, static_cast<std::int64_t>(n), counts.data(), trials, 2, both),
              VQS_STATUS_OK);
    std::vector<double> first;
    for (std::size_t i = 0; i < 2 * n; i += 2)
      first.push_back(counts[i]);
    return first;
  };
  row.first_attempts = [=](vqs_stream s, std::size_t n) {
    const auto word = uniforms<double>(copy_of(s), 2 * n, 0.0, 0x1p32);
    std::vector<attempt> all;
    for (std::size_t i = 0; i < 2 * n; i += 2) {
      const auto first = static_cast<std::uint32_t>(std::min(word[i], 0x1p32 - 1)),
                 last = static_cast<std::uint32_t>(std::min(word[i + 1], 0x1p32 - 1));
      const auto r = math::multinomial_uniforms_of({first, last, last, 0});
      const auto proposal = math::rejection_proposed<O>(r.u - 0.5, r.v, by);
      all.push_back({proposal.squeezed || math::rejection_accepts<O>(proposal, r.v, by), proposal.k});
    }
    return all;
  };
  return row;
}

// By the acceptance of the mean, without a look at the Poisson number of it.
rejected_law negative_binomial_row(double a, double p) {
  return {"negative_binomial",
          [=](vqs_stream s, std::size_t n) {
            const auto values = generated(s, n, negative_binomial(a, p));
            return std::vector<double>(values.begin(), values.end());
          },
          [=](vqs_stream s, std::size_t n) {
            const words_of w(s, n, 6);
            const auto means = math::negative_binomial_means(a, p);
            const double cell = 2 * w.cell;
            std::vector<attempt> all;
            for (std::size_t i = 0; i < 6 * n; i += 6) {
              const double e =
                  math::erfinv<O>(std::min(math::refined<O>(2 * w.centred[i], w.unit[i + 1], cell), 1.0));
              all.push_back({math::gamma_squeezed<O>(e, w.unit[i + 2], means).accepted ||
                                 math::gamma_accepts<O>(e, w.unit[i + 2], means),
                             unknown});
            }
            return all;
          },
          [=](double k) { return k < 0 ? 0 : cdf(bm::negative_binomial_distribution<>(a, p), k); },
          -1,
          a / p * 1000,
          true};
}

template <class T>
rejected_law gamma_row(T alpha) {
  return {
      "gamma " + std::to_string(alpha) + (sizeof(T) == 4 ? " float" : " double"),
      [=](vqs_stream s, std::size_t n) {
        std::vector<T> values(n);
        EXPECT_EQ(host_function<T>(vsRngGamma_64, vdRngGamma_64)(0, s, static_cast<std::int64_t>(n),
                                                                 values.data(), alpha, T(0), T(1)),
                  VQS_STATUS_OK);
        return std::vector<double>(values.begin(), values.end());
      },
      [=](vqs_stream s, std::size_t n) {
        const auto constants = math::gamma_constants_of<T>(alpha, T(0), T(1));
        std::vector<attempt> all;
        const auto see = [&](std::size_t, const auto& input) {
          const auto first = math::gamma_squeezed<math::scalar_ops<T>>(input.e, input.u, constants);
          const T value = alpha < 1
                              ? math::gamma_powered<math::scalar_ops<T>>(first.core, input.power, constants)
                              : first.core;
          all.push_back({first.accepted || math::gamma_accepts<O>(static_cast<double>(input.e),
                                                                  static_cast<double>(input.u), constants),
                         static_cast<double>(value)});
        };
        if (alpha < 1)
          for_each_gamma_input<T, true>(s, n, see);
        else
          for_each_gamma_input<T, false>(s, n, see);
        return all;
      },
      [=](double x) { return cdf(bm::gamma_distribution<>(static_cast<double>(alpha)), x); },
      0,
      static_cast<double>(alpha) * 2 + 50,
      false};
}

template <class T>
rejected_law beta_row(T p, T q) {
  return {"beta " + std::to_string(p) + ' ' + std::to_string(q) + (sizeof(T) == 4 ? " float" : " double"),
          [=](vqs_stream s, std::size_t n) {
            std::vector<T> values(n);
            EXPECT_EQ(host_function<T>(vsRngBeta_64, vdRngBeta_64)(0, s, static_cast<std::int64_t>(n),
                                                                   values.data(), p, q, T(0), T(1)),
                      VQS_STATUS_OK);
            return std::vector<double>(values.begin(), values.end());
          },
          [=](vqs_stream s, std::size_t n) {
            const auto constants = math::beta_constants_of(p, q, 0, 1);
            const words_of w(s, n, 2);
            std::vector<attempt> all;
            for (std::size_t i = 0; i < 2 * n; i += 2) {
              const double value = math::beta_attempt<O>(w.unit[i], w.unit[i + 1], w.cell, constants);
              all.push_back({value == value, static_cast<double>(static_cast<T>(value))});
            }
            return all;
          },
          [=](double x) {
            return cdf(bm::beta_distribution<>(static_cast<double>(p), static_cast<double>(q)), x);
          },
          0,
          1,
          false};
}

// Both sides of every choice between two ways to reject; the smallest means, which reject most.
std::vector<rejected_law> rejected_laws() {
  const auto poisson_law = [](double mean) -> distribution_function {
    return [=](double k) { return k < 0 ? 0 : cdf(bm::poisson_distribution<>(mean), k); };
  };
  const auto binomial_law = [](std::int32_t trials, double p) -> distribution_function {
    return [=](double k) { return k < 0 ? 0 : cdf(bm::binomial_distribution<>(trials, p), k); };
  };
  std::vector<rejected_law> all;
  for (const double mean : {1.1e6, 1e8})
    all.push_back(integers_by("poisson " + std::to_string(mean), poisson(mean),
                              math::poisson_rejection_of(mean), poisson_law(mean)));
  for (const double mean : {10.0, 50.0})
    all.push_back(integers_by("poisson_v " + std::to_string(mean), poisson_v(mean),
                              math::poisson_rejection_of(mean), poisson_law(mean)));
  for (const double p : {0.3, 0.999})
    all.push_back(integers_by("binomial " + std::to_string(p), binomial(greatest, p),
                              math::binomial_rejection_of(greatest, p), binomial_law(greatest, p)));
  for (const auto& [s, m] : {std::pair(1'000'000'000, 99'999'999), std::pair(2'000'000'000, 1'000'000'000)})
    all.push_back(integers_by("hypergeometric " + std::to_string(s), hypergeometric(greatest, s, m),
                              math::hypergeometric_rejection_of(greatest, s, m),
                              hypergeometric_law(greatest, s, m)));
  all.push_back(multinomial_row(10'000, 0.3));
  all.push_back(negative_binomial_row(1.5, 0.001));
  all.push_back(negative_binomial_row(0.7, 0.001));
  for (const float alpha : {0.3f, 1.0f, 2.5f})
    all.push_back(gamma_row<float>(alpha));
  for (const double alpha : {0.3, 1.0, 2.5})
    all.push_back(gamma_row<double>(alpha));
  all.push_back(beta_row<float>(2.5f, 1.5f));
  for (const auto& [p, q] :
       {std::pair(2.5, 1.5), std::pair(0.7, 3.0), std::pair(0.4, 0.5), std::pair(3e6, 2e6)})
    all.push_back(beta_row<double>(p, q));
  return all;
}

class rejection : public each_engine {};

TEST_P(rejection, leaves_no_trace) {
  if (GetParam().about.is_quasi_random)
    GTEST_SKIP() << "a value of several words mixes coordinates";
  static const std::vector<rejected_law> laws = rejected_laws();
  const std::size_t n = std::size_t{1} << (id() == VQS_ENGINE_PHILOX4X32X10 ? 18 : 15);
  for (const rejected_law& l : laws) {
    SCOPED_TRACE(l.name);
    const law_cells cells(l.law, 16, l.low, l.high, l.integers);
    const owned_stream origin(id());
    const auto values = l.values(copy_of(origin), n);
    const auto first = l.first_attempts(copy_of(origin), n);
    const auto fit = [&](const std::vector<double>& some) {
      std::vector<std::uint64_t> counts(cells.count());
      for (const double x : some)
        ++counts[cells(x)];
      std::vector<double> expected;
      for (const double p : cells.probability())
        expected.push_back(p * static_cast<double>(some.size()));
      return chi_square(counts, expected);
    };
    std::vector<double> accepted, hashed, refused;
    for (std::size_t i = 0; i < n; ++i) {
      if (first[i].accepted && !std::isnan(first[i].proposed)) {
        ASSERT_EQ(values[i], first[i].proposed) << i;
      }
      (first[i].accepted ? accepted : hashed).push_back(values[i]);
      if (!first[i].accepted && !std::isnan(first[i].proposed))
        refused.push_back(first[i].proposed);
    }
    EXPECT_GT(hashed.size(), n / 100);
    expect_fit(fit(accepted), cells.count());
    expect_fit(fit(hashed), cells.count());
    if (!refused.empty()) {
      EXPECT_GT(fit(refused), critical_chi_square(cells.count())) << "what was refused passes";
    }
  }
}

HVL_STREAMS_FOR_EACH_ENGINE(rejection);

} // namespace
} // namespace hvl::streams::test
