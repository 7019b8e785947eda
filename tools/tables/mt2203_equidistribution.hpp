// The dimensions k(v) in which the leading v bits of a tempered twister are equidistributed.
//
// S. Harase, M. Matsumoto, M. Saito, "Fast lattice reduction for F2-linear pseudorandom number generators", Mathematics of
// Computation 80 (2011): the lattice over GF(2)[t] that the unit vectors and the sequence of leading v bits, as a series
// in 1/t, span has a basis of vectors as short as can be; k(v) is minus the degree of the longest. A vector is kept as
// its degree, its leading coefficients and the generator's state that makes the others; projecting the last bit away
// leads from v to v - 1.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "mt2203_irreducible.hpp"

namespace mt2203_table {

struct twister {
  std::uint32_t a, b, c;

  static constexpr std::uint32_t lower = (std::uint32_t{1} << r) - 1;

  std::uint32_t next(const std::uint32_t* x) const {
    const std::uint32_t joined = (x[0] & ~lower) | (x[1] & lower);
    return x[m] ^ joined >> 1 ^ ((0 - (x[1] & 1)) & a);
  }
  std::uint32_t output(std::uint32_t y) const {
    y ^= y >> 12;
    y ^= y << 7 & b;
    y ^= y << 15 & c;
    return y ^ y >> 18;
  }
};

class equidistribution {
 public:
  // Of the leading `bits` bits, 1 ... 32.
  equidistribution(const twister& t, int bits) : twister_(t), bits_(bits) {
    for (std::size_t i = 0; i < vectors_.size(); ++i)
      vectors_[i] = &memory_[i];
    for (int i = 0; i < bits; ++i) {
      vectors_[i]->lead = bit(i);
      inverse_[i] = std::uint32_t{1} << i;
    }
    used_ = bits == 32 ? ~std::uint32_t{0} : (std::uint32_t{1} << bits) - 1;
    extra_ = bits;
    vectors_[extra_]->words[n - 1] = 1;
    advance(*vectors_[extra_]);
    reduce();
  }

  int dimension() const {
    int least = degree;
    for_each(used_, [&](int i) { least = std::min(least, vectors_[i]->depth); });
    return least;
  }
  int defect() const { return degree / bits_ - dimension(); }

  // To one bit less. A sum of vectors whose leading coefficients are the last unit vector has none any more.
  void project() {
    const std::uint32_t sum = inverse_[--bits_];
    const int i = shallowest(sum);
    for (int j = 0; j < bits_; ++j)
      if ((inverse_[j] >> i & 1) != 0)
        inverse_[j] ^= sum;
    used_ &= ~(std::uint32_t{1} << i);
    std::swap(vectors_[i], vectors_[extra_]);
    add_all(sum & used_);
    reduce();
  }

 private:
  static constexpr int window = 256;
  struct vector {
    int depth = 0;          // minus the degree
    std::uint32_t lead = 0; // the coefficients at that degree, first bit at the top
    int oldest = 0;         // of the words that make the coefficients below it
    std::uint32_t words[window] = {};
  };

  static std::uint32_t bit(int i) { return std::uint32_t{1} << (31 - i); }
  std::uint32_t leading(const vector& x) const { return x.lead >> (32 - bits_) << (32 - bits_); }

  template <class F>
  static void for_each(std::uint32_t set, const F& f) {
    for (; set != 0; set &= set - 1)
      f(__builtin_ctz(set));
  }

  int shallowest(std::uint32_t set) const {
    int best = __builtin_ctz(set);
    for_each(set, [&](int i) { best = vectors_[i]->depth < vectors_[best]->depth ? i : best; });
    return best;
  }

  static bool is_zero(const vector& x) {
    const std::uint32_t* const words = x.words + x.oldest;
    return (words[0] & ~twister::lower) == 0 &&
           std::all_of(words + 1, words + n, [](std::uint32_t word) { return word == 0; });
  }

  // Divides by powers of t until there are leading coefficients. The vector 0 gets a depth that no other has.
  void advance(vector& x) const {
    do {
      x.lead = twister_.output(x.words[x.oldest + n - 1]);
      if (x.oldest + n + 8 > window) { // which leaves room for whole vectors of additions
        std::memmove(x.words, x.words + x.oldest, n * sizeof(std::uint32_t));
        x.oldest = 0;
      }
      x.words[x.oldest + n] = twister_.next(x.words + x.oldest);
      ++x.oldest;
      ++x.depth;
      if (leading(x) == 0 && is_zero(x))
        x.depth = degree + 1;
    } while (leading(x) == 0 && x.depth <= degree);
  }

  // Adds to the extra vector, which then has no leading coefficients and is divided.
  void add_all(std::uint32_t set) {
    vector& x = *vectors_[extra_];
    for_each(set, [&](int i) {
      const std::uint32_t* const from = vectors_[i]->words + vectors_[i]->oldest;
      std::uint32_t* const to = x.words + x.oldest;
      for (int k = 0; k < 72; ++k)
        to[k] ^= from[k];
    });
    advance(x);
  }

  // Shortens the longest of the vectors that depend on each other, until one of them is 0.
  void reduce() {
    while (vectors_[extra_]->depth <= degree) {
      std::uint32_t sum = 0; // of the vectors with the extra one's leading coefficients
      for_each(leading(*vectors_[extra_]), [&](int top) { sum ^= inverse_[31 - top]; });
      const int i = shallowest(sum);
      if (vectors_[i]->depth < vectors_[extra_]->depth) {
        for (int j = 0; j < bits_; ++j)
          if ((inverse_[j] >> i & 1) != 0)
            inverse_[j] ^= sum & ~(std::uint32_t{1} << i);
        std::swap(vectors_[i], vectors_[extra_]);
      }
      add_all(sum);
    }
  }

  twister twister_;
  int bits_;
  std::array<vector, 33> memory_;
  std::array<vector*, 33> vectors_;
  std::array<std::uint32_t, 32>
      inverse_{}; // the vectors whose leading coefficients add up to each unit vector
  std::uint32_t used_;
  int extra_;
};

} // namespace mt2203_table
