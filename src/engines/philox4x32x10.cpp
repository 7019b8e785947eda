#include "engines/philox4x32x10.hpp"

#include "framework/engine_instances.hpp"

namespace kestro::hvl::rng {
namespace {

using traits = detail::engine_traits<philox4x32x10>;

auto from_seeds(const sycl::queue& queue, std::initializer_list<std::uint64_t> seed) {
  std::vector<std::uint32_t> words;
  for (const std::uint64_t element : seed) {
    words.push_back(static_cast<std::uint32_t>(element));
    words.push_back(static_cast<std::uint32_t>(element >> 32));
  }
  // The CPU backend counts list elements, not words, and so reads the first half only.
  const bool cpu = detail::device_type_of(queue.get_device(), traits::name) == detail::device_type::cpu;
  if (cpu)
    words.resize(seed.size());
  return detail::make_engine_impl_of_words<philox4x32x10>(queue, words);
}

} // namespace

philox4x32x10::philox4x32x10(sycl::queue queue, std::uint64_t seed)
    : engine_base(queue, detail::make_engine_impl<philox4x32x10>(queue, traits::identifier, seed)) {}

philox4x32x10::philox4x32x10(sycl::queue queue, std::initializer_list<std::uint64_t> seed)
    : engine_base(queue, from_seeds(queue, seed)) {}

philox4x32x10::philox4x32x10(sycl::queue queue, const std::vector<std::uint32_t>& words)
    : engine_base(queue, detail::make_engine_impl_of_words<philox4x32x10>(queue, words)) {}

void philox4x32x10::skip_ahead(std::uint64_t num_to_skip) {
  detail::engine_access::impl<philox4x32x10>(*this, "skip_ahead").skip_ahead(num_to_skip);
}

void philox4x32x10::skip_ahead(std::initializer_list<std::uint64_t> num_to_skip) {
  detail::engine_access::impl<philox4x32x10>(*this, "skip_ahead").skip_ahead(num_to_skip);
}

} // namespace kestro::hvl::rng

KESTRO_HVL_INSTANTIATE_ENGINE(philox4x32x10)
