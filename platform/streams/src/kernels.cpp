#include "simd/kernels.hpp"

#include "hvl/core.h"

namespace hvl::streams {

const kernel_set* kernels_for(int isa) noexcept {
  switch (isa) {
  case HVL_ISA_SCALAR:
    return &scalar::kernels;
  case HVL_ISA_AVX2:
    return &avx2::kernels;
  case HVL_ISA_AVX512:
    return &avx512::kernels;
  default:
    return nullptr;
  }
}

const kernel_set& best_kernels() noexcept {
  const kernel_set* const best = kernels_for(hvl_serv_isa());
  return best != nullptr ? *best : scalar::kernels;
}

} // namespace hvl::streams
