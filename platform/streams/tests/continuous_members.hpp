// Every continuous distribution and method with a set of parameters: the call, and the same values made one by one
// from the stream's uniforms.
#pragma once

#include <hvl/math/transforms.hpp>

#include <algorithm>
#include <functional>

#include "hvl/streams_scaling.hpp"
#include "support.hpp"

namespace hvl::streams::test {

template <class T>
std::vector<T> uniforms(vqs_stream stream, std::size_t n, T a, T b) {
  std::vector<T> u(n + 1, T(-1e30)); // never a null pointer
  const auto count = static_cast<std::int64_t>(n);
  if constexpr (sizeof(T) == 4) {
    EXPECT_EQ(vsRngUniform_64(0, stream, count, u.data(), a, b), VQS_STATUS_OK);
  } else {
    EXPECT_EQ(vdRngUniform_64(0, stream, count, u.data(), a, b), VQS_STATUS_OK);
  }
  u.pop_back();
  return u;
}

template <class T>
struct member {
  const char* name;
  math::word_use words;
  std::function<int(vqs_stream, std::int64_t, T*)> generate;
  std::function<void(vqs_stream, std::vector<T>&)> one_by_one;

  std::size_t words_for(std::size_t n) const { return (n + words.values - 1) / words.values * words.words; }
};

// Reads uniforms on [low, high) in groups and lets `make` turn each into one or two values.
template <class U, class T, class Make>
void for_each_group(vqs_stream stream, std::vector<T>& out, math::word_use use, U low, U high,
                    const Make& make) {
  const std::size_t groups = (out.size() + use.values - 1) / use.values;
  const std::vector<U> u = uniforms<U>(stream, groups * use.words, low, high);
  for (std::size_t g = 0; g < groups; ++g) {
    T values[2] = {};
    make(u.data() + g * use.words, values);
    for (std::size_t k = 0; k < use.values && g * use.values + k < out.size(); ++k)
      out[g * use.values + k] = values[k];
  }
}

template <class T, class Single, class Double>
auto host_function(Single single_precision, Double real64) {
  if constexpr (sizeof(T) == 4)
    return single_precision;
  else
    return real64;
}

// What a gamma distributed value is made of.
template <class T, std::size_t Words>
struct gamma_input {
  T e, u, power;            // power is read at shapes below 1 only
  std::uint32_t own[Words]; // of the group
  std::uint32_t which;      // value of the group
};

// Calls visit(i, input) for each of n values. A group reads its words in several ways: scaled to each of two intervals, and
// their bits.
template <class T, bool BelowOne, class Visit>
void for_each_gamma_input(vqs_stream stream, std::size_t n, const Visit& visit) {
  using O = math::scalar_ops<T>;
  constexpr math::word_use use = math::gamma_words<T>(BelowOne);
  const std::size_t words = (n + use.values - 1) / use.values * use.words;
  const std::vector<std::uint32_t> raw = copy_of(stream).bits(words);
  const std::vector<T> symmetric = uniforms<T>(copy_of(stream), words, T(-1), T(1));
  const std::vector<T> unit = uniforms<T>(copy_of(stream), words, T(0), T(1));
  const T cell = uniform_coefficients(about_engine_of(stream).scale, T(0), T(1)).scale;
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t first = i / use.values * use.words;
    const auto k = static_cast<std::uint32_t>(i % use.values);
    gamma_input<T, use.words> input{};
    input.which = k;
    std::copy_n(&raw[first], use.words, input.own);
    if constexpr (sizeof(T) == 4) {
      input.e = math::erfinv<O>(symmetric[first]);
    } else {
      const auto pair = math::gamma_normal_pair<O>(unit[first], unit[first + 1], cell);
      input.e = k == 0 ? pair.sine : pair.cosine;
    }
    input.u = unit[first + use.values + k];
    input.power = BelowOne ? unit[first + 2 * use.values + k] : T(0);
    visit(i, input);
  }
}

template <class T, bool BelowOne>
void gamma_one_by_one(vqs_stream stream, std::vector<T>& out, const math::gamma_constants<T>& constants,
                      bool accurate) {
  using O = math::scalar_ops<T>;
  for_each_gamma_input<T, BelowOne>(stream, out.size(), [&](std::size_t i, const auto& input) {
    const T value =
        math::gamma_marsaglia<O>(input.e, input.u, input.power, input.own, input.which, constants);
    out[i] = accurate ? math::raised_to<O>(value, constants.displacement) : value;
  });
}

template <class T>
std::vector<member<T>> continuous_members() {
  using O = math::scalar_ops<T>;
  using W = math::scalar_ops<double>;
  std::vector<member<T>> all;
  const auto add = [&](const char* name, math::word_use use, auto function, std::int64_t method, auto low,
                       auto high, auto make, auto... parameters) {
    all.push_back(
        {name, use,
         [=](vqs_stream s, std::int64_t n, T* r) { return function(method, s, n, r, parameters...); },
         [=](vqs_stream s, std::vector<T>& out) { for_each_group(s, out, use, low, high, make); }});
  };
  const T zero(0), one(1), half(0.5), third(T(1) / 3);
  const auto gaussian = host_function<T>(vsRngGaussian_64, vdRngGaussian_64);
  add(
      "gaussian_box_muller", math::gaussian_box_muller_words, gaussian, VQS_METHOD_GAUSSIAN_BOX_MULLER, zero,
      one, [=](const T* u, T* v) { v[0] = math::gaussian_box_muller<O>(u[0], u[1], third, half); }, third,
      half);
  add(
      "gaussian_box_muller2", math::gaussian_box_muller2_words, gaussian, VQS_METHOD_GAUSSIAN_BOX_MULLER2,
      zero, one,
      [=](const T* u, T* v) { math::gaussian_box_muller2<O>(u[0], u[1], third, half, v[0], v[1]); }, third,
      half);
  add(
      "gaussian_icdf", math::gaussian_icdf_words, gaussian, VQS_METHOD_GAUSSIAN_ICDF, -one, one,
      [=](const T* u, T* v) { v[0] = math::gaussian_icdf<O>(u[0], third, math::icdf_scale(half)); }, third,
      half);

  const auto lognormal = host_function<T>(vsRngLognormal_64, vdRngLognormal_64);
  for (const bool accurate : {false, true}) {
    const std::int64_t code = accurate ? VQS_METHOD_ACCURATE : 0;
    const auto finish = [=](T x) { return accurate ? math::raised_to<O>(x, third) : x; };
    add(
        accurate ? "lognormal_box_muller2_accurate" : "lognormal_box_muller2",
        math::lognormal_box_muller2_words, lognormal, code | VQS_METHOD_LOGNORMAL_BOX_MULLER2, zero, one,
        [=](const T* u, T* v) {
          math::lognormal_box_muller2<O>(u[0], u[1], one, half, third, T(2), v[0], v[1]);
          v[0] = finish(v[0]);
          v[1] = finish(v[1]);
        },
        one, half, third, T(2));
    add(
        accurate ? "lognormal_icdf_accurate" : "lognormal_icdf", math::lognormal_icdf_words, lognormal,
        code | VQS_METHOD_LOGNORMAL_ICDF, -one, one,
        [=](const T* u, T* v) {
          v[0] = finish(math::lognormal_icdf<O>(u[0], one, math::icdf_scale(half), third, T(2)));
        },
        one, half, third, T(2));
    add(
        accurate ? "exponential_accurate" : "exponential", math::exponential_icdf_words,
        host_function<T>(vsRngExponential_64, vdRngExponential_64), code, zero, one,
        [=](const T* u, T* v) { v[0] = finish(math::exponential_icdf<O>(u[0], third, half)); }, third, half);
    add(
        accurate ? "weibull_accurate" : "weibull", math::weibull_icdf_words,
        host_function<T>(vsRngWeibull_64, vdRngWeibull_64), code, zero, one,
        [=](const T* u, T* v) {
          v[0] = finish(math::weibull_icdf<O>(u[0], math::weibull_exponent(T(1.7)), third, half));
        },
        T(1.7), third, half);
    add(
        accurate ? "rayleigh_accurate" : "rayleigh", math::rayleigh_icdf_words,
        host_function<T>(vsRngRayleigh_64, vdRngRayleigh_64), code, zero, one,
        [=](const T* u, T* v) { v[0] = finish(math::rayleigh_icdf<O>(u[0], third, half)); }, third, half);
  }
  add(
      "laplace", math::laplace_icdf_words, host_function<T>(vsRngLaplace_64, vdRngLaplace_64), 0, zero, one,
      [=](const T* u, T* v) { v[0] = math::laplace_icdf<O>(u[0], u[1], third, half); }, third, half);
  add(
      "gumbel", math::gumbel_icdf_words, host_function<T>(vsRngGumbel_64, vdRngGumbel_64), 0, zero, one,
      [=](const T* u, T* v) { v[0] = math::gumbel_icdf<O>(u[0], third, half); }, third, half);
  add(
      "cauchy", math::cauchy_icdf_words, host_function<T>(vsRngCauchy_64, vdRngCauchy_64), 0,
      math::cauchy_low, math::cauchy_high,
      [=](const double* u, T* v) {
        v[0] =
            static_cast<T>(math::cauchy_icdf<W>(u[0], static_cast<double>(third), static_cast<double>(half)));
      },
      third, half);

  const auto add_beta = [&](const char* name, T p, T q) {
    const auto constants = math::beta_constants_of(p, q, third, half);
    all.push_back({name, math::beta_words,
                   [=](vqs_stream s, std::int64_t n, T* r) {
                     return host_function<T>(vsRngBeta_64, vdRngBeta_64)(0, s, n, r, p, q, third, half);
                   },
                   [=](vqs_stream s, std::vector<T>& out) {
                     const double cell = uniform_coefficients(about_engine_of(s).scale, 0.0, 1.0).scale;
                     const std::vector<std::uint32_t> raw = copy_of(s).bits(2 * out.size());
                     const std::vector<double> u = uniforms<double>(copy_of(s), 2 * out.size(), 0.0, 1.0);
                     for (std::size_t i = 0; i < out.size(); ++i)
                       out[i] = static_cast<T>(math::beta_cheng_johnk<W>(
                           u[2 * i], u[2 * i + 1], cell, {raw[2 * i], raw[2 * i + 1]}, constants));
                   }});
  };
  add_beta("beta", T(2.5), T(1.5));
  add_beta("beta_one_below_one", T(0.7), T(3));
  add_beta("beta_small", T(0.3), T(0.4));
  add_beta("beta_large", T(3e6), T(2e6));

  const auto add_gamma = [&](const char* name, T alpha, bool accurate) {
    const auto function = host_function<T>(vsRngGamma_64, vdRngGamma_64);
    const std::int64_t method = accurate ? VQS_METHOD_ACCURATE : 0;
    const auto constants = math::gamma_constants_of<T>(alpha, third, half);
    all.push_back(
        {name, math::gamma_words<T>(alpha < 1),
         [=](vqs_stream s, std::int64_t n, T* r) { return function(method, s, n, r, alpha, third, half); },
         [=](vqs_stream s, std::vector<T>& out) {
           if (alpha < 1)
             gamma_one_by_one<T, true>(s, out, constants, accurate);
           else
             gamma_one_by_one<T, false>(s, out, constants, accurate);
         }});
  };
  add_gamma("gamma", T(1.7), false);
  add_gamma("gamma_accurate", T(1.7), true);
  add_gamma("gamma_below_one", T(0.9), false);
  add_gamma("gamma_below_one_accurate", T(0.9), true);
  add_gamma("gamma_large", T(100), false);
  all.push_back({"chi_square", math::gamma_words<T>(false),
                 [](vqs_stream s, std::int64_t n, T* r) {
                   return host_function<T>(vsRngChiSquare_64, vdRngChiSquare_64)(0, s, n, r, 5);
                 },
                 [](vqs_stream s, std::vector<T>& out) {
                   gamma_one_by_one<T, false>(s, out, math::gamma_constants_of<T>(2.5, 0, 2), false);
                 }});
  return all;
}

} // namespace hvl::streams::test
