#include "simd/isa.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {

const block_kernel* block_kernel_of([[maybe_unused]] engine_index e) noexcept {
#ifndef HVL_STREAMS_ISA_IS_SCALAR
  switch (e) {
  case engine_index::philox4x32x10:
    return &philox4x32x10_blocks;
  default:
    break;
  }
#endif
  return nullptr;
}

const kernel_set kernels = {block_kernel_of, uniform_transform, stream_copy, xor_windows};

} // namespace hvl::streams::HVL_STREAMS_ISA
