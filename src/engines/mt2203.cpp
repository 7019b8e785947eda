#include "engines/mt2203.hpp"

#include <algorithm>

#include <hvl/streams_detail.h>

#include "framework/engine_instances.hpp"

namespace kestro::hvl::rng {
namespace detail {

int ring_traits<mt2203>::jump_polynomial(const recurrence& twister, std::uint64_t distance,
                                         std::uint32_t* coefficients) {
  return vqsMt2203JumpPolynomial(twister.matrix, distance, coefficients);
}

std::shared_ptr<mt2203_state> mt2203_states::allocate(const sycl::queue& queue, std::size_t count) {
  auto* const states = sycl::malloc_shared<mt2203_state>(count, queue);
  if (states == nullptr)
    throw device_bad_alloc("rng", about<mt2203>.name, queue.get_device());
  // A memory that cannot be freed is lost; its owner's destructor has nobody to tell.
  return {states, [queue](mt2203_state* memory) noexcept {
            try {
              sycl::free(memory, queue);
            } catch (...) {
            }
          }};
}

mt2203_states::mt2203_states(const sycl::queue& queue, const std::vector<stream_handle>& streams)
    : queue_(queue), count_(streams.size()), states_(allocate(queue, count_)) {
  for (std::size_t i = 0; i < count_; ++i) {
    const auto& record = streams[i].record<vqs_mt2203_record>();
    mt2203_state& state = states_.get()[i];
    state.twister = definition_of<mt2203>::recurrence_of(record);
    state.oldest = 0;
    std::copy_n(record.words, mt2203_state::size, state.words);
  }
}

mt2203_states::mt2203_states(mt2203_states& other)
    : device_state(), queue_(other.queue_), count_(other.count_), turn_(other.turn_),
      states_(allocate(queue_, count_)) {
  other.wait();
  std::copy_n(other.states_.get(), count_, states_.get());
}

namespace {

std::unique_ptr<engine_base_impl<mt2203>> make_several(const sycl::queue& queue, std::uint64_t seed,
                                                       const std::vector<std::uint32_t>& members) {
  if (members.empty())
    throw invalid_argument("rng", "mt2203", "engine_idx is empty");
  std::vector<std::int32_t> identifiers;
  for (const std::uint32_t member : members)
    identifiers.push_back(identifier_of<mt2203>(member));
  std::sort(identifiers.begin(), identifiers.end());
  if (std::adjacent_find(identifiers.begin(), identifiers.end()) != identifiers.end())
    throw invalid_argument("rng", "mt2203", "engine_idx has an index twice");

  auto impl = make_engine_impl_of_seed<mt2203>(queue, seed, members.front());
  if (members.size() > 1) {
    std::vector<stream_handle> streams;
    for (const std::uint32_t member : members)
      streams.push_back(new_stream(identifier_of<mt2203>(member), seed));
    impl->extension().several.reset(new mt2203_states(queue, streams));
  }
  return impl;
}

} // namespace
} // namespace detail

mt2203::mt2203(sycl::queue queue, std::uint64_t seed)
    : engine_base(queue, detail::make_engine_impl_of_seed<mt2203>(queue, seed)) {}

mt2203::mt2203(sycl::queue queue, std::uint64_t seed, std::uint32_t engine_idx)
    : engine_base(queue, detail::make_engine_impl_of_seed<mt2203>(queue, seed, engine_idx)) {}

mt2203::mt2203(sycl::queue queue, std::uint64_t seed, const std::vector<std::uint32_t>& engine_idx)
    : engine_base(queue, detail::make_several(queue, seed, engine_idx)) {}

mt2203::mt2203(sycl::queue queue, const std::vector<std::uint32_t>& words)
    : engine_base(queue, detail::make_engine_impl_of_words<mt2203>(queue, words)) {}

mt2203::mt2203(sycl::queue queue, const std::vector<std::uint32_t>& words, std::uint32_t engine_idx)
    : engine_base(queue, detail::make_engine_impl_of_words<mt2203>(queue, words, engine_idx)) {}

mt2203::mt2203(sycl::queue queue, std::initializer_list<std::uint32_t> seed)
    : engine_base(queue, detail::make_engine_impl_of_words<mt2203>(queue, seed)) {}

mt2203::mt2203(sycl::queue queue, std::initializer_list<std::uint32_t> seed, std::uint32_t engine_idx)
    : engine_base(queue, detail::make_engine_impl_of_words<mt2203>(queue, seed, engine_idx)) {}

} // namespace kestro::hvl::rng

KESTRO_HVL_INSTANTIATE_ENGINE(mt2203)
