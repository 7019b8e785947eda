// P. L'Ecuyer, "Good parameters and implementations for combined multiple recursive random number
// generators", Operations Research 47 (1999).
#include "generators/mrg32k3a.hpp"

#include <array>

#include "engine.hpp"
#include "generators/power.hpp"
#include "generators/split_mix.hpp"

namespace hvl::streams {
namespace {

using record_type = vqs_mrg32k3a_record;
using jump_table = std::uint32_t[147][9];

// The three last values of a component, oldest first.
using component = std::array<std::uint32_t, 3>;

// Row by row.
using matrix = std::array<std::uint32_t, 9>;

record_type& as_record(void* record) {
  return *static_cast<record_type*>(record);
}

component component_x(const record_type& r) {
  return {r.x0, r.x1, r.x2};
}
component component_y(const record_type& r) {
  return {r.y0, r.y1, r.y2};
}

void set_components(record_type& r, const component& x, const component& y) {
  r.x0 = x[0];
  r.x1 = x[1];
  r.x2 = x[2];
  r.y0 = y[0];
  r.y1 = y[1];
  r.y2 = y[2];
}

// Sum of three products: each is below 2^64, so each is reduced before the sum.
std::uint32_t dot(const std::uint32_t* a, const std::uint32_t* b, std::size_t b_stride, std::uint32_t m) {
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < 3; ++i)
    sum += std::uint64_t{a[i]} * b[i * b_stride] % m;
  return static_cast<std::uint32_t>(sum % m);
}

component applied(const std::uint32_t* rows, const component& v, std::uint32_t m) {
  return {dot(rows, v.data(), 1, m), dot(rows + 3, v.data(), 1, m), dot(rows + 6, v.data(), 1, m)};
}

matrix product(const matrix& a, const matrix& b, std::uint32_t m) {
  matrix c{};
  for (std::size_t i = 0; i < 9; ++i)
    c[i] = dot(&a[i / 3 * 3], &b[i % 3], 3, m);
  return c;
}

component jump_below_2_63(const jump_table& jump, std::uint32_t m, component v, std::uint64_t count) {
  for (std::size_t digit_at = 0; count != 0; count >>= 3, ++digit_at)
    if (const std::size_t digit = count & 7; digit != 0)
      v = applied(jump[7 * digit_at + digit - 1], v, m);
  return v;
}

// A count of any size: the table for the first 63 bits, squarings of its last power for the bits above.
component jumped(const jump_table& jump, std::uint32_t m, component v, std::span<const std::uint64_t> count) {
  if (count.empty())
    return v;
  v = jump_below_2_63(jump, m, v, count[0] & ~(std::uint64_t{1} << 63));
  const auto multiply = [m](const matrix& a, const matrix& b) { return product(a, b, m); };
  const auto entry = [&](std::size_t i) { return std::to_array(jump[i]); };
  const matrix to_63 = multiply(entry(7 * 20 + 3), entry(7 * 20 + 3)); // 2^62 steps, twice
  if (count[0] >> 63 != 0)
    v = applied(to_63.data(), v, m);
  const matrix to_64 = multiply(to_63, to_63);
  const matrix rest = power(to_64, count.subspan(1), {1, 0, 0, 0, 1, 0, 0, 0, 1}, multiply);
  return applied(rest.data(), v, m);
}

// word(i), reduced, is word i of the state x0 x1 x2 y0 y1 y2; called in this order.
template <class Word>
void set_state(void* record, Word word) {
  const auto component_from = [&](std::size_t first, std::uint32_t m) {
    component c;
    for (std::size_t i = 0; i < 3; ++i)
      c[i] = static_cast<std::uint32_t>(word(first + i) % m);
    if ((c[0] | c[1] | c[2]) == 0)
      c[0] = 1;
    return c;
  };
  const component x = component_from(0, mrg32k3a_m1);
  set_components(as_record(record), x, component_from(3, mrg32k3a_m2));
}

void seed_words(void* record, std::span<const std::uint32_t> words) noexcept {
  set_state(record, [&](std::size_t i) { return i < words.size() ? words[i] : 1u; });
}

// Neighbouring seeds as they are would give streams whose first values are near each other.
void seed(void* record, std::uint64_t value) noexcept {
  set_state(record, [next = split_mix64(value)](std::size_t) mutable { return next(); });
}

bool in_range(const void* record) noexcept {
  const auto& r = *static_cast<const record_type*>(record);
  const auto proper = [](const component& c, std::uint32_t m) {
    return (c[0] | c[1] | c[2]) != 0 && c[0] < m && c[1] < m && c[2] < m;
  };
  const bool in_row =
      r.offset == 0 ? r.row_steps == 0 : r.offset < r.substreams && (r.row_steps == 1 || r.row_steps == 2);
  return proper(component_x(r), mrg32k3a_m1) && proper(component_y(r), mrg32k3a_m2) && in_row;
}

void draw(void* record, void* words, std::size_t count) noexcept {
  constexpr std::uint64_t m1 = mrg32k3a_m1;
  constexpr std::uint64_t m2 = mrg32k3a_m2;
  record_type& r = as_record(record);
  auto* out = static_cast<std::uint32_t*>(words);
  component x = component_x(r);
  component y = component_y(r);
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint64_t p = (mrg32k3a_a12 * std::uint64_t{x[1]} + mrg32k3a_a13 * (m1 - x[0])) % m1;
    const std::uint64_t q = (mrg32k3a_a21 * std::uint64_t{y[2]} + mrg32k3a_a23 * (m2 - y[0])) % m2;
    x = {x[1], x[2], static_cast<std::uint32_t>(p)};
    y = {y[1], y[2], static_cast<std::uint32_t>(q)};
    out[i] = static_cast<std::uint32_t>(p > q ? p - q : p + m1 - q);
  }
  set_components(r, x, y);
}

void skip(void* record, std::span<const std::uint64_t> count) {
  record_type& r = as_record(record);
  set_components(r, jumped(mrg32k3a_jump_x, mrg32k3a_m1, component_x(r), count),
                 jumped(mrg32k3a_jump_y, mrg32k3a_m2, component_y(r), count));
}

constexpr record_field fields[] = {{16, 4, 6}, {40, 4, 3, 2}};

double centred(std::uint32_t residue, std::uint32_t m) {
  return static_cast<double>(residue) - (residue > m / 2 ? static_cast<double>(m) : 0.0);
}

} // namespace

void mrg32k3a_centred_matrices(std::uint64_t steps, double (&x)[9], double (&y)[9]) {
  for (std::size_t column = 0; column < 3; ++column) {
    component unit{};
    unit[column] = 1;
    const component jumped_x = jump_below_2_63(mrg32k3a_jump_x, mrg32k3a_m1, unit, steps);
    const component jumped_y = jump_below_2_63(mrg32k3a_jump_y, mrg32k3a_m2, unit, steps);
    for (std::size_t row = 0; row < 3; ++row) {
      x[3 * row + column] = centred(jumped_x[row], mrg32k3a_m1);
      y[3 * row + column] = centred(jumped_y[row], mrg32k3a_m2);
    }
  }
}

const engine mrg32k3a_engine = {
    VQS_ENGINE_MRG32K3A,
    "mrg32k3a",
    word_kind::unsigned32,
    word_scale::mrg32k3a,
    false,
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
