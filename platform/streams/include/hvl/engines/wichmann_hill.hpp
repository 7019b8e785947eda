// Four multiplicative congruential components whose fractions are added up (B. A. Wichmann, I. D. Hill, "Algorithm AS 183",
// Applied Statistics 31 (1982)), with the moduli near 2^24 of N. M. Maclaren's many sequences.
#pragma once

#include <iterator>

#include "hvl/engines/facts.hpp"
#include "hvl/engines/power.hpp"
#include "hvl/wichmann_hill_table.h"

namespace hvl::engines {

struct wichmann_hill {
  static constexpr facts about{"wichmann_hill",
                               VQS_ENGINE_WICHMANN_HILL,
                               std::size(streams::wichmann_hill_moduli),
                               word_kind::signed32,
                               word_scale::signed32,
                               false,
                               skip_form::by_number,
                               true,
                               true};
  using record = vqs_wichmann_hill_record;
  using word = std::uint32_t;
  static constexpr std::uint32_t raw(word w) { return w; }

  // A modulus m, which lacks less than 2^16 of 2^24.
  struct modulus {
    std::uint32_t value;

    // Of two residues. Folds the upper bits onto the lower ones, to below 2^40, 2^32 and 2^25 - 2^17.
    [[gnu::always_inline]] constexpr std::uint32_t product(std::uint32_t a, std::uint32_t b) const {
      const auto fold = [lack = (1u << 24) - value](std::uint64_t p) {
        return (p >> 24) * lack + (p & 0xFFFFFF);
      };
      const std::uint64_t p = fold(fold(fold(std::uint64_t{a} * b)));
      return static_cast<std::uint32_t>(p >= value ? p - value : p);
    }
    // The exponent is a number, or a span of words.
    template <class Exponent>
    constexpr std::uint32_t power_of(std::uint32_t base, Exponent exponent) const {
      return power(base, exponent, 1u, [this](std::uint32_t a, std::uint32_t b) { return product(a, b); });
    }
    constexpr bool is_value(std::uint32_t x) const { return x != 0 && x < value; }
    // 2^64 / m, rounded down.
    [[gnu::always_inline]] constexpr std::uint64_t scale() const { return ~std::uint64_t{0} / value; }
  };

  [[gnu::always_inline]] static constexpr modulus modulus_of(const record& r, int component) {
    return {streams::wichmann_hill_moduli[member_of<wichmann_hill>(r)][component]};
  }

  // Written out, as fill_block is.
  template <class F>
  [[gnu::always_inline]] static constexpr void for_components(const F& f) {
    f(0);
    f(1);
    f(2);
    f(3);
  }

  // Multiplies residues by one of them (V. Shoup's product by a quotient known before).
  struct multiplication {
    modulus m;
    std::uint32_t factor, quotient;

    multiplication() = default;
    [[gnu::always_inline]] constexpr multiplication(modulus of, std::uint32_t by)
        : m(of), factor(by), quotient(static_cast<std::uint32_t>((std::uint64_t{by} << 32) / of.value)) {}

    // The quotient, rounded down, makes the whole multiple of m too small by one at most.
    [[gnu::always_inline]] constexpr std::uint32_t operator()(std::uint32_t x) const {
      const auto times = static_cast<std::uint32_t>(std::uint64_t{x} * quotient >> 32);
      const std::uint32_t r = x * factor - times * m.value;
      return r < m.value ? r : r - m.value;
    }
  };

  struct state {
    std::uint32_t x[4];
    multiplication by[4];
    std::uint64_t scale[4];

    // The definition of a word, the upper half of this 64-bit sum: what it lacks of the sum of x / m modulo 1 is below
    // 4 2^24 / 2^64, as each scale lacks less than 1.
    constexpr word output() const {
      std::uint64_t sum = 0;
      for_components([&](int i) { sum += x[i] * scale[i]; });
      return static_cast<word>(sum >> 32);
    }
    constexpr void step() {
      for_components([this](int i) { x[i] = by[i](x[i]); });
    }
  };

  [[gnu::always_inline]] static constexpr state state_of(const record& r) {
    state s{};
    for (int i = 0; i < 4; ++i) {
      const modulus m = modulus_of(r, i);
      s.x[i] = r.x[i];
      s.by[i] = {m, r.a[i]};
      s.scale[i] = m.scale();
    }
    return s;
  }

  // A jump costs as much as some tens of steps.
  static constexpr int blocks_per_item = 16;

  struct leap {
    std::uint64_t blocks;
    multiplication by[4]; // powers of the multipliers
  };

  struct cursor {
    state s;
    constexpr void pass(const leap& over) {
      for_components([&](int i) { s.x[i] = over.by[i](s.x[i]); });
    }
    constexpr void next(word (&words)[4]) {
      fill_block(words, [this] {
        const word w = s.output();
        s.step();
        return w;
      });
    }
  };

  static constexpr leap leap_of(const state& from, std::uint64_t unit, std::uint64_t units) {
    leap result{unit * units, {}};
    for_components([&](int i) {
      const modulus m = from.by[i].m;
      result.by[i] = {m, m.power_of(from.by[i].factor, 4 * result.blocks)};
    });
    return result;
  }
  static constexpr cursor at(const state& from, std::uint64_t block) {
    cursor result{from};
    for_components([&](int i) {
      const modulus m = from.by[i].m;
      result.s.x[i] = m.product(from.x[i], m.power_of(from.by[i].factor, 4 * block));
    });
    return result;
  }
};

} // namespace hvl::engines
