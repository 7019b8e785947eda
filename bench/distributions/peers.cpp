// What a user would otherwise take for each distribution, on a Mersenne twister, compiled for this machine's processor.
#include <boost/random/cauchy_distribution.hpp>
#include <boost/random/exponential_distribution.hpp>
#include <boost/random/laplace_distribution.hpp>
#include <boost/random/mersenne_twister.hpp>
#include <boost/random/normal_distribution.hpp>
#include <random>

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
}

} // namespace bench
