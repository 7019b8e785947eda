#include "engines/mcg.hpp"

#include "framework/engine_instances.hpp"

namespace kestro::hvl::rng {

mcg31m1::mcg31m1(sycl::queue queue, std::uint32_t seed)
    : engine_base(queue, detail::make_engine_impl<mcg31m1>(queue, detail::engine_traits<mcg31m1>::identifier,
                                                           std::uint64_t{seed})) {}

mcg31m1::mcg31m1(sycl::queue queue, std::initializer_list<std::uint32_t> seed)
    : engine_base(queue, detail::make_engine_impl_of_words<mcg31m1>(queue, seed)) {}

mcg31m1::mcg31m1(sycl::queue queue, const std::vector<std::uint32_t>& words)
    : engine_base(queue, detail::make_engine_impl_of_words<mcg31m1>(queue, words)) {}

void mcg31m1::skip_ahead(std::uint64_t num_to_skip) {
  detail::engine_access::impl<mcg31m1>(*this, "skip_ahead").skip_ahead(num_to_skip);
}

void mcg31m1::leapfrog(std::uint64_t idx, std::uint64_t stride) {
  detail::engine_access::impl<mcg31m1>(*this, "leapfrog").leapfrog(idx, stride);
}

mcg59::mcg59(sycl::queue queue, std::uint64_t seed)
    : engine_base(queue,
                  detail::make_engine_impl<mcg59>(queue, detail::engine_traits<mcg59>::identifier, seed)) {}

// The state is one word of the engine, so the first element gives it on every device.
mcg59::mcg59(sycl::queue queue, std::initializer_list<std::uint64_t> seed)
    : mcg59(queue, seed.size() == 0 ? std::vector<std::uint32_t>()
                                    : std::vector{static_cast<std::uint32_t>(*seed.begin()),
                                                  static_cast<std::uint32_t>(*seed.begin() >> 32)}) {}

mcg59::mcg59(sycl::queue queue, const std::vector<std::uint32_t>& words)
    : engine_base(queue, detail::make_engine_impl_of_words<mcg59>(queue, words)) {}

void mcg59::skip_ahead(std::uint64_t num_to_skip) {
  detail::engine_access::impl<mcg59>(*this, "skip_ahead").skip_ahead(num_to_skip);
}

void mcg59::leapfrog(std::uint64_t idx, std::uint64_t stride) {
  detail::engine_access::impl<mcg59>(*this, "leapfrog").leapfrog(idx, stride);
}

} // namespace kestro::hvl::rng

KESTRO_HVL_INSTANTIATE_ENGINE(mcg31m1)
KESTRO_HVL_INSTANTIATE_ENGINE(mcg59)
