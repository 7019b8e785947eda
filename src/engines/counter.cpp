#include "framework/advance.hpp"
#include "framework/engine_instances.hpp"

namespace kestro::hvl::rng {

philox4x32x10::philox4x32x10(sycl::queue queue, std::uint64_t seed)
    : engine_base(queue, detail::make_engine_impl_of_seed<philox4x32x10>(queue, seed)) {}

philox4x32x10::philox4x32x10(sycl::queue queue, const std::vector<std::uint32_t>& words)
    : engine_base(queue, detail::make_engine_impl_of_words<philox4x32x10>(queue, words)) {}

philox4x32x10::philox4x32x10(sycl::queue queue, std::initializer_list<std::uint64_t> seed)
    : engine_base(queue, detail::make_engine_impl_of_elements<philox4x32x10>(queue, seed)) {}

void philox4x32x10::skip_ahead(std::uint64_t num_to_skip) {
  detail::skip_ahead(*this, num_to_skip);
}

void philox4x32x10::skip_ahead(std::initializer_list<std::uint64_t> num_to_skip) {
  detail::skip_ahead(*this, num_to_skip);
}

ars5::ars5(sycl::queue queue, std::uint64_t seed)
    : engine_base(queue, detail::make_engine_impl_of_seed<ars5>(queue, seed)) {}

ars5::ars5(sycl::queue queue, const std::vector<std::uint32_t>& words)
    : engine_base(queue, detail::make_engine_impl_of_words<ars5>(queue, words)) {}

ars5::ars5(sycl::queue queue, std::initializer_list<std::uint64_t> seed)
    : engine_base(queue, detail::make_engine_impl_of_elements<ars5>(queue, seed)) {}

void ars5::skip_ahead(std::uint64_t num_to_skip) {
  detail::skip_ahead(*this, num_to_skip);
}

void ars5::skip_ahead(std::initializer_list<std::uint64_t> num_to_skip) {
  detail::skip_ahead(*this, num_to_skip);
}

} // namespace kestro::hvl::rng

KESTRO_HVL_INSTANTIATE_ENGINE(philox4x32x10)
KESTRO_HVL_INSTANTIATE_ENGINE(ars5)
