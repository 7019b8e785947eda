// What a user would otherwise take for each distribution: on a Mersenne twister, compiled for this machine's processor, and
// NumPy's Generator on its fastest bit generator, as Debian compiles it.
#include <algorithm>
#include <boost/random/bernoulli_distribution.hpp>
#include <boost/random/beta_distribution.hpp>
#include <boost/random/binomial_distribution.hpp>
#include <boost/random/cauchy_distribution.hpp>
#include <boost/random/chi_squared_distribution.hpp>
#include <boost/random/exponential_distribution.hpp>
#include <boost/random/gamma_distribution.hpp>
#include <boost/random/geometric_distribution.hpp>
#include <boost/random/laplace_distribution.hpp>
#include <boost/random/mersenne_twister.hpp>
#include <boost/random/normal_distribution.hpp>
#include <boost/random/poisson_distribution.hpp>
#include <random>
#include <vector>

#include "numpy.hpp"
#include "subjects.hpp"

namespace bench {
namespace {

template <class Engine, class Distribution>
void add(const std::string& name, Distribution distribution) {
  using T = typename Distribution::result_type;
  register_fill<T>("peer/" + name, cached_bytes,
                   [engine = Engine(20211113u), distribution](std::span<T> out) mutable {
                     for (T& value : out)
                       value = distribution(engine);
                   });
}

template <class T, class Draw>
void add_numpy(const std::string& name, Draw draw) {
  register_fill<T>("peer/numpy/" + name, cached_bytes,
                   [sfc = numpy_sfc64(20211113), draw](std::span<T> out) mutable {
                     bitgen_t bits = sfc.bits();
                     for (T& value : out)
                       value = static_cast<T>(draw(&bits));
                   });
}

template <class T>
void add_gamma(const std::string& name, T alpha, auto standard_gamma) {
  add<std::mt19937>("std/" + name, std::gamma_distribution<T>(alpha));
  add<boost::random::mt19937>("boost/" + name, boost::random::gamma_distribution<T>(alpha));
  add_numpy<T>(name, [=](bitgen_t* bits) { return standard_gamma(bits, alpha); });
}

template <class T>
void add_chi_square(const std::string& name, int v) {
  add<std::mt19937>("std/" + name, std::chi_squared_distribution<T>(T(v)));
  add<boost::random::mt19937>("boost/" + name, boost::random::chi_squared_distribution<T>(T(v)));
  add_numpy<T>(name, [=](bitgen_t* bits) { return random_chisquare(bits, v); });
}

template <class T>
void add_beta(const std::string& name, double p, double q) {
  add<boost::random::mt19937>("boost/" + name,
                              boost::random::beta_distribution<T>(static_cast<T>(p), static_cast<T>(q)));
  add_numpy<T>(name, [=](bitgen_t* bits) { return random_beta(bits, p, q); });
}

// NumPy's normal numbers in one call, then the product with the factor at hand, which it leaves to a library of its own.
template <class T>
void add_vectors(const std::string& name, auto fill_normal) {
  register_fill<T>("peer/numpy/" + name, cached_bytes,
                   [=, sfc = numpy_sfc64(20211113)](std::span<T> out) mutable {
                     static const std::vector<T> factor(vector_dimension * vector_dimension, T(0.5));
                     bitgen_t bits = sfc.bits();
                     fill_normal(&bits, static_cast<std::ptrdiff_t>(out.size()), out.data());
                     for (std::size_t i = 0; i + vector_dimension <= out.size(); i += vector_dimension) {
                       T sum[vector_dimension];
                       std::fill_n(sum, vector_dimension, T(1));
                       for (int j = 0; j < vector_dimension; ++j)
                         for (int k = 0; k < vector_dimension; ++k)
                           sum[k] += factor[static_cast<std::size_t>(j * vector_dimension + k)] *
                                     out[i + static_cast<std::size_t>(j)];
                       std::copy_n(sum, vector_dimension, &out[i]);
                     }
                   });
}

void add_geometric(const std::string& name, double p) {
  add<std::mt19937>("std/" + name, std::geometric_distribution<std::int32_t>(p));
  add<boost::random::mt19937>("boost/" + name, boost::random::geometric_distribution<std::int32_t>(p));
  add_numpy<std::int32_t>(name, [p](bitgen_t* bits) { return random_geometric(bits, p); });
}

void add_poisson(const std::string& name, double mean) {
  add<std::mt19937>("std/" + name, std::poisson_distribution<std::int32_t>(mean));
  add<boost::random::mt19937>("boost/" + name, boost::random::poisson_distribution<std::int32_t>(mean));
  add_numpy<std::int32_t>(name, [mean](bitgen_t* bits) { return random_poisson(bits, mean); });
}

// Gives values that are stored as integers.
template <class Distribution>
struct integers_of {
  using result_type = std::int32_t;
  template <class Engine>
  std::int32_t operator()(Engine& engine) {
    return static_cast<std::int32_t>(distribution(engine));
  }
  Distribution distribution;
};

// NumPy's function, and binomial numbers of Boost's for one outcome after the other.
void add_multinomial(const std::string& name, std::int32_t count) {
  register_fill<std::int32_t>(
      "peer/numpy/" + name, cached_bytes,
      [=, sfc = numpy_sfc64(20211113), p = outcome_probabilities()](std::span<std::int32_t> out) mutable {
        bitgen_t bits = sfc.bits();
        binomial_t prepared{};
        for (std::size_t i = 0; i < out.size(); i += outcomes) {
          std::int64_t counts[outcomes] = {};
          random_multinomial(&bits, count, counts, p.data(), outcomes, &prepared);
          for (std::size_t k = 0; k < outcomes; ++k)
            out[i + k] = static_cast<std::int32_t>(counts[k]);
        }
      });
  register_fill<std::int32_t>("peer/boost/" + name, cached_bytes,
                              [=, engine = boost::random::mt19937(20211113),
                               p = outcome_probabilities()](std::span<std::int32_t> out) mutable {
                                for (std::size_t i = 0; i < out.size(); i += outcomes) {
                                  std::int32_t left = count;
                                  double rest = 1;
                                  for (std::size_t k = 0; k + 1 < outcomes; ++k) {
                                    out[i + k] = boost::random::binomial_distribution<std::int32_t>(
                                        left, std::min(p[k] / rest, 1.0))(engine);
                                    left -= out[i + k];
                                    rest -= p[k];
                                  }
                                  out[i + outcomes - 1] = left;
                                }
                              });
}

template <class T>
void add_all(const std::string& type) {
  using std_engine = std::mt19937;
  using boost_engine = boost::random::mt19937;
  add<std_engine>("std/gaussian/" + type, std::normal_distribution<T>());
  add<boost_engine>("boost/gaussian/" + type, boost::random::normal_distribution<T>());
  add<std_engine>("std/lognormal/" + type, std::lognormal_distribution<T>());
  add<std_engine>("std/exponential/" + type, std::exponential_distribution<T>());
  add<boost_engine>("boost/exponential/" + type, boost::random::exponential_distribution<T>());
  add<boost_engine>("boost/laplace/" + type, boost::random::laplace_distribution<T>());
  add<std_engine>("std/weibull/" + type, std::weibull_distribution<T>(T(1.7), T(1)));
  add<std_engine>("std/rayleigh/" + type, std::weibull_distribution<T>(T(2), T(1)));
  add<std_engine>("std/gumbel/" + type, std::extreme_value_distribution<T>());
  add<std_engine>("std/cauchy/" + type, std::cauchy_distribution<T>());
}

} // namespace

void register_distribution_peers() {
  add_all<float>("float");
  add_all<double>("double");
  add_gamma("gamma_2.5/float", 2.5f, random_standard_gamma_f);
  add_gamma("gamma_0.5/float", 0.5f, random_standard_gamma_f);
  add_gamma("gamma_2.5/double", 2.5, random_standard_gamma);
  add_vectors<float>("gaussian_mv_8/float", random_standard_normal_fill_f);
  add_vectors<double>("gaussian_mv_8/double", random_standard_normal_fill);
  for (const int v : chi_square_degrees) {
    add_chi_square<float>(chi_square_name(v) + "/float", v);
    add_chi_square<double>(chi_square_name(v) + "/double", v);
  }
  for (const beta_shapes& s : beta_cases) {
    add_beta<float>(beta_name(s) + "/float", s.p, s.q);
    add_beta<double>(beta_name(s) + "/double", s.p, s.q);
  }
  for (const double p : geometric_probabilities)
    add_geometric(geometric_name(p), p);
  add<boost::random::mt19937>("boost/bernoulli", integers_of<boost::random::bernoulli_distribution<double>>{
                                                     boost::random::bernoulli_distribution<double>(0.3)});
  add_numpy<std::int32_t>("bernoulli",
                          [](bitgen_t* bits) { return bits->next_double(bits->state) < 0.3 ? 1 : 0; });
  for (const double mean : poisson_means)
    add_poisson(poisson_name(mean), mean);
  for (const trials& t : binomial_trials) {
    add<boost::random::mt19937>(std::string("boost/") + t.name,
                                boost::random::binomial_distribution<std::int32_t>(t.count, t.p));
    add_numpy<std::int32_t>(t.name, [t, prepared = binomial_t()](bitgen_t* bits) mutable {
      return random_binomial(bits, t.p, t.count, &prepared);
    });
  }
  for (const counted& m : multinomial_trials)
    add_multinomial(m.name, m.count);
  for (const sample& s : hypergeometric_samples)
    add_numpy<std::int32_t>(s.name, [s](bitgen_t* bits) {
      return random_hypergeometric(bits, s.marked, s.lot - s.marked, s.size);
    });
  for (const successes& s : negative_binomial_successes)
    add_numpy<std::int32_t>(s.name,
                            [s](bitgen_t* bits) { return random_negative_binomial(bits, s.count, s.p); });
}

} // namespace bench
