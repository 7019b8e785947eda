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

/// The kernel of an engine whose words follow from a position: a work-item jumps once from its own copy of the state, and
/// makes as many units as repay that. They are consecutive, or, of an engine that leaps, those of `lanes` items take turns,
/// so that consecutive items write consecutive vectors.
template <class Engine, class T, class I, class Transform, class Output>
class engine_func {
  using definition = definition_of<Engine>;
  using state_type = typename definition::state;
  using cursor_type = typename definition::cursor;
  using writer = value_writer<Engine, Transform, Output>;
  static_assert(std::is_same_v<T, typename Transform::result_type> &&
                std::is_same_v<I, typename Transform::uniform_type>);

  static constexpr int unit_words = writer::units_of_vectors * writer::unit_words;
  static constexpr int unit_values = writer::units_of_vectors * writer::unit_values;
  static constexpr std::size_t unit_blocks = unit_words / 4;

  static constexpr bool jumps = definition::blocks_per_item > 1;
  static constexpr std::size_t least_lanes = 64; // a multiple of every sub-group's size

  static auto leap_from(const state_type& state) {
    if constexpr (requires { definition::leap_of(state, unit_blocks, least_lanes); })
      return definition::leap_of(state, unit_blocks, least_lanes);
    else
      return std::monostate();
  }
  using leap = decltype(leap_from(std::declval<state_type>()));
  static constexpr bool leaps = !std::is_same_v<leap, std::monostate>;

  static std::size_t units_of(std::int64_t n) {
    return (static_cast<std::size_t>(n) + unit_values - 1) / static_cast<std::size_t>(unit_values);
  }

 public:
  engine_func(Output output, const state_type& state, const Transform& transform, std::int64_t n)
      : state_(state), leap_(leap_from(state)), writer_(output, transform, n) {
    const std::size_t units = units_of(n);
    if constexpr (jumps) {
      constexpr std::size_t least = std::max<std::size_t>(1, definition::blocks_per_item / unit_blocks);
      constexpr std::size_t many_items = 1 << 18; // fill a large GPU
      units_per_item_ = std::clamp(units / many_items, least, 8 * least);
    }
    if constexpr (leaps)
      lanes_ = leap_.blocks != 0 ? leap_.blocks / unit_blocks : units;
  }

  /// Work-items that make the first n values, n being those of the call, or of a number of whole turns.
  std::size_t items_of(std::int64_t n) const {
    const std::size_t units = units_of(n), turns = lanes_ * units_per_item_;
    return units / turns * lanes_ + std::min(units % turns, lanes_);
  }

  void operator()(sycl::id<1> id) const {
    if constexpr (leaps) {
      const std::size_t unit = id[0] / lanes_ * (lanes_ * units_per_item_) + id[0] % lanes_;
      cursor_type cursors[unit_blocks]; // of the blocks of a unit
      cursors[0] = definition::at(state_, unit * unit_blocks);
      KESTRO_HVL_UNROLL
      for (std::size_t b = 1; b < unit_blocks; ++b) {
        typename definition::word passed[4];
        cursors[b] = cursors[b - 1];
        cursors[b].next(passed);
      }
      make_units(unit, lanes_, units_per_item_, [&](std::size_t b, auto& words) {
        cursor_type reader = cursors[b];
        reader.next(words);
        cursors[b].pass(leap_);
      });
    } else {
      const std::size_t units = jumps ? units_per_item_ : 1;
      cursor_type cursor = definition::at(state_, id[0] * units * unit_blocks);
      make_units(id[0] * units, 1, units, [&](std::size_t, auto& words) { cursor.next(words); });
    }
  }

 private:
  /// Those of the call among `count` units, that many apart; `next(b, words)` makes the words of block b of the next unit.
  template <class Next>
  void make_units(std::size_t unit, std::size_t apart, std::size_t count, const Next& next) const {
    auto first = static_cast<std::int64_t>(unit) * unit_values;
    for (; count != 0 && writer_.has(first); --count) {
      typename definition::word words[unit_words];
      KESTRO_HVL_UNROLL
      for (std::size_t b = 0; b < unit_blocks; ++b) {
        typename definition::word block[4];
        next(b, block);
        KESTRO_HVL_UNROLL
        for (std::size_t k = 0; k < 4; ++k)
          words[4 * b + k] = block[k];
      }
      writer_.write(words, first);
      first += static_cast<std::int64_t>(apart) * unit_values;
    }
  }

  state_type state_;
  [[no_unique_address]] leap leap_;
  std::size_t lanes_ = 1, units_per_item_ = 1;
  writer writer_;
};

} // namespace kestro::hvl::rng::detail::gpu
