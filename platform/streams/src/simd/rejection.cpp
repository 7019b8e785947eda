// Transformed rejection: first attempts in one pass, those that the squeeze leaves undecided together behind it.
#include "rejection.hpp"

#include <hvl/math/transforms/words.hpp>

#include "simd/open_places.hpp"
#include "simd/word_groups.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

constexpr std::size_t group_words = math::transformed_rejection_words.words;

#ifdef HVL_STREAMS_ISA_IS_SCALAR

template <word_kind Kind>
void rejection(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  using O = math::scalar_ops<double>;
  const auto& p = *static_cast<const rejection_parameters*>(parameters);
  auto* out = static_cast<std::int32_t*>(values);
  const auto* group = static_cast<const word_of<Kind>*>(words);
  for (std::size_t i = 0; i < count; ++i, group += group_words) {
    std::uint32_t own[group_words];
    own_words(group, own);
    const double k =
        math::rejection_value<O>(uniform_value<double>(group[0], p.centred),
                                 uniform_value<double>(group[1], p.unit), p.unit.scale, own, p.law);
    out[i] = static_cast<std::int32_t>(math::rejection_result<O>(k));
  }
}

#else

template <word_kind Kind>
class rejection_chunk {
  using O = vector_ops<double>;
  using word = word_of<Kind>;
  static constexpr std::size_t width = vector_values<double>;

 public:
  static constexpr std::size_t most = 1024;

  HWY_INLINE rejection_chunk(const rejection_parameters& p, const word* words, std::int32_t* values,
                             std::size_t count)
      : p_(p), words_(words), values_(values), count_(count) {}

  HWY_INLINE void make() {
    first_attempts();
    open_.open(0, count_);
    test();
    for (std::uint32_t attempt = 1; !open_.empty() && attempt < math::transformed_rejection_attempts;
         ++attempt)
      further_attempt(attempt);
    for (const std::uint32_t place : open_)
      values_[place] =
          static_cast<std::int32_t>(math::rejection_result<math::scalar_ops<double>>(p_.law.mode));
  }

 private:
  using integers = hn::Half<vector_tag<std::int32_t>>;

  static HWY_INLINE hn::Vec<integers> result(vector<double> k) {
    return hn::DemoteTo(integers(), math::rejection_result<O>(k));
  }

  HWY_INLINE void first_attempts() {
    const vector_tag<double> d;
    const math::rejection_law law = p_.law; // a copy stays in registers
    vector<double> w[group_words];
    for (std::size_t i = 0; i < count_; i += width) {
      const std::size_t values = HWY_MIN(width, count_ - i);
      converted_groups<Kind, double>(words_ + i * group_words, values, w);
      const auto u = scaled<Kind, double>(w[0], p_.centred);
      const auto v = scaled<Kind, double>(w[1], p_.unit);
      const auto proposal = math::rejection_proposed<O>(u, v, law);
      hn::Store(u, d, u_ + i);
      hn::Store(v, d, v_ + i);
      open_.accept(i, bits_of<double>(proposal.squeezed));
      if (values == width) {
        hn::StoreU(result(proposal.k), integers(), values_ + i);
      } else {
        alignas(vector_alignment) std::int32_t tail[width];
        hn::Store(result(proposal.k), integers(), tail);
        std::memcpy(values_ + i, tail, values * sizeof(*tail));
      }
    }
  }

  HWY_INLINE void own_words_at(std::size_t place, std::uint32_t (&own)[group_words]) const {
    own_words(words_ + place * group_words, own);
  }

  HWY_INLINE void test() {
    const vector_tag<double> d;
    alignas(vector_alignment) double u[width] = {}, v[width] = {};
    open_.decide(
        [&](std::size_t k, std::size_t place) HVL_STREAMS_INLINE_LAMBDA {
          double part = 0.5;
          if (HWY_UNLIKELY(v_[place] < math::rejection_coarse_v)) {
            std::uint32_t own[group_words];
            own_words_at(place, own);
            part = math::rejection_refinement(own);
          }
          u[k] = u_[place];
          v[k] = math::refined<math::scalar_ops<double>>(v_[place], part, p_.unit.scale);
        },
        [&](const std::uint32_t*, std::size_t) HVL_STREAMS_INLINE_LAMBDA {
          const auto second = hn::Load(d, v);
          return bits_of<double>(math::rejection_accepts<O>(
              math::rejection_proposed<O>(hn::Load(d, u), second, p_.law), second, p_.law));
        });
  }

  // Sets the value of every open place, whether it is accepted or not.
  HWY_INLINE void further_attempt(std::uint32_t attempt) {
    const vector_tag<double> d;
    alignas(vector_alignment) double u[width], v[width];
    alignas(vector_alignment) std::uint32_t own[group_words][width] = {};
    alignas(vector_alignment) std::int32_t made[width];
    open_.decide(
        [&](std::size_t k, std::size_t place) HVL_STREAMS_INLINE_LAMBDA {
          for (std::size_t w = 0; w < group_words; ++w)
            own[w][k] = raw(words_[place * group_words + w]);
        },
        [&](const std::uint32_t* places, std::size_t lanes) HVL_STREAMS_INLINE_LAMBDA {
          for (std::size_t k = 0; k < width; ++k) { // of all lanes, so that they are hashed in vectors
            const std::uint32_t words[group_words] = {own[0][k], own[1][k]};
            const math::rejection_uniforms r = math::rejection_attempt_uniforms(words, attempt);
            u[k] = r.u;
            v[k] = r.v;
          }
          const auto second = hn::Load(d, v);
          const auto proposal = math::rejection_proposed<O>(hn::Load(d, u), second, p_.law);
          hn::Store(result(proposal.k), integers(), made);
          for (std::size_t k = 0; k < lanes; ++k)
            values_[places[k]] = made[k];
          return bits_of<double>(proposal.squeezed) |
                 bits_of<double>(math::rejection_accepts<O>(proposal, second, p_.law));
        });
  }

  const rejection_parameters& p_;
  const word* words_;
  std::int32_t* values_;
  std::size_t count_;
  // of the first attempts
  alignas(vector_alignment) double u_[most];
  alignas(vector_alignment) double v_[most];
  open_places<most> open_;
};

template <word_kind Kind>
void rejection(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  in_chunks<rejection_chunk<Kind>>(*static_cast<const rejection_parameters*>(parameters),
                                   static_cast<const word_of<Kind>*>(words),
                                   static_cast<std::int32_t*>(values), count, group_words);
}

#endif

} // namespace

transform_function rejection_transform(word_kind kind) noexcept {
  return for_kind(kind, []<word_kind Kind>() -> transform_function { return rejection<Kind>; });
}

} // namespace hvl::streams::HVL_STREAMS_ISA
