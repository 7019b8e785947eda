#include "framework/advance.hpp"
#include "framework/engine_instances.hpp"

namespace kestro::hvl::rng {

wichmann_hill::wichmann_hill(sycl::queue queue, std::uint64_t seed)
    : engine_base(queue, detail::make_engine_impl_of_seed<wichmann_hill>(queue, seed)) {}

wichmann_hill::wichmann_hill(sycl::queue queue, std::uint64_t seed, std::uint32_t engine_idx)
    : engine_base(queue, detail::make_engine_impl_of_seed<wichmann_hill>(queue, seed, engine_idx)) {}

wichmann_hill::wichmann_hill(sycl::queue queue, const std::vector<std::uint32_t>& words)
    : engine_base(queue, detail::make_engine_impl_of_words<wichmann_hill>(queue, words)) {}

wichmann_hill::wichmann_hill(sycl::queue queue, const std::vector<std::uint32_t>& words,
                             std::uint32_t engine_idx)
    : engine_base(queue, detail::make_engine_impl_of_words<wichmann_hill>(queue, words, engine_idx)) {}

wichmann_hill::wichmann_hill(sycl::queue queue, std::initializer_list<std::uint32_t> seed)
    : engine_base(queue, detail::make_engine_impl_of_words<wichmann_hill>(queue, seed)) {}

wichmann_hill::wichmann_hill(sycl::queue queue, std::initializer_list<std::uint32_t> seed,
                             std::uint32_t engine_idx)
    : engine_base(queue, detail::make_engine_impl_of_words<wichmann_hill>(queue, seed, engine_idx)) {}

void wichmann_hill::skip_ahead(std::uint64_t num_to_skip) {
  detail::skip_ahead(*this, num_to_skip);
}

void wichmann_hill::leapfrog(std::uint64_t idx, std::uint64_t stride) {
  detail::leapfrog(*this, idx, stride);
}

} // namespace kestro::hvl::rng

KESTRO_HVL_INSTANTIATE_ENGINE(wichmann_hill)
