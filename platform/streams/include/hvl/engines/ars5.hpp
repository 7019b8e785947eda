#pragma once

#include <array>
#include <bit>

#include "hvl/engines/counter.hpp"

namespace hvl::engines {

// What a byte in the first row of a column becomes by the substitution and the mixing of AES, first row lowest.
inline constexpr std::array<std::uint32_t, 256> aes_columns = [] {
  const auto doubled = [](std::uint32_t b) { return (b << 1 ^ (b >> 7) * 0x11B) & 0xFF; };
  std::array<std::uint32_t, 256> columns{};
  columns[0] = 0x63;
  std::uint32_t b = 1, inverse = 1; // run through the powers of 3 and of its inverse
  do {
    b ^= doubled(b);
    for (const int shift : {1, 2, 4})
      inverse ^= inverse << shift;
    inverse = (inverse ^ (inverse >> 7 & 1) * 0x09) & 0xFF;
    std::uint32_t turned = inverse;
    for (const int shift : {1, 2, 3, 4})
      turned ^= inverse << shift;
    columns[b] = ((turned ^ turned >> 8) & 0xFF) ^ 0x63;
  } while (b != 1);
  for (std::uint32_t& column : columns)
    column = doubled(column) | column << 8 | column << 16 | (doubled(column) ^ column) << 24;
  return columns;
}();

// ARS4x32 with five rounds: those of AES under keys that are added up.
struct ars5_cipher {
  static constexpr int key_words = 4;
  static constexpr int rounds = 5;

  // The key before the first round, or of round 1 ... 5.
  struct round_key {
    std::uint64_t low, high;
  };
  [[gnu::always_inline]] static constexpr round_key key_of(const std::uint32_t (&key)[4], int round) {
    const auto times = static_cast<std::uint64_t>(round);
    return {(std::uint64_t{key[1]} << 32 | key[0]) + times * 0x9E3779B97F4A7C15,
            (std::uint64_t{key[3]} << 32 | key[2]) + times * 0xBB67AE8584CAA73B};
  }

  static constexpr void encipher(std::uint32_t (&x)[4], const std::uint32_t (&key)[4]) {
    add(x, key_of(key, 0));
    for (int round = 1; round < rounds; ++round) {
      replace_columns(x, [](std::uint32_t byte, int row) { return std::rotl(aes_columns[byte], 8 * row); });
      add(x, key_of(key, round));
    }
    replace_columns(x,
                    [](std::uint32_t byte, int row) { return (aes_columns[byte] >> 8 & 0xFF) << 8 * row; });
    add(x, key_of(key, rounds));
  }

 private:
  // A column is made of the byte of each row that has moved there. Written out, as fill_block is.
  template <class OfByte>
  [[gnu::always_inline]] static constexpr void replace_columns(std::uint32_t (&x)[4], const OfByte& of_byte) {
    const auto column = [&](std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
      return of_byte(a & 0xFF, 0) ^ of_byte(b >> 8 & 0xFF, 1) ^ of_byte(c >> 16 & 0xFF, 2) ^
             of_byte(d >> 24, 3);
    };
    const std::uint32_t a = x[0], b = x[1], c = x[2], d = x[3];
    x[0] = column(a, b, c, d);
    x[1] = column(b, c, d, a);
    x[2] = column(c, d, a, b);
    x[3] = column(d, a, b, c);
  }

  static constexpr void add(std::uint32_t (&x)[4], round_key key) {
    x[0] ^= static_cast<std::uint32_t>(key.low);
    x[1] ^= static_cast<std::uint32_t>(key.low >> 32);
    x[2] ^= static_cast<std::uint32_t>(key.high);
    x[3] ^= static_cast<std::uint32_t>(key.high >> 32);
  }
};

struct ars5 : counter_engine<ars5_cipher> {
  static constexpr facts about{
      "ars5", VQS_ENGINE_ARS5, 1, word_kind::signed32, word_scale::signed32, true, skip_form::by_words, false,
      true};
  using record = vqs_ars5_record;

  [[gnu::always_inline]] static constexpr state state_of(const record& r) {
    return {{r.k0, r.k1, r.k2, r.k3}, {r.c0, r.c1, r.c2, r.c3}, r.remaining};
  }
  static constexpr void store(const state& s, record& r) {
    r.k0 = s.key[0];
    r.k1 = s.key[1];
    r.k2 = s.key[2];
    r.k3 = s.key[3];
    r.c0 = s.counter[0];
    r.c1 = s.counter[1];
    r.c2 = s.counter[2];
    r.c3 = s.counter[3];
    r.remaining = s.remaining;
  }
};

} // namespace hvl::engines
