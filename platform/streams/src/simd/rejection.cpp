// Transformed rejection: first attempts in one pass, further ones of the values that it rejected together behind it.
#include "rejection.hpp"

#include <hvl/math/transforms/words.hpp>

#include "simd/attempt_words.hpp"

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
  using S = math::scalar_ops<double>;
  using word = word_of<Kind>;
  static constexpr std::size_t width = vector_values<double>;
  static constexpr std::size_t at_once = 2 * vector_values<float>; // in bounds, which are long chains

 public:
  static constexpr std::size_t most = 1024;

  HWY_INLINE rejection_chunk(const rejection_parameters& p, const word* words, std::int32_t* values,
                             std::size_t count)
      : p_(p), words_(words), values_(values), count_(count) {}

  HWY_INLINE void make() {
    first_attempts();
    for (std::uint32_t attempt = 1; open_ != 0 && attempt < math::transformed_rejection_attempts; ++attempt)
      further_attempts(attempt);
    for (std::size_t i = 0; i < open_; ++i)
      values_[place_[i]] = static_cast<std::int32_t>(math::rejection_result<S>(p_.law.mode));
  }

 private:
  using integers = hn::Half<vector_tag<std::int32_t>>;
  using half_floats = hn::Half<vector_tag<float>>;

  // Sets what the bounds of the attempts from i on are made of, and gives their values.
  HWY_INLINE hn::Vec<integers> propose(std::size_t i, vector<double> u, const math::rejection_law& law) {
    const half_floats d;
    const auto proposal = math::rejection_proposed<O>(u, O::set(0.0), law);
    hn::Store(hn::DemoteTo(d, proposal.k - O::set(law.mode)), d, distance_ + i);
    hn::Store(hn::DemoteTo(d, proposal.quotient), d, quotient_ + i);
    return hn::DemoteTo(integers(), math::rejection_result<O>(proposal.k));
  }

  // Calls rejected(i, bits) with the bits of those among the attempts from i on that are, for all `count`. accepts(i) is
  // the test of one that the bounds leave undecided.
  template <class Accepts, class Rejected>
  HWY_INLINE void decide(std::size_t count, const Accepts& accepts, const Rejected& rejected) {
    using F = two_vectors_ops<float>;
    const vector_tag<float> d;
    const math::rejection_curve curve = p_.curve; // a copy stays in registers
    const auto two = [&](const float* at) HVL_STREAMS_INLINE_LAMBDA {
      return F::value{hn::Load(d, at), hn::Load(d, at + at_once / 2)};
    };
    const auto bits = [](F::mask m) HVL_STREAMS_INLINE_LAMBDA {
      return bits_of<float>(m.a) | bits_of<float>(m.b) << at_once / 2;
    };
    for (std::size_t i = 0; i < count; i += at_once) {
      const auto bounds = math::rejection_bounds_of<F>(two(distance_ + i), two(quotient_ + i), curve);
      const auto v = two(v_ + i);
      const std::uint64_t valid = ~std::uint64_t{0} >> (64 - HWY_MIN(at_once, count - i));
      std::uint64_t accepted = bits(F::lt(v, bounds.least)) & valid;
      std::uint64_t undecided = bits(F::lt(v, bounds.greatest)) & valid & ~accepted;
      for (; HWY_UNLIKELY(undecided != 0); undecided &= undecided - 1) {
        const int lane = __builtin_ctzll(undecided);
        accepted |= std::uint64_t{accepts(i + static_cast<std::size_t>(lane))} << lane;
      }
      rejected(i, accepted ^ valid);
    }
  }

  HWY_INLINE void first_attempts() {
    const math::rejection_law law = p_.law; // a copy stays in registers
    const coefficients<float> unit = {static_cast<float>(p_.unit.scale), static_cast<float>(p_.unit.shift)};
    for (std::size_t i = 0; i < count_; i += 2 * width) {
      const std::size_t values = HWY_MIN(2 * width, count_ - i);
      const word* const words = words_ + i * group_words;
      vector<float> single[group_words];
      converted_groups<Kind, float>(words, values, single);
      hn::Store(scaled<Kind, float>(single[1], unit), vector_tag<float>(), v_ + i);
      for (std::size_t h = 0; h < values; h += width) {
        vector<double> w[group_words];
        converted_groups<Kind, double>(words + h * group_words, HWY_MIN(width, values - h), w);
        const auto k = propose(i + h, scaled<Kind, double>(w[0], p_.centred), law);
        if (values - h >= width) {
          hn::StoreU(k, integers(), values_ + i + h);
        } else {
          alignas(vector_alignment) std::int32_t tail[width];
          hn::Store(k, integers(), tail);
          std::memcpy(values_ + i + h, tail, (values - h) * sizeof(*tail));
        }
      }
    }
    const auto accepts = [&](std::size_t place) HVL_STREAMS_INLINE_LAMBDA {
      const word* const group = words_ + place * group_words;
      std::uint32_t own[group_words];
      own_words(group, own);
      const double v = uniform_value<double>(group[1], p_.unit);
      const auto first = math::rejection_proposed<S>(uniform_value<double>(group[0], p_.centred), v, p_.law);
      return math::rejection_first_accepted<S>(first, v, p_.unit.scale, own, p_.law);
    };
    decide(count_, accepts, [&](std::size_t i, std::uint64_t rejected) HVL_STREAMS_INLINE_LAMBDA {
      const vector_tag<std::uint32_t> d;
      for (std::size_t k = 0; k < at_once; k += at_once / 2, rejected >>= at_once / 2) {
        const auto places = hn::Iota(d, static_cast<std::uint32_t>(i + k));
        const std::uint64_t bits = rejected & ((std::uint64_t{1} << at_once / 2) - 1);
        hn::StoreU(hn::Compress(places, mask_of_bits(bits)), d, place_ + open_);
        open_ += static_cast<std::size_t>(__builtin_popcountll(bits));
      }
    });
  }

  static HWY_INLINE hn::Mask<vector_tag<std::uint32_t>> mask_of_bits(std::uint64_t bits) {
    return hn::LoadMaskBits(vector_tag<std::uint32_t>(), reinterpret_cast<const std::uint8_t*>(&bits));
  }

  // Sets the value of every open place, whether it is accepted or not.
  HWY_INLINE void further_attempts(std::uint32_t number) {
    const vector_tag<std::uint64_t> d;
    for (std::size_t i = 0; i < open_; ++i)
      own_[i] = own_pair(words_ + place_[i] * group_words);
    for (std::size_t i = 0; i < open_; i += width) {
      const attempt_pairs hash =
          attempt_word_pairs(hn::Load(d, own_ + i), number, math::transformed_rejection_hash_key);
      hn::Store(hn::DemoteTo(half_floats(), rough_v_of(hash.second)), half_floats(), v_ + i);
      hn::Store(propose(i, u_of(hash.first), p_.law), integers(), made_ + i);
    }
    std::size_t kept = 0;
    const auto accepts = [&](std::size_t i) HVL_STREAMS_INLINE_LAMBDA {
      std::uint32_t own[group_words];
      own_words(words_ + place_[i] * group_words, own);
      const math::rejection_uniforms r = math::rejection_attempt_uniforms(own, number);
      const auto proposal = math::rejection_proposed<S>(r.u, r.v, p_.law);
      return proposal.squeezed || math::rejection_accepts<S>(proposal, r.v, p_.law);
    };
    decide(open_, accepts, [&](std::size_t first, std::uint64_t rejected) HVL_STREAMS_INLINE_LAMBDA {
      const std::size_t end = HWY_MIN(first + at_once, open_);
      for (std::size_t i = first; i < end; ++i, rejected >>= 1) {
        const std::uint32_t place = place_[i];
        values_[place] = made_[i];
        place_[kept] = place;
        kept += rejected & 1;
      }
    });
    open_ = kept;
  }

  // As rejection_attempt_uniforms has u, and v but for its second word.
  static HWY_INLINE vector<double> u_of(vector<std::uint64_t> pair) {
    const vector_tag<double> d;
    const auto bits = hn::BitCast(vector_tag<std::int64_t>(), hn::RotateRight<32>(pair));
    return hn::Mul(hn::ConvertTo(d, bits), hn::Set(d, 0x1p-64));
  }

  static HWY_INLINE vector<double> rough_v_of(vector<std::uint64_t> pair) {
    const vector_tag<std::uint64_t> d;
    return low_half_to_double<std::uint32_t>(hn::And(pair, hn::Set(d, 0xFFFFFFFFu))) * O::set(0x1p-32);
  }

  const rejection_parameters& p_;
  const word* words_;
  std::int32_t* values_;
  std::size_t count_;
  // of the attempts
  alignas(vector_alignment) float distance_[most];
  alignas(vector_alignment) float quotient_[most];
  alignas(vector_alignment) float v_[most];
  alignas(vector_alignment) std::int32_t made_[most];
  // of the values that are open
  std::uint32_t place_[most + at_once];
  std::size_t open_ = 0;
  alignas(vector_alignment) std::uint64_t own_[most];
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
