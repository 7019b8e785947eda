#include "engines/sfmt19937.hpp"

#include <algorithm>

#include <hvl/streams_detail.h>

#include "framework/advance.hpp"
#include "framework/engine_instances.hpp"

namespace kestro::hvl::rng {
namespace detail {
namespace {

using recurrence = definition_of<sfmt19937>::recurrence;
constexpr int size = recurrence::size;
constexpr int unit = recurrence::unit;
constexpr int block_words = unit * recurrence::units;
static_assert(size == block_words + unit);

// The unit before 156 units, by solving the recurrence for a: a ^ a << 8 is known, and doubling the shift undoes it.
void unwind(const std::uint32_t* units, std::uint32_t* before) {
  std::uint32_t x[size + unit] = {}; // with a = 0 the recurrence gives what the other units contribute
  std::copy_n(units, block_words, x + 2 * unit);
  for (int place = 0; place < unit; ++place)
    before[place] = x[size + place] ^ recurrence().next(x + place, place);
  for (int bits = 8; bits < 32 * unit; bits *= 2)
    for (int place = unit - 1; place >= 0; --place) {
      const int words = bits / 32, rest = bits % 32;
      const std::uint32_t low =
          place >= words + 1 && rest != 0 ? before[place - words - 1] >> (32 - rest) : 0;
      before[place] ^= (place >= words ? before[place - words] << rest : 0) ^ low;
    }
}

} // namespace

int ring_traits<sfmt19937>::load(const stream_handle& stream, std::uint32_t* words) {
  const auto& record = stream.record<vqs_sfmt19937_record>();
  const auto position = static_cast<int>(record.position);
  // the block, and as many units before it as take part
  std::uint32_t sequence[block_words + size] = {};
  std::copy_n(record.words, block_words, sequence + size);
  for (int at = size - unit; at >= 0 && at > position - unit; at -= unit)
    unwind(sequence + at + unit, sequence + at);
  std::copy_n(sequence + position, size, words);
  return position % unit;
}

void ring_traits<sfmt19937>::store(const std::uint32_t* words, int place, const stream_handle& stream) {
  auto& record = stream.record<vqs_sfmt19937_record>();
  std::uint32_t sequence[size + unit] = {};
  std::copy_n(words, size, sequence);
  const int rest = (unit - place) % unit; // of the unit that has been begun
  for (int k = 0; k < rest; ++k)
    sequence[size + k] = recurrence().next(sequence + k, place + k);
  std::copy_n(sequence + unit + rest, block_words, record.words);
  record.position = static_cast<std::uint32_t>(block_words - rest);
}

int ring_traits<sfmt19937>::jump_polynomial(const definition_of<sfmt19937>::recurrence&,
                                            std::uint64_t distance, std::uint32_t* coefficients) {
  return vqsSfmt19937JumpPolynomial(distance, coefficients);
}

} // namespace detail

sfmt19937::sfmt19937(sycl::queue queue, std::uint64_t seed)
    : engine_base(queue, detail::make_engine_impl_of_seed<sfmt19937>(queue, seed)) {}

sfmt19937::sfmt19937(sycl::queue queue, const std::vector<std::uint32_t>& words)
    : engine_base(queue, detail::make_engine_impl_of_words<sfmt19937>(queue, words)) {}

sfmt19937::sfmt19937(sycl::queue queue, std::initializer_list<std::uint32_t> seed)
    : engine_base(queue, detail::make_engine_impl_of_words<sfmt19937>(queue, seed)) {}

void sfmt19937::skip_ahead(std::uint64_t num_to_skip) {
  detail::skip_ahead(*this, num_to_skip);
}

} // namespace kestro::hvl::rng

KESTRO_HVL_INSTANTIATE_ENGINE(sfmt19937)
