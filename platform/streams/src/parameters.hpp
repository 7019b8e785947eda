// What the exported functions of the continuous distributions have in common.
#pragma once

#include <hvl/math/transforms/words.hpp>

#include <cmath>
#include <initializer_list>

#include "vector_call.hpp"

namespace hvl::streams {

template <class T>
inline constexpr precision precision_of = sizeof(T) == 4 ? precision::single : precision::real64;

// The status that a method and parameters deserve.
template <class T>
int parameters_status(bool method_known, std::initializer_list<T> finite, std::initializer_list<T> positive) {
  if (!method_known)
    return VQS_STATUS_BAD_METHOD;
  for (const T x : finite)
    if (!std::isfinite(x))
      return VQS_STATUS_BAD_PARAMETER;
  for (const T x : positive)
    if (!(x > 0) || !std::isfinite(x)) // refuses NaN too
      return VQS_STATUS_BAD_PARAMETER;
  return VQS_STATUS_OK;
}

inline transform transform_of(transform_function apply, const void* parameters, math::word_use use,
                              std::size_t value_bytes) {
  return {apply, parameters, use.words, use.values, static_cast<std::uint32_t>(value_bytes)};
}

} // namespace hvl::streams
