// What the instruction-set units offer to the rest of the library. The sources of src/simd and
// src/distributions are compiled once per instruction set, each time into the namespace HVL_STREAMS_ISA;
// nothing inline that is shared with other units may be defined there, or the linker could pick its AVX-512
// form for a machine without.
#pragma once

#include <cstddef>
#include <cstdint>

#include "continuous.hpp"
#include "engine.hpp"

namespace hvl::streams {

// Values that some block kernels write themselves, in one pass: the words, or words scaled to uniform reals.
enum class value_form : std::uint8_t { words, real32, real64 };
struct direct_values {
  value_form form;
  coefficients<float> single; // of real32
  coefficients<double> wide;  // of real64
};

// An engine's words at full speed, in whole granules. `open` reads a record into a workspace and returns how
// many leading words of the first granule lie before the record's position. Each `run` writes the next
// granules. `close` brings a record from where `open` read it to `words_taken` words further; null means that
// the engine's advance does it.
struct block_kernel {
  std::uint32_t granule_words;
  std::uint32_t block_words; // a multiple of granule_words that keeps words and values in L1
  std::uint32_t least_words; // below it the engine's draw is faster
  std::uint32_t (*open)(const void* record, void* workspace) noexcept;
  void (*run)(void* workspace, void* words, std::size_t granules) noexcept;
  void (*close)(const void* workspace, void* record, std::uint64_t words_taken) noexcept;
  // As run, a value to a word. Streaming output is aligned to vector_alignment.
  void (*run_values)(void* workspace, void* out, std::size_t granules, const direct_values& values,
                     bool streaming) noexcept;
  bool can_stream;                           // run_values fills line after line, so that it may stream
  bool (*is_supported)() noexcept = nullptr; // null: on every processor of the instruction set
};

inline constexpr std::size_t max_block_words = 2048;
inline constexpr std::size_t workspace_bytes = 4096;
inline constexpr std::size_t vector_alignment = 64;

// Turns words into `values` values. After the last word at least 128 readable bytes follow; nothing is
// written past the last value.
using transform_function = void (*)(const void* parameters, const void* words, void* values,
                                    std::size_t values_count) noexcept;

// Numbers, `vectors` times as many as the parameters' dimension, become values, in place.
using vector_function = void (*)(const void* parameters, void* values, std::size_t vectors) noexcept;

enum class uniform_result : std::uint8_t {
  real32,
  real64,
  real32_clamped,
  real64_clamped,
  int32_via_float,
  int32_via_double,
  uint32_via_float,
  uint32_via_double,
  high32,  // of mcg59: the high 32 of 59 bits
  packed64 // of mcg59: two consecutive high32, first one low
};

// T is the type of computation.
template <class T, class Value = T>
struct uniform_parameters {
  coefficients<T> affine;
  value_range<Value> range; // of the clamp
};

struct kernel_set {
  // Null where the engine's draw is the best there is.
  const block_kernel* (*block)(const engine& e) noexcept;
  // Parameters are uniform_parameters by the types of computation and result.
  transform_function (*uniform)(word_kind kind, uniform_result result) noexcept;
  // Parameters are those of continuous.hpp for the family and the precision.
  transform_function (*gaussian)(word_kind kind, gaussian_method method, precision p) noexcept;
  transform_function (*lognormal)(word_kind kind, lognormal_method method, bool accurate,
                                  precision p) noexcept;
  transform_function (*inverse_cdf)(word_kind kind, inverse_cdf_family family, bool accurate,
                                    precision p) noexcept;
  // Parameters are gamma_parameters.
  transform_function (*gamma)(word_kind kind, bool below_one, precision p) noexcept;
  // Parameters are beta_parameters.
  transform_function (*beta)(word_kind kind, precision p) noexcept;
  // Parameters are geometric_parameters.
  transform_function (*geometric)(word_kind kind) noexcept;
  // Parameters are negative_binomial_parameters.
  transform_function (*negative_binomial)(word_kind kind) noexcept;
  // Parameters are poisson_v_parameters.
  transform_function (*poisson_v)(word_kind kind) noexcept;
  // Parameters are rejection_parameters.
  transform_function (*rejection)(word_kind kind) noexcept;
  // Parameters are threshold_parameters.
  transform_function (*thresholds)(word_kind kind) noexcept;
  // Of standard normal numbers; parameters are gaussian_mv_parameters.
  vector_function (*gaussian_mv)(precision p) noexcept;
  // Of integers uniform on [-2^31, 2^31); parameters are multinomial_parameters.
  vector_function multinomial;
  // Copies past the caches, to an address and of a size that are multiples of vector_alignment; the stores need a fence
  // before another thread may rely on them.
  void (*stream_lines)(void* out, const void* in, std::size_t bytes) noexcept;
  // sum[j] = the exclusive or of sequence[unit i + j] over the set bits i of the polynomial, for 624 words.
  void (*xor_windows)(std::uint32_t* sum, const std::uint32_t* sequence, std::size_t unit,
                      const std::uint64_t* polynomial, std::size_t degree) noexcept;
  // Reduces a product of 2 `words` words modulo a polynomial of degree 64 `words`, from its top byte down: byte q there is
  // replaced by the exclusive or of rows q % 16 and 16 + q / 16, `words` words each. The lower half is the result.
  void (*fold_bytes)(std::uint64_t* product, const std::uint64_t* rows, std::size_t words) noexcept;
  // Copies the words of a row to `out`, and changes them by exclusive or.
  void (*next_row)(std::uint32_t* out, std::uint32_t* row, const std::uint32_t* change,
                   std::size_t words) noexcept;
};

namespace scalar {
extern const kernel_set kernels;
}
namespace avx2 {
extern const kernel_set kernels;
}
namespace avx512 {
extern const kernel_set kernels;
}

// For a value of hvl_serv_isa(); null when it is none.
const kernel_set* kernels_for(int isa) noexcept;

// For the instruction set in force, or the scalar ones where none can be.
const kernel_set& best_kernels() noexcept;

} // namespace hvl::streams
