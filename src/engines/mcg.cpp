#include "framework/engine_instances.hpp"

namespace kestro::hvl::rng {

mcg31m1::mcg31m1(sycl::queue queue, std::uint32_t seed)
    : engine_base(queue, detail::make_engine_impl<mcg31m1>(queue, detail::about<mcg31m1>.identifier,
                                                           std::uint64_t{seed})) {}

void mcg31m1::skip_ahead(std::uint64_t num_to_skip) {
  detail::engine_access::impl<mcg31m1>(*this, "skip_ahead").skip_ahead(num_to_skip);
}

void mcg31m1::leapfrog(std::uint64_t idx, std::uint64_t stride) {
  detail::engine_access::impl<mcg31m1>(*this, "leapfrog").leapfrog(idx, stride);
}

mcg59::mcg59(sycl::queue queue, std::uint64_t seed)
    : engine_base(queue, detail::make_engine_impl<mcg59>(queue, detail::about<mcg59>.identifier, seed)) {}

void mcg59::skip_ahead(std::uint64_t num_to_skip) {
  detail::engine_access::impl<mcg59>(*this, "skip_ahead").skip_ahead(num_to_skip);
}

void mcg59::leapfrog(std::uint64_t idx, std::uint64_t stride) {
  detail::engine_access::impl<mcg59>(*this, "leapfrog").leapfrog(idx, stride);
}

} // namespace kestro::hvl::rng

KESTRO_HVL_INSTANTIATE_ENGINE(mcg31m1)
KESTRO_HVL_INSTANTIATE_ENGINE(mcg59)
