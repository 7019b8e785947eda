// J. K. Salmon, M. A. Moraes, R. O. Dror, D. E. Shaw, "Parallel random numbers: as easy as 1, 2, 3", SC 2011.
#include "generators/philox4x32x10.hpp"

#include <array>

#include "engine.hpp"

namespace hvl::streams {
namespace {

using record_type = vqs_philox4x32x10_record;

record_type& as_record(void* record) {
  return *static_cast<record_type*>(record);
}

std::array<std::uint32_t, 4> block(const record_type& r, philox_counter counter) {
  std::uint32_t x0 = static_cast<std::uint32_t>(counter.low);
  std::uint32_t x1 = static_cast<std::uint32_t>(counter.low >> 32);
  std::uint32_t x2 = static_cast<std::uint32_t>(counter.high);
  std::uint32_t x3 = static_cast<std::uint32_t>(counter.high >> 32);
  std::uint32_t k0 = r.k0;
  std::uint32_t k1 = r.k1;
  for (int round = 0; round < philox_rounds; ++round) {
    const std::uint64_t p0 = std::uint64_t{philox_multiplier0} * x0;
    const std::uint64_t p1 = std::uint64_t{philox_multiplier1} * x2;
    x0 = static_cast<std::uint32_t>(p1 >> 32) ^ x1 ^ k0;
    x1 = static_cast<std::uint32_t>(p1);
    x2 = static_cast<std::uint32_t>(p0 >> 32) ^ x3 ^ k1;
    x3 = static_cast<std::uint32_t>(p0);
    k0 += philox_bump0;
    k1 += philox_bump1;
  }
  return {x0, x1, x2, x3};
}

void seed_words(void* record, std::span<const std::uint32_t> words) noexcept {
  const auto word = [&](std::size_t i) { return i < words.size() ? words[i] : 0u; };
  record_type& r = as_record(record);
  r.k0 = word(0);
  r.k1 = word(1);
  r.c0 = word(2);
  r.c1 = word(3);
  r.c2 = word(4);
  r.c3 = word(5);
  r.remaining = 0;
}

void seed(void* record, std::uint64_t value) noexcept {
  const std::uint32_t words[] = {static_cast<std::uint32_t>(value), static_cast<std::uint32_t>(value >> 32)};
  seed_words(record, words);
}

bool in_range(const void* record) noexcept {
  return static_cast<const record_type*>(record)->remaining <= 4;
}

void set_counter(record_type& r, philox_counter counter) {
  r.c0 = static_cast<std::uint32_t>(counter.low);
  r.c1 = static_cast<std::uint32_t>(counter.low >> 32);
  r.c2 = static_cast<std::uint32_t>(counter.high);
  r.c3 = static_cast<std::uint32_t>(counter.high >> 32);
}

void draw(void* record, void* words, std::size_t count) noexcept {
  record_type& r = as_record(record);
  auto* out = static_cast<std::uint32_t*>(words);
  philox_counter counter = philox_counter_of(r);
  if (r.remaining != 0 && count != 0) {
    const auto pending = block(r, counter - 1);
    while (r.remaining != 0 && count != 0) {
      *out++ = pending[4 - r.remaining--];
      --count;
    }
  }
  for (; count >= 4; count -= 4, out += 4) {
    const auto b = block(r, counter);
    counter = counter + 1;
    for (std::size_t i = 0; i < 4; ++i)
      out[i] = b[i];
  }
  if (count != 0) {
    const auto b = block(r, counter);
    counter = counter + 1;
    for (std::size_t i = 0; i < count; ++i)
      out[i] = b[i];
    r.remaining = static_cast<std::uint32_t>(4 - count);
  }
  set_counter(r, counter);
}

// The sequence has 2^130 words, so of a longer count only the low 130 bits matter.
void skip(void* record, std::span<const std::uint64_t> count) {
  const auto word = [&](std::size_t i) { return i < count.size() ? count[i] : std::uint64_t{0}; };
  record_type& r = as_record(record);
  std::uint64_t low = word(0);
  std::uint64_t middle = word(1);
  std::uint64_t high = word(2);
  if (low < r.remaining && middle == 0 && (high & 3) == 0) {
    r.remaining -= static_cast<std::uint32_t>(low);
    return;
  }
  const bool borrow = low < r.remaining;
  low -= r.remaining;
  high -= static_cast<std::uint64_t>(borrow && middle == 0);
  middle -= static_cast<std::uint64_t>(borrow);
  const philox_counter blocks{low >> 2 | middle << 62, middle >> 2 | high << 62};
  const std::uint32_t into = static_cast<std::uint32_t>(low & 3);
  const philox_counter counter = philox_counter_of(r) + blocks;
  set_counter(r, into == 0 ? counter : counter + 1);
  r.remaining = into == 0 ? 0 : 4 - into;
}

constexpr record_field fields[] = {{16, 4, 7}};

} // namespace

const engine philox4x32x10_engine = {
    VQS_ENGINE_PHILOX4X32X10,
    "philox4x32x10",
    word_kind::signed32,
    word_scale::signed32,
    true,
    sizeof(record_type),
    1 << 16,
    fields,
    seed,
    seed_words,
    in_range,
    draw,
    skip,
    nullptr,
};

} // namespace hvl::streams
