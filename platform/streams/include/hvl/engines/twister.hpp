// The recurrence of M. Matsumoto, T. Nishimura, "Mersenne Twister: a 623-dimensionally equidistributed uniform pseudorandom
// number generator", ACM TOMACS 8 (1998), in words of 32 bits.
#pragma once

#include <cstdint>

namespace hvl::engines {

// Parameters has static `size`, `middle`, `upper` (the bits of the oldest word that take part) and `first_shift`, and the
// values `matrix`, `tempering_b` and `tempering_c`, static or not.
template <class Parameters>
struct twister : Parameters {
  using Parameters::matrix, Parameters::upper, Parameters::middle, Parameters::size;

  // The word `size` places after `oldest`, from it, the one behind it and the one `middle` places behind it.
  [[gnu::always_inline]] constexpr std::uint32_t twist(std::uint32_t oldest, std::uint32_t second,
                                                       std::uint32_t middle_word) const {
    const std::uint32_t joined = (oldest & upper) | (second & ~upper);
    return middle_word ^ joined >> 1 ^ ((0 - (second & 1)) & matrix);
  }

  // What a twist with `middle_word` joined to make a word: the oldest word's upper bits, the second's other bits. (The
  // matrix's top bit tells whether it took part.)
  [[gnu::always_inline]] constexpr std::uint32_t joined(std::uint32_t made, std::uint32_t middle_word) const {
    const std::uint32_t mixed = made ^ middle_word;
    const std::uint32_t odd = mixed >> 31;
    return (mixed ^ ((0 - odd) & matrix)) << 1 | odd;
  }

  [[gnu::always_inline]] constexpr std::uint32_t next(const std::uint32_t* x) const {
    return twist(x[0], x[1], x[middle]);
  }

  // Writes to `out` the `size` words of the sequence that start at word `index` of a block of as many.
  [[gnu::always_inline]] constexpr void shift(const std::uint32_t* block, std::uint32_t index,
                                              std::uint32_t* out) const {
    std::uint32_t sequence[2 * size] = {};
    for (int k = 0; k < size; ++k)
      sequence[k] = block[k];
    for (std::uint32_t k = 0; k < index; ++k)
      sequence[size + k] = next(sequence + k);
    for (int k = 0; k < size; ++k)
      out[k] = sequence[index + static_cast<std::uint32_t>(k)];
  }

  // Replaces `size` consecutive words of the sequence by those before them. (The lower bits of the first of these take no
  // part in the sequence and come out 0.)
  [[gnu::always_inline]] constexpr void unwind(std::uint32_t* words) const {
    std::uint32_t sequence[2 * size] = {};
    for (int k = 0; k < size; ++k)
      sequence[size + k] = words[k];
    for (int k = size - 1; k >= 0; --k) {
      const std::uint32_t bits = joined(sequence[k + size], sequence[k + middle]);
      sequence[k] = bits & upper;
      if (k + 1 < size)
        sequence[k + 1] |= bits & ~upper;
    }
    for (int k = 0; k < size; ++k)
      words[k] = sequence[k];
  }

  // Replaces a block of `size` words by the one that follows.
  constexpr void next_block(std::uint32_t* x) const {
    for (int i = 0; i < size - middle; ++i)
      x[i] = twist(x[i], x[i + 1], x[i + middle]);
    for (int i = size - middle; i < size - 1; ++i)
      x[i] = twist(x[i], x[i + 1], x[i + middle - size]);
    x[size - 1] = twist(x[size - 1], x[0], x[middle - 1]);
  }

  // Whether a block whose word `position` comes next is one of the sequence: not 0, and with a first word that a twist
  // gives. Of that only the upper bits belong to the state, so its others are not free where it is the next output: they
  // are what the twist that made the block's last word took from it.
  constexpr bool is_block(const std::uint32_t* x, std::uint32_t position) const {
    std::uint32_t any = x[0] & upper;
    for (int i = 1; i < size; ++i)
      any |= x[i];
    const std::uint32_t taken = joined(x[size - 1], x[middle - 1]);
    return any != 0 && position <= size && (position != 0 || ((x[0] ^ taken) & ~upper) == 0);
  }

  [[gnu::always_inline]] constexpr std::uint32_t output(std::uint32_t y) const {
    y ^= y >> Parameters::first_shift;
    y ^= (y << 7) & this->tempering_b;
    y ^= (y << 15) & this->tempering_c;
    return y ^ y >> 18;
  }
};

} // namespace hvl::engines
