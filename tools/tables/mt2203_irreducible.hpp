// Characteristic polynomials of twisters of 2203 bits, and whether they are irreducible over GF(2). Since 2^2203 - 1 is
// prime, the recurrence of an irreducible one has the full period.
#pragma once

#include <immintrin.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace mt2203_table {

inline constexpr int degree = 2203;
inline constexpr int n = 69, m = 34, w = 32, r = 5;

// M. Matsumoto, T. Nishimura, "Mersenne Twister", ACM TOMACS 8 (1998), appendix: with P = t^n + t^m and
// Q = t^(n-1) + t^(m-1), the polynomial is the term without a twist constant, P^(w-r) Q^r, and one for each of its set bits.
template <class Ring> // of the polynomials, or of those modulo another one
constexpr std::array<typename Ring::element, w + 1> terms_of_twist_bits(const Ring& ring) {
  std::array<typename Ring::element, w + 1> terms{};
  const auto p = ring.sum_of_powers(n, m), q = ring.sum_of_powers(n - 1, m - 1);
  terms[w - 1] = ring.one();
  for (int i = w - 1; i > r; --i)
    terms[static_cast<std::size_t>(i - 1)] = ring.product(terms[static_cast<std::size_t>(i)], p);
  terms[r - 1] = ring.product(terms[r], p); // P^(w-r), and from here on by Q
  for (int i = r - 1; i > 0; --i)
    terms[static_cast<std::size_t>(i - 1)] = ring.product(terms[static_cast<std::size_t>(i)], q);
  terms[w] = ring.product(terms[0], q);
  return terms;
}

struct all_polynomials {
  using element = std::bitset<degree + 1>;
  static element one() { return element(1); }
  static element sum_of_powers(int a, int b) { return one() << std::size_t(a) ^ one() << std::size_t(b); }
  static element product(const element& a, const element& b) { // of few terms b
    element sum;
    for (std::size_t i = b._Find_first(); i < b.size(); i = b._Find_next(i))
      sum ^= a << i;
    return sum;
  }
};

// Polynomials modulo one of a degree up to 18, as numbers.
struct modulo {
  using element = std::uint32_t;
  std::uint32_t f;
  std::uint32_t top; // its highest bit

  static element one() { return 1; }
  element times_t(element a) const { return (a << 1) ^ ((a << 1 & top) != 0 ? f : 0); }
  element sum_of_powers(int a, int b) const { return power(a) ^ power(b); }
  element product(element a, element b) const {
    element sum = 0;
    for (std::uint32_t bit = top >> 1; bit != 0; bit >>= 1)
      sum = times_t(sum) ^ ((b & bit) != 0 ? a : 0);
    return sum;
  }

 private:
  element power(int exponent) const {
    element p = 1;
    for (int i = 0; i < exponent; ++i)
      p = times_t(p);
    return p;
  }
};

// Finds small factors of the polynomial of a twist constant, whose residues are sums of fixed ones.
class factor_sieve {
 public:
  factor_sieve() {
    std::vector<bool> composite(std::size_t{2} << most_degree);
    for (std::uint32_t f = 4; f < composite.size();
         ++f) { // t and t + 1 divide none whose twist constant has its top bit
      if (f % 2 == 0 || __builtin_parity(f) == 0 || composite[f])
        continue;
      const std::uint32_t top = std::uint32_t{1} << (31 - __builtin_clz(f));
      for (std::uint32_t g = 2; top * std::uint64_t{g} < composite.size(); ++g)
        composite[product(f, g)] = true;
      const auto terms = terms_of_twist_bits(modulo{f, top});
      for (std::size_t bit = 0; bit <= w; ++bit)
        residues_[bit].push_back(terms[bit]);
    }
    for (auto& row : residues_)
      row.resize((row.size() + chunk - 1) / chunk * chunk, row.back());
  }

  bool has_factor(std::uint32_t a) const {
    for (std::size_t first = 0; first < residues_[w].size(); first += chunk) {
      std::array<std::uint32_t, chunk> sum;
      std::copy_n(residues_[w].begin() + static_cast<std::ptrdiff_t>(first), chunk, sum.begin());
      for (std::size_t bit = 0; bit < w; ++bit)
        if ((a >> bit & 1) != 0)
          for (std::size_t k = 0; k < chunk; ++k)
            sum[k] ^= residues_[bit][first + k];
      bool any = false;
      for (const std::uint32_t residue : sum)
        any |= residue == 0;
      if (any)
        return true;
    }
    return false;
  }

 private:
  static constexpr int most_degree = 18;
  static constexpr std::size_t chunk = 256;

  static std::uint32_t product(std::uint32_t a, std::uint32_t b) {
    std::uint32_t sum = 0;
    for (; b != 0; b >>= 1, a <<= 1)
      sum ^= (b & 1) != 0 ? a : 0;
    return sum;
  }

  std::array<std::vector<std::uint32_t>, w + 1>
      residues_; // of the terms of the bits, modulo each irreducible polynomial
};

// Squares modulo t^37 times a characteristic polynomial, whose degree is a whole number of words, by carry-less
// products of words.
class irreducibility {
 public:
  explicit irreducibility(std::uint32_t a) {
    static const auto terms = terms_of_twist_bits(all_polynomials());
    phi_ = terms[w];
    for (std::size_t bit = 0; bit < w; ++bit)
      if ((a >> bit & 1) != 0)
        phi_ ^= terms[bit];
    for (std::size_t i = 0; i < degree; ++i)
      if (phi_[i])
        low_[words - 1 - (i + shift) / 64] |= std::uint64_t{1} << (i + shift) % 64;
  }

  // An irreducible factor of a degree dividing the prime 2203 divides t^(2^2203) - t. So where phi itself does, has no
  // root and the degree 2203, it is irreducible.
  bool operator()() const {
    if (!phi_[0] || phi_.count() % 2 == 0)
      return false;
    poly x{};
    x[0] = 2;
    for (int i = 0; i < degree; ++i)
      x = squared(x);
    x[0] ^= 2;
    std::bitset<64 * words> rest;
    for (std::size_t i = 0; i < rest.size(); ++i)
      rest[i] = (x[i / 64] >> i % 64 & 1) != 0;
    std::bitset<64 * words> multiple;
    for (std::size_t i = 0; i <= degree; ++i)
      multiple[i + shift - 1] = phi_[i];
    for (std::size_t top = rest.size() - 1; top >= degree; --top, multiple >>= 1)
      if (rest[top])
        rest ^= multiple;
    return rest.none();
  }

 private:
  static constexpr std::size_t words = 35;
  static constexpr std::size_t shift = 64 * words - degree;
  using poly = std::array<std::uint64_t, words>;

  static __m128i product(std::uint64_t a, std::uint64_t b) {
    return _mm_clmulepi64_si128(_mm_cvtsi64_si128(static_cast<long long>(a)),
                                _mm_cvtsi64_si128(static_cast<long long>(b)), 0);
  }

  // The sum of q[i] low_[words - 1 - k + i] over i from `first` up to `end`. Loops of fixed length, which the compiler unrolls.
  template <std::size_t k, std::size_t first, std::size_t end>
  [[gnu::always_inline]] static __m128i column(const std::uint64_t* q, const std::uint64_t* from_top) {
    __m128i even = _mm_setzero_si128(), odd = even;
    std::size_t i = first;
#pragma GCC unroll 18
    for (; i + 2 <= end; i += 2) {
      const __m128i pair = _mm_loadu_si128(reinterpret_cast<const __m128i*>(q + i));
      const __m128i lows = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from_top + words - 1 - k + i));
      even = _mm_xor_si128(even, _mm_clmulepi64_si128(pair, lows, 0x00));
      odd = _mm_xor_si128(odd, _mm_clmulepi64_si128(pair, lows, 0x11));
    }
    if (i < end)
      even = _mm_xor_si128(even, product(q[i], from_top[words - 1 - k + i]));
    return _mm_xor_si128(even, odd);
  }
  static std::uint64_t low_half(__m128i x) {
    return static_cast<std::uint64_t>(_mm_cvtsi128_si64(x));
  }
  static std::uint64_t high_half(__m128i x) {
    return static_cast<std::uint64_t>(_mm_extract_epi64(x, 1));
  }

  // The quotient's words follow from the top, as low_ has a degree more than 64 below that of the modulus. Column k of
  // its product with low_ begins at word k.
  poly squared(const poly& x) const {
    std::array<std::uint64_t, 2 * words> square;
    for (std::size_t i = 0; i < words; ++i)
      _mm_storeu_si128(reinterpret_cast<__m128i*>(square.data() + 2 * i), product(x[i], x[i]));
    std::array<std::uint64_t, words> q;
    __m128i above = _mm_setzero_si128();
    const auto quotient_word = [&]<std::size_t i>()
        __attribute__((always_inline)) { // low_ begins with a word that is 0
      const __m128i below = column<i + words - 1, i + 1, words>(q.data(), low_.data());
      q[i] = square[words + i] ^ low_half(above) ^ high_half(below);
      above = below;
    };
    poly reduced;
    std::uint64_t carried = 0;
    const auto reduced_word = [&]<std::size_t k>() __attribute__((always_inline)) {
      const __m128i sum = column<k, 0, k + 1>(q.data(), low_.data());
      reduced[k] = square[k] ^ low_half(sum) ^ carried;
      carried = high_half(sum);
    };
    [&]<std::size_t... k>(std::index_sequence<k...>) __attribute__((always_inline)) {
      (quotient_word.template operator()<words - 1 - k>(), ...);
      (reduced_word.template operator()<k>(), ...);
    }
    (std::make_index_sequence<words>());
    return reduced;
  }

  std::bitset<degree + 1> phi_;
  std::array<std::uint64_t, words> low_{}; // t^37 (phi - t^2203), its highest word first
};

} // namespace mt2203_table
