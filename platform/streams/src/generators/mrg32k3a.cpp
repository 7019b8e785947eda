#include "generators/mrg32k3a.hpp"

#include <array>

#include "generators/entry.hpp"
#include "generators/split_mix.hpp"

namespace hvl::streams {
namespace {

using engines::mrg32k3a;

// Row by row.
using matrix = std::array<std::uint32_t, 9>;

template <class Modulus>
matrix product(const matrix& a, const matrix& b) {
  matrix c;
  for (std::size_t column = 0; column < 3; ++column) {
    std::uint32_t v[] = {b[column], b[3 + column], b[6 + column]};
    Modulus::multiply(a.data(), v);
    for (std::size_t row = 0; row < 3; ++row)
      c[3 * row + column] = v[row];
  }
  return c;
}

// What of `count` the table of powers does not reach, 2^63 steps and more: squarings of its last power of 2.
template <class Modulus>
void skip_beyond_table(const std::uint32_t (&jump)[147][9], std::uint32_t (&v)[3],
                       std::span<const std::uint64_t> count) {
  const matrix to_62 = std::to_array(jump[7 * 20 + 3]);
  const matrix to_63 = product<Modulus>(to_62, to_62);
  if (count[0] >> 63 != 0)
    Modulus::multiply(to_63.data(), v);
  const matrix rest = engines::power(product<Modulus>(to_63, to_63), count.subspan(1),
                                     matrix{1, 0, 0, 0, 1, 0, 0, 0, 1}, product<Modulus>);
  Modulus::multiply(rest.data(), v);
}

double centred(std::uint32_t residue, std::uint64_t m) {
  return static_cast<double>(residue) - (residue > m / 2 ? static_cast<double>(m) : 0.0);
}

struct generator {
  using type = mrg32k3a;
  using record = type::record;

  static constexpr std::uint32_t words_per_thread = 1 << 16;
  static constexpr record_field fields[] = {{16, 4, 6}, {40, 4, 3, 2}};

  // word(i), reduced, is word i of the state x0 x1 x2 y0 y1 y2; called in this order.
  template <class Word>
  static int set_state(record& r, Word word) {
    const auto fill = [&](std::uint32_t(&v)[3], std::size_t first, std::uint64_t m) {
      for (std::size_t i = 0; i < 3; ++i)
        v[i] = static_cast<std::uint32_t>(word(first + i) % m);
      if ((v[0] | v[1] | v[2]) == 0)
        v[0] = 1;
    };
    type::state s;
    fill(s.x, 0, type::m1::value);
    fill(s.y, 3, type::m2::value);
    type::store(s, r);
    return VQS_STATUS_OK;
  }

  static int seed_words(record& r, std::span<const std::uint32_t> words) {
    return set_state(r, [&](std::size_t i) { return i < words.size() ? words[i] : 1u; });
  }

  // Neighbouring seeds as they are would give streams whose first values are near each other.
  static int seed(record& r, std::uint64_t value) {
    return set_state(r, [next = split_mix64(value)](std::size_t) mutable { return next(); });
  }

  static bool in_range(const record& r) {
    const auto proper = [](const std::uint32_t(&v)[3], std::uint64_t m) {
      return (v[0] | v[1] | v[2]) != 0 && v[0] < m && v[1] < m && v[2] < m;
    };
    const type::state s = type::state_of(r);
    const bool in_row =
        r.offset == 0 ? r.row_steps == 0 : r.offset < r.substreams && (r.row_steps == 1 || r.row_steps == 2);
    return proper(s.x, type::m1::value) && proper(s.y, type::m2::value) && in_row;
  }

  static void draw(record& r, std::uint32_t* out, std::size_t count) {
    type::state s = type::state_of(r);
    for (std::size_t i = 0; i < count; ++i)
      out[i] = type::step(s);
    type::store(s, r);
  }

  static void advance(record& r, std::span<const std::uint64_t> count) {
    if (count.empty())
      return;
    type::state s = type::state_of(r);
    type::mrg32k3a_skip(s, count[0] & ~(std::uint64_t{1} << 63));
    if (count.size() > 1 || count[0] >> 63 != 0) {
      skip_beyond_table<type::m1>(mrg32k3a_jump_x, s.x, count);
      skip_beyond_table<type::m2>(mrg32k3a_jump_y, s.y, count);
    }
    type::store(s, r);
  }
};

} // namespace

void mrg32k3a_centred_matrices(std::uint64_t steps, double (&x)[9], double (&y)[9]) {
  for (std::size_t column = 0; column < 3; ++column) {
    mrg32k3a::state unit{};
    unit.x[column] = unit.y[column] = 1;
    mrg32k3a::mrg32k3a_skip(unit, steps);
    for (std::size_t row = 0; row < 3; ++row) {
      x[3 * row + column] = centred(unit.x[row], mrg32k3a::m1::value);
      y[3 * row + column] = centred(unit.y[row], mrg32k3a::m2::value);
    }
  }
}

const engine mrg32k3a_engine = entry<generator>();

} // namespace hvl::streams
