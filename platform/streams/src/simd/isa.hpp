// First include of every source that is compiled once per instruction set. HVL_STREAMS_ISA names the
// namespace: scalar has no vectors, avx2 and avx512 use Highway's static target for the unit's flags.
#pragma once

#ifndef HVL_STREAMS_ISA
#error "this source is compiled once per instruction set, with HVL_STREAMS_ISA defined"
#endif

#include "simd/kernels.hpp"

#ifndef HVL_STREAMS_ISA_IS_SCALAR
#include <hwy/highway.h>
#endif

namespace hvl::streams::HVL_STREAMS_ISA {

const block_kernel* block_kernel_of(const engine& e) noexcept;
transform_function uniform_transform(word_kind kind, uniform_result result) noexcept;
transform_function gaussian_transform(word_kind kind, gaussian_method method, precision p) noexcept;
transform_function lognormal_transform(word_kind kind, lognormal_method method, bool accurate,
                                       precision p) noexcept;
transform_function inverse_cdf_transform(word_kind kind, inverse_cdf_family family, bool accurate,
                                         precision p) noexcept;
transform_function gamma_transform(word_kind kind, bool below_one, precision p) noexcept;
vector_function gaussian_mv_function(precision p) noexcept;
void multinomial(const void* parameters, void* values, std::size_t vectors) noexcept;
transform_function beta_transform(word_kind kind, precision p) noexcept;
transform_function geometric_transform(word_kind kind) noexcept;
transform_function negative_binomial_transform(word_kind kind) noexcept;
transform_function poisson_v_transform(word_kind kind) noexcept;
transform_function rejection_transform(word_kind kind) noexcept;
transform_function thresholds_transform(word_kind kind) noexcept;
void stream_lines(void* out, const void* in, std::size_t bytes) noexcept;
void xor_windows(std::uint32_t* sum, const std::uint32_t* sequence, std::size_t unit,
                 const std::uint64_t* polynomial, std::size_t degree) noexcept;
void fold_bytes(std::uint64_t* product, const std::uint64_t* rows, std::size_t words) noexcept;

void next_row(std::uint32_t* out, std::uint32_t* row, const std::uint32_t* change,
              std::size_t words) noexcept;

// Weak: an engine without a source in src/simd has none, and its address is null.
#define HVL_ENGINE(name) extern const block_kernel name##_blocks __attribute__((weak));
#include "hvl/engines.def"
#undef HVL_ENGINE

} // namespace hvl::streams::HVL_STREAMS_ISA
