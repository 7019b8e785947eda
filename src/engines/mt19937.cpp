#include "engines/mt19937.hpp"

#include <algorithm>

#include <hvl/streams_detail.h>

#include "framework/advance.hpp"
#include "framework/engine_instances.hpp"

namespace kestro::hvl::rng {
namespace detail {
namespace {

using recurrence = definition_of<mt19937>::recurrence;
constexpr int size = recurrence::size;

} // namespace

void mt19937_state_shift(const std::uint32_t* classic_words, std::uint32_t* out, std::uint32_t index) {
  std::uint32_t sequence[2 * size];
  std::copy(classic_words, classic_words + size, sequence);
  for (std::uint32_t k = 0; k < index; ++k)
    sequence[size + k] = recurrence().next(sequence + k);
  std::copy(sequence + index, sequence + index + size, out);
}

void mt19937_state_unwind(std::uint32_t* words) {
  std::uint32_t sequence[2 * size] = {};
  std::copy(words, words + size, sequence + size);
  for (int k = size - 1; k >= 0; --k) {
    const std::uint32_t joined = recurrence().joined(sequence[k + size], sequence[k + recurrence::middle]);
    sequence[k] = joined & recurrence::upper;
    if (k + 1 < size)
      sequence[k + 1] |= joined & ~recurrence::upper;
  }
  std::copy(sequence, sequence + size, words);
}

int ring_traits<mt19937>::load(const stream_handle& stream, std::uint32_t* words) {
  const auto& record = stream.record<vqs_mt19937_record>();
  if (record.position >= size) {
    std::copy_n(record.words, size, words);
  } else {
    mt19937_state_shift(record.words, words, record.position);
    mt19937_state_unwind(words);
  }
  return 0;
}

void ring_traits<mt19937>::store(const std::uint32_t* words, int, const stream_handle& stream) {
  auto& record = stream.record<vqs_mt19937_record>();
  std::copy_n(words, size, record.words);
  record.position = size;
}

int ring_traits<mt19937>::jump_polynomial(std::uint64_t distance, std::uint32_t* coefficients) {
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
