// P. L'Ecuyer, "Good parameters and implementations for combined multiple recursive random number generators",
// Operations Research 47 (1999).
#pragma once

#include "hvl/engines/facts.hpp"
#include "hvl/mrg32k3a_tables.h"

namespace hvl::engines {

// The modulus 2^32 - C.
template <std::uint32_t C>
struct modulus_2_32_minus {
  static constexpr std::uint64_t value = (std::uint64_t{1} << 32) - C;

  // Any 64-bit value, by folding the high word onto the low one; C is below 2^15.
  static constexpr std::uint32_t reduce(std::uint64_t v) {
    v = (v >> 32) * C + (v & 0xFFFFFFFF); // below 2^47 + 2^32
    v = (v >> 32) * C + (v & 0xFFFFFFFF); // below 2^30 + 2^32
    return static_cast<std::uint32_t>(v >= value ? v - value : v);
  }

  // v becomes matrix v; the matrix is stored row by row.
  static constexpr void multiply(const std::uint32_t* matrix, std::uint32_t (&v)[3]) {
    const auto product = [&](const std::uint32_t* row) {
      return reduce(std::uint64_t{reduce(std::uint64_t{row[0]} * v[0])} +
                    reduce(std::uint64_t{row[1]} * v[1]) + reduce(std::uint64_t{row[2]} * v[2]));
    };
    const std::uint32_t x = product(matrix), y = product(matrix + 3), z = product(matrix + 6);
    v[0] = x;
    v[1] = y;
    v[2] = z;
  }
};

struct mrg32k3a {
  static constexpr facts about{"mrg32k3a",
                               VQS_ENGINE_MRG32K3A,
                               1,
                               word_kind::unsigned32,
                               word_scale::mrg32k3a,
                               false,
                               skip_form::by_words,
                               false,
                               true};
  using record = vqs_mrg32k3a_record;
  using word = std::uint32_t;
  static constexpr std::uint32_t raw(word w) { return w; }

  using m1 = modulus_2_32_minus<209>;
  using m2 = modulus_2_32_minus<22853>;
  static_assert(m1::value == streams::mrg32k3a_m1 && m2::value == streams::mrg32k3a_m2);
  static constexpr std::uint32_t a12 = 1403580;
  static constexpr std::uint32_t a13 = 810728; // subtracted
  static constexpr std::uint32_t a21 = 527612;
  static constexpr std::uint32_t a23 = 1370589; // subtracted

  // The three last values of each component, oldest first.
  struct state {
    std::uint32_t x[3];
    std::uint32_t y[3];
  };

  static constexpr state state_of(const record& r) { return {{r.x0, r.x1, r.x2}, {r.y0, r.y1, r.y2}}; }
  static constexpr void store(const state& s, record& r) {
    r.x0 = s.x[0];
    r.x1 = s.x[1];
    r.x2 = s.x[2];
    r.y0 = s.y[0];
    r.y1 = s.y[1];
    r.y2 = s.y[2];
  }

  // One step of both components. Returns z in [1, m1]; m1 stands for equal components.
  static constexpr word step(state& s) {
    const std::uint32_t x = m1::reduce(std::uint64_t{a12} * s.x[1] + a13 * (m1::value - s.x[0]));
    const std::uint32_t y = m2::reduce(std::uint64_t{a21} * s.y[2] + a23 * (m2::value - s.y[0]));
    s = {{s.x[1], s.x[2], x}, {s.y[1], s.y[2], y}};
    return x > y ? x - y : static_cast<std::uint32_t>(m1::value - y + x);
  }

  // Jumps n steps, n below 2^63: one precomputed power for each nonzero base-8 digit of n. Powers of one matrix
  // commute, so each is applied to the state directly.
  static constexpr void mrg32k3a_skip(state& s, std::uint64_t n) {
    for (int place = 0; n != 0; ++place, n >>= 3) {
      const int digit = static_cast<int>(n & 7);
      if (digit != 0) {
        m1::multiply(streams::mrg32k3a_jump_x[7 * place + digit - 1], s.x);
        m2::multiply(streams::mrg32k3a_jump_y[7 * place + digit - 1], s.y);
      }
    }
  }

  // Jumps k substreams of 2^76 steps, k below 2^51.
  static constexpr void mrg32k3a_skipahead_substream(state& s, std::uint64_t k) {
    for (int bit = 0; k != 0; ++bit, k >>= 1) {
      if (k & 1) {
        m1::multiply(streams::mrg32k3a_substream_x[bit], s.x);
        m2::multiply(streams::mrg32k3a_substream_y[bit], s.y);
      }
    }
  }

  // A jump costs as much as some tens of steps.
  static constexpr int blocks_per_item = 16;

  struct cursor {
    state s;
    constexpr void next(word (&words)[4]) {
      fill_block(words, [this] { return step(s); });
    }
  };

  static constexpr cursor at(const state& from, std::uint64_t block) {
    cursor result{from};
    mrg32k3a_skip(result.s, 4 * block);
    return result;
  }
};

} // namespace hvl::engines
