#include "engines/mrg32k3a.hpp"

#include "framework/engine_instances.hpp"

namespace kestro::hvl::rng {
namespace {

using impl_ptr = std::unique_ptr<detail::engine_base_impl<mrg32k3a>>;

impl_ptr make(const sycl::queue& queue, std::uint32_t seed) {
  return detail::make_engine_impl<mrg32k3a>(queue, detail::about<mrg32k3a>.identifier, std::uint64_t{seed});
}

impl_ptr make(const sycl::queue& queue, std::initializer_list<std::uint32_t> seed) {
  return detail::make_engine_impl<mrg32k3a>(queue, detail::about<mrg32k3a>.identifier,
                                            static_cast<std::int64_t>(seed.size()), seed.begin());
}

impl_ptr with_mode(impl_ptr impl, mrg32k3a_mode::optimal mode) {
  impl->extension().mode = mode;
  return impl;
}

impl_ptr with_mode(impl_ptr impl, mrg32k3a_mode::custom mode) {
  impl->extension().mode = mode;
  impl->extension().custom_count = mode.num_streams;
  return impl;
}

} // namespace

mrg32k3a::mrg32k3a(sycl::queue queue, std::uint32_t seed) : engine_base(queue, make(queue, seed)) {}

mrg32k3a::mrg32k3a(sycl::queue queue, std::uint32_t seed, mrg32k3a_mode::optimal mode)
    : engine_base(queue, with_mode(make(queue, seed), mode)) {}

mrg32k3a::mrg32k3a(sycl::queue queue, std::uint32_t seed, mrg32k3a_mode::custom mode)
    : engine_base(queue, with_mode(make(queue, seed), mode)) {}

mrg32k3a::mrg32k3a(sycl::queue queue, std::initializer_list<std::uint32_t> seed)
    : engine_base(queue, make(queue, seed)) {}

mrg32k3a::mrg32k3a(sycl::queue queue, std::initializer_list<std::uint32_t> seed, mrg32k3a_mode::optimal mode)
    : engine_base(queue, with_mode(make(queue, seed), mode)) {}

mrg32k3a::mrg32k3a(sycl::queue queue, std::initializer_list<std::uint32_t> seed, mrg32k3a_mode::custom mode)
    : engine_base(queue, with_mode(make(queue, seed), mode)) {}

void mrg32k3a::skip_ahead(std::uint64_t num_to_skip) {
  detail::engine_access::impl<mrg32k3a>(*this, "skip_ahead").skip_ahead(num_to_skip);
}

void mrg32k3a::skip_ahead(std::initializer_list<std::uint64_t> num_to_skip) {
  detail::engine_access::impl<mrg32k3a>(*this, "skip_ahead").skip_ahead(num_to_skip);
}

} // namespace kestro::hvl::rng

KESTRO_HVL_INSTANTIATE_ENGINE(mrg32k3a)
