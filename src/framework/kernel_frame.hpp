#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <type_traits>
#include <utility>
#include <variant>

#include <hvl/float_environment.hpp>

#include "framework/engine_definition.hpp"
#include "framework/transform.hpp"
#include "service/portability.hpp"

/// The one frame from words to values. Kernels differ in where their words come from; `value_writer` does the rest.
namespace kestro::hvl::rng::detail::gpu {

/// The coefficients that carry the words of a group to the uniforms that a transform takes.
template <class Transform>
using group_coefficients = std::conditional_t<
    std::is_same_v<typename Transform::uniform_type, raw_word>, std::monostate,
    std::array<::hvl::streams::coefficients<typename Transform::uniform_type>, Transform::words.words>>;

template <class Engine, class Transform>
group_coefficients<Transform> coefficients_for(const Transform& transform) {
  return ::hvl::in_default_float_environment([&] {
    group_coefficients<Transform> coefficients;
    if constexpr (!std::is_same_v<typename Transform::uniform_type, raw_word>)
      for (std::size_t k = 0; k < coefficients.size(); ++k) {
        const auto u = transform.uniforms(static_cast<int>(k));
        coefficients[k] = ::hvl::streams::uniform_coefficients<typename Transform::uniform_type>(
            about<Engine>.scale, u.a, u.b);
      }
    return coefficients;
  });
}

/// Makes values of an engine's words and stores those that belong to the call.
template <class Engine, class Transform, class Output>
class value_writer {
  using definition = definition_of<Engine>;
  using word_type = typename definition::word;
  using uniform_type = typename Transform::uniform_type;

 public:
  static constexpr int group_words = Transform::words.words;
  static constexpr int group_values = Transform::words.values;

  /// Groups whose words fill blocks of four.
  static constexpr int unit_words = std::lcm(4, group_words);
  static constexpr int unit_groups = unit_words / group_words;
  static constexpr int unit_values = unit_groups * group_values;

  /// Units whose values fill vectors of 16 bytes.
  static constexpr int units_of_vectors = [] {
    constexpr int bytes = unit_values * static_cast<int>(sizeof(typename Transform::result_type));
    return std::lcm(16, bytes) / bytes;
  }();

  value_writer(Output output, const Transform& transform, std::int64_t n)
      : output_(output), coefficients_(coefficients_for<Engine>(transform)), transform_(transform), n_(n) {}

  /// Whether the value of that index belongs to the call.
  bool has(std::int64_t index) const { return index < n_; }

  /// Consecutive groups; `first` is the index of their first value.
  template <std::size_t Words>
  void write(const word_type (&words)[Words], std::int64_t first) const {
    static_assert(Words % group_words == 0);
    constexpr int groups = static_cast<int>(Words) / group_words;
    typename Transform::result_type values[groups][group_values];
    KESTRO_HVL_UNROLL
    for (int g = 0; g < groups; ++g) {
      word_group<uniform_type, group_words> group;
      KESTRO_HVL_UNROLL
      for (int k = 0; k < group_words; ++k) {
        const word_type word = words[g * group_words + k];
        group.raw[k] = definition::raw(word);
        if constexpr (!std::is_same_v<uniform_type, raw_word>) {
          const auto& scaling = coefficients_[static_cast<std::size_t>(k)];
          group.cells[k] = scaling.scale;
          if constexpr (about<Engine>.kind == ::hvl::engines::word_kind::signed32)
            group.uniforms[k] =
                ::hvl::streams::uniform_value<uniform_type>(static_cast<std::int32_t>(word), scaling);
          else
            group.uniforms[k] = ::hvl::streams::uniform_value<uniform_type>(word, scaling);
        }
      }
      group.first = first + g * group_values;
      transform_(group, values[g]);
    }
    constexpr int count = groups * group_values;
    const auto value = [&](int k) { return values[k / group_values][k % group_values]; };
    if (first + count <= n_) {
      portability::store_values<count>(&output_[static_cast<std::size_t>(first)], value);
    } else {
      KESTRO_HVL_UNROLL
      for (int k = 0; k < count; ++k)
        if (has(first + k))
          output_[static_cast<std::size_t>(first + k)] = value(k);
    }
  }

 private:
  Output output_;
  [[no_unique_address]] group_coefficients<Transform> coefficients_;
  Transform transform_;
  std::int64_t n_;
};

/// What carries a cursor over a fixed number of blocks; nothing for an engine that has no such.
template <class Definition>
auto leap_over(const typename Definition::state& state, std::uint64_t blocks) {
  if constexpr (requires { Definition::leap_of(state, blocks); })
    return Definition::leap_of(state, blocks);
  else
    return std::monostate();
}

/// The kernel of an engine whose words follow from a position: a work-item jumps once from its own copy of the state, and
/// makes as many units as repay that. They are consecutive, or, of an engine that leaps, those of `lanes` items take turns,
/// so that consecutive items write consecutive vectors.
template <class Engine, class T, class I, class Transform, class Output>
class engine_func {
  using definition = definition_of<Engine>;
  using writer = value_writer<Engine, Transform, Output>;
  using leap = decltype(leap_over<definition>(std::declval<typename definition::state>(), 0));
  static_assert(std::is_same_v<T, typename Transform::result_type> &&
                std::is_same_v<I, typename Transform::uniform_type>);

  static constexpr bool leaps = !std::is_same_v<leap, std::monostate>;
  static constexpr std::size_t lanes = leaps ? 64 : 1; // a multiple of every sub-group's size
  static constexpr int unit_words = writer::units_of_vectors * writer::unit_words;
  static constexpr int unit_values = writer::units_of_vectors * writer::unit_values;
  static constexpr std::size_t unit_blocks = unit_words / 4;
  static constexpr std::size_t units_per_item =
      std::max<std::size_t>(1, definition::blocks_per_item / unit_blocks);

 public:
  engine_func(Output output, const typename definition::state& state, const Transform& transform,
              std::int64_t n)
      : state_(state), leap_(leap_over<definition>(state, lanes * unit_blocks)),
        writer_(output, transform, n) {}

  /// Work-items that make n values.
  static std::size_t items_of(std::int64_t n) {
    constexpr std::size_t tile = lanes * units_per_item;
    const auto units =
        (static_cast<std::size_t>(n) + unit_values - 1) / static_cast<std::size_t>(unit_values);
    return units / tile * lanes + std::min(units % tile, lanes);
  }

  void operator()(sycl::id<1> id) const {
    const std::size_t unit = id[0] / lanes * (lanes * units_per_item) + id[0] % lanes;
    auto first = static_cast<std::int64_t>(unit) * unit_values;
    auto cursor = definition::at(state_, unit * unit_blocks);
    for (std::size_t made = 0;;) {
      std::conditional_t<leaps, decltype(cursor), decltype(cursor)&> reader =
          cursor; // a leap starts at the unit
      typename definition::word words[unit_words];
      KESTRO_HVL_UNROLL
      for (std::size_t block = 0; block < unit_blocks; ++block) {
        typename definition::word next[4];
        reader.next(next);
        KESTRO_HVL_UNROLL
        for (std::size_t k = 0; k < 4; ++k)
          words[4 * block + k] = next[k];
      }
      writer_.write(words, first);
      first += static_cast<std::int64_t>(lanes) * unit_values;
      if (++made == units_per_item || !writer_.has(first))
        return;
      if constexpr (leaps)
        cursor.pass(leap_);
    }
  }

 private:
  typename definition::state state_;
  [[no_unique_address]] leap leap_;
  writer writer_;
};

} // namespace kestro::hvl::rng::detail::gpu
