#include "simd/isa.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {

const block_kernel* block_kernel_of([[maybe_unused]] engine_index e) noexcept {
#ifndef HVL_STREAMS_ISA_IS_SCALAR
  switch (e) {
#define HVL_STREAMS_ENGINE(name, id)                                                                         \
  case engine_index::name:                                                                                   \
    return &name##_blocks;
#include "engines.def"
#undef HVL_STREAMS_ENGINE
  case engine_index::count:
    break;
  }
#endif
  return nullptr;
}

const kernel_set kernels = {block_kernel_of,     uniform_transform,     gaussian_transform,
                            lognormal_transform, inverse_cdf_transform, gamma_transform,
                            geometric_transform, stream_lines,          xor_windows};

} // namespace hvl::streams::HVL_STREAMS_ISA
