// M. Matsumoto, T. Nishimura, "Mersenne Twister: a 623-dimensionally equidistributed uniform pseudo-random
// number generator", ACM TOMACS 8 (1998); seeding of 2002.
#include "generators/mt19937.hpp"

#include <algorithm>
#include <vector>

#include "engine.hpp"

namespace hvl::streams {
namespace {

using record_type = vqs_mt19937_record;
__extension__ using wide = unsigned __int128;
constexpr std::size_t n = mt19937_words;
constexpr std::size_t m = mt19937_middle;

// Up to here regenerating block after block is faster than a jump whose polynomial is new.
constexpr std::uint64_t blocks_worth_a_jump = 2048;

record_type& as_record(void* record) {
  return *static_cast<record_type*>(record);
}

std::uint32_t tempered(std::uint32_t y) {
  y ^= y >> 11;
  y ^= (y << 7) & 0x9D2C5680;
  y ^= (y << 15) & 0xEFC60000;
  return y ^ (y >> 18);
}

void init_genrand(record_type& r, std::uint32_t seed) {
  r.words[0] = seed;
  for (std::uint32_t i = 1; i < n; ++i)
    r.words[i] = 1812433253u * (r.words[i - 1] ^ (r.words[i - 1] >> 30)) + i;
  r.position = n;
}

void init_by_array(record_type& r, std::span<const std::uint32_t> key) {
  init_genrand(r, 19650218u);
  std::uint32_t* const x = r.words;
  std::size_t i = 1;
  const auto advance = [&] {
    if (++i == n) {
      x[0] = x[n - 1];
      i = 1;
    }
  };
  for (std::size_t round = 0, j = 0; round < std::max(n, key.size()); ++round) {
    x[i] = (x[i] ^ ((x[i - 1] ^ (x[i - 1] >> 30)) * 1664525u)) + key[j] + static_cast<std::uint32_t>(j);
    advance();
    j = j + 1 == key.size() ? 0 : j + 1;
  }
  for (std::size_t round = 0; round < n - 1; ++round) {
    x[i] = (x[i] ^ ((x[i - 1] ^ (x[i - 1] >> 30)) * 1566083941u)) - static_cast<std::uint32_t>(i);
    advance();
  }
  x[0] = mt19937_upper;
}

// No word at all seeds as the authors' default does.
void seed_words(void* record, std::span<const std::uint32_t> words) noexcept {
  if (words.empty())
    init_genrand(as_record(record), 5489u);
  else
    init_by_array(as_record(record), words);
}

// A seed of more than 32 bits is a list of two words.
void seed(void* record, std::uint64_t value) noexcept {
  const std::uint32_t words[] = {static_cast<std::uint32_t>(value), static_cast<std::uint32_t>(value >> 32)};
  if (words[1] == 0)
    init_genrand(as_record(record), words[0]);
  else
    init_by_array(as_record(record), words);
}

// Of the first word only the top bit belongs to the state. So where it is the next output, its lower bits are not free:
// they are what the twist that made the block's last word took from it.
bool gives_first_word(const record_type& r) {
  const std::uint32_t mixed = r.words[n - 1] ^ r.words[m - 1];
  const std::uint32_t odd = mixed >> 31;
  const std::uint32_t lower = (mixed ^ (odd != 0 ? mt19937_matrix : 0)) << 1 | odd;
  return ((r.words[0] ^ lower) & ~mt19937_upper) == 0;
}

bool in_range(const void* record) noexcept {
  const auto& r = *static_cast<const record_type*>(record);
  const bool any = (r.words[0] & mt19937_upper) != 0 ||
                   std::any_of(r.words + 1, r.words + n, [](std::uint32_t word) { return word != 0; });
  return any && r.position <= n && (r.position != 0 || gives_first_word(r));
}

void draw(void* record, void* words, std::size_t count) noexcept {
  record_type& r = as_record(record);
  auto* out = static_cast<std::uint32_t*>(words);
  while (count != 0) {
    if (r.position == n) {
      mt19937_next_block(r.words);
      r.position = 0;
    }
    const std::size_t here = std::min(count, n - r.position);
    for (std::size_t i = 0; i < here; ++i)
      out[i] = tempered(r.words[r.position + i]);
    out += here;
    count -= here;
    r.position += static_cast<std::uint32_t>(here);
  }
}

bool fits_one_word(std::span<const std::uint64_t> count) {
  return std::all_of(count.begin() + 1, count.end(), [](std::uint64_t word) { return word == 0; });
}

void add(std::vector<std::uint64_t>& count, std::uint64_t addend) {
  for (std::uint64_t& word : count) {
    word += addend;
    addend = static_cast<std::uint64_t>(word < addend); // the carry
  }
  if (addend != 0)
    count.push_back(addend);
}

// Returns the remainder.
std::uint32_t divide_by_block(std::vector<std::uint64_t>& count) {
  wide remainder = 0;
  for (std::size_t i = count.size(); i-- != 0;) {
    const wide dividend = remainder << 64 | count[i];
    count[i] = static_cast<std::uint64_t>(dividend / n);
    remainder = dividend % n;
  }
  return static_cast<std::uint32_t>(remainder);
}

void multiply_by_block(std::vector<std::uint64_t>& count) {
  std::uint64_t carry = 0;
  for (std::uint64_t& word : count) {
    const wide product = static_cast<wide>(word) * n + carry;
    word = static_cast<std::uint64_t>(product);
    carry = static_cast<std::uint64_t>(product >> 64);
  }
  if (carry != 0)
    count.push_back(carry);
}

// Leaves the record as drawing `count` words would: a block is regenerated only when a word of the next one
// is wanted, so the new position lies in 1..624.
void skip(void* record, std::span<const std::uint64_t> count) {
  record_type& r = as_record(record);
  if (count.empty())
    return;
  if (fits_one_word(count) && count[0] <= n - r.position) {
    r.position += static_cast<std::uint32_t>(count[0]);
    return;
  }
  // blocks to go and place in the last one: (position + count - 1) divided by 624
  std::vector<std::uint64_t> blocks(count.begin(), count.end());
  add(blocks, r.position);
  for (std::uint64_t& word : blocks)
    if (word-- != 0)
      break;
  const std::uint32_t place = divide_by_block(blocks);
  if (fits_one_word(blocks) && blocks[0] <= blocks_worth_a_jump) {
    for (std::uint64_t i = 0; i < blocks[0]; ++i)
      mt19937_next_block(r.words);
  } else {
    multiply_by_block(blocks);
    mt19937_jump(r.words, blocks);
  }
  r.position = place + 1;
}

constexpr record_field fields[] = {{16, 4, n + 1}};

} // namespace

void mt19937_next_block(std::uint32_t* x) noexcept {
  for (std::size_t i = 0; i < n - m; ++i)
    x[i] = mt19937_twist(x[i], x[i + 1], x[i + m]);
  for (std::size_t i = n - m; i < n - 1; ++i)
    x[i] = mt19937_twist(x[i], x[i + 1], x[i + m - n]);
  x[n - 1] = mt19937_twist(x[n - 1], x[0], x[m - 1]);
}

const engine mt19937_engine = {
    VQS_ENGINE_MT19937,
    "mt19937",
    word_kind::signed32,
    word_scale::signed32,
    true,
    sizeof(record_type),
    1 << 22,
    fields,
    seed,
    seed_words,
    in_range,
    draw,
    skip,
    nullptr,
};

} // namespace hvl::streams
