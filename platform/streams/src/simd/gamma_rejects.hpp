// What the squeeze leaves undecided of gamma's first attempts, decided together.
#pragma once

#include <hvl/math/transforms/gamma.hpp>

#include "simd/open_places.hpp"

#ifndef HVL_STREAMS_ISA_IS_SCALAR

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

template <class T, std::size_t Most>
class gamma_rejects {
  using wide = vector_ops<double>;
  static constexpr std::size_t wide_width = vector_values<double>;

 public:
  // The attempts of the places from `place` on, a vector of them.
  HWY_INLINE void attempted(std::size_t place, vector<T> e, vector<T> u,
                            typename vector_ops<T>::mask accepted) {
    const vector_tag<T> d;
    hn::Store(e, d, e_ + place);
    hn::Store(u, d, u_ + place);
    open_.accept(place, bits_of<T>(accepted));
  }

  HWY_INLINE void open(std::size_t first, std::size_t count) { open_.open(first, count); }

  // Of every place that was rejected set_core(place, core in double), where uniforms_of(place, attempt) are gamma_uniforms.
  template <class Uniforms, class Set>
  HWY_INLINE void make(const math::gamma_constants<T>& constants, const Uniforms& uniforms_of,
                       const Set& set_core) {
    test(constants);
    for (std::uint32_t attempt = 1; !open_.empty() && attempt < math::gamma_attempts; ++attempt)
      further_attempt(constants, attempt, uniforms_of, set_core);
    for (const std::uint32_t place : open_)
      set_core(place, math::gamma_wide_core<math::scalar_ops<double>>(0.0, constants));
  }

 private:
  HWY_INLINE void test(const math::gamma_constants<T>& constants) {
    const vector_tag<double> d;
    alignas(vector_alignment) double e[wide_width] = {}, u[wide_width] = {};
    open_.decide(
        [&](std::size_t k, std::size_t place) HVL_STREAMS_INLINE_LAMBDA {
          e[k] = static_cast<double>(e_[place]);
          u[k] = static_cast<double>(u_[place]);
        },
        [&](const std::uint32_t*, std::size_t) HVL_STREAMS_INLINE_LAMBDA {
          return bits_of<double>(math::gamma_accepts<wide>(hn::Load(d, e), hn::Load(d, u), constants));
        });
  }

  // Sets the core of every place, whether it is accepted or not.
  template <class Uniforms, class Set>
  HWY_INLINE void further_attempt(const math::gamma_constants<T>& constants, std::uint32_t attempt,
                                  const Uniforms& uniforms_of, const Set& set_core) {
    const vector_tag<double> d;
    alignas(vector_alignment) double v[wide_width] = {}, u[wide_width] = {}, core[wide_width];
    open_.decide(
        [&](std::size_t k, std::size_t place) HVL_STREAMS_INLINE_LAMBDA {
          const math::gamma_uniforms r = uniforms_of(place, attempt);
          v[k] = r.v;
          u[k] = r.u;
        },
        [&](const std::uint32_t* places, std::size_t lanes) HVL_STREAMS_INLINE_LAMBDA {
          const auto e = math::erfinv<wide>(hn::Load(d, v));
          hn::Store(math::gamma_wide_core<wide>(e, constants), d, core);
          for (std::size_t k = 0; k < lanes; ++k)
            set_core(places[k], core[k]);
          return bits_of<double>(math::gamma_accepts<wide>(e, hn::Load(d, u), constants));
        });
  }

  alignas(vector_alignment) T e_[Most];
  alignas(vector_alignment) T u_[Most];
  open_places<Most> open_;
};

} // namespace
} // namespace hvl::streams::HVL_STREAMS_ISA

#endif
