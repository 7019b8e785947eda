// What the program must know of a distribution class beyond its name: its parameters, in constructor order,
// with the accessors that give their defaults, and its default method.
#pragma once

#include <kestro/hvl/rng.hpp>

#include <tuple>
#include <type_traits>

namespace hvl_rng {

namespace rng = kestro::hvl::rng;

template <class Accessor>
struct parameter {
  const char* name;
  Accessor accessor;
};

template <class Accessor>
parameter(const char*, Accessor) -> parameter<Accessor>;

template <class Distribution>
struct distribution_traits;

// Distributions without parameters or methods.
template <class Distribution>
struct plain_traits {
  static constexpr bool is_default_method = true;
  static constexpr std::tuple<> parameters{};
};

template <class T>
struct distribution_traits<rng::uniform_bits<T>> : plain_traits<rng::uniform_bits<T>> {};

template <class T>
struct distribution_traits<rng::bits<T>> : plain_traits<rng::bits<T>> {};

template <class Distribution, class Default>
struct method_traits {
  static constexpr bool is_default_method = std::is_same_v<Distribution, Default>;
};

template <class T, class M>
struct distribution_traits<rng::uniform<T, M>> {
  using type = rng::uniform<T, M>;
  // The library's default, but for integers: there the standard method computes in float, in steps above 2^24.
  static constexpr bool is_default_method =
      std::is_same_v<M, std::conditional_t<std::is_integral_v<T>, rng::uniform_method::accurate,
                                           rng::uniform_method::standard>>;
  static constexpr std::tuple parameters{parameter{"a", &type::a}, parameter{"b", &type::b}};
};

template <class T, class M>
struct distribution_traits<rng::gaussian<T, M>> : method_traits<rng::gaussian<T, M>, rng::gaussian<T>> {
  using type = rng::gaussian<T, M>;
  static constexpr std::tuple parameters{parameter{"mean", &type::mean}, parameter{"stddev", &type::stddev}};
};

template <class T, class M>
struct distribution_traits<rng::lognormal<T, M>> : method_traits<rng::lognormal<T, M>, rng::lognormal<T>> {
  using type = rng::lognormal<T, M>;
  static constexpr std::tuple parameters{parameter{"m", &type::m}, parameter{"s", &type::s},
                                         parameter{"displ", &type::displ}, parameter{"scale", &type::scale}};
};

template <class T, class M>
struct distribution_traits<rng::exponential<T, M>>
    : method_traits<rng::exponential<T, M>, rng::exponential<T>> {
  using type = rng::exponential<T, M>;
  static constexpr std::tuple parameters{parameter{"a", &type::a}, parameter{"beta", &type::beta}};
};

template <class T, class M>
struct distribution_traits<rng::laplace<T, M>> : method_traits<rng::laplace<T, M>, rng::laplace<T>> {
  using type = rng::laplace<T, M>;
  static constexpr std::tuple parameters{parameter{"a", &type::a}, parameter{"b", &type::b}};
};

template <class T, class M>
struct distribution_traits<rng::weibull<T, M>> : method_traits<rng::weibull<T, M>, rng::weibull<T>> {
  using type = rng::weibull<T, M>;
  static constexpr std::tuple parameters{parameter{"alpha", &type::alpha}, parameter{"a", &type::a},
                                         parameter{"beta", &type::beta}};
};

template <class T, class M>
struct distribution_traits<rng::rayleigh<T, M>> : method_traits<rng::rayleigh<T, M>, rng::rayleigh<T>> {
  using type = rng::rayleigh<T, M>;
  static constexpr std::tuple parameters{parameter{"a", &type::a}, parameter{"beta", &type::beta}};
};

template <class T, class M>
struct distribution_traits<rng::gumbel<T, M>> : method_traits<rng::gumbel<T, M>, rng::gumbel<T>> {
  using type = rng::gumbel<T, M>;
  static constexpr std::tuple parameters{parameter{"a", &type::a}, parameter{"beta", &type::beta}};
};

template <class T, class M>
struct distribution_traits<rng::cauchy<T, M>> : method_traits<rng::cauchy<T, M>, rng::cauchy<T>> {
  using type = rng::cauchy<T, M>;
  static constexpr std::tuple parameters{parameter{"a", &type::a}, parameter{"b", &type::b}};
};

template <class T, class M>
struct distribution_traits<rng::gamma<T, M>> : method_traits<rng::gamma<T, M>, rng::gamma<T>> {
  using type = rng::gamma<T, M>;
  static constexpr std::tuple parameters{parameter{"alpha", &type::alpha}, parameter{"a", &type::a},
                                         parameter{"beta", &type::beta}};
};

template <class T, class M>
struct distribution_traits<rng::chi_square<T, M>> : method_traits<rng::chi_square<T, M>, rng::chi_square<T>> {
  static constexpr std::tuple parameters{parameter{"v", &rng::chi_square<T, M>::v}};
};

template <class T, class M>
struct distribution_traits<rng::gaussian_mv<T, M>>
    : method_traits<rng::gaussian_mv<T, M>, rng::gaussian_mv<T>> {
  using type = rng::gaussian_mv<T, M>;
  static constexpr std::tuple parameters{parameter{"a", &type::a}, parameter{"t", &type::t}};
};

template <class T, class M>
struct distribution_traits<rng::beta<T, M>> : method_traits<rng::beta<T, M>, rng::beta<T>> {
  using type = rng::beta<T, M>;
  static constexpr std::tuple parameters{parameter{"p", &type::p}, parameter{"q", &type::q},
                                         parameter{"a", &type::a}, parameter{"beta", &type::scale}};
};

template <class T, class M>
struct distribution_traits<rng::geometric<T, M>> : method_traits<rng::geometric<T, M>, rng::geometric<T>> {
  static constexpr std::tuple parameters{parameter{"p", &rng::geometric<T, M>::p}};
};

template <class T, class M>
struct distribution_traits<rng::bernoulli<T, M>> : method_traits<rng::bernoulli<T, M>, rng::bernoulli<T>> {
  static constexpr std::tuple parameters{parameter{"p", &rng::bernoulli<T, M>::p}};
};

template <class T, class M>
struct distribution_traits<rng::poisson<T, M>> : method_traits<rng::poisson<T, M>, rng::poisson<T>> {
  static constexpr std::tuple parameters{parameter{"lambda", &rng::poisson<T, M>::lambda}};
};

template <class T, class M>
struct distribution_traits<rng::poisson_v<T, M>> : method_traits<rng::poisson_v<T, M>, rng::poisson_v<T>> {
  static constexpr std::tuple parameters{parameter{"lambda", &rng::poisson_v<T, M>::lambda}};
};

template <class T, class M>
struct distribution_traits<rng::binomial<T, M>> : method_traits<rng::binomial<T, M>, rng::binomial<T>> {
  static constexpr std::tuple parameters{parameter{"ntrial", &rng::binomial<T, M>::ntrial},
                                         parameter{"p", &rng::binomial<T, M>::p}};
};

template <class T, class M>
struct distribution_traits<rng::multinomial<T, M>>
    : method_traits<rng::multinomial<T, M>, rng::multinomial<T>> {
  static constexpr std::tuple parameters{parameter{"ntrial", &rng::multinomial<T, M>::ntrial},
                                         parameter{"p", &rng::multinomial<T, M>::p}};
};

template <class T, class M>
struct distribution_traits<rng::hypergeometric<T, M>>
    : method_traits<rng::hypergeometric<T, M>, rng::hypergeometric<T>> {
  static constexpr std::tuple parameters{parameter{"l", &rng::hypergeometric<T, M>::l},
                                         parameter{"s", &rng::hypergeometric<T, M>::s},
                                         parameter{"m", &rng::hypergeometric<T, M>::m}};
};

template <class T, class M>
struct distribution_traits<rng::negative_binomial<T, M>>
    : method_traits<rng::negative_binomial<T, M>, rng::negative_binomial<T>> {
  static constexpr std::tuple parameters{parameter{"a", &rng::negative_binomial<T, M>::a},
                                         parameter{"p", &rng::negative_binomial<T, M>::p}};
};

} // namespace hvl_rng
