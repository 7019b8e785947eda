// Particles that enter a slab at right angles and are absorbed or scattered, all directions alike: what becomes of them, by
// solving the integral equation of transport (R. Peierls, "Critical conditions in neutron multiplication", 1939).
#pragma once

#include <cmath>
#include <vector>

namespace slab {

// Lengths are counted in mean free paths.
constexpr double thickness = 2, scattering = 0.8; // the part of collisions that are no end

struct fates {
  double transmitted, reflected, absorbed; // parts of all particles
};

// Exponential integrals of orders 2 and 3, for x >= 0.
inline double e2(double x) {
  return x == 0 ? 1 : std::exp(-x) + x * std::expint(-x);
}
inline double e3(double x) {
  return (std::exp(-x) - x * e2(x)) / 2;
}

// Scattered particles set out at density q(x) = c (exp(-x) + 1/2 integral of E1(|x - y|) q(y) dy). q is taken as constant in
// each cell, whose kernels are exact; the error falls with the square of the cells.
inline fates exact_fates() {
  constexpr int cells = 1000, rounds = 100; // each round is a collision more, of which 0.8 at most go on
  constexpr double width = thickness / cells;
  // The part of what sets out in a cell, all directions alike, that collides `apart` cells away.
  std::vector<double> arrives(cells);
  for (int apart = 0; apart < cells; ++apart)
    arrives[apart] =
        apart == 0
            ? 1 - (0.5 - e3(width)) / width
            : (e3((apart - 1) * width) - 2 * e3(apart * width) + e3((apart + 1) * width)) / (2 * width);
  std::vector<double> first(cells), collided(cells), sum(cells);
  for (int i = 0; i < cells; ++i)
    first[i] = std::exp(-i * width) - std::exp(-(i + 1) * width);
  collided = first;
  for (int round = 0; round < rounds; ++round) {
    for (int i = 0; i < cells; ++i) {
      sum[i] = first[i];
      for (int j = 0; j < cells; ++j)
        sum[i] += scattering * arrives[i < j ? j - i : i - j] * collided[j];
    }
    collided.swap(sum);
  }
  fates all{std::exp(-thickness), 0, 0};
  for (int i = 0; i < cells; ++i) {
    const double left = i * width, right = left + width, sets_out = scattering * collided[i] / (2 * width);
    all.reflected += sets_out * (e3(left) - e3(right));
    all.transmitted += sets_out * (e3(thickness - right) - e3(thickness - left));
    all.absorbed += (1 - scattering) * collided[i];
  }
  return all;
}

} // namespace slab
