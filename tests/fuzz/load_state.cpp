// Fuzzes the decoding of saved states: whatever the bytes, a state is refused or comes back the same when saved again
// (one of an earlier version: when loaded again), with an engine that can draw from it.
#include <zlib.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "saved_state.hpp"
#include "simd/kernels.hpp"

namespace hvl::streams {

// Jumps are no part of what is fuzzed: of the vector units only what draws from digital sequences is here.
const kernel_set scalar::kernels = [] {
  kernel_set kernels{};
  kernels.next_row = [](std::uint32_t* out, std::uint32_t* row, const std::uint32_t* change,
                        std::size_t words) noexcept {
    for (std::size_t i = 0; i < words; ++i) {
      out[i] = row[i];
      row[i] ^= change[i];
    }
  };
  return kernels;
}();
const kernel_set& best_kernels() noexcept {
  return scalar::kernels;
}

namespace {

using bytes = std::vector<std::uint8_t>;

void seal(bytes& state) {
  const auto sum = crc32(0, state.data(), static_cast<uInt>(state.size() - 4));
  for (std::size_t i = 0; i < 4; ++i)
    state[state.size() - 4 + i] = static_cast<std::uint8_t>(sum >> (8 * i));
}

// A state of the engine that `selector` names, overwritten from a place on.
bytes patched(std::uint8_t selector, std::size_t place, std::span<const std::uint8_t> patch) {
  const engine& e = *all_engines()[selector % all_engines().size()];
  record_pointer record = new_record(e, e.identifier);
  e.seed(record, 1);
  bytes state(saved_state_bytes(e, record.get()));
  encode_state(e, record.get(), state);
  for (std::size_t i = 0; i < patch.size(); ++i)
    state[(place + i) % state.size()] = patch[i];
  return state;
}

void decode(std::span<const std::uint8_t> state) {
  record_pointer record;
  if (decode_state(state, record) != VQS_STATUS_OK) {
    if (record)
      std::abort();
    return;
  }
  const engine* e = engine_of(record.get());
  if (e == nullptr || !e->in_range(record.get()))
    std::abort();
  bytes again(saved_state_bytes(*e, record.get()));
  encode_state(*e, record.get(), again);
  const bool is_current = state[4] == again[4];
  if (is_current && !std::equal(again.begin(), again.end(), state.begin(), state.end()))
    std::abort();
  record_pointer same;
  if (decode_state(again, same) != VQS_STATUS_OK ||
      std::memcmp(same.get(), record.get(), record_bytes(record.get())) != 0)
    std::abort();
  std::uint64_t words[700];
  e->draw(record.get(), words, 700);
  if (!e->in_range(record.get()))
    std::abort();
}

} // namespace
} // namespace hvl::streams

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hvl::streams;
  if (size < 4) {
    decode({data, size});
    return 0;
  }
  const std::span<const std::uint8_t> rest(data + 4, size - 4);
  const std::size_t place = data[1] | std::size_t{data[2]} << 8;
  bytes state = data[0] % 4 == 0 ? bytes(rest.begin(), rest.end()) : patched(data[3], place, rest);
  if (data[0] % 4 >= 2 && state.size() >= 4)
    seal(state);
  decode(state);
  return 0;
}
