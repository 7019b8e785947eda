#include "offload/interop.hpp"

#include <hvl/core.h>
#include <hvl/omp_interop.h>

#include "service/native_handles.hpp"
#include "service/omp_runtime.hpp"

namespace kestro::hvl::rng::detail::openmp {

foreign_runtime foreign_runtime_of(void* interop, std::int32_t& status) {
  const auto runtime = static_cast<foreign_runtime>(
      kestro::hvl::gpu::hvl_omp_get_interop_int(interop, HVL_OMP_IPR_FR_ID, nullptr));
  switch (runtime) {
  case foreign_runtime::opencl:
  case foreign_runtime::sycl:
  case foreign_runtime::zerlin:
    status = 0;
    break;
  case foreign_runtime::none:
    status = -2;
    break;
  default:
    status = -1;
  }
  return runtime;
}

sycl::queue queue_of(void* interop) {
  return kestro::hvl::gpu::lookup_and_cache_qorin_queue_and_context(interop).queue;
}

bool hvl_tgt_ocl_use_usm() {
  char value[10];
  return hvl_serv_getenv("LIBOMPTARGET_OPENCL_USE_SVM", value, sizeof value) < 0 || value[0] != '1';
}

} // namespace kestro::hvl::rng::detail::openmp

sycl::queue hvl_vs_omp_get_openmp_queue(void* interop, int& status) {
  using namespace kestro::hvl::rng::detail::openmp;
  constexpr int no_queue = -4;
  foreign_runtime_of(interop, status);
  if (status == 0) {
    try {
      return queue_of(interop);
    } catch (...) {
      status = no_queue;
    }
  }
  return sycl::queue();
}
