#include "framework/engine_impl.hpp"
#include "framework/engine_instances.hpp"

namespace kestro::hvl::rng {

nondeterministic::nondeterministic(sycl::queue queue) : nondeterministic(std::move(queue), 0) {}

nondeterministic::nondeterministic(sycl::queue queue, std::uint64_t)
    : engine_base(queue, detail::make_engine_impl_of_seed<nondeterministic>(queue, 0)) {}

nondeterministic::nondeterministic(sycl::queue queue, const std::vector<std::uint32_t>&)
    : nondeterministic(std::move(queue), 0) {}

} // namespace kestro::hvl::rng

KESTRO_HVL_INSTANTIATE_ENGINE(nondeterministic)
