#pragma once

#include <cstdint>
#include <variant>

#include <hvl/mrg32k3a_tables.h>
#include <hvl/streams_record.h>
#include <kestro/hvl/rng/engines.hpp>

#include "framework/generation.hpp"

namespace kestro::hvl::rng::detail {

template <>
struct engine_traits<mrg32k3a> {
  static constexpr const char* name = "mrg32k3a";
  static constexpr std::int32_t identifier = VQS_ENGINE_MRG32K3A;
  static constexpr bool has_uniform_bits = false;
};

namespace gpu {

/// The three last values of each component, oldest first.
struct tag_vqs_sycl_brng_mrg32k3a_stream_t {
  std::uint32_t x[3];
  std::uint32_t y[3];
};

/// The modulus 2^32 - c.
template <std::uint32_t C>
struct modulus_2_32_minus {
  static constexpr std::uint64_t value = (std::uint64_t{1} << 32) - C;

  /// Any 64-bit value, by folding the high word onto the low one; C is below 2^15.
  static constexpr std::uint32_t reduce(std::uint64_t v) {
    v = (v >> 32) * C + (v & 0xFFFFFFFF); // below 2^47 + 2^32
    v = (v >> 32) * C + (v & 0xFFFFFFFF); // below 2^30 + 2^32
    return static_cast<std::uint32_t>(v >= value ? v - value : v);
  }

  /// v becomes matrix v; the matrix is stored row by row.
  static constexpr void multiply(const std::uint32_t* matrix, std::uint32_t (&v)[3]) {
    std::uint32_t product[3] = {};
    for (int row = 0; row < 3; ++row) {
      std::uint64_t sum = 0;
      for (int column = 0; column < 3; ++column)
        sum += reduce(std::uint64_t{matrix[3 * row + column]} * v[column]);
      product[row] = reduce(sum);
    }
    for (int row = 0; row < 3; ++row)
      v[row] = product[row];
  }
};

using mrg32k3a_m1 = modulus_2_32_minus<209>;
using mrg32k3a_m2 = modulus_2_32_minus<22853>;

/// One step of both components. Returns z in [1, m1]; m1 stands for equal components.
constexpr std::uint32_t mrg32k3a_step(tag_vqs_sycl_brng_mrg32k3a_stream_t& s) {
  const std::uint64_t m1 = mrg32k3a_m1::value, m2 = mrg32k3a_m2::value;
  const std::uint32_t x = mrg32k3a_m1::reduce(std::uint64_t{1403580} * s.x[1] + 810728 * (m1 - s.x[0]));
  const std::uint32_t y = mrg32k3a_m2::reduce(std::uint64_t{527612} * s.y[2] + 1370589 * (m2 - s.y[0]));
  s = {{s.x[1], s.x[2], x}, {s.y[1], s.y[2], y}};
  return x > y ? x - y : static_cast<std::uint32_t>(m1 - y + x);
}

/// Jumps n steps: one precomputed power for each nonzero base-8 digit of n. Powers of one matrix commute, so each is
/// applied to the state directly.
constexpr void mrg32k3a_skip(tag_vqs_sycl_brng_mrg32k3a_stream_t* s, std::int64_t n) {
  for (int place = 0; n != 0; ++place, n >>= 3) {
    const int digit = static_cast<int>(n & 7);
    if (digit != 0) {
      mrg32k3a_m1::multiply(::hvl::streams::mrg32k3a_jump_x[7 * place + digit - 1], s->x);
      mrg32k3a_m2::multiply(::hvl::streams::mrg32k3a_jump_y[7 * place + digit - 1], s->y);
    }
  }
}

/// Jumps k substreams of 2^76 steps; k is below 2^51.
constexpr void mrg32k3a_skipahead_substream(tag_vqs_sycl_brng_mrg32k3a_stream_t* s, std::uint64_t k) {
  for (int bit = 0; k != 0; ++bit, k >>= 1) {
    if (k & 1) {
      mrg32k3a_m1::multiply(::hvl::streams::mrg32k3a_substream_x[bit], s->x);
      mrg32k3a_m2::multiply(::hvl::streams::mrg32k3a_substream_y[bit], s->y);
    }
  }
}

} // namespace gpu

template <>
struct engine_kernel<mrg32k3a> {
  using word_type = std::uint32_t;
  static constexpr word_scale scale = word_scale::mrg32k3a;

  // A jump costs as much as some tens of steps, so each work-item makes as many.
  static constexpr int blocks_per_item = 16;

  using state = gpu::tag_vqs_sycl_brng_mrg32k3a_stream_t;

  static state capture(const stream_handle& stream) {
    const auto& r = stream.record<vqs_mrg32k3a_record>();
    return {{r.x0, r.x1, r.x2}, {r.y0, r.y1, r.y2}};
  }

  static constexpr std::uint32_t raw(word_type word) { return word; }

  struct cursor {
    state s;
    void next(word_type (&words)[4]) {
      for (auto& word : words)
        word = gpu::mrg32k3a_step(s);
    }
  };

  static cursor at(const state& from, std::int64_t block) {
    cursor result{from};
    gpu::mrg32k3a_skip(&result.s, 4 * block);
    return result;
  }
};

/// The mode, and where the substream modes stand within a row: the first `offset` substreams have given their value of
/// the row that begins at the stream's state, and up to `row_steps` steps each for it.
template <>
struct engine_extension<mrg32k3a> {
  std::uint32_t offset = 0;
  std::uint32_t custom_count = 0;
  std::variant<mrg32k3a_mode::standard, mrg32k3a_mode::optimal, mrg32k3a_mode::custom> mode;
  std::uint32_t row_steps = 0;

  void attach(const sycl::queue&, const stream_handle&) {}
  void store(const stream_handle&) const {}

  bool has_substreams() const { return !std::holds_alternative<mrg32k3a_mode::standard>(mode); }
  std::uint32_t substreams() const { return custom_count != 0 ? custom_count : 81920; }
};

namespace gpu {

/// Where a call of the substream modes starts.
struct mrg32k3a_row {
  std::uint32_t substreams;
  std::uint32_t offset;      // outputs of the first row that are taken already
  std::uint32_t first_steps; // steps that the first row takes of every substream
};

/// The kernel of the substream modes: work-item i makes every value of the call that belongs to substream i.
template <class Transform, class Output>
class engine_func_sub_seq {
  using writer = value_writer<mrg32k3a, Transform, Output>;
  static_assert(writer::group_values == 1);

 public:
  engine_func_sub_seq(Output output, const tag_vqs_sycl_brng_mrg32k3a_stream_t& state,
                      const mrg32k3a_row& row, const Transform& transform, std::int64_t n)
      : state_(state), row_(row), writer_(output, transform, n), n_(n) {}

  void operator()(sycl::id<1> id) const {
    const auto item = static_cast<std::int64_t>(id[0]);
    const bool in_first_row = item >= row_.offset;
    std::int64_t j = item - row_.offset + (in_first_row ? 0 : row_.substreams);
    if (j >= n_)
      return;
    tag_vqs_sycl_brng_mrg32k3a_stream_t s = state_;
    mrg32k3a_skipahead_substream(&s, static_cast<std::uint64_t>(item));
    int ahead = static_cast<int>(row_.first_steps); // of the first row, not taken yet
    if (in_first_row) {
      write(j, s);
      j += row_.substreams;
      ahead -= writer::group_words;
    }
    for (; ahead > 0; --ahead)
      mrg32k3a_step(s);
    for (; j < n_; j += row_.substreams)
      write(j, s);
  }

 private:
  void write(std::int64_t j, tag_vqs_sycl_brng_mrg32k3a_stream_t& s) const {
    std::uint32_t words[writer::group_words];
    for (auto& word : words)
      word = mrg32k3a_step(s);
    writer_.write(words, j);
  }

  tag_vqs_sycl_brng_mrg32k3a_stream_t state_;
  mrg32k3a_row row_;
  writer writer_;
  std::int64_t n_;
};

} // namespace gpu

/// In the substream modes the CPU device runs the same kernel as a GPU, and so makes the same numbers.
template <>
struct engine_generation<mrg32k3a> : generation_at_position<mrg32k3a> {
  static constexpr bool has_substream_modes = true;

  template <class DistributionImpl, class Target>
  static sycl::event generate_impl_sub_seq(engine_base_impl<mrg32k3a>& impl, sycl::queue& queue,
                                           const DistributionImpl& distribution, std::int64_t n,
                                           const Target& target) {
    if constexpr (!DistributionImpl::traits::has_substreams) {
      throw invalid_argument("rng", "generate",
                             "mrg32k3a with optimal/custom modes doesn't support this distribution");
    } else {
      return distribution.with_transform(
          [&](const auto& transform) { return submit_in_substreams(impl, queue, transform, n, target); });
    }
  }

 private:
  template <class Transform, class Target>
  static sycl::event submit_in_substreams(engine_base_impl<mrg32k3a>& impl, sycl::queue& queue,
                                          const Transform& transform, std::int64_t n, const Target& target) {
    constexpr std::uint32_t steps = Transform::words.words;
    auto& extension = impl.extension();
    const std::uint32_t substreams = extension.substreams();
    // A row begun with values of more steps keeps that length, so that no step is used twice.
    const std::uint32_t first_steps = extension.row_steps > steps ? extension.row_steps : steps;
    const gpu::mrg32k3a_row row{substreams, extension.offset, first_steps};

    sycl::event event = queue.submit([&](sycl::handler& handler) {
      auto output = target.on_device(handler, n);
      const gpu::engine_func_sub_seq<Transform, decltype(output)> kernel(
          output, engine_kernel<mrg32k3a>::capture(impl.stream()), row, transform, n);
      if (n > 0)
        handler.parallel_for(sycl::range<1>(substreams), kernel);
    });

    const std::uint64_t end = extension.offset + static_cast<std::uint64_t>(n);
    const std::uint64_t rows = end / substreams;
    extension.offset = static_cast<std::uint32_t>(end % substreams);
    if (rows != 0)
      impl.skip_ahead(first_steps + (rows - 1) * steps);
    extension.row_steps = extension.offset == 0 ? 0 : rows != 0 ? steps : first_steps;
    return event;
  }
};

} // namespace kestro::hvl::rng::detail
