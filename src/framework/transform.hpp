#pragma once

#include <cstdint>
#include <utility>
#include <variant>

#include <hvl/math/transforms/words.hpp>

/// How a distribution turns words into values on a device.
namespace kestro::hvl::rng::detail {

using ::hvl::math::word_use;

/// Where the uniforms of a transform lie.
template <class T>
struct interval {
  T a, b;
};

/// In place of a floating-point type: the transform takes words as they are.
using raw_word = std::uint32_t;

/// One group of words as a transform receives it. A transform is a trivially copyable object of this form:
///
///   using result_type = ...;
///   using uniform_type = ...;              float or double; raw_word takes no uniforms
///   static constexpr word_use words;       of one group
///   interval<uniform_type> uniforms(int k) const;   where word k of a group is scaled to
///   void operator()(const word_group<uniform_type, words.words>&, result_type (&values)[words.values]) const;
///
/// It may hold pointers to tables in device memory whose owner lives as long as the work. Whatever it does not read of a
/// group costs nothing.
///
/// A distribution whose values take a second kernel gives in its place an object with `words`, `first_step()`, a transform whose
/// values the second kernel works on in place, and `second_step(queue, event of the first, n, target)`, which submits it.
template <class Uniform, std::uint32_t Words>
struct word_group {
  Uniform uniforms[Words]; // the words, scaled to their intervals
  Uniform cells[Words];    // what one step of a word is on its interval
  std::uint32_t raw[Words];
  std::int64_t first; // index of the group's first value within the call
};

/// Calls `f` with the transform, or with the one of a variant's transforms that the parameters have chosen.
template <class Transform, class F>
decltype(auto) visit_transform(const Transform& transform, F&& f) {
  return std::forward<F>(f)(transform);
}
template <class... Transforms, class F>
decltype(auto) visit_transform(const std::variant<Transforms...>& transform, F&& f) {
  return std::visit(std::forward<F>(f), transform);
}

} // namespace kestro::hvl::rng::detail
