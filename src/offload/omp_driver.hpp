#pragma once

#include <cstdint>
#include <utility>

#include "offload/catch_and_report.hpp"
#include "offload/completion.hpp"
#include "offload/generator.hpp"
#include "offload/interop.hpp"

namespace kestro::hvl::rng::detail::openmp {

/// Generates and has the completion told. When it throws nothing is in flight and no completion will be told.
template <class Distribution>
void run(const Distribution& distribution, vqs_stream stream, std::int64_t n,
         typename Distribution::result_type* r, void* interop, foreign_runtime runtime) {
  sycl::queue queue = queue_of(interop);
  auto numbers = create_generator(queue, stream, distribution);
  shared_virtual_memory mapping(queue, runtime, r, values_of(distribution, n), sizeof(*r));
  if (mapping.is_used())
    numbers->depends_on(mapping.ready());
  sycl::event event = numbers->generate(n, r);
  try {
    if (runtime == foreign_runtime::opencl)
      tell_opencl(mapping.release_after(event), interop, std::move(numbers));
    else
      tell_zerlin(event, interop, std::move(numbers));
  } catch (...) {
    event.wait();
    throw;
  }
}

/// The common body of the entry points; a status of kestro/hvl/offload.h.
template <class Distribution>
std::int32_t omp_driver(const Distribution& distribution, vqs_stream stream, std::int64_t n,
                        typename Distribution::result_type* r, void* interop) noexcept {
  std::int32_t status = 0;
  const foreign_runtime runtime = foreign_runtime_of(interop, status);
  if (status != 0)
    return status;
  return catch_and_report([&] { run(distribution, stream, n, r, interop, runtime); });
}

} // namespace kestro::hvl::rng::detail::openmp
