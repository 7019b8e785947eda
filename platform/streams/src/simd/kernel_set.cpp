#include "simd/isa.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {

namespace {

#if !defined(HVL_STREAMS_ISA_IS_SCALAR) && HWY_TARGET <= HWY_AVX3
constexpr const kernel_set& narrower = avx2::kernels;
#else
constexpr const kernel_set& narrower = scalar::kernels;
#endif

} // namespace

const block_kernel* block_kernel_of(const engine& e) noexcept {
  const block_kernel* kernel = nullptr;
  switch (e.identifier) {
#define HVL_ENGINE(name)                                                                                     \
  case engines::name::about.identifier:                                                                      \
    kernel = &name##_blocks;                                                                                 \
    break;
#include "hvl/engines.def"
#undef HVL_ENGINE
  }
  if (kernel == nullptr || kernel->is_supported == nullptr || kernel->is_supported())
    return kernel;
  return narrower.block(e);
}

const kernel_set kernels = {block_kernel_of,
                            uniform_transform,
                            gaussian_transform,
                            lognormal_transform,
                            inverse_cdf_transform,
                            gamma_transform,
                            beta_transform,
                            geometric_transform,
                            negative_binomial_transform,
                            poisson_v_transform,
                            rejection_transform,
                            thresholds_transform,
                            gaussian_mv_function,
                            multinomial,
                            stream_lines,
                            xor_windows,
                            fold_bytes,
                            next_row};

} // namespace hvl::streams::HVL_STREAMS_ISA
