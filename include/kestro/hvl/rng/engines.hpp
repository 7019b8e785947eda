#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

#include "detail/engine_base.hpp"

namespace kestro::hvl::rng {

/// Common to all engines: an engine is made on a queue, and only there. Making one on a device that is
/// neither a CPU nor a GPU throws `unsupported_device`. One engine must not be used from two threads at once;
/// two engines are independent. Work in flight is safe: an engine may be copied, skipped, used again or
/// destroyed before the events of its earlier calls have completed, and its calls take effect in call order.
///
/// Every engine can be seeded from a `std::vector` of 32-bit words, which is the way to seed from run-time data (a rank,
/// a job's number, the entropy of a device): every word is read, and the engine is the same on every device.

/// Counter-based engine of J. K. Salmon et al., "Parallel random numbers: as easy as 1, 2, 3" (SC 2011): ten
/// rounds over a 128-bit counter under a 64-bit key; period 2^130 words. Skipping costs the same for any
/// distance.
class KESTRO_HVL_API philox4x32x10 : public detail::engine_base<philox4x32x10> {
 public:
  /// The seed is the key: k0 its low, k1 its high word; the counter starts at 0.
  philox4x32x10(sycl::queue queue, std::uint64_t seed);

  /// The words fill k0, k1, c0, c1, c2, c3 in order; missing words are 0, further ones are ignored.
  philox4x32x10(sycl::queue queue, const std::vector<std::uint32_t>& words);

  /// NOT THE SAME ON EVERY DEVICE: prefer the constructor above. The list is read as 32-bit words, low word of each
  /// element first, but a CPU device takes only as many of them as the list has elements, that is half, where a GPU
  /// device takes all. So `{42, rank}` gives every rank the same numbers on a CPU device; `{seed}` has a key of 32 bits
  /// there.
  philox4x32x10(sycl::queue queue, std::initializer_list<std::uint64_t> seed);

  /// Advances by `num_to_skip` 32-bit words. Constant cost.
  void skip_ahead(std::uint64_t num_to_skip);

  /// Advances by num_to_skip[0] + 2^64 num_to_skip[1] words, modulo the period.
  void skip_ahead(std::initializer_list<std::uint64_t> num_to_skip);
};

/// Counter-based engine of the same paper, ARS4x32 with five rounds: AES rounds over a 128-bit counter under a 128-bit key;
/// period 2^130 words. The fastest engine on processors with AES instructions. Skipping costs the same for any distance.
class KESTRO_HVL_API ars5 : public detail::engine_base<ars5> {
 public:
  /// The seed is the lower half of the key; all else starts at 0.
  ars5(sycl::queue queue, std::uint64_t seed);

  /// The words fill the key and then the counter, from their least words up; missing words are 0, further ones (beyond
  /// eight) are ignored.
  ars5(sycl::queue queue, const std::vector<std::uint32_t>& words);

  /// NOT THE SAME ON EVERY DEVICE, as that of `philox4x32x10`: prefer the constructor above.
  ars5(sycl::queue queue, std::initializer_list<std::uint64_t> seed);

  /// As those of `philox4x32x10`.
  void skip_ahead(std::uint64_t num_to_skip);
  void skip_ahead(std::initializer_list<std::uint64_t> num_to_skip);
};

/// How `mrg32k3a` orders its sequence; fixed at construction and carried by copies.
namespace mrg32k3a_mode {

/// The one sequence of the recurrence.
struct standard {};

/// 81920 substreams, each 2^76 steps from the next, taken in turn: value j of a row comes from substream j.
/// On a GPU every work-item then steps through its own substream and needs no skip. Offers `uniform` and
/// `gaussian` (box_muller and icdf).
struct optimal {};

/// As `optimal`, with the given number of substreams; 0 means 81920.
struct custom {
  std::uint32_t num_streams;
};

} // namespace mrg32k3a_mode

/// Combined multiple-recursive engine of P. L'Ecuyer, "Good parameters and implementations for combined
/// multiple recursive random number generators" (Operations Research 47, 1999); period about 2^191.
class KESTRO_HVL_API mrg32k3a : public detail::engine_base<mrg32k3a> {
 public:
  /// One seed is spread: the words of the state, as the list below gives them, are successive outputs of SplitMix64
  /// (G. L. Steele, D. Lea, C. H. Flood, "Fast splittable pseudorandom number generators", OOPSLA 2014) started at
  /// the seed, modulo m1 and m2. So neighbouring seeds give unrelated streams.
  mrg32k3a(sycl::queue queue, std::uint32_t seed);
  mrg32k3a(sycl::queue queue, std::uint32_t seed, mrg32k3a_mode::optimal mode);
  mrg32k3a(sycl::queue queue, std::uint32_t seed, mrg32k3a_mode::custom mode);

  /// The state itself: the words are x0, x1, x2 modulo m1 = 2^32 - 209, then y0, y1, y2 modulo m2 = 2^32 - 22853. Missing words
  /// are 1, further ones are ignored; a component of three zeros gets a first word of 1.
  mrg32k3a(sycl::queue queue, const std::vector<std::uint32_t>& words);
  mrg32k3a(sycl::queue queue, const std::vector<std::uint32_t>& words, mrg32k3a_mode::optimal mode);
  mrg32k3a(sycl::queue queue, const std::vector<std::uint32_t>& words, mrg32k3a_mode::custom mode);
  mrg32k3a(sycl::queue queue, std::initializer_list<std::uint32_t> seed);
  mrg32k3a(sycl::queue queue, std::initializer_list<std::uint32_t> seed, mrg32k3a_mode::optimal mode);
  mrg32k3a(sycl::queue queue, std::initializer_list<std::uint32_t> seed, mrg32k3a_mode::custom mode);

  /// Advances the recurrence by `num_to_skip` steps (in the substream modes every substream by as many).
  /// Cost grows with the logarithm of the distance.
  void skip_ahead(std::uint64_t num_to_skip);

  /// Advances by num_to_skip[0] + 2^64 num_to_skip[1] + 2^128 num_to_skip[2] + ... steps.
  void skip_ahead(std::initializer_list<std::uint64_t> num_to_skip);
};

/// Multiplicative congruential engine modulo 2^31 - 1 with multiplier 1132489760 (P. L'Ecuyer, "Tables of
/// linear congruential generators of different sizes and good lattice structure", 1999); period 2^31 - 2.
class KESTRO_HVL_API mcg31m1 : public detail::engine_base<mcg31m1> {
 public:
  /// The first value is z modulo (2^31 - 2), plus 1, with z the first output of SplitMix64 started at the seed.
  mcg31m1(sycl::queue queue, std::uint32_t seed);

  /// The state itself: the first value is words[0] + 2^32 words[1] modulo 2^31 - 1, where 0 becomes 1. Missing words are
  /// 0, further ones are ignored.
  mcg31m1(sycl::queue queue, const std::vector<std::uint32_t>& words);
  mcg31m1(sycl::queue queue, std::initializer_list<std::uint32_t> seed);

  /// Advances by `num_to_skip` values. Cost grows with the logarithm of the distance.
  void skip_ahead(std::uint64_t num_to_skip);

  /// From now on yields elements idx, idx + stride, idx + 2 stride, ... of the sequence as it stands.
  void leapfrog(std::uint64_t idx, std::uint64_t stride);
};

/// Multiplicative congruential engine modulo 2^59 with multiplier 13^13; period 2^57 for an odd state.
class KESTRO_HVL_API mcg59 : public detail::engine_base<mcg59> {
 public:
  /// The first value is z modulo 2^59 with its lowest bit set, z the first output of SplitMix64 started at the seed.
  mcg59(sycl::queue queue, std::uint64_t seed);

  /// The state itself: the first value is words[0] + 2^32 words[1] modulo 2^59, where 0 becomes 1. Missing words are 0,
  /// further ones are ignored.
  mcg59(sycl::queue queue, const std::vector<std::uint32_t>& words);

  /// The same from the first element, on every device; further elements are ignored.
  mcg59(sycl::queue queue, std::initializer_list<std::uint64_t> seed);

  /// As `mcg31m1::skip_ahead`.
  void skip_ahead(std::uint64_t num_to_skip);

  /// As `mcg31m1::leapfrog`.
  void leapfrog(std::uint64_t idx, std::uint64_t stride);
};

/// Four multiplicative congruential components whose fractions are added up modulo 1 (B. A. Wichmann and I. D. Hill 1982,
/// N. M. Maclaren 1989); 273 members with moduli and multipliers of their own, for as many independent sequences. The
/// members are this library's own: found under the paper's conditions, they are not those of other tables. Words have 32
/// bits, and are not offered as `uniform_bits`.
class KESTRO_HVL_API wichmann_hill : public detail::engine_base<wichmann_hill> {
 public:
  /// How many members there are.
  static constexpr std::uint32_t members = 273;

  /// Member 0, or the given one. The seed is spread by SplitMix64. Throws `invalid_argument` ("engine_idx is out of range
  /// [0, 273)").
  wichmann_hill(sycl::queue queue, std::uint64_t seed);
  wichmann_hill(sycl::queue queue, std::uint64_t seed, std::uint32_t engine_idx);

  /// The state itself: one word for each component, modulo its modulus, where 0 becomes 1. Missing words are 1, further
  /// ones are ignored.
  wichmann_hill(sycl::queue queue, const std::vector<std::uint32_t>& words);
  wichmann_hill(sycl::queue queue, const std::vector<std::uint32_t>& words, std::uint32_t engine_idx);
  wichmann_hill(sycl::queue queue, std::initializer_list<std::uint32_t> seed);
  wichmann_hill(sycl::queue queue, std::initializer_list<std::uint32_t> seed, std::uint32_t engine_idx);

  /// Advances by `num_to_skip` words. Cost grows with the logarithm of the distance.
  void skip_ahead(std::uint64_t num_to_skip);

  /// As that of `mcg31m1`.
  void leapfrog(std::uint64_t idx, std::uint64_t stride);
};

/// Mersenne Twister of M. Matsumoto and T. Nishimura (ACM TOMACS 8, 1998); period 2^19937 - 1. On a GPU
/// device the state lives in device memory.
class KESTRO_HVL_API mt19937 : public detail::engine_base<mt19937> {
 public:
  /// The authors' `init_genrand`.
  mt19937(sycl::queue queue, std::uint32_t seed);

  /// The authors' `init_by_array`; without any word, `init_genrand` of 5489.
  mt19937(sycl::queue queue, const std::vector<std::uint32_t>& words);
  mt19937(sycl::queue queue, std::initializer_list<std::uint32_t> seed);

  /// Advances by `num_to_skip` words. Far skips cost a jump polynomial, that is, some milliseconds at most.
  void skip_ahead(std::uint64_t num_to_skip);
};

/// Mersenne Twisters of 2203 bits, period 2^2203 - 1 each (M. Matsumoto and T. Nishimura, "Dynamic creation of
/// pseudorandom number generators", Monte Carlo and Quasi-Monte Carlo Methods 1998): 6024 members with a recurrence and a
/// tempering of their own, for as many independent sequences. The parameters are this library's own: found by the
/// paper's search, they are not those of other tables. Callers cannot skip. On a GPU device the state lives in device memory.
class KESTRO_HVL_API mt2203 : public detail::engine_base<mt2203> {
 public:
  /// How many members there are.
  static constexpr std::uint32_t members = 6024;

  /// Member 0, or the given one; as the list of the seed's two words, the low one first. Throws `invalid_argument`
  /// ("engine_idx is out of range [0, 6024)").
  mt2203(sycl::queue queue, std::uint64_t seed);
  mt2203(sycl::queue queue, std::uint64_t seed, std::uint32_t engine_idx);

  /// Several members, seeded as one by one, whose values are dealt in turn: with k of them, value j of the sequence is the
  /// next one of member engine_idx[j % k]. (Where a method makes two values at once, the pairs are dealt.) An index is in
  /// the list once. Such an engine cannot be saved; on a device as many work-items generate as it has members.
  mt2203(sycl::queue queue, std::uint64_t seed, const std::vector<std::uint32_t>& engine_idx);

  /// The authors' `init_by_array` for 69 words, with the member's index added to the list.
  mt2203(sycl::queue queue, const std::vector<std::uint32_t>& words);
  mt2203(sycl::queue queue, const std::vector<std::uint32_t>& words, std::uint32_t engine_idx);
  mt2203(sycl::queue queue, std::initializer_list<std::uint32_t> seed);
  mt2203(sycl::queue queue, std::initializer_list<std::uint32_t> seed, std::uint32_t engine_idx);
};

/// Generalised feedback shift register of S. Kirkpatrick and E. P. Stoll (Journal of Computational Physics 40, 1981):
/// x(n) = x(n - 103) xor x(n - 250), period 2^250 - 1. Some libraries compute x(n - 147) instead of x(n - 103), which is
/// this sequence read backwards. Outputs at the distances 0, 103 and 250 are dependent: it is there to reproduce earlier
/// work, not to begin new. Callers cannot skip, and words are not offered as `uniform_bits`.
class KESTRO_HVL_API r250 : public detail::engine_base<r250> {
 public:
  /// The seed is spread by SplitMix64; 32 words are then given a diagonal of set bits with cleared ones above, so that
  /// the 32 bits of a word are linearly independent for ever.
  r250(sycl::queue queue, std::uint64_t seed);

  /// The state itself, oldest word first: all 250 words as they are where they span all 32 bits, and with that diagonal
  /// otherwise. Missing words are spread from those given, further ones are ignored.
  r250(sycl::queue queue, const std::vector<std::uint32_t>& words);
  r250(sycl::queue queue, std::initializer_list<std::uint32_t> seed);
};

/// SIMD-oriented Fast Mersenne Twister of M. Saito and M. Matsumoto (Monte Carlo and Quasi-Monte Carlo Methods 2006); period
/// a multiple of 2^19937 - 1. On a GPU device the state lives in device memory.
class KESTRO_HVL_API sfmt19937 : public detail::engine_base<sfmt19937> {
 public:
  /// The authors' `init_gen_rand`; above 2^32 `init_by_array` of the seed's two words, the low one first.
  sfmt19937(sycl::queue queue, std::uint64_t seed);

  /// The authors' `init_by_array`.
  sfmt19937(sycl::queue queue, const std::vector<std::uint32_t>& words);
  sfmt19937(sycl::queue queue, std::initializer_list<std::uint32_t> seed);

  /// As `mt19937::skip_ahead`.
  void skip_ahead(std::uint64_t num_to_skip);
};

/// Quasi-random points of I. M. Sobol' (1967) in up to 21201 dimensions, with the direction numbers of S. Joe and F. Y. Kuo
/// (2008, criterion D6), 32 bits, in the order of the Gray code; after 2^32 points they begin anew. Words are the
/// coordinates of a point after those of the one before, w for w / 2^32. The first point is the origin: who wants to leave
/// it out skips as many words as there are dimensions. Distributions whose methods take one word a value (`uniform`, and
/// all by inverse CDF) keep the evenness of the points; methods that take several words of a point for a value, such as
/// box_muller, lose it. Not offered as `uniform_bits`.
class KESTRO_HVL_API sobol : public detail::engine_base<sobol> {
 public:
  /// Throws `invalid_argument` ("dimensions is out of range [1, 21201]").
  sobol(sycl::queue queue, std::uint32_t dimensions);

  /// The number of dimensions and then the caller's own direction numbers, taken as they are: 32 for each dimension, whose
  /// highest bit counts for 1/2. Without them as above; without any word one dimension. Throws `invalid_argument`
  /// ("words").
  sobol(sycl::queue queue, const std::vector<std::uint32_t>& words);
  sobol(sycl::queue queue, std::initializer_list<std::uint32_t> words);

  /// Advances by `num_to_skip` words. Constant cost.
  void skip_ahead(std::uint64_t num_to_skip);
};

/// Quasi-random points of H. Niederreiter (1988) in base 2 and up to 4720 dimensions, as P. Bratley, B. L. Fox and
/// H. Niederreiter (1992) have them, with the irreducible polynomials in the order of degree and value. All else as for
/// `sobol`.
class KESTRO_HVL_API niederreiter : public detail::engine_base<niederreiter> {
 public:
  /// Throws `invalid_argument` ("dimensions is out of range [1, 4720]").
  niederreiter(sycl::queue queue, std::uint32_t dimensions);

  /// The number of dimensions and then an irreducible polynomial over GF(2) for each, all different, the coefficient of x^i
  /// at bit i. Without them as above; without any word one dimension. Throws `invalid_argument` ("words").
  niederreiter(sycl::queue queue, const std::vector<std::uint32_t>& words);
  niederreiter(sycl::queue queue, std::initializer_list<std::uint32_t> words);

  /// As that of `sobol`.
  void skip_ahead(std::uint64_t num_to_skip);
};

} // namespace kestro::hvl::rng
