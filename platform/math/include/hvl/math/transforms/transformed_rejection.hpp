// Integers of unimodal laws by transformed rejection with squeeze (W. Hoermann, The transformed rejection method for
// generating Poisson random variables, and The generation of binomial random variates, both 1993). With u uniform on
// [-1/2, 1/2] and s = 1/2 - |u| the integer k nearest to (2 a / s + b) u + centre is accepted with the probability
// f(k) (a / s^2 + b) / alpha, f its probability in units of the mode's. Where s is at least 0.07 that is never below
// `squeeze`, so most values need no f.
//
// Poisson, binomial and hypergeometric probabilities are products of Poisson ones, a factor that does not depend on k
// apart: of k from a mean, of k and trials - k from theirs, of the four numbers of a two-way table from theirs. With
// n = k + 1 and y = (mean - n) / n
//
//   ln (e^-mean mean^k / k!) = n (ln(1 + y) - y) + ln(n) / 2 - stirling_correction(n) - ln(mean) - ln(2 pi) / 2,
//
// where nothing cancels: the logarithm is right to some 2^-50 of the deviation's square however great the mean is.
#pragma once

#include "../log.hpp"
#include "../stirling.hpp"
#include "attempt_words.hpp"
#include "refined.hpp"

#include <type_traits>

namespace hvl::math {

// The smallest laws have the most rejections, 0.3 of all attempts (0.12 from a deviation of 30 on): all 64 are rejected
// with a probability below 2^-111. The value is then the mode.
inline constexpr std::uint32_t transformed_rejection_attempts = 64;
inline constexpr std::uint32_t transformed_rejection_hash_key = 0x74726A73;

// What follows from the parameters alone, for one law or, where V is a vector, for one to a lane. A factor's number is
// slope k + offset, one more than what its mean is of.
template <class V>
struct rejection_law_of {
  int factors; // at most 4
  V a, b, centre;
  V squeeze;
  V log_scale; // ln alpha less what the probability of the mode lacks
  V mode, least, greatest;
  V slope[4], offset[4], mean[4];
};
using rejection_law = rejection_law_of<double>;

namespace detail {

// A number for all lanes, or each lane's own.
template <class O, class V>
HVL_MATH_INLINE typename O::value of_lanes(V v) {
  if constexpr (std::is_same_v<V, typename O::value>)
    return v;
  else
    return O::set(v);
}

// Of a number that is not negative and far below 2^50.
template <class O>
HVL_MATH_INLINE typename O::value rounded_down(typename O::value x) {
  const auto nearest = round_product<O>(x, 1.0).value;
  return nearest - O::select(O::lt(x, nearest), O::set(1.0), O::set(0.0));
}

} // namespace detail

template <class O>
struct rejection_proposal {
  typename O::value k;
  typename O::value quotient; // a / s
  typename O::value slope;    // a / s^2 + b
  typename O::mask squeezed;  // accepted without a look at the law
};

// v uniform on [0, 1].
template <class O, class V>
HVL_MATH_INLINE rejection_proposal<O> rejection_proposed(typename O::value u, typename O::value v,
                                                         const rejection_law_of<V>& law) {
  using detail::of_lanes;
  static_assert(sizeof(typename O::scalar) == 8);
  // no smaller s gives an integer that is possible
  const auto s = O::greater(O::set(0.5) - detail::magnitude<O>(u), O::set(0x1p-40));
  const auto one = O::set(1.0);
  const auto quotient = of_lanes<O>(law.a) / s;
  const auto x = O::fma(quotient + quotient + of_lanes<O>(law.b), u, of_lanes<O>(law.centre));
  const auto near = O::lesser(O::greater(x, of_lanes<O>(law.least) - one), of_lanes<O>(law.greatest) + one);
  const auto central_v = O::select(O::lt(s, O::set(0.07)), O::set(2.0), v);
  return {detail::round_product<O>(near, 1.0).value, quotient, quotient / s + of_lanes<O>(law.b),
          O::lt(central_v, of_lanes<O>(law.squeeze))};
}

template <class O>
struct rejection_terms {
  typename O::value product; // of the factors' numbers
  typename O::value rest;    // the logarithm is ln(product) / 2 + rest and what does not depend on k
};

template <class O, class V>
HVL_MATH_INLINE rejection_terms<O> rejection_terms_at(typename O::value k, const rejection_law_of<V>& law) {
  using detail::of_lanes;
  rejection_terms<O> terms{O::set(1.0), O::set(0.0)};
  for (int i = 0; i < law.factors; ++i) {
    // indices are constants, as a GPU keeps no array in registers that is indexed otherwise
    const auto of_factor = [i](const V(&v)[4]) __attribute__((always_inline)) {
      const V a = v[0], b = v[1], c = v[2], d = v[3];
      return of_lanes<O>(i == 0 ? a : i == 1 ? b : i == 2 ? c : d);
    };
    const auto n = O::fma(of_factor(law.slope), k, of_factor(law.offset));
    const auto deviation = (of_factor(law.mean) - n) / n;
    terms.product = terms.product * n;
    terms.rest = O::fma(n, log1pmx<O>(deviation), terms.rest) - stirling_correction<O>(n);
  }
  return terms;
}

// The test itself; v is uniform on (0, 1).
template <class O, class V>
HVL_MATH_INLINE typename O::mask rejection_accepts(const rejection_proposal<O>& proposal, typename O::value v,
                                                   const rejection_law_of<V>& law) {
  using detail::of_lanes;
  const auto possible = O::lesser(O::greater(proposal.k, of_lanes<O>(law.least)), of_lanes<O>(law.greatest));
  const auto inside = O::lt(detail::magnitude<O>(proposal.k - possible), O::set(0.5));
  const rejection_terms<O> terms = rejection_terms_at<O>(possible, law);
  const auto w = v / proposal.slope;
  const auto threshold = O::fma(log<O>(w * w / terms.product), O::set(0.5), of_lanes<O>(law.log_scale));
  return O::lt(threshold, O::select(inside, terms.rest, O::set(-0x1p1000)));
}

// The second uniform of the first attempt from its word scaled to [0, 1] in steps of `cell`. It takes the middle of its
// step; near 0, where that would cut tails off or let any value pass, a hash refines it.
inline constexpr double rejection_coarse_v = 0x1p-16;

template <std::size_t N>
HVL_MATH_INLINE constexpr double rejection_refinement(const std::uint32_t (&own)[N]) {
  return attempt_uniform(attempt_words(own, 0, transformed_rejection_hash_key).word[0]);
}

// Whether the first attempt, a proposal of v as it is, is accepted. O is a policy of one number.
template <class O, std::size_t N>
HVL_MATH_INLINE bool rejection_first_accepted(const rejection_proposal<O>& first, double v, double cell,
                                              const std::uint32_t (&own)[N], const rejection_law& law) {
  if (first.squeezed)
    return true;
  const double part = v < rejection_coarse_v ? rejection_refinement(own) : 0.5;
  return rejection_accepts<O>(first, refined<O>(v, part, cell), law);
}

// The uniforms of attempt 1, 2, ...
struct rejection_uniforms {
  double u;
  double v;
};

HVL_MATH_INLINE constexpr double rejection_attempt_v(const philox_block& hash) {
  return (static_cast<double>(hash.word[2]) + attempt_uniform(hash.word[3])) * 0x1p-32;
}

template <std::size_t N>
HVL_MATH_INLINE constexpr rejection_uniforms rejection_attempt_uniforms(const std::uint32_t (&own)[N],
                                                                        std::uint32_t attempt) {
  const philox_block hash = attempt_words(own, attempt, transformed_rejection_hash_key);
  return {attempt_symmetric(hash.word[0], hash.word[1]) * 0.5, rejection_attempt_v(hash)};
}

// The value of the first attempt from 1 on that is accepted. O is a policy of one number.
template <class O, std::size_t N>
HVL_MATH_INLINE double rejection_further(const std::uint32_t (&own)[N], const rejection_law& law) {
  for (std::uint32_t attempt = 1; attempt < transformed_rejection_attempts; ++attempt) {
    const rejection_uniforms r = rejection_attempt_uniforms(own, attempt);
    const rejection_proposal<O> proposal = rejection_proposed<O>(r.u, r.v, law);
    if (proposal.squeezed || rejection_accepts<O>(proposal, r.v, law))
      return proposal.k;
  }
  return law.mode;
}

// One value whole, for a policy of one number: u on [-1/2, 1/2], v on [0, 1] in steps of `cell`.
template <class O, std::size_t N>
HVL_MATH_INLINE double rejection_value(double u, double v, double cell, const std::uint32_t (&own)[N],
                                       const rejection_law& law) {
  const rejection_proposal<O> first = rejection_proposed<O>(u, v, law);
  return rejection_first_accepted<O>(first, v, cell, own, law) ? first.k : rejection_further<O>(own, law);
}

// A value as the result type has it.
template <class O>
HVL_MATH_INLINE typename O::value rejection_result(typename O::value k) {
  return O::lesser(k, O::set(2147483647.0));
}

} // namespace hvl::math
