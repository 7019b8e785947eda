// The gamma distribution: first attempts in one pass, those that the squeeze leaves undecided together behind it.
#include "gamma.hpp"

#include <hvl/math/transforms/inverse_cdf.hpp>
#include <hvl/math/transforms/words.hpp>

#include "simd/gamma_rejects.hpp"
#include "simd/value_loops.hpp"
#include "simd/word_groups.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

#ifdef HVL_STREAMS_ISA_IS_SCALAR

template <word_kind Kind, class T, bool BelowOne>
void gamma(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  using O = vector_ops<T>;
  constexpr math::word_use use = math::gamma_words<T>(BelowOne);
  const auto& p = *static_cast<const gamma_parameters<T>*>(parameters);
  auto* out = static_cast<T*>(values);
  const auto* group = static_cast<const word_of<Kind>*>(words);
  for (std::size_t i = 0; i < count; i += use.values, group += use.words) {
    const auto unit = [&](std::size_t k) { return uniform_value<T>(group[k], p.unit); };
    T e[2];
    if constexpr (sizeof(T) == 4) {
      e[0] = math::erfinv<O>(uniform_value<T>(group[0], p.symmetric));
    } else {
      const auto pair = math::gamma_normal_pair<O>(unit(0), unit(1), p.unit.scale);
      e[0] = pair.sine;
      e[1] = pair.cosine;
    }
    std::uint32_t own[use.words];
    own_words(group, own);
    for (std::uint32_t k = 0; k < use.values && i + k < count; ++k) {
      const T value = math::gamma_marsaglia<O>(e[k], unit(use.values + k), unit(use.words - use.values + k),
                                               own, k, p.constants);
      out[i + k] = p.accurate ? math::raised_to<O>(value, p.constants.displacement) : value;
    }
  }
}

#else

template <word_kind Kind, class T, bool BelowOne>
class gamma_chunk {
  using O = vector_ops<T>;
  using word = word_of<Kind>;
  static constexpr math::word_use use = math::gamma_words<T>(BelowOne);
  static constexpr std::size_t per_group = use.values;
  static constexpr std::size_t width = vector_values<T>;

 public:
  static constexpr std::size_t most_groups = 1024 / per_group;
  static constexpr std::size_t most = most_groups * per_group;

  HWY_INLINE gamma_chunk(const gamma_parameters<T>& p, const word* words, T* values, std::size_t count)
      : p_(p), words_(words), values_(values), count_(count), groups_((count + per_group - 1) / per_group) {}

  HWY_INLINE void make() {
    first_attempts();
    for (std::size_t k = 0; k < per_group; ++k)
      rejects_.open(k * most_groups, (count_ - k + per_group - 1) / per_group);
    rejects_.make(
        p_.constants,
        [&](std::size_t place, std::uint32_t attempt) HVL_STREAMS_INLINE_LAMBDA {
          std::uint32_t own[use.words];
          own_words(words_ + place % most_groups * use.words, own);
          const auto which = static_cast<std::uint32_t>(place / most_groups);
          return math::gamma_attempt_uniforms(own, which, attempt);
        },
        [&](std::size_t place, double core)
            HVL_STREAMS_INLINE_LAMBDA { *value_at(place) = static_cast<T>(core); });
    if (BelowOne || p_.accurate)
      finish();
  }

 private:
  // A value's place is its group's number plus most_groups times its number in the group.
  HWY_INLINE T* value_at(std::size_t place) const {
    return values_ + place % most_groups * per_group + place / most_groups;
  }

  // body(first group, words, groups) for every vector of groups; they do not fill the last one.
  template <class Body>
  HWY_INLINE void for_each_vector_of_groups(const Body& body) {
    vector<T> w[use.words];
    for (std::size_t i = 0; i < groups_; i += width) {
      const std::size_t groups = HWY_MIN(width, groups_ - i);
      converted_groups<Kind, T>(words_ + i * use.words, groups, w);
      body(i, w);
    }
  }

  HWY_INLINE vector<T> unit(vector<T> w) const { return scaled<Kind, T>(w, p_.unit); }

  // The values of the groups from `first` on, vector k the k-th of each group.
  HWY_INLINE void store_values(std::size_t first, const vector<T> (&v)[per_group]) {
    T* const at = values_ + first * per_group;
    const std::size_t count = count_ - first * per_group;
    if (count >= width * per_group) {
      store_groups(v, at);
      return;
    }
    alignas(vector_alignment) T tail[width * per_group];
    store_groups(v, tail);
    std::memcpy(at, tail, count * sizeof(T));
  }

  static HWY_INLINE void store_groups(const vector<T> (&v)[per_group], T* at) {
    const vector_tag<T> d;
    if constexpr (per_group == 1)
      hn::StoreU(v[0], d, at);
    else
      hn::StoreInterleaved2(v[0], v[1], d, at);
  }

  HWY_INLINE void first_attempts() {
    const math::gamma_constants<T> constants = p_.constants; // a copy stays in registers
    for_each_vector_of_groups([&](std::size_t i, const vector<T>(&w)[use.words]) HVL_STREAMS_INLINE_LAMBDA {
      vector<T> e[per_group], core[per_group];
      if constexpr (per_group == 1) {
        e[0] = math::erfinv<O>(scaled<Kind, T>(w[0], p_.symmetric));
      } else {
        const auto pair = math::gamma_normal_pair<O>(unit(w[0]), unit(w[1]), p_.unit.scale);
        e[0] = pair.sine;
        e[1] = pair.cosine;
      }
      for (std::size_t k = 0; k < per_group; ++k) {
        const std::size_t place = k * most_groups + i;
        const auto u = unit(w[per_group + k]);
        const auto attempt = math::gamma_squeezed<O>(e[k], u, constants);
        core[k] = attempt.core;
        rejects_.attempted(place, e[k], u, attempt.accepted);
      }
      store_values(i, core);
    });
  }

  // The cores become values.
  HWY_INLINE void finish() {
    const vector_tag<T> d;
    for_each_vector_of_groups([&](std::size_t i, const vector<T>(&w)[use.words]) HVL_STREAMS_INLINE_LAMBDA {
      alignas(vector_alignment) T core[width * per_group] = {};
      std::memcpy(core, values_ + i * per_group,
                  HWY_MIN(width * per_group, count_ - i * per_group) * sizeof(T));
      vector<T> v[per_group];
      if constexpr (per_group == 1)
        v[0] = hn::Load(d, core);
      else
        hn::LoadInterleaved2(d, core, v[0], v[1]);
      for (std::size_t k = 0; k < per_group; ++k) {
        if constexpr (BelowOne)
          v[k] = math::gamma_powered<O>(v[k], unit(w[use.words - per_group + k]), p_.constants);
        if (p_.accurate)
          v[k] = math::raised_to<O>(v[k], p_.constants.displacement);
      }
      store_values(i, v);
    });
  }

  const gamma_parameters<T>& p_;
  const word* words_;
  T* values_;
  std::size_t count_;
  std::size_t groups_;
  gamma_rejects<T, most> rejects_; // by place
};

template <word_kind Kind, class T, bool BelowOne>
void gamma(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  using chunk = gamma_chunk<Kind, T, BelowOne>;
  const auto& p = *static_cast<const gamma_parameters<T>*>(parameters);
  const auto* w = static_cast<const word_of<Kind>*>(words);
  auto* out = static_cast<T*>(values);
  constexpr std::size_t chunk_words = chunk::most_groups * math::gamma_words<T>(BelowOne).words;
  for (std::size_t made; count != 0; count -= made, out += made, w += chunk_words) {
    made = HWY_MIN(chunk::most, count);
    chunk(p, w, out, made).make();
  }
}

#endif

} // namespace

transform_function gamma_transform(word_kind kind, bool below_one, precision p) noexcept {
  return for_kind_and_precision(kind, p, [&]<word_kind Kind, class T>() -> transform_function {
    return below_one ? gamma<Kind, T, true> : gamma<Kind, T, false>;
  });
}

} // namespace hvl::streams::HVL_STREAMS_ISA
