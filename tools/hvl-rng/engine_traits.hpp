// What the constructors of an engine class take.
#pragma once

#include <kestro/hvl/rng.hpp>

#include <cstdint>
#include <type_traits>

namespace hvl_rng {

// Braces refuse narrowing, so this tells engines seeded by 64 bits from those seeded by 32.
template <class Engine>
constexpr bool takes_64_bits = requires(sycl::queue queue, std::uint64_t seed) {
  Engine{queue, seed};
};

template <class Engine>
constexpr bool takes_member = std::is_constructible_v<Engine, sycl::queue, std::uint64_t, std::uint32_t>;

template <class Engine>
constexpr bool takes_mode =
    std::is_constructible_v<Engine, sycl::queue, std::uint32_t, kestro::hvl::rng::mrg32k3a_mode::optimal>;

} // namespace hvl_rng
