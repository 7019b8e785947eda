// Where an engine's vectors of 32-bit words go: to memory as they are, or scaled to uniform reals on the way,
// so that a large call is one pass.
#pragma once

#include "simd/uniform.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

// operator()(words, i) puts out the values of words i, i + 1, ...; streaming output is aligned, and so is every i. Words
// of 32 bits are read as Kind says; of mcg59's words, 32-bit ones are the upper 32 of 59 bits.
template <word_kind Kind, value_form Form, bool Streaming>
class value_sink {
 public:
  HWY_INLINE value_sink(void* out, const direct_values& values)
      : out_(out), scale32_(hn::Set(vector_tag<float>(), values.single.scale)),
        shift32_(hn::Set(vector_tag<float>(), values.single.shift)),
        scale64_(hn::Set(vector_tag<double>(), values.wide.scale)),
        shift64_(hn::Set(vector_tag<double>(), values.wide.shift)) {}

  HWY_INLINE void operator()(vector<std::uint32_t> words, std::size_t i) const {
    if constexpr (Form == value_form::words) {
      put(words, static_cast<std::uint32_t*>(out_) + i);
    } else {
      const auto integers = hn::BitCast(vector_tag<word_of<Kind>>(), words);
      if constexpr (Form == value_form::real32) {
        put_scaled(to_float(integers), i);
      } else {
        const hn::Half<vector_tag<word_of<Kind>>> half;
        put_scaled(to_double(hn::LowerHalf(half, integers)), i);
        put_scaled(to_double(hn::UpperHalf(half, integers)), i + vector_values<double>);
      }
    }
  }

  HWY_INLINE void operator()(vector<std::uint64_t> words, std::size_t i) const {
    if constexpr (Form == value_form::words) {
      const vector_tag<std::uint32_t> d;
      const auto upper = hn::BitCast(d, hn::ShiftRight<27>(words));
      put(hn::LowerHalf(hn::ConcatEven(d, upper, upper)), static_cast<std::uint32_t*>(out_) + i);
    } else if constexpr (Form == value_form::real32) {
      put_scaled(to_float(words), i);
    } else {
      put_scaled(to_double(words), i);
    }
  }

 private:
  HWY_INLINE void put_scaled(vector<float> v, std::size_t i) const {
    put(hn::Add(hn::Mul(v, scale32_), shift32_), static_cast<float*>(out_) + i);
  }
  HWY_INLINE void put_scaled(hn::Vec<hn::Half<vector_tag<float>>> v, std::size_t i) const {
    put(hn::Add(hn::Mul(v, hn::LowerHalf(scale32_)), hn::LowerHalf(shift32_)), static_cast<float*>(out_) + i);
  }
  HWY_INLINE void put_scaled(vector<double> v, std::size_t i) const {
    put(hn::Add(hn::Mul(v, scale64_), shift64_), static_cast<double*>(out_) + i);
  }

  template <class V>
  HWY_INLINE void put(V v, hn::TFromV<V>* to) const {
    const hn::DFromV<V> d;
    if constexpr (Streaming)
      hn::Stream(v, d, to);
    else
      hn::StoreU(v, d, to);
  }

  void* out_;
  vector<float> scale32_, shift32_;
  vector<double> scale64_, shift64_;
};

// Calls body(sink) with the sink for a form.
template <word_kind Kind, class Body>
HWY_INLINE void with_sink(void* out, const direct_values& values, bool streaming, const Body& body) {
  const auto call = [&]<value_form Form>() {
    if (streaming)
      body(value_sink<Kind, Form, true>(out, values));
    else
      body(value_sink<Kind, Form, false>(out, values));
  };
  switch (values.form) {
  case value_form::words:
    return call.template operator()<value_form::words>();
  case value_form::real32:
    return call.template operator()<value_form::real32>();
  case value_form::real64:
    return call.template operator()<value_form::real64>();
  }
}

// `run_values` and `run` of a block kernel whose run_to(sink, workspace, granules) puts out vectors.
template <class Workspace, word_kind Kind>
void run_values(void* workspace, void* out, std::size_t granules, const direct_values& values,
                bool streaming) noexcept {
  auto& w = *static_cast<Workspace*>(workspace);
  with_sink<Kind>(out, values, streaming, [&](const auto& sink) { run_to(sink, w, granules); });
}

template <class Workspace, word_kind Kind>
void run_words(void* workspace, void* words, std::size_t granules) noexcept {
  run_values<Workspace, Kind>(workspace, words, granules, {value_form::words, {}, {}}, false);
}

} // namespace
} // namespace hvl::streams::HVL_STREAMS_ISA
