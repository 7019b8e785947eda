// Numbers of discrete laws, a place to a law of its own, for which nothing is prepared: what is added up at once, and of
// rejections the first attempts, a law to a lane; what these leave open is decided together.
#pragma once

#include <hvl/math/transforms/transformed_rejection.hpp>

#include "simd/open_places.hpp"

#ifndef HVL_STREAMS_ISA_IS_SCALAR

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

template <class V>
struct first_uniforms {
  V u, v; // on [-1/2, 1/2] and on [0, 1]
};

// A law follows from one number, its parameter. Laws has
//   own_words                            of a place: an array type
//   is_added_up(parameters)              mask of the places that are not rejected
//   added_up(i, parameters, bits)        numbers of the places from i on; those without a bit have parameter 0 and do not count
//   first_attempts(i)                    first_uniforms of them
//   second_uniform(place, v)             v as the test takes it
//   own_words_at(place, own)
//   law_of<O>(parameter)
template <std::size_t Most, class Laws>
class numbers_of_own_laws {
  using O = vector_ops<double>;
  static constexpr std::size_t width = vector_values<double>;

 public:
  alignas(vector_alignment) double parameter[Most];
  alignas(vector_alignment) double number[Most];

  // Of the first `count` places, whose parameters are set. Laws may read and parameters are written up to a whole vector.
  HWY_INLINE void make(const Laws& laws, std::size_t count) {
    for (std::size_t i = count; i % width != 0; ++i)
      parameter[i] = 0;
    open_places<Most> open;
    for (std::size_t i = 0; i < count; i += width)
      first_attempts(laws, i, open);
    open.open(0, count);
    test(laws, open);
    for (std::uint32_t attempt = 1; !open.empty() && attempt < math::transformed_rejection_attempts;
         ++attempt)
      further_attempt(laws, attempt, open);
    for (const std::uint32_t place : open)
      number[place] = laws.template law_of<math::scalar_ops<double>>(parameter[place]).mode;
  }

 private:
  HWY_INLINE void first_attempts(const Laws& laws, std::size_t i, open_places<Most>& open) {
    const vector_tag<double> d;
    const auto parameters = hn::Load(d, parameter + i);
    const auto added_up = laws.is_added_up(parameters);
    const std::uint64_t bits = bits_of<double>(added_up);
    auto numbers = hn::Zero(d);
    if (bits != 0) {
      numbers = laws.added_up(i, hn::IfThenElseZero(added_up, parameters), bits);
      open.accept(i, bits);
      if (bits == (std::uint64_t{1} << width) - 1) {
        hn::Store(numbers, d, number + i);
        return;
      }
    }
    const auto r = laws.first_attempts(i);
    hn::Store(r.u, d, u_ + i);
    hn::Store(r.v, d, v_ + i);
    const auto proposal = math::rejection_proposed<O>(r.u, r.v, laws.template law_of<O>(parameters));
    hn::Store(hn::IfThenElse(added_up, numbers, proposal.k), d, number + i);
    open.accept(i, bits_of<double>(proposal.squeezed));
  }

  HWY_INLINE void test(const Laws& laws, open_places<Most>& open) {
    const vector_tag<double> d;
    alignas(vector_alignment) double parameters[width] = {}, u[width] = {}, v[width] = {};
    open.decide(
        [&](std::size_t k, std::size_t place) HVL_STREAMS_INLINE_LAMBDA {
          parameters[k] = parameter[place];
          u[k] = u_[place];
          v[k] = laws.second_uniform(place, v_[place]);
        },
        [&](const std::uint32_t*, std::size_t) HVL_STREAMS_INLINE_LAMBDA {
          const auto law = laws.template law_of<O>(hn::Load(d, parameters));
          const auto second = hn::Load(d, v);
          return bits_of<double>(math::rejection_accepts<O>(
              math::rejection_proposed<O>(hn::Load(d, u), second, law), second, law));
        });
  }

  // Sets the number of every open place, whether it is accepted or not.
  HWY_INLINE void further_attempt(const Laws& laws, std::uint32_t attempt, open_places<Most>& open) {
    const vector_tag<double> d;
    alignas(vector_alignment) double parameters[width] = {}, u[width], v[width], made[width];
    typename Laws::own_words own[width] = {};
    open.decide(
        [&](std::size_t k, std::size_t place) HVL_STREAMS_INLINE_LAMBDA {
          parameters[k] = parameter[place];
          laws.own_words_at(place, own[k]);
        },
        [&](const std::uint32_t* places, std::size_t lanes) HVL_STREAMS_INLINE_LAMBDA {
          for (std::size_t k = 0; k < width; ++k) { // of all lanes, so that they are hashed in vectors
            const math::rejection_uniforms r = math::rejection_attempt_uniforms(own[k], attempt);
            u[k] = r.u;
            v[k] = r.v;
          }
          const auto law = laws.template law_of<O>(hn::Load(d, parameters));
          const auto second = hn::Load(d, v);
          const auto proposal = math::rejection_proposed<O>(hn::Load(d, u), second, law);
          hn::Store(proposal.k, d, made);
          for (std::size_t k = 0; k < lanes; ++k)
            number[places[k]] = made[k];
          return bits_of<double>(proposal.squeezed) |
                 bits_of<double>(math::rejection_accepts<O>(proposal, second, law));
        });
  }

  // of the first attempts
  alignas(vector_alignment) double u_[Most];
  alignas(vector_alignment) double v_[Most];
};

} // namespace
} // namespace hvl::streams::HVL_STREAMS_ISA

#endif
