#pragma once

#include <cstdint>
#include <type_traits>

#include "framework/distribution_impl.hpp"
#include "framework/engine_traits.hpp"

namespace kestro::hvl::rng::detail::gpu {

/// An engine's word as the transform takes it.
template <class Engine, class Computation, class Coefficients>
constexpr Computation from_word(typename engine_kernel<Engine>::word_type word,
                                const Coefficients& coefficients) {
  using kernel = engine_kernel<Engine>;
  if constexpr (std::is_same_v<Computation, raw_word>)
    return kernel::raw(word);
  else if constexpr (kernel::scale == word_scale::signed32)
    return ::hvl::streams::uniform_value<Computation>(static_cast<std::int32_t>(word), coefficients);
  else
    return ::hvl::streams::uniform_value<Computation>(word, coefficients);
}

/// The kernel of one engine and one distribution: a work-item makes `width` consecutive values from its own
/// copy of the state and stores them whole, or, at the end of the output, as many as belong to it.
template <class Engine, class T, class Computation, class Transform, class Output>
class engine_func {
  using kernel = engine_kernel<Engine>;
  using coefficients_type =
      decltype(std::declval<distribution_impl<T, typename Transform::distribution_type, device_type::gpu>>()
                   .template coefficients<Engine>());

 public:
  static constexpr int values_per_block = 4 / Transform::words_per_value;
  static constexpr std::int32_t width = values_per_block * kernel::blocks_per_item;

  engine_func(Output output, const typename kernel::state& state, const coefficients_type& coefficients,
              const Transform& transform, std::int64_t n)
      : output_(output), state_(state), coefficients_(coefficients), transform_(transform), n_(n),
        full_items_(n / width) {}

  void operator()(sycl::id<1> id) const {
    const auto item = static_cast<std::int64_t>(id[0]);
    auto cursor = kernel::at(state_, item);
    for (int block = 0; block < kernel::blocks_per_item; ++block) {
      typename kernel::word_type words[4];
      cursor.next(words);
      Computation uniforms[4];
      for (int k = 0; k < 4; ++k)
        uniforms[k] = from_word<Engine, Computation>(words[k], coefficients_);
      T values[values_per_block];
      transform_(uniforms, values);
      store(values, item, item * width + block * values_per_block);
    }
  }

 private:
  // Written so that the compiler can split the loop over work-items at the last full one and vectorise the
  // rest.
  void store(const T (&values)[values_per_block], std::int64_t item, std::int64_t first) const {
    if (item < full_items_) {
      for (int k = 0; k < values_per_block; ++k)
        output_[static_cast<std::size_t>(first + k)] = values[k];
    } else {
      for (int k = 0; k < values_per_block; ++k)
        if (first + k < n_)
          output_[static_cast<std::size_t>(first + k)] = values[k];
    }
  }

  Output output_;
  typename kernel::state state_;
  [[no_unique_address]] coefficients_type coefficients_;
  Transform transform_;
  std::int64_t n_;
  std::int64_t full_items_;
};

} // namespace kestro::hvl::rng::detail::gpu
