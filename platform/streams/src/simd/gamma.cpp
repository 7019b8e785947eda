// The gamma distribution: first attempts in one pass, those that the squeeze leaves undecided together behind it.
#include "gamma.hpp"

#include <hvl/math/transforms/inverse_cdf.hpp>
#include <hvl/math/transforms/words.hpp>

#include "simd/value_loops.hpp"
#include "simd/word_groups.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

template <class Word, std::size_t Words>
HVL_MATH_INLINE void own_words(const Word* group, std::uint32_t (&own)[4]) {
  for (std::size_t k = 0; k < 4; ++k)
    own[k] = k < Words ? raw(group[k]) : 0;
}

// In double two words make the normal number; in both types the acceptance follows, then the power of shapes below 1.
template <class T>
inline constexpr std::size_t normal_words = sizeof(T) / 4;

#ifdef HVL_STREAMS_ISA_IS_SCALAR

template <word_kind Kind, class T, bool BelowOne>
void gamma(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  using O = vector_ops<T>;
  constexpr std::size_t group_words = math::gamma_words(BelowOne ? T(0.5) : T(1)).words;
  const auto& p = *static_cast<const gamma_parameters<T>*>(parameters);
  auto* out = static_cast<T*>(values);
  const auto* group = static_cast<const word_of<Kind>*>(words);
  for (std::size_t i = 0; i < count; ++i, group += group_words) {
    const auto unit = [&](std::size_t k) { return uniform_value<T>(group[k], p.unit); };
    T v = uniform_value<T>(group[0], p.symmetric);
    if constexpr (sizeof(T) == 8)
      v = math::refined<O>(v, unit(1), p.symmetric.scale);
    std::uint32_t own[4];
    own_words<word_of<Kind>, group_words>(group, own);
    const T value =
        math::gamma_marsaglia<O>(v, unit(normal_words<T>), unit(group_words - 1), own, p.constants);
    out[i] = p.accurate ? math::raised_to<O>(value, p.constants.displacement) : value;
  }
}

#else

// The lanes of a mask, one bit each.
template <class T>
HWY_INLINE std::uint64_t bits_of(typename vector_ops<T>::mask m) {
  std::uint8_t bytes[8] = {};
  hn::StoreMaskBits(vector_tag<T>(), m, bytes);
  std::uint64_t bits;
  std::memcpy(&bits, bytes, sizeof bits);
  return bits;
}

template <word_kind Kind, class T, bool BelowOne>
class gamma_chunk {
  using O = vector_ops<T>;
  using wide = vector_ops<double>;
  using word = word_of<Kind>;
  static constexpr std::size_t group_words = math::gamma_words(BelowOne ? T(0.5) : T(1)).words;
  static constexpr std::size_t width = vector_values<T>;
  static constexpr std::size_t wide_width = vector_values<double>;

 public:
  static constexpr std::size_t most = 512;

  HWY_INLINE gamma_chunk(const gamma_parameters<T>& p, const word* words, T* values, std::size_t count)
      : p_(p), words_(words), values_(values), count_(count) {}

  HWY_INLINE void make() {
    first_attempts();
    std::size_t rejected = test(undecided());
    for (std::uint32_t attempt = 1; rejected != 0 && attempt < math::gamma_attempts; ++attempt)
      rejected = further_attempt(rejected, attempt);
    for (std::size_t i = 0; i < rejected; ++i)
      values_[place_[i]] = static_cast<T>(math::gamma_wide_core<math::scalar_ops<double>>(0.0, p_.constants));
    if (BelowOne || p_.accurate)
      finish();
  }

  static constexpr std::size_t words_of(std::size_t values) { return values * group_words; }

 private:
  // body(i, converted words, lanes) for every vector of groups; lanes are fewer than the width at the end.
  template <class Body>
  HWY_INLINE void for_each_vector_of_groups(const Body& body) {
    vector<T> w[group_words];
    std::size_t i = 0;
    for (; i + width <= count_; i += width) {
      converted_groups<T>(words_ + i * group_words, w);
      body(i, w, width);
    }
    if (i < count_) {
      converted_last_groups<T>(words_ + i * group_words, count_ - i, w);
      body(i, w, count_ - i);
    }
  }

  HWY_INLINE void first_attempts() {
    const vector_tag<T> d;
    for_each_vector_of_groups(
        [&](std::size_t i, const vector<T>(&w)[group_words], std::size_t lanes) HVL_STREAMS_INLINE_LAMBDA {
          auto v = scaled<Kind, T>(w[0], p_.symmetric);
          if constexpr (sizeof(T) == 8)
            v = math::refined<O>(v, scaled<Kind, T>(w[1], p_.unit), p_.symmetric.scale);
          const auto u = scaled<Kind, T>(w[normal_words<T>], p_.unit);
          const auto e = math::erfinv<O>(v);
          const auto attempt = math::gamma_squeezed<O>(e, u, p_.constants);
          hn::Store(e, d, e_ + i);
          hn::Store(u, d, u_ + i);
          accepted_[i / 64] |= bits_of<T>(attempt.accepted) << i % 64;
          if (lanes == width)
            hn::StoreU(attempt.core, d, values_ + i);
          else
            store_some<T>(attempt.core, values_ + i, lanes);
        });
  }

  // The places that the squeeze has left undecided.
  HWY_INLINE std::size_t undecided() {
    std::size_t count = 0;
    for (std::size_t i = 0; i < count_; i += 64) {
      std::uint64_t open = ~accepted_[i / 64];
      if (count_ - i < 64)
        open &= (std::uint64_t{1} << (count_ - i)) - 1;
      for (; open != 0; open &= open - 1)
        place_[count++] = static_cast<std::uint32_t>(i) + static_cast<std::uint32_t>(__builtin_ctzll(open));
    }
    return count;
  }

  // Keeps the first `count` places that are rejected, and returns how many. A vector of doubles at a time: gather(lane,
  // place) for each of them, then accepted(places, lanes) is the mask.
  template <class Gather, class Accepted>
  HWY_INLINE std::size_t rejected_of(std::size_t count, const Gather& gather, const Accepted& accepted) {
    std::size_t kept = 0;
    for (std::size_t first = 0; first < count; first += wide_width) {
      const std::size_t lanes = HWY_MIN(wide_width, count - first);
      for (std::size_t k = 0; k < lanes; ++k)
        gather(k, place_[first + k]);
      std::uint64_t bits = bits_of<double>(accepted(place_ + first, lanes));
      for (std::size_t k = 0; k < lanes; ++k, bits >>= 1) {
        place_[kept] = place_[first + k];
        kept += ~bits & 1;
      }
    }
    return kept;
  }

  HWY_INLINE std::size_t test(std::size_t count) {
    const vector_tag<double> d;
    alignas(vector_alignment) double e[wide_width] = {}, u[wide_width] = {};
    return rejected_of(
        count,
        [&](std::size_t k, std::size_t at) HVL_STREAMS_INLINE_LAMBDA {
          e[k] = static_cast<double>(e_[at]);
          u[k] = static_cast<double>(u_[at]);
        },
        [&](const std::uint32_t*, std::size_t) HVL_STREAMS_INLINE_LAMBDA {
          return math::gamma_accepts<wide>(hn::Load(d, e), hn::Load(d, u), p_.constants);
        });
  }

  // Sets the core of every place, whether it is accepted or not.
  HWY_INLINE std::size_t further_attempt(std::size_t count, std::uint32_t attempt) {
    const vector_tag<double> d;
    alignas(vector_alignment) double v[wide_width] = {}, u[wide_width] = {}, core[wide_width];
    return rejected_of(
        count,
        [&](std::size_t k, std::size_t at) HVL_STREAMS_INLINE_LAMBDA {
          std::uint32_t own[4];
          own_words<word, group_words>(words_ + at * group_words, own);
          const math::gamma_uniforms r = math::gamma_attempt_uniforms(own, attempt);
          v[k] = r.v;
          u[k] = r.u;
        },
        [&](const std::uint32_t* places, std::size_t lanes) HVL_STREAMS_INLINE_LAMBDA {
          const auto e = math::erfinv<wide>(hn::Load(d, v));
          hn::Store(math::gamma_wide_core<wide>(e, p_.constants), d, core);
          for (std::size_t k = 0; k < lanes; ++k)
            values_[places[k]] = static_cast<T>(core[k]);
          return math::gamma_accepts<wide>(e, hn::Load(d, u), p_.constants);
        });
  }

  // The cores become values.
  HWY_INLINE void finish() {
    for_each_vector_of_groups(
        [&](std::size_t i, const vector<T>(&w)[group_words], std::size_t lanes) HVL_STREAMS_INLINE_LAMBDA {
          const vector_tag<T> d;
          alignas(vector_alignment) T core[width] = {};
          std::memcpy(core, values_ + i, lanes * sizeof(T));
          auto value = hn::Load(d, core);
          if constexpr (BelowOne)
            value = math::gamma_powered<O>(value, scaled<Kind, T>(w[group_words - 1], p_.unit), p_.constants);
          if (p_.accurate)
            value = math::raised_to<O>(value, p_.constants.displacement);
          store_some<T>(value, values_ + i, lanes);
        });
  }

  const gamma_parameters<T>& p_;
  const word* words_;
  T* values_;
  std::size_t count_;
  // of the first attempts; vectors write past the last one
  alignas(vector_alignment) T e_[most];
  alignas(vector_alignment) T u_[most];
  std::uint64_t accepted_[most / 64] = {};
  std::uint32_t place_[most];
};

template <word_kind Kind, class T, bool BelowOne>
void gamma(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  using chunk = gamma_chunk<Kind, T, BelowOne>;
  const auto& p = *static_cast<const gamma_parameters<T>*>(parameters);
  const auto* w = static_cast<const word_of<Kind>*>(words);
  auto* out = static_cast<T*>(values);
  for (std::size_t done = 0; done < count; done += chunk::most)
    chunk(p, w + chunk::words_of(done), out + done, HWY_MIN(chunk::most, count - done)).make();
}

#endif

} // namespace

transform_function gamma_transform(word_kind kind, bool below_one, precision p) noexcept {
  return for_kind_and_precision(kind, p, [&]<word_kind Kind, class T>() -> transform_function {
    return below_one ? gamma<Kind, T, true> : gamma<Kind, T, false>;
  });
}

} // namespace hvl::streams::HVL_STREAMS_ISA
