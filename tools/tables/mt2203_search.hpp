// The search for a member's parameters: M. Matsumoto, T. Nishimura, "Dynamic creation of pseudorandom number generators",
// Monte Carlo and Quasi-Monte Carlo Methods 1998.
#pragma once

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include "mt2203_equidistribution.hpp"
#include "mt2203_irreducible.hpp"

namespace mt2203_table {

inline constexpr std::uint64_t seed = 2203;
inline constexpr int most_defect = 790;

struct masks {
  std::uint32_t b, c;
};

// The twist constants of a member, in the order in which they are tried: its number is their lower half, and their top
// bit is set, as otherwise t divides the polynomial.
class twist_constants {
 public:
  explicit twist_constants(std::uint32_t member) : member_(member) {
    std::uint64_t z = (seed << 32 | member) * 0x9E3779B97F4A7C15;
    z = (z ^ z >> 32) * 0xBF58476D1CE4E5B9;
    first_ = static_cast<std::uint32_t>(z >> 32);
    stride_ = static_cast<std::uint32_t>(z >> 48) | 1;
  }

  // The next one whose recurrence has the full period.
  std::uint32_t operator()() {
    static const factor_sieve sieve;
    for (; tried_ < count; ++tried_) {
      const std::uint32_t a = 0x80000000 | (first_ + tried_ * stride_) % count << 16 | member_;
      if (!sieve.has_factor(a) && irreducibility(a)()) {
        ++tried_;
        return a;
      }
    }
    throw std::runtime_error("no further twist constant");
  }

 private:
  static constexpr std::uint32_t count = 1 << 15;
  std::uint32_t member_, first_, stride_, tried_ = 0;
};

// The sum of the defects of k(v) from v = `bits` down, or more than `most`.
inline int total_defect(const twister& t, int bits = 32, int most = 32 * degree) {
  equidistribution e(t, bits);
  int total = e.defect();
  while (--bits != 0 && total <= most) {
    e.project();
    total += e.defect();
  }
  return total;
}

// From the first bit of the output on, the mask bits that it depends on and those before it do not, in all ways; of
// the masks so far the ones with the least defects go on.
inline masks search_masks(std::uint32_t a) {
  constexpr std::size_t width = 8;
  struct partial {
    masks chosen;
    int defect;
  };
  std::vector<partial> beam{{{0, 0}, 0}};
  for (int bits = 1; bits <= 16; ++bits) {
    const std::uint32_t here = std::uint32_t{1} << (32 - bits);
    const std::uint32_t below = here >> 15 >> 7 << 7; // of b, through c
    std::vector<partial> longer;
    for (const partial& p : beam)
      for (unsigned way = 0; way < 8; ++way) {
        const masks more{((way & 1) != 0 ? here : 0) | ((way & 2) != 0 ? below : 0),
                         (way & 4) != 0 ? here : 0};
        if ((way & 2) != 0 && (below == 0 || more.c == 0))
          continue;
        const masks chosen{p.chosen.b | more.b, p.chosen.c | more.c};
        longer.push_back({chosen, p.defect + equidistribution({a, chosen.b, chosen.c}, bits).defect()});
      }
    std::stable_sort(longer.begin(), longer.end(),
                     [](const partial& x, const partial& y) { return x.defect < y.defect; });
    longer.resize(std::min(longer.size(), width));
    beam = std::move(longer);
  }
  return beam.front().chosen;
}

// Masks that a search found good for other twist constants are good for many.
inline constexpr masks pool[] = {
    // clang-format off
    {0xCD6AAF80, 0x77E90000}, {0xEEEBB780, 0x7BFF0000}, {0x26955780, 0xEFC00000}, {0x9A944E80, 0xEFC50000},
    {0x256B6B80, 0xF7C20000}, {0x894A5780, 0xEFC60000}, {0xBA0CAE80, 0xDF450000}, {0x9DE3A700, 0x77A90000},
    {0xBA16AE80, 0xDF640000}, {0xEAF54F80, 0x77E60000}, {0xDD62E780, 0xF7D20000}, {0xDD475680, 0xEF650000},
    {0x6D636F80, 0xF7F60000}, {0x6D774F80, 0xE7EB0000}, {0x66AD6780, 0xF7D80000}, {0xF20F4D80, 0x6FDA0000},
    {0xED20B780, 0x7BD70000}, {0xB6AAD780, 0xEFC10000}, {0xEA92A780, 0xDFC80000}, {0x9AE85780, 0xEFC30000},
    {0x9B60AF80, 0x77D40000}, {0xCDAAD780, 0xEFC00000}, {0xCDAAD680, 0xEFC00000}, {0x2B454D80, 0xEED30000},
    {0xDD6B5780, 0xEFC10000}, {0xCDAB5780, 0xEFC20000}, {0xED2AAF00, 0x77830000}, {0x32AD5780, 0xEFC60000},
    {0x29554F80, 0xEFC10000}, {0x76855F80, 0xEFEA0000}, {0x259F5780, 0xEFCA0000}, {0xED74AF80, 0x77D20000},
    // clang-format on
};

inline masks best_of_pool(std::uint32_t a) {
  masks best = pool[0];
  int least = 32 * degree;
  for (const masks& one : pool)
    if (const int defect = total_defect({a, one.b, one.c}, 16, least); defect < least) {
      least = defect;
      best = one;
    }
  return best;
}

inline twister search_member(std::uint32_t member) {
  for (twist_constants next(member);;) {
    const std::uint32_t a = next();
    for (const auto& find : {best_of_pool, search_masks}) {
      const masks found = find(a);
      if (const twister t{a, found.b, found.c}; total_defect(t) <= most_defect)
        return t;
    }
  }
}

} // namespace mt2203_table
