// Lane i of the vectors in flight holds the output at position i; a step multiplies all of them by the power
// of the multiplier that carries each to the next granule. So outputs leave in order.
#include "simd/value_sink.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

const hn::ScalableTag<std::uint32_t> d32;
const hn::ScalableTag<std::uint64_t> d64;
using vec32 = hn::Vec<decltype(d32)>;
using vec64 = hn::Vec<decltype(d64)>;

// Products by one factor modulo 2^31 - 1. With the factor doubled, the high half of a lane's product is p >>
// 31 and its low half 2 (p & (2^31 - 1)).
class product31 {
 public:
  using vec = vec32;

  HWY_INLINE explicit product31(std::uint32_t factor)
      : doubled_(hn::BitCast(d32, hn::Set(d64, std::uint64_t{factor} * 2))),
        modulus_(hn::Set(d32, engines::mcg31m1::modulus)) {}

  HWY_INLINE vec32 operator()(vec32 x) const {
    const vec64 even = hn::MulEven(x, doubled_);
    const vec64 odd = hn::MulEven(hn::BitCast(d32, hn::ShiftRight<32>(hn::BitCast(d64, x))), doubled_);
    const vec32 high = hn::OddEven(hn::BitCast(d32, odd), hn::BitCast(d32, hn::ShiftRight<32>(even)));
    const vec32 low = hn::OddEven(hn::BitCast(d32, hn::ShiftLeft<32>(odd)), hn::BitCast(d32, even));
    const vec32 sum = hn::Add(high, hn::ShiftRight<1>(low));
    return hn::Min(sum, hn::Sub(sum, modulus_)); // a sum below the modulus wraps to something greater
  }

  static HWY_INLINE vec32 output(vec32 x) { return x; }

 private:
  vec32 doubled_;
  vec32 modulus_;
};

// Products by one factor modulo 2^64; the output keeps the low 59 bits.
class product59 {
 public:
  using vec = vec64;

  HWY_INLINE explicit product59(std::uint64_t factor) : factor_(hn::Set(d64, factor)) {
#if HWY_TARGET > HWY_AVX3
    factor_high_ = hn::ShiftRight<32>(factor_);
#endif
  }

  HWY_INLINE vec64 operator()(vec64 x) const {
#if HWY_TARGET <= HWY_AVX3
    return hn::Mul(x, factor_);
#else
    const auto low_halves = [](vec64 a, vec64 b) {
      return hn::MulEven(hn::BitCast(d32, a), hn::BitCast(d32, b));
    };
    const vec64 cross = hn::Add(low_halves(hn::ShiftRight<32>(x), factor_), low_halves(x, factor_high_));
    return hn::Add(low_halves(x, factor_), hn::ShiftLeft<32>(cross));
#endif
  }

  static HWY_INLINE vec64 output(vec64 x) {
    return hn::And(x, hn::Set(d64, engines::mcg59::mask));
  }

 private:
  vec64 factor_;
#if HWY_TARGET > HWY_AVX3
  vec64 factor_high_;
#endif
};

// Kind is how values read the words.
template <class Engine, class Product, word_kind Kind>
struct blocks {
  using word = typename Engine::word;
  using vec = typename Product::vec;
  static constexpr std::size_t in_flight = 8;
  static constexpr std::size_t lanes = hn::MaxLanes(hn::ScalableTag<word>());
  static constexpr std::size_t granule = in_flight * lanes;

  struct workspace {
    word position[granule]; // the next granule
    word step;              // carries a position to the next granule
  };

  static std::uint32_t open(const void* record, void* workspace_memory) noexcept {
    const auto& r = *static_cast<const typename Engine::record*>(record);
    auto& w = *static_cast<workspace*>(workspace_memory);
    // doubling: the first 1, 2, 4, ... positions give as many more
    w.position[0] = r.x;
    word power = r.a;
    for (std::size_t known = 1; known < granule; known *= 2) {
      for (std::size_t i = 0; i < known; ++i)
        w.position[known + i] = Engine::product(w.position[i], power);
      power = Engine::product(power, power);
    }
    w.step = power;
    return 0;
  }

  template <class Sink>
  static void run_to(const Sink& sink, workspace& w, std::size_t granules) noexcept {
    const hn::ScalableTag<word> d;
    const Product product(w.step);
    vec x[in_flight];
#pragma GCC unroll 8
    for (std::size_t v = 0; v < in_flight; ++v)
      x[v] = hn::LoadU(d, w.position + v * lanes);
    for (std::size_t at = 0; granules != 0; --granules, at += granule) {
#pragma GCC unroll 8
      for (std::size_t v = 0; v < in_flight; ++v) {
        sink(Product::output(x[v]), at + v * lanes);
        x[v] = product(x[v]);
      }
    }
#pragma GCC unroll 8
    for (std::size_t v = 0; v < in_flight; ++v)
      hn::StoreU(x[v], d, w.position + v * lanes);
  }

  static void run(void* workspace_memory, void* words, std::size_t granules) noexcept {
    auto* const out = static_cast<word*>(words);
    const auto store = [out](vec x, std::size_t at) { hn::StoreU(x, hn::ScalableTag<word>(), out + at); };
    run_to(store, *static_cast<workspace*>(workspace_memory), granules);
  }

  static void run_values(void* workspace_memory, void* out, std::size_t granules, const direct_values& values,
                         bool streaming) noexcept {
    auto& w = *static_cast<workspace*>(workspace_memory);
    with_sink<Kind>(out, values, streaming, [&](const auto& sink) { run_to(sink, w, granules); });
  }

  static constexpr block_kernel kernel = {
      granule, 1536 / granule* granule, granule, open, run, nullptr, run_values, true};
};

} // namespace

// Words below 2^31 are the same read as signed, which converts faster.
const block_kernel mcg31m1_blocks = blocks<engines::mcg31m1, product31, word_kind::signed32>::kernel;
const block_kernel mcg59_blocks = blocks<engines::mcg59, product59, word_kind::unsigned64>::kernel;

} // namespace hvl::streams::HVL_STREAMS_ISA
