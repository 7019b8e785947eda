// What the exported functions of the distributions have in common.
#pragma once

#include <hvl/math/transforms/words.hpp>

#include "hvl/streams_parameters.hpp"
#include "vector_call.hpp"

namespace hvl::streams {

template <class T>
inline constexpr precision precision_of = sizeof(T) == 4 ? precision::single : precision::real64;

// The status that a method and parameters deserve.
inline int parameters_status(bool method_known, const char* fault) {
  return !method_known ? VQS_STATUS_BAD_METHOD : fault != nullptr ? VQS_STATUS_BAD_PARAMETER : VQS_STATUS_OK;
}

inline transform transform_of(transform_function apply, const void* parameters, math::word_use use,
                              std::size_t value_bytes) {
  return {apply, parameters, use.words, use.values, static_cast<std::uint32_t>(value_bytes)};
}

} // namespace hvl::streams
