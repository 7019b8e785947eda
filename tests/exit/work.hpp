// Work that nobody waits for.
#pragma once

#include <kestro/hvl/rng.hpp>

#include <vector>

inline void start_work(const sycl::device& where) {
  namespace rng = kestro::hvl::rng;
  constexpr std::int64_t values = 1 << 18;
  static sycl::queue q(where);
  static rng::philox4x32x10 philox(q, 1);
  static rng::mt19937 mersenne(q, 1);
  static std::vector<float> uniform(values),
      gaussian(values); // made after the engines, hence destroyed before them
  rng::mcg59 local(q, 1);
  auto* const leaked = sycl::malloc_shared<double>(values, q);
  for (int round = 0; round < 4; ++round) {
    rng::generate(rng::uniform<float>(), philox, values, uniform.data());
    rng::generate(rng::gaussian<float>(), mersenne, values, gaussian.data());
    rng::generate(rng::exponential<double>(), local, values, leaked);
  }
}
