// The exported functions: four for each line of the table.
#include "offload/distributions.hpp"
#include "offload/entry.hpp"

#include <kestro/hvl/detail/parameter_list.h>

using namespace kestro::hvl::rng;
using kestro::hvl::rng::detail::openmp::offload;

#define KESTRO_HVL_OFFLOAD(tag, Name, name, result, parameters, ...)                                         \
  std::int32_t hvl_vqs_##tag##Rng##Name##_omp_offload_ilp64(                                                 \
      std::int64_t method, void* stream, std::int64_t n, result* r KESTRO_HVL_BY_VALUE(parameters),          \
      void* interop) noexcept {                                                                              \
    return offload<__VA_ARGS__>(method, stream, n, r, interop KESTRO_HVL_NAMES(parameters));                 \
  }                                                                                                          \
  std::int32_t hvl_vqs_##tag##Rng##Name##_omp_offload_lp64(                                                  \
      std::int32_t method, void* stream, std::int32_t n, result* r KESTRO_HVL_BY_VALUE(parameters),          \
      void* interop) noexcept {                                                                              \
    return offload<__VA_ARGS__>(method, stream, n, r, interop KESTRO_HVL_NAMES(parameters));                 \
  }                                                                                                          \
  std::int32_t hvl_vqs_##tag##rng##name##_omp_offload(                                                       \
      const std::int64_t* method, void* const* stream, const std::int64_t* n,                                \
      result* r KESTRO_HVL_BY_ADDRESS(parameters), void* interop) noexcept {                                 \
    return hvl_vqs_##tag##Rng##Name##_omp_offload_ilp64(*method, *stream, *n,                                \
                                                        r KESTRO_HVL_VALUES(parameters), interop);           \
  }                                                                                                          \
  std::int32_t hvl_vqs_##tag##rng##name##_omp_offload_lp64(                                                  \
      const std::int32_t* method, void* const* stream, const std::int32_t* n,                                \
      result* r KESTRO_HVL_BY_ADDRESS(parameters), void* interop) noexcept {                                 \
    return hvl_vqs_##tag##Rng##Name##_omp_offload_lp64(*method, *stream, *n,                                 \
                                                       r KESTRO_HVL_VALUES(parameters), interop);            \
  }
#include <kestro/hvl/detail/offload.def>
#undef KESTRO_HVL_OFFLOAD
