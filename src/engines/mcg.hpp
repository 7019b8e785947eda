#pragma once

#include <cstdint>

#include <hvl/streams_record.h>
#include <kestro/hvl/rng/engines.hpp>

#include "framework/engine_traits.hpp"

/// The multiplicative congruential engines: x(k + 1) = a x(k) modulo m. The multiplier travels with the
/// state, so a leapfrogged engine needs no kernel of its own.
namespace kestro::hvl::rng::detail {

template <>
struct engine_traits<mcg31m1> {
  static constexpr const char* name = "mcg31m1";
  static constexpr std::int32_t identifier = VQS_ENGINE_MCG31M1;
  static constexpr bool has_uniform_bits = false;
};

template <>
struct engine_traits<mcg59> {
  static constexpr const char* name = "mcg59";
  static constexpr std::int32_t identifier = VQS_ENGINE_MCG59;
  static constexpr bool has_uniform_bits = true;
};

namespace gpu {

/// a b modulo 2^31 - 1, by folding the upper bits onto the lower ones.
struct multiply_mod_2_31_minus_1 {
  using word = std::uint32_t;
  static constexpr word multiply(word a, word b) {
    const std::uint64_t product = std::uint64_t{a} * b;
    const std::uint64_t once = (product >> 31) + (product & 0x7FFFFFFF); // below 2^32
    const std::uint64_t twice = (once >> 31) + (once & 0x7FFFFFFF);
    return static_cast<word>(twice == 0x7FFFFFFF ? 0 : twice);
  }
};

/// a b modulo 2^59.
struct multiply_mod_2_59 {
  using word = std::uint64_t;
  static constexpr word multiply(word a, word b) { return a * b & 0x7FFFFFFFFFFFFFF; }
};

template <class Modulus>
constexpr typename Modulus::word power(typename Modulus::word base, std::uint64_t exponent) {
  typename Modulus::word result = 1;
  for (; exponent != 0; exponent >>= 1) {
    if (exponent & 1)
      result = Modulus::multiply(result, base);
    base = Modulus::multiply(base, base);
  }
  return result;
}

} // namespace gpu

/// What the two engines share; `state` holds the value of the next output and the multiplier.
template <class Modulus, class Record>
struct mcg_kernel {
  using word_type = typename Modulus::word;
  using record_type = Record;
  static constexpr int blocks_per_item = 1;

  struct state {
    word_type x, a;
  };

  static state capture(const stream_handle& stream) {
    const auto& record = stream.record<Record>();
    return {record.x, record.a};
  }

  struct cursor {
    word_type x, a;
    void next(word_type (&words)[4]) {
      for (auto& word : words) {
        word = x;
        x = Modulus::multiply(x, a);
      }
    }
  };

  static cursor at(const state& from, std::int64_t item) {
    const word_type jump = gpu::power<Modulus>(from.a, 4 * static_cast<std::uint64_t>(item));
    return {Modulus::multiply(from.x, jump), from.a};
  }
};

template <>
struct engine_kernel<mcg31m1> : mcg_kernel<gpu::multiply_mod_2_31_minus_1, vqs_mcg31m1_record> {
  static constexpr word_scale scale = word_scale::mcg31m1;
  static constexpr std::uint32_t raw(word_type word) { return word; }
};

template <>
struct engine_kernel<mcg59> : mcg_kernel<gpu::multiply_mod_2_59, vqs_mcg59_record> {
  static constexpr word_scale scale = word_scale::mcg59;
  static constexpr std::uint32_t raw(word_type word) { return static_cast<std::uint32_t>(word >> 27); }
};

} // namespace kestro::hvl::rng::detail
