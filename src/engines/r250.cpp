#include "engines/r250.hpp"

#include <algorithm>

#include <hvl/streams_detail.h>

#include "framework/engine_instances.hpp"

namespace kestro::hvl::rng {
namespace detail {

int ring_traits<r250>::load(const stream_handle& stream, std::uint32_t* words) {
  const auto& record = stream.record<vqs_r250_record>();
  std::rotate_copy(record.words, record.words + record.position, std::end(record.words), words);
  return 0;
}

void ring_traits<r250>::store(const std::uint32_t* words, int, const stream_handle& stream) {
  auto& record = stream.record<vqs_r250_record>();
  std::copy_n(words, std::size(record.words), record.words);
  record.position = 0;
}

int ring_traits<r250>::jump_polynomial(const definition_of<r250>::recurrence&, std::uint64_t distance,
                                       std::uint32_t* coefficients) {
  return vqsR250JumpPolynomial(distance, coefficients);
}

} // namespace detail

r250::r250(sycl::queue queue, std::uint64_t seed)
    : engine_base(queue, detail::make_engine_impl_of_seed<r250>(queue, seed)) {}

r250::r250(sycl::queue queue, const std::vector<std::uint32_t>& words)
    : engine_base(queue, detail::make_engine_impl_of_words<r250>(queue, words)) {}

r250::r250(sycl::queue queue, std::initializer_list<std::uint32_t> seed)
    : engine_base(queue, detail::make_engine_impl_of_words<r250>(queue, seed)) {}

} // namespace kestro::hvl::rng

KESTRO_HVL_INSTANTIATE_ENGINE(r250)
