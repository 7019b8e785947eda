// The log-normal distribution.
#include <hvl/math/transforms/inverse_cdf.hpp>
#include <hvl/math/transforms/lognormal.hpp>

#include "simd/value_loops.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

template <word_kind Kind, class T, bool Accurate>
struct lognormal {
  static void box_muller2(const void* parameters, const void* words, void* values,
                          std::size_t count) noexcept {
    const auto& p = *static_cast<const lognormal_parameters<T>*>(parameters);
    for_each_pair<T>(static_cast<T*>(values), count, unit_loader<Kind, T>(words, p.affine),
                     [&]<class O>(typename O::value u1, typename O::value u2, typename O::value& first,
                                  typename O::value& second) HVL_STREAMS_INLINE_LAMBDA {
                       math::lognormal_box_muller2<O>(u1, u2, p.m, p.s, p.displacement, p.scale, first,
                                                      second);
                       if constexpr (Accurate) {
                         first = math::raised_to<O>(first, p.displacement);
                         second = math::raised_to<O>(second, p.displacement);
                       }
                     });
  }

  static void icdf(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
    const auto& p = *static_cast<const lognormal_parameters<T>*>(parameters);
    for_each_value<T>(static_cast<T*>(values), count, unit_loader<Kind, T>(words, p.affine),
                      [&]<class O>(typename O::value v) HVL_STREAMS_INLINE_LAMBDA {
                        const auto result = math::lognormal_icdf<O>(v, p.m, p.s, p.displacement, p.scale);
                        if constexpr (Accurate)
                          return math::raised_to<O>(result, p.displacement);
                        else
                          return result;
                      });
  }

  static transform_function of(lognormal_method method) noexcept {
    return method == lognormal_method::icdf ? icdf : box_muller2;
  }
};

} // namespace

transform_function lognormal_transform(word_kind kind, lognormal_method method, bool accurate,
                                       precision p) noexcept {
  return for_kind_and_precision(kind, p, [&]<word_kind Kind, class T>() {
    return accurate ? lognormal<Kind, T, true>::of(method) : lognormal<Kind, T, false>::of(method);
  });
}

} // namespace hvl::streams::HVL_STREAMS_ISA
