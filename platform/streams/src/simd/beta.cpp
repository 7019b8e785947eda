// The beta distribution: first attempts in one pass, further ones of the values that it left open together behind it.
#include "beta.hpp"

#include <hvl/math/transforms/words.hpp>

#include "simd/attempt_words.hpp"
#include "simd/value_loops.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

#ifdef HVL_STREAMS_ISA_IS_SCALAR

template <word_kind Kind, class T>
void beta(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  const auto& p = *static_cast<const beta_parameters*>(parameters);
  const auto* w = static_cast<const word_of<Kind>*>(words);
  auto* out = static_cast<T*>(values);
  for (std::size_t i = 0; i < count; ++i, w += 2) {
    const std::uint32_t own[2] = {raw(w[0]), raw(w[1])};
    out[i] = static_cast<T>(math::beta_cheng_johnk<vector_ops<double>>(uniform_value<double>(w[0], p.unit),
                                                                       uniform_value<double>(w[1], p.unit),
                                                                       p.unit.scale, own, p.constants));
  }
}

#else

template <word_kind Kind, class T>
void attempts(const void* words, T* values, std::size_t count, coefficients<double> unit,
              const math::beta_constants& c) {
  for_each_of_pair<double>(
      values, count, unit_loader<Kind, double>(words, unit),
      [&, c]<class O>(typename O::value u1, typename O::value u2)
          HVL_STREAMS_INLINE_LAMBDA { return math::beta_attempt<O>(u1, u2, unit.scale, c); });
}

constexpr coefficients<double> hash_unit = uniform_coefficients(word_scale::signed32, 0.0, 1.0);

// A value that is still open is NaN.
template <word_kind Kind, class T>
class beta_chunk {
  using word = word_of<Kind>;
  static constexpr std::size_t width = vector_values<std::uint64_t>;

 public:
  static constexpr std::size_t most = 1024;

  HWY_INLINE beta_chunk(const beta_parameters& p, const word* words, T* values, std::size_t count)
      : p_(p), words_(words), values_(values), count_(count) {}

  HWY_INLINE void make() {
    attempts<Kind>(words_, values_, count_, p_.unit, p_.constants);
    std::size_t open = find_open();
    for (std::uint32_t attempt = 1; open != 0 && attempt < math::beta_attempts; ++attempt)
      open = further_attempt(open, attempt);
    for (std::size_t i = 0; i < open; ++i)
      values_[place_[i]] = static_cast<T>(math::beta_of_mode<math::scalar_ops<double>>(p_.constants));
  }

 private:
  HWY_INLINE std::size_t find_open() {
    const vector_tag<T> d;
    constexpr std::size_t values_to_vector = vector_values<T>;
    std::size_t found = 0, i = 0;
    for (; i + values_to_vector <= count_; i += values_to_vector)
      for (std::uint64_t bits = bits_of<T>(hn::IsNaN(hn::LoadU(d, values_ + i))); bits != 0; bits &= bits - 1)
        place_[found++] = static_cast<std::uint32_t>(i) + static_cast<std::uint32_t>(__builtin_ctzll(bits));
    for (; i < count_; ++i)
      if (values_[i] != values_[i])
        place_[found++] = static_cast<std::uint32_t>(i);
    return found;
  }

  // Of the first `open` places; returns how many stay open, which then are the first ones.
  HWY_INLINE std::size_t further_attempt(std::size_t open, std::uint32_t attempt) {
    const vector_tag<std::uint64_t> d;
    for (std::size_t first = 0; first < open; first += width) {
      alignas(vector_alignment) std::uint64_t own[width] = {};
      for (std::size_t k = 0; k < HWY_MIN(width, open - first); ++k)
        own[k] = own_pair(words_ + 2 * place_[first + k]);
      hn::Store(attempt_word_pairs(hn::Load(d, own), attempt, math::beta_hash_key).first, d, hashed_ + first);
    }
    attempts<word_kind::signed32>(hashed_, made_, open, hash_unit, p_.constants);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < open; ++i) {
      const std::uint32_t place = place_[i];
      values_[place] = made_[i];
      place_[kept] = place;
      kept += made_[i] != made_[i];
    }
    return kept;
  }

  const beta_parameters& p_;
  const word* words_;
  T* values_;
  std::size_t count_;
  std::uint32_t place_[most];
  alignas(vector_alignment) std::uint64_t hashed_[most + 16]; // loads reach behind the last pair
  T made_[most];
};

template <word_kind Kind, class T>
void beta(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  using chunk = beta_chunk<Kind, T>;
  const auto& p = *static_cast<const beta_parameters*>(parameters);
  const auto* w = static_cast<const word_of<Kind>*>(words);
  auto* out = static_cast<T*>(values);
  for (std::size_t made; count != 0; count -= made, out += made, w += 2 * made) {
    made = HWY_MIN(chunk::most, count);
    chunk(p, w, out, made).make();
  }
}

#endif

} // namespace

transform_function beta_transform(word_kind kind, precision p) noexcept {
  return for_kind_and_precision(
      kind, p, []<word_kind Kind, class T>() -> transform_function { return beta<Kind, T>; });
}

} // namespace hvl::streams::HVL_STREAMS_ISA
