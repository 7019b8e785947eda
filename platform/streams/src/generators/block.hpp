// Engines whose record holds a block of consecutive words of the sequence and the place of the next one in it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace hvl::streams {

using big_count = std::vector<std::uint64_t>; // least significant word first

inline bool fits_one_word(std::span<const std::uint64_t> count) {
  return std::all_of(count.begin() + 1, count.end(), [](std::uint64_t word) { return word == 0; });
}

inline void add(big_count& count, std::uint64_t addend) {
  for (std::uint64_t& word : count) {
    word += addend;
    addend = static_cast<std::uint64_t>(word < addend); // the carry
  }
  if (addend != 0)
    count.push_back(addend);
}

// Returns the remainder.
inline std::uint32_t divide(big_count& count, std::uint32_t divisor) {
  __extension__ using wide = unsigned __int128;
  wide remainder = 0;
  for (std::size_t i = count.size(); i-- != 0;) {
    const wide dividend = remainder << 64 | count[i];
    count[i] = static_cast<std::uint64_t>(dividend / divisor);
    remainder = dividend % divisor;
  }
  return static_cast<std::uint32_t>(remainder);
}

inline void multiply(big_count& count, std::uint32_t factor) {
  __extension__ using wide = unsigned __int128;
  std::uint64_t carry = 0;
  for (std::uint64_t& word : count) {
    const wide product = static_cast<wide>(word) * factor + carry;
    word = static_cast<std::uint64_t>(product);
    carry = static_cast<std::uint64_t>(product >> 64);
  }
  if (carry != 0)
    count.push_back(carry);
}

// `draw` and `advance` of such an engine. Block has, static:
//
//   using type = engines::...;
//   std::uint32_t words;                                      of a block
//   std::uint64_t blocks_worth_a_jump;                        up to here block after block is faster
//   void next(record&);                                       the block that follows, in place
//   void jump(record&, big_count blocks);                     the one so many further; may throw std::bad_alloc
template <class Block>
struct block_generator {
  using type = typename Block::type;
  using record_type = typename type::record;
  static constexpr std::uint32_t n = Block::words;

  static void draw(record_type& r, std::uint32_t* out, std::size_t count) {
    const auto recurrence = type::recurrence_of(r);
    while (count != 0) {
      if (r.position == n) {
        Block::next(r);
        r.position = 0;
      }
      const std::size_t here = std::min<std::size_t>(count, n - r.position);
      for (std::size_t i = 0; i < here; ++i)
        out[i] = recurrence.output(r.words[r.position + i]);
      out += here;
      count -= here;
      r.position += static_cast<std::uint32_t>(here);
    }
  }

  // Leaves the record as drawing `count` words would: a block is regenerated only when a word of the next one
  // is wanted, so the new position lies in 1 ... n.
  static void advance(record_type& r, std::span<const std::uint64_t> count) {
    if (count.empty())
      return;
    if (fits_one_word(count) && count[0] <= n - r.position) {
      r.position += static_cast<std::uint32_t>(count[0]);
      return;
    }
    // blocks to go and place in the last one: (position + count - 1) divided by n
    big_count blocks(count.begin(), count.end());
    add(blocks, r.position);
    for (std::uint64_t& word : blocks)
      if (word-- != 0)
        break;
    const std::uint32_t place = divide(blocks, n);
    if (fits_one_word(blocks) && blocks[0] <= Block::blocks_worth_a_jump) {
      for (std::uint64_t i = 0; i < blocks[0]; ++i)
        Block::next(r);
    } else {
      Block::jump(r, std::move(blocks));
    }
    r.position = place + 1;
  }
};

} // namespace hvl::streams
