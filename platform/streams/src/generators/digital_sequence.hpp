// Generators of digital sequences. Behind the direction numbers a record has tables of its own, for whole rows at a time:
// a row are the words of one point or, where there are few dimensions, of 2^k points that begin at a multiple of 2^k. From
// one row to the next all of its words change by the words of one table.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <vector>

#include "generators/entry.hpp"
#include "hvl/core.h"
#include "hvl/engines/digital_sequence.hpp"
#include "simd/kernels.hpp"

namespace hvl::streams {

// Where the tables of a record lie. Each word of row() is the next one of its place to come, when the stream stands at
// point reserved[1] and coordinate reserved[2] and reserved[0] is 1.
class digital_tables {
 public:
  using record = vqs_digital_record;

  static constexpr std::uint32_t bits = engines::digital_sequence::number_bits;
  static constexpr std::size_t number_stride = engines::digital_sequence::record_stride;

  explicit digital_tables(record& r)
      : record_(&r), points_log2_(points_log2(r.dimensions)), width_(r.dimensions << points_log2_),
        words_(reinterpret_cast<std::uint32_t*>(reinterpret_cast<std::byte*>(&r) +
                                                tables_offset(r.dimensions))) {}

  // Of a whole record.
  static std::size_t bytes(std::uint32_t dimensions) {
    const std::uint32_t k = points_log2(dimensions);
    return tables_offset(dimensions) + sizeof(std::uint32_t) * (bits - k + 2) * stride(dimensions << k);
  }

  static std::uint32_t* numbers(record& r) { return reinterpret_cast<std::uint32_t*>(&r + 1); }

  // From the direction numbers.
  void build() const {
    const std::uint32_t k = points_log2_;
    for (std::uint32_t d = 0; d < record_->dimensions; ++d) {
      const std::uint32_t* const v = numbers(*record_) + number_stride * d;
      for (std::uint32_t point = 0; point < std::uint32_t{1} << k; ++point) {
        const std::size_t at = std::size_t{point} * record_->dimensions + d;
        first_row()[at] = engines::digital_sequence::state{v, 0, 1, point, 0}.value();
        for (std::uint32_t j = 0; j + k < bits; ++j)
          change(j)[at] = v[j + k] ^ (k != 0 ? v[k - 1] : 0);
      }
    }
  }

  std::uint32_t width() const { return width_; }

  // Of the next word: its row, and the place in it.
  std::uint32_t row_number() const { return record_->point >> points_log2_; }
  std::uint32_t place() const {
    return (record_->point & ((1u << points_log2_) - 1)) * record_->dimensions + record_->coordinate;
  }

  std::uint32_t* row() const { return table(1); }
  bool has_row() const {
    return record_->reserved[0] == 1 && record_->reserved[1] == record_->point &&
           record_->reserved[2] == record_->coordinate;
  }
  void make_row() const {
    std::copy_n(first_row(), width_, row());
    const std::uint32_t n = row_number();
    for (std::uint32_t gray = n ^ n >> 1; gray != 0; gray &= gray - 1)
      change_row(change(static_cast<std::uint32_t>(std::countr_zero(gray))), width_);
    change_row(change_after(n), place());
  }
  // Moves the stream, row() being there already.
  void set_position(std::uint32_t row_number, std::uint32_t place) const {
    record_->point = (row_number << points_log2_) + place / record_->dimensions;
    record_->coordinate = place % record_->dimensions;
    record_->reserved[0] = 1;
    record_->reserved[1] = record_->point;
    record_->reserved[2] = record_->coordinate;
  }

  // What leads from row n to the next one, the last row being followed by the first.
  const std::uint32_t* change_after(std::uint32_t n) const {
    const auto j = static_cast<std::uint32_t>(std::countr_one(n));
    return change(std::min(j, bits - 1 - points_log2_));
  }

 private:
  static constexpr std::uint32_t row_words = 512;
  static constexpr std::size_t alignment = 64;

  static std::uint32_t points_log2(std::uint32_t dimensions) {
    return dimensions >= row_words ? 0
                                   : static_cast<std::uint32_t>(std::bit_width(row_words / dimensions)) - 1;
  }
  static std::size_t tables_offset(std::uint32_t dimensions) {
    const std::size_t end = sizeof(record) + sizeof(std::uint32_t) * number_stride * dimensions;
    return (end + alignment - 1) / alignment * alignment;
  }
  static std::size_t stride(std::uint32_t width) {
    constexpr std::size_t words = alignment / sizeof(std::uint32_t);
    return (width + words - 1) / words * words;
  }

  void change_row(const std::uint32_t* by, std::uint32_t words) const {
    std::uint32_t* const x = row();
    for (std::uint32_t i = 0; i < words; ++i)
      x[i] ^= by[i];
  }

  std::uint32_t* table(std::size_t index) const { return words_ + index * stride(width_); }
  std::uint32_t* first_row() const { return table(0); }
  std::uint32_t* change(std::uint32_t j) const { return table(2 + j); }

  record* record_;
  std::uint32_t points_log2_;
  std::uint32_t width_;
  std::uint32_t* words_;
};

// Source has, static:
//
//   using type = engines::...;
//   void fill(std::uint32_t dimensions, const Put&);               put(dimension, index, direction number)
//   int numbers_of(std::uint32_t dimensions, std::span<const std::uint32_t> words, std::vector<std::uint32_t>& numbers);
//
// the latter from what the caller gives behind the number of dimensions, all 32 of a dimension and then the next; a status.
template <class Source>
struct digital_generator {
  using type = typename Source::type;
  using record = vqs_digital_record;
  static constexpr std::uint32_t bits = digital_tables::bits;

  static constexpr std::uint32_t words_per_thread = 1 << 16;
  static constexpr record_field fields[] = {{16, 4, 2}, {24, 4, 2}};

  static record& of(const record_pointer& r) { return *static_cast<record*>(r.get()); }

  static int seed(record_pointer& r, std::uint64_t dimensions) {
    if (dimensions == 0 || dimensions > type::most_dimensions)
      return VQS_STATUS_BAD_PARAMETER;
    of(r).dimensions = static_cast<std::uint32_t>(dimensions);
    extend(r, {});
    return VQS_STATUS_OK;
  }

  // The number of dimensions (without it one), and then what the caller has of his own.
  static int seed_words(record_pointer& r, std::span<const std::uint32_t> words) {
    const std::uint32_t dimensions = words.empty() ? 1 : words[0];
    if (words.size() < 2)
      return seed(r, dimensions);
    if (dimensions == 0 || dimensions > type::most_dimensions)
      return VQS_STATUS_BAD_PARAMETER;
    std::vector<std::uint32_t> numbers;
    if (const int status = Source::numbers_of(dimensions, words.subspan(1), numbers); status != VQS_STATUS_OK)
      return status;
    of(r).dimensions = dimensions;
    of(r).own = 1;
    extend(r, numbers);
    return VQS_STATUS_OK;
  }

  static bool in_range(const record& r) {
    return r.dimensions != 0 && r.dimensions <= type::most_dimensions && r.coordinate < r.dimensions &&
           r.own <= 1;
  }

  static void extend(record_pointer& r, std::span<const std::uint32_t> numbers) {
    const record& fields = of(r);
    record_pointer whole = allocate_record(fields.header, digital_tables::bytes(fields.dimensions));
    record& w = of(whole);
    w.point = fields.point;
    w.coordinate = fields.coordinate;
    w.dimensions = fields.dimensions;
    w.own = fields.own;
    const auto put = [to = digital_tables::numbers(w)](std::size_t dimension, std::size_t k,
                                                       std::uint32_t number) {
      to[digital_tables::number_stride * dimension + k] = number;
    };
    if (w.own == 0)
      Source::fill(w.dimensions, put);
    for (std::size_t i = 0; i < numbers.size(); ++i)
      put(i / bits, i % bits, numbers[i]);
    digital_tables(w).build();
    r = std::move(whole);
  }

  static constexpr record_tables tables{
      bits * type::most_dimensions,
      [](const void* r) noexcept {
        const record& fields = *static_cast<const record*>(r);
        return fields.own != 0 ? bits * fields.dimensions : 0;
      },
      [](const void* r, std::uint32_t index) noexcept {
        return type::direction_numbers(
            *static_cast<const record*>(r))[digital_tables::number_stride * (index / bits) + index % bits];
      },
      extend,
  };

  static void draw(record& r, std::uint32_t* out, std::size_t count) {
    const digital_tables tables(r);
    if (!tables.has_row()) {
      if (count < tables.width() / 4) // a row does not pay
        return draw_singly(r, out, count);
      tables.make_row();
    }
    const auto next_row = best_kernels().next_row;
    std::uint32_t number = tables.row_number();
    std::uint32_t place = tables.place();
    while (count != 0) {
      const auto n = static_cast<std::uint32_t>(std::min<std::size_t>(count, tables.width() - place));
      next_row(out, tables.row() + place, tables.change_after(number) + place, n);
      out += n;
      count -= n;
      place += n;
      if (place == tables.width()) {
        place = 0;
        ++number;
      }
    }
    tables.set_position(number, place);
  }

  static void advance(record& r, std::span<const std::uint64_t> count) {
    // modulo the period, below 2^47, 16 bits at a time
    const std::uint64_t period = std::uint64_t{r.dimensions} << bits;
    std::uint64_t words = 0;
    for (std::size_t i = count.size(); i-- != 0;)
      for (int shift = 48; shift >= 0; shift -= 16)
        words = (words << 16 | (count[i] >> shift & 0xFFFF)) % period;
    typename type::state s = type::state_of(r);
    s.advance(words);
    r.point = s.point;
    r.coordinate = s.coordinate;
  }

 private:
  static void draw_singly(record& r, std::uint32_t* out, std::size_t count) {
    typename type::state s = type::state_of(r);
    for (std::size_t i = 0; i < count; ++i) {
      out[i] = s.value();
      s.step();
    }
    r.point = s.point;
    r.coordinate = s.coordinate;
  }
};

} // namespace hvl::streams
