#pragma once

#include <cstdint>

#include <hvl/math/transforms/transformed_rejection.hpp>
#include <hvl/math/transforms/words.hpp>

#include "distributions/device_ops.hpp"

namespace kestro::hvl::rng::detail::gpu {

/// Two words a value: where it falls, and whether that is taken.
struct transformed_rejection {
  using result_type = std::int32_t;
  using uniform_type = double;
  static constexpr word_use words = ::hvl::math::transformed_rejection_words;

  ::hvl::math::rejection_law law;

  interval<double> uniforms(int k) const {
    return k == 0 ? interval<double>{-0.5, 0.5} : interval<double>{0.0, 1.0};
  }
  void operator()(const word_group<double, 2>& group, std::int32_t (&values)[1]) const {
    using ops = device_ops<double>;
    const double k = ::hvl::math::rejection_value<ops>(group.uniforms[0], group.uniforms[1], group.cells[1],
                                                       group.raw, law);
    values[0] = static_cast<std::int32_t>(::hvl::math::rejection_result<ops>(k));
  }
};

} // namespace kestro::hvl::rng::detail::gpu
