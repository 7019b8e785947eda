#include "engines/mt19937.hpp"

#include <hvl/streams_detail.h>

#include "framework/advance.hpp"
#include "framework/engine_instances.hpp"

namespace kestro::hvl::rng {
namespace detail {

int ring_traits<mt19937>::jump_polynomial(const recurrence&, std::uint64_t distance,
                                          std::uint32_t* coefficients) {
  return vqsMt19937JumpPolynomial(distance, coefficients);
}

} // namespace detail

mt19937::mt19937(sycl::queue queue, std::uint32_t seed)
    : engine_base(queue, detail::make_engine_impl_of_seed<mt19937>(queue, seed)) {}

mt19937::mt19937(sycl::queue queue, std::initializer_list<std::uint32_t> seed)
    : engine_base(queue, detail::make_engine_impl_of_words<mt19937>(queue, seed)) {}

mt19937::mt19937(sycl::queue queue, const std::vector<std::uint32_t>& words)
    : engine_base(queue, detail::make_engine_impl_of_words<mt19937>(queue, words)) {}

void mt19937::skip_ahead(std::uint64_t num_to_skip) {
  detail::skip_ahead(*this, num_to_skip);
}

} // namespace kestro::hvl::rng

KESTRO_HVL_INSTANTIATE_ENGINE(mt19937)
