// The normal distribution.
#include <hvl/math/transforms/gaussian.hpp>

#include "simd/value_loops.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

template <word_kind Kind, class T>
struct gaussian {
  static void box_muller(const void* parameters, const void* words, void* values,
                         std::size_t count) noexcept {
    const auto& p = *static_cast<const gaussian_parameters<T>*>(parameters);
    for_each_of_pair<T>(static_cast<T*>(values), count, unit_loader<Kind, T>(words, p.affine),
                        [&]<class O>(typename O::value u1, typename O::value u2) HVL_STREAMS_INLINE_LAMBDA {
                          return math::gaussian_box_muller<O>(u1, u2, p.mean, p.scale);
                        });
  }

  static void box_muller2(const void* parameters, const void* words, void* values,
                          std::size_t count) noexcept {
    const auto& p = *static_cast<const gaussian_parameters<T>*>(parameters);
    for_each_pair<T>(static_cast<T*>(values), count, unit_loader<Kind, T>(words, p.affine),
                     [&]<class O>(typename O::value u1, typename O::value u2, typename O::value& first,
                                  typename O::value& second) HVL_STREAMS_INLINE_LAMBDA {
                       math::gaussian_box_muller2<O>(u1, u2, p.mean, p.scale, first, second);
                     });
  }

  static void icdf(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
    const auto& p = *static_cast<const gaussian_parameters<T>*>(parameters);
    for_each_value<T>(static_cast<T*>(values), count, unit_loader<Kind, T>(words, p.affine),
                      [&]<class O>(typename O::value v)
                          HVL_STREAMS_INLINE_LAMBDA { return math::gaussian_icdf<O>(v, p.mean, p.scale); });
  }

  static transform_function of(gaussian_method method) noexcept {
    switch (method) {
    case gaussian_method::box_muller:
      return box_muller;
    case gaussian_method::box_muller2:
      return box_muller2;
    case gaussian_method::icdf:
      return icdf;
    }
    return nullptr;
  }
};

} // namespace

transform_function gaussian_transform(word_kind kind, gaussian_method method, precision p) noexcept {
  return for_kind_and_precision(kind, p,
                                [&]<word_kind Kind, class T>() { return gaussian<Kind, T>::of(method); });
}

} // namespace hvl::streams::HVL_STREAMS_ISA
