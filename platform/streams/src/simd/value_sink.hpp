// Where an engine's vectors of 32-bit words go: to memory as they are, or scaled to uniform reals on the way,
// so that a large call is one pass.
#pragma once

#include "simd/uniform.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

// For words that are read as signed, or lie below 2^31. operator()(words, i) puts out the values of words i,
// i + 1, ...; streaming output is aligned, and so is every i.
template <value_form Form, bool Streaming>
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
      const auto integers = hn::BitCast(vector_tag<std::int32_t>(), words);
      if constexpr (Form == value_form::real32) {
        const auto converted = hn::ConvertTo(vector_tag<float>(), integers);
        put(hn::Add(hn::Mul(converted, scale32_), shift32_), static_cast<float*>(out_) + i);
      } else {
        const hn::Half<vector_tag<std::int32_t>> half;
        const vector_tag<double> d;
        auto* const to = static_cast<double*>(out_) + i;
        const auto low = hn::PromoteTo(d, hn::LowerHalf(half, integers));
        const auto high = hn::PromoteTo(d, hn::UpperHalf(half, integers));
        put(hn::Add(hn::Mul(low, scale64_), shift64_), to);
        put(hn::Add(hn::Mul(high, scale64_), shift64_), to + vector_values<double>);
      }
    }
  }

 private:
  template <class V>
  HWY_INLINE void put(V v, hn::TFromV<V>* to) const {
    const hn::ScalableTag<hn::TFromV<V>> d;
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
template <class Body>
HWY_INLINE void with_sink(void* out, const direct_values& values, bool streaming, const Body& body) {
  const auto call = [&]<value_form Form>() {
    if (streaming)
      body(value_sink<Form, true>(out, values));
    else
      body(value_sink<Form, false>(out, values));
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

} // namespace
} // namespace hvl::streams::HVL_STREAMS_ISA
