#include "engines/niederreiter.hpp"
#include "engines/sobol.hpp"
#include "framework/advance.hpp"
#include "framework/engine_instances.hpp"

namespace kestro::hvl::rng {

sobol::sobol(sycl::queue queue, std::uint32_t dimensions)
    : engine_base(queue, detail::make_digital_engine<sobol>(queue, dimensions)) {}

sobol::sobol(sycl::queue queue, const std::vector<std::uint32_t>& words)
    : engine_base(queue, detail::make_digital_engine_of_words<sobol>(queue, words)) {}

sobol::sobol(sycl::queue queue, std::initializer_list<std::uint32_t> words)
    : engine_base(queue, detail::make_digital_engine_of_words<sobol>(queue, words)) {}

void sobol::skip_ahead(std::uint64_t num_to_skip) {
  detail::skip_ahead(*this, num_to_skip);
}

niederreiter::niederreiter(sycl::queue queue, std::uint32_t dimensions)
    : engine_base(queue, detail::make_digital_engine<niederreiter>(queue, dimensions)) {}

niederreiter::niederreiter(sycl::queue queue, const std::vector<std::uint32_t>& words)
    : engine_base(queue, detail::make_digital_engine_of_words<niederreiter>(queue, words)) {}

niederreiter::niederreiter(sycl::queue queue, std::initializer_list<std::uint32_t> words)
    : engine_base(queue, detail::make_digital_engine_of_words<niederreiter>(queue, words)) {}

void niederreiter::skip_ahead(std::uint64_t num_to_skip) {
  detail::skip_ahead(*this, num_to_skip);
}

} // namespace kestro::hvl::rng

KESTRO_HVL_INSTANTIATE_ENGINE(sobol)
KESTRO_HVL_INSTANTIATE_ENGINE(niederreiter)
