// Seeding: the authors' of 2002.
#include "generators/mt19937.hpp"

#include <algorithm>
#include <vector>

#include "generators/entry.hpp"

namespace hvl::streams {
namespace {

using record_type = vqs_mt19937_record;
__extension__ using wide = unsigned __int128;
constexpr engines::mt19937::recurrence recurrence{};
constexpr std::size_t n = recurrence.size;
constexpr std::size_t m = recurrence.middle;

// Up to here regenerating block after block is faster than a jump whose polynomial is new.
constexpr std::uint64_t blocks_worth_a_jump = 2048;

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
  x[0] = recurrence.upper;
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

struct generator {
  using type = engines::mt19937;

  static constexpr std::uint32_t words_per_thread = 1 << 22;
  static constexpr record_field fields[] = {{16, 4, n + 1}};

  // No word at all seeds as the authors' default does.
  static int seed_words(record_type& r, std::span<const std::uint32_t> words) {
    if (words.empty())
      init_genrand(r, 5489u);
    else
      init_by_array(r, words);
    return VQS_STATUS_OK;
  }

  // A seed of more than 32 bits is a list of two words.
  static int seed(record_type& r, std::uint64_t value) {
    if (value >> 32 == 0)
      init_genrand(r, static_cast<std::uint32_t>(value));
    else
      init_by_array(r, words_of_seed(value));
    return VQS_STATUS_OK;
  }

  // Of the first word only the top bit belongs to the state. So where it is the next output, its lower bits are not
  // free: they are what the twist that made the block's last word took from it.
  static bool gives_first_word(const record_type& r) {
    const std::uint32_t joined = recurrence.joined(r.words[n - 1], r.words[m - 1]);
    return ((r.words[0] ^ joined) & ~recurrence.upper) == 0;
  }

  static bool in_range(const record_type& r) {
    const bool any = (r.words[0] & recurrence.upper) != 0 ||
                     std::any_of(r.words + 1, r.words + n, [](std::uint32_t word) { return word != 0; });
    return any && r.position <= n && (r.position != 0 || gives_first_word(r));
  }

  static void draw(record_type& r, std::uint32_t* out, std::size_t count) {
    while (count != 0) {
      if (r.position == n) {
        mt19937_next_block(r.words);
        r.position = 0;
      }
      const std::size_t here = std::min(count, n - r.position);
      for (std::size_t i = 0; i < here; ++i)
        out[i] = recurrence.output(r.words[r.position + i]);
      out += here;
      count -= here;
      r.position += static_cast<std::uint32_t>(here);
    }
  }

  // Leaves the record as drawing `count` words would: a block is regenerated only when a word of the next one
  // is wanted, so the new position lies in 1..624.
  static void advance(record_type& r, std::span<const std::uint64_t> count) {
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
};

} // namespace

void mt19937_next_block(std::uint32_t* x) noexcept {
  for (std::size_t i = 0; i < n - m; ++i)
    x[i] = recurrence.twist(x[i], x[i + 1], x[i + m]);
  for (std::size_t i = n - m; i < n - 1; ++i)
    x[i] = recurrence.twist(x[i], x[i + 1], x[i + m - n]);
  x[n - 1] = recurrence.twist(x[n - 1], x[0], x[m - 1]);
}

const engine mt19937_engine = entry<generator>();

} // namespace hvl::streams
