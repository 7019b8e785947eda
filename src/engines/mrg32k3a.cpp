#include "engines/mrg32k3a.hpp"

#include "framework/engine_instances.hpp"

namespace kestro::hvl::rng {
namespace {

auto make(const sycl::queue& queue, std::uint32_t seed, const detail::mrg32k3a_any_mode& mode = {}) {
  auto impl = detail::make_engine_impl<mrg32k3a>(queue, detail::engine_traits<mrg32k3a>::identifier,
                                                 std::uint64_t{seed});
  set_mode(impl->stream(), mode);
  return impl;
}

template <class Words>
auto make_of_words(const sycl::queue& queue, const Words& words, const detail::mrg32k3a_any_mode& mode = {}) {
  auto impl = detail::make_engine_impl_of_words<mrg32k3a>(queue, words);
  set_mode(impl->stream(), mode);
  return impl;
}

} // namespace

mrg32k3a::mrg32k3a(sycl::queue queue, std::uint32_t seed) : engine_base(queue, make(queue, seed)) {}

mrg32k3a::mrg32k3a(sycl::queue queue, std::uint32_t seed, mrg32k3a_mode::optimal mode)
    : engine_base(queue, make(queue, seed, mode)) {}

mrg32k3a::mrg32k3a(sycl::queue queue, std::uint32_t seed, mrg32k3a_mode::custom mode)
    : engine_base(queue, make(queue, seed, mode)) {}

mrg32k3a::mrg32k3a(sycl::queue queue, std::initializer_list<std::uint32_t> seed)
    : engine_base(queue, make_of_words(queue, seed)) {}

mrg32k3a::mrg32k3a(sycl::queue queue, std::initializer_list<std::uint32_t> seed, mrg32k3a_mode::optimal mode)
    : engine_base(queue, make_of_words(queue, seed, mode)) {}

mrg32k3a::mrg32k3a(sycl::queue queue, std::initializer_list<std::uint32_t> seed, mrg32k3a_mode::custom mode)
    : engine_base(queue, make_of_words(queue, seed, mode)) {}

mrg32k3a::mrg32k3a(sycl::queue queue, const std::vector<std::uint32_t>& words)
    : engine_base(queue, make_of_words(queue, words)) {}

mrg32k3a::mrg32k3a(sycl::queue queue, const std::vector<std::uint32_t>& words, mrg32k3a_mode::optimal mode)
    : engine_base(queue, make_of_words(queue, words, mode)) {}

mrg32k3a::mrg32k3a(sycl::queue queue, const std::vector<std::uint32_t>& words, mrg32k3a_mode::custom mode)
    : engine_base(queue, make_of_words(queue, words, mode)) {}

void mrg32k3a::skip_ahead(std::uint64_t num_to_skip) {
  detail::engine_access::impl<mrg32k3a>(*this, "skip_ahead").skip_ahead(num_to_skip);
}

void mrg32k3a::skip_ahead(std::initializer_list<std::uint64_t> num_to_skip) {
  detail::engine_access::impl<mrg32k3a>(*this, "skip_ahead").skip_ahead(num_to_skip);
}

} // namespace kestro::hvl::rng

KESTRO_HVL_INSTANTIATE_ENGINE(mrg32k3a)
