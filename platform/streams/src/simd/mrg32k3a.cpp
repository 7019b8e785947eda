// Every lane steps a stretch of the sequence of its own, the stretches lying side by side; a granule is
// transposed on its way out. Residues are signed and held in doubles: |x| < 2^31 and the multipliers are
// below 2^21, so a step's products and their sum stay below 2^53 and are exact, and subtracting the nearest
// multiple of the modulus is exact too.
#include "generators/mrg32k3a.hpp"

#include "simd/transpose.hpp"
#include "simd/value_sink.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

const hn::ScalableTag<double> dd;
using vec = hn::Vec<decltype(dd)>;

constexpr std::size_t lanes = hn::MaxLanes(hn::ScalableTag<double>());
constexpr std::size_t in_flight = 4;
constexpr std::size_t rows = lanes * in_flight;
constexpr std::size_t granule = 2048;
constexpr std::size_t columns = granule / rows; // the length of a lane's stretch
constexpr std::size_t tile = 2 * lanes;         // tile x tile words are transposed in registers

struct modulus {
  double m;
  double inverse;
};
constexpr modulus m1 = {4294967087.0, 1.0 / 4294967087.0};
constexpr modulus m2 = {4294944443.0, 1.0 / 4294944443.0};

// Nearest integer of a * b, |a * b| < 2^51: the sum with 1.5 * 2^52 has no fraction bits.
HWY_INLINE vec nearest_product(vec a, vec b) {
  const vec magic = hn::Set(dd, 6755399441055744.0);
  return hn::Sub(hn::MulAdd(a, b, magic), magic);
}

// The signed residue of |t| < 2^53.
HWY_INLINE vec reduced(vec t, modulus m) {
  const vec quotient = nearest_product(t, hn::Set(dd, m.inverse));
  return hn::NegMulAdd(quotient, hn::Set(dd, m.m), t);
}

// A number congruent to a * b with magnitude near m / 2, for |a| <= 2^31 and |b| <= 2^32: the product as a
// double and its error, the double then reduced exactly.
HWY_INLINE vec product_residue(vec a, vec b, modulus m) {
  const vec high = hn::Mul(a, b);
  const vec low = hn::MulSub(a, b, high);
  const vec quotient = nearest_product(high, hn::Set(dd, m.inverse));
  return hn::Add(hn::NegMulAdd(quotient, hn::Set(dd, m.m), high), low);
}

// Matrices as signed residues, one per row of the granule: entry e of row r at [e][r].
struct row_matrices {
  alignas(vector_alignment) double x[9][rows];
  alignas(vector_alignment) double y[9][rows];
};

struct jump_matrices {
  row_matrices to_row;     // from the start of a granule to the start of row r
  row_matrices to_granule; // from the end of row r to its start in the next granule
};

void set_matrix(row_matrices& to, std::size_t row, std::uint64_t steps) {
  double x[9];
  double y[9];
  mrg32k3a_centred_matrices(steps, x, y);
  for (std::size_t entry = 0; entry < 9; ++entry) {
    to.x[entry][row] = x[entry];
    to.y[entry][row] = y[entry];
  }
}

const jump_matrices& jumps() {
  static const jump_matrices* const matrices = [] {
    static jump_matrices built;
    for (std::size_t row = 0; row < rows; ++row) {
      set_matrix(built.to_row, row, row * columns);
      set_matrix(built.to_granule, row, granule - columns);
    }
    return &built;
  }();
  return *matrices;
}

struct component {
  alignas(vector_alignment) double value[3][rows]; // oldest first
};

struct workspace {
  component x;
  component y;
};

HWY_INLINE void multiply(component& c, const double (&matrix)[9][rows], modulus m) {
  for (std::size_t r = 0; r < rows; r += lanes) {
    const vec v[3] = {hn::Load(dd, c.value[0] + r), hn::Load(dd, c.value[1] + r),
                      hn::Load(dd, c.value[2] + r)};
    for (std::size_t i = 0; i < 3; ++i) {
      vec sum = product_residue(hn::Load(dd, matrix[3 * i] + r), v[0], m);
      sum = hn::Add(sum, product_residue(hn::Load(dd, matrix[3 * i + 1] + r), v[1], m));
      sum = hn::Add(sum, product_residue(hn::Load(dd, matrix[3 * i + 2] + r), v[2], m));
      hn::Store(reduced(sum, m), dd, c.value[i] + r);
    }
  }
}

std::uint32_t open(const void* record, void* workspace_memory) noexcept {
  const auto& r = *static_cast<const vqs_mrg32k3a_record*>(record);
  auto& w = *static_cast<workspace*>(workspace_memory);
  const std::uint32_t x[] = {r.x0, r.x1, r.x2};
  const std::uint32_t y[] = {r.y0, r.y1, r.y2};
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t row = 0; row < rows; row += lanes) {
      hn::Store(hn::Set(dd, static_cast<double>(x[i])), dd, w.x.value[i] + row);
      hn::Store(hn::Set(dd, static_cast<double>(y[i])), dd, w.y.value[i] + row);
    }
  multiply(w.x, jumps().to_row.x, m1);
  multiply(w.y, jumps().to_row.y, m2);
  return 0;
}

// The states of the lanes in registers.
struct lane_states {
  vec x[3][in_flight];
  vec y[3][in_flight];
};

using vec32 = hn::Vec<hn::ScalableTag<std::uint32_t>>;

// Two vectors of signed residues as 32-bit words in [0, m). (The conversion needs no saturation: |residue| < 2^31.)
HWY_INLINE vec32 canonical(vec low, vec high, std::uint32_t m) {
  const hn::ScalableTag<std::uint32_t> d;
#if HWY_TARGET <= HWY_AVX3
  const __m512i residue = _mm512_inserti64x4(_mm512_castsi256_si512(_mm512_cvttpd_epi32(low.raw)),
                                             _mm512_cvttpd_epi32(high.raw), 1);
  const __mmask16 negative = _mm512_movepi32_mask(residue);
  return vec32{_mm512_mask_add_epi32(residue, negative, residue, hn::Set(d, m).raw)};
#else
  const vec32 residue{_mm256_set_m128i(_mm256_cvttpd_epi32(high.raw), _mm256_cvttpd_epi32(low.raw))};
  const hn::ScalableTag<std::int32_t> di;
  const vec32 negative = hn::BitCast(d, hn::BroadcastSignBit(hn::BitCast(di, residue)));
  return hn::Add(residue, hn::And(negative, hn::Set(d, m)));
#endif
}

// Signed residues of the same 2 * lanes rows to outputs.
HWY_INLINE vec32 combined(vec x_low, vec x_high, vec y_low, vec y_high) {
  const hn::ScalableTag<std::uint32_t> d;
  const vec32 p = canonical(x_low, x_high, mrg32k3a_m1);
  const vec32 q = canonical(y_low, y_high, mrg32k3a_m2);
  return hn::Add(hn::Sub(p, q), hn::IfThenZeroElse(hn::Gt(p, q), hn::Set(d, mrg32k3a_m1)));
}

// One step of every lane: the oldest values, index `oldest`, are replaced by the new ones. Outputs go to
// out[0 .. rows).
template <std::size_t Oldest>
HWY_INLINE void step(lane_states& s, std::uint32_t* out) {
  constexpr std::size_t middle = (Oldest + 1) % 3;
  constexpr std::size_t newest = (Oldest + 2) % 3;
#pragma GCC unroll 4
  for (std::size_t v = 0; v < in_flight; ++v) {
    const vec tx = hn::MulSub(hn::Set(dd, engines::mrg32k3a::a12), s.x[middle][v],
                              hn::Mul(hn::Set(dd, engines::mrg32k3a::a13), s.x[Oldest][v]));
    const vec ty = hn::MulSub(hn::Set(dd, engines::mrg32k3a::a21), s.y[newest][v],
                              hn::Mul(hn::Set(dd, engines::mrg32k3a::a23), s.y[Oldest][v]));
    s.x[Oldest][v] = reduced(tx, m1);
    s.y[Oldest][v] = reduced(ty, m2);
  }
#pragma GCC unroll 2
  for (std::size_t v = 0; v < in_flight; v += 2)
    hn::Store(combined(s.x[Oldest][v], s.x[Oldest][v + 1], s.y[Oldest][v], s.y[Oldest][v + 1]),
              hn::ScalableTag<std::uint32_t>(), out + v * lanes);
}

HWY_INLINE void rotate(vec (&values)[3][in_flight]) {
#pragma GCC unroll 4
  for (std::size_t v = 0; v < in_flight; ++v) {
    const vec oldest = values[0][v];
    values[0][v] = values[1][v];
    values[1][v] = values[2][v];
    values[2][v] = oldest;
  }
}

// Puts out a granule, words `at` and on.
template <class Sink>
HWY_INLINE void one_granule(workspace& w, const Sink& sink, std::size_t at) {
  lane_states s;
#pragma GCC unroll 3
  for (std::size_t i = 0; i < 3; ++i)
#pragma GCC unroll 4
    for (std::size_t v = 0; v < in_flight; ++v) {
      s.x[i][v] = hn::Load(dd, w.x.value[i] + v * lanes);
      s.y[i][v] = hn::Load(dd, w.y.value[i] + v * lanes);
    }
  alignas(vector_alignment) std::uint32_t steps[tile][rows];
  for (std::size_t column = 0; column < columns; column += tile) {
    std::size_t i = 0;
    for (; i + 3 <= tile; i += 3) {
      step<0>(s, steps[i]);
      step<1>(s, steps[i + 1]);
      step<2>(s, steps[i + 2]);
    }
    for (; i < tile; ++i) {
      step<0>(s, steps[i]);
      rotate(s.x);
      rotate(s.y);
    }
    for (std::size_t row = 0; row < rows; row += tile)
      transpose_tile(&steps[0][row], rows, sink, at + row * columns + column, columns);
  }
#pragma GCC unroll 3
  for (std::size_t i = 0; i < 3; ++i)
#pragma GCC unroll 4
    for (std::size_t v = 0; v < in_flight; ++v) {
      hn::Store(s.x[i][v], dd, w.x.value[i] + v * lanes);
      hn::Store(s.y[i][v], dd, w.y.value[i] + v * lanes);
    }
}

template <class Sink>
void run_to(const Sink& sink, workspace& w, std::size_t granules) noexcept {
  for (std::size_t at = 0; granules != 0; --granules, at += granule) {
    one_granule(w, sink, at);
    multiply(w.x, jumps().to_granule.x, m1);
    multiply(w.y, jumps().to_granule.y, m2);
  }
}

static_assert(sizeof(workspace) <= workspace_bytes);

} // namespace

const block_kernel mrg32k3a_blocks = {
    granule,
    granule,
    400,
    open,
    run_words<workspace, word_kind::unsigned32>,
    nullptr,
    run_values<workspace, word_kind::unsigned32>,
    false,
};

} // namespace hvl::streams::HVL_STREAMS_ISA
