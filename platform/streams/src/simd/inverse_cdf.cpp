// exponential, laplace, weibull, rayleigh, gumbel, cauchy.
#include <hvl/math/transforms/inverse_cdf.hpp>

#include "simd/value_loops.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

template <inverse_cdf_family Family, class O>
HVL_MATH_INLINE auto formula(typename O::value u, const inverse_cdf_parameters<typename O::scalar>& p) {
  if constexpr (Family == inverse_cdf_family::exponential)
    return math::exponential_icdf<O>(u, p.a, p.scale);
  else if constexpr (Family == inverse_cdf_family::weibull)
    return math::weibull_icdf<O>(u, p.exponent, p.a, p.scale);
  else if constexpr (Family == inverse_cdf_family::rayleigh)
    return math::rayleigh_icdf<O>(u, p.a, p.scale);
  else
    return math::gumbel_icdf<O>(u, p.a, p.scale);
}

template <word_kind Kind, class T, inverse_cdf_family Family, bool Accurate>
void of_one_uniform(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  const auto& p = *static_cast<const inverse_cdf_parameters<T>*>(parameters);
  for_each_value<T>(static_cast<T*>(values), count, unit_loader<Kind, T>(words, p.affine),
                    [&]<class O>(typename O::value u) HVL_STREAMS_INLINE_LAMBDA {
                      const auto result = formula<Family, O>(u, p);
                      if constexpr (Accurate)
                        return math::raised_to<O>(result, p.a);
                      else
                        return result;
                    });
}

template <word_kind Kind, class T>
void laplace(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  const auto& p = *static_cast<const inverse_cdf_parameters<T>*>(parameters);
  for_each_of_pair<T>(static_cast<T*>(values), count, unit_loader<Kind, T>(words, p.affine),
                      [&]<class O>(typename O::value u1, typename O::value u2)
                          HVL_STREAMS_INLINE_LAMBDA { return math::laplace_icdf<O>(u1, u2, p.a, p.scale); });
}

// In double for both result types.
template <word_kind Kind, class T>
void cauchy(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  const auto& p = *static_cast<const inverse_cdf_parameters<T>*>(parameters);
  const auto a = static_cast<double>(p.a);
  const auto b = static_cast<double>(p.scale);
  for_each_value<double>(static_cast<T*>(values), count, word_loader<Kind, double>(words, p.angles),
                         [&]<class O>(typename O::value angle)
                             HVL_STREAMS_INLINE_LAMBDA { return math::cauchy_icdf<O>(angle, a, b); });
}

template <word_kind Kind, class T>
transform_function of_family(inverse_cdf_family family, bool accurate) noexcept {
  switch (family) {
  case inverse_cdf_family::exponential:
    return accurate ? of_one_uniform<Kind, T, inverse_cdf_family::exponential, true>
                    : of_one_uniform<Kind, T, inverse_cdf_family::exponential, false>;
  case inverse_cdf_family::laplace:
    return laplace<Kind, T>;
  case inverse_cdf_family::weibull:
    return accurate ? of_one_uniform<Kind, T, inverse_cdf_family::weibull, true>
                    : of_one_uniform<Kind, T, inverse_cdf_family::weibull, false>;
  case inverse_cdf_family::rayleigh:
    return accurate ? of_one_uniform<Kind, T, inverse_cdf_family::rayleigh, true>
                    : of_one_uniform<Kind, T, inverse_cdf_family::rayleigh, false>;
  case inverse_cdf_family::gumbel:
    return of_one_uniform<Kind, T, inverse_cdf_family::gumbel, false>;
  case inverse_cdf_family::cauchy:
    return cauchy<Kind, T>;
  }
  return nullptr;
}

} // namespace

transform_function inverse_cdf_transform(word_kind kind, inverse_cdf_family family, bool accurate,
                                         precision p) noexcept {
  return for_kind_and_precision(
      kind, p, [&]<word_kind Kind, class T>() { return of_family<Kind, T>(family, accurate); });
}

} // namespace hvl::streams::HVL_STREAMS_ISA
