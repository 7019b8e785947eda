#pragma once

#include <algorithm>
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

  using record_type = vqs_mrg32k3a_record;
  using state = gpu::tag_vqs_sycl_brng_mrg32k3a_stream_t;

  static state capture(const stream_handle& stream) {
    const auto& r = stream.record<record_type>();
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

  static cursor at(const state& from, std::int64_t item) {
    cursor result{from};
    gpu::mrg32k3a_skip(&result.s, item * 4 * blocks_per_item);
    return result;
  }
};

using mrg32k3a_any_mode =
    std::variant<mrg32k3a_mode::standard, mrg32k3a_mode::optimal, mrg32k3a_mode::custom>;

/// How many substreams a mode takes values from; 0 for the one sequence.
struct mrg32k3a_substreams {
  static constexpr std::uint32_t optimal = 81920;
  std::uint32_t operator()(mrg32k3a_mode::standard) const { return 0; }
  std::uint32_t operator()(mrg32k3a_mode::optimal) const { return optimal; }
  std::uint32_t operator()(mrg32k3a_mode::custom mode) const {
    return mode.num_streams != 0 ? mode.num_streams : optimal;
  }
};

/// Puts a stream at the start of a mode. The stream's record alone holds mode and place.
inline void set_mode(const stream_handle& stream, const mrg32k3a_any_mode& mode) {
  auto& record = stream.record<vqs_mrg32k3a_record>();
  record.substreams = std::visit(mrg32k3a_substreams(), mode);
  record.offset = record.row_steps = 0;
}

namespace gpu {

/// Where a call of the substream modes starts.
struct mrg32k3a_row {
  std::uint32_t substreams;
  std::uint32_t offset;      // outputs of the first row that are taken already
  std::uint32_t first_steps; // steps that the first row takes of every substream
};

/// The kernel of the substream modes: a work-item makes every value of the call that belongs to one substream. Item i has
/// value i of the call, so no item is without one.
template <class T, class Computation, class Transform, class Coefficients, class Output>
class engine_func_sub_seq {
  static constexpr int steps_per_value = Transform::words_per_value;

 public:
  engine_func_sub_seq(Output output, const tag_vqs_sycl_brng_mrg32k3a_stream_t& state,
                      const mrg32k3a_row& row, const Coefficients& coefficients, const Transform& transform,
                      std::int64_t n)
      : output_(output), state_(state), row_(row), coefficients_(coefficients), transform_(transform), n_(n) {
  }

  void operator()(sycl::id<1> id) const {
    auto j = static_cast<std::int64_t>(id[0]);
    const std::uint64_t place = std::uint64_t{row_.offset} + id[0];
    const bool in_first_row = place < row_.substreams;
    tag_vqs_sycl_brng_mrg32k3a_stream_t s = state_;
    mrg32k3a_skipahead_substream(&s, in_first_row ? place : place - row_.substreams);
    int ahead = static_cast<int>(row_.first_steps); // of the first row, not taken yet
    if (in_first_row) {
      store(j, s);
      j += row_.substreams;
      ahead -= steps_per_value;
    }
    for (; ahead > 0; --ahead)
      mrg32k3a_step(s);
    for (; j < n_; j += row_.substreams)
      store(j, s);
  }

 private:
  void store(std::int64_t j, tag_vqs_sycl_brng_mrg32k3a_stream_t& s) const {
    Computation uniforms[steps_per_value];
    for (auto& uniform : uniforms)
      uniform = from_word<mrg32k3a, Computation>(mrg32k3a_step(s), coefficients_);
    T value[1];
    transform_(uniforms, value);
    output_[static_cast<std::size_t>(j)] = value[0];
  }

  Output output_;
  tag_vqs_sycl_brng_mrg32k3a_stream_t state_;
  mrg32k3a_row row_;
  Coefficients coefficients_;
  Transform transform_;
  std::int64_t n_;
};

} // namespace gpu

/// In the substream modes the CPU device runs the same kernel as a GPU, and so makes the same numbers.
template <>
struct engine_generation<mrg32k3a> : plain_generation<mrg32k3a> {
  using impl_type = engine_base_impl<mrg32k3a>;

  template <class DistributionImpl, class Target>
  static sycl::event on_host(impl_type& impl, sycl::queue& queue, const DistributionImpl& distribution,
                             std::int64_t n, const Target& target) {
    if (record_of(impl).substreams == 0)
      return plain_generation::on_host(impl, queue, distribution, n, target);
    return in_substreams(impl, queue, distribution.on_device(), n, target);
  }

  template <class DistributionImpl, class Target>
  static sycl::event on_device(impl_type& impl, sycl::queue& queue, const DistributionImpl& distribution,
                               std::int64_t n, const Target& target) {
    if (record_of(impl).substreams == 0)
      return plain_generation::on_device(impl, queue, distribution, n, target);
    return in_substreams(impl, queue, distribution, n, target);
  }

 private:
  static vqs_mrg32k3a_record& record_of(const impl_type& impl) {
    return impl.stream().record<vqs_mrg32k3a_record>();
  }

  template <class DistributionImpl, class Target>
  static sycl::event in_substreams(impl_type& impl, sycl::queue& queue, const DistributionImpl& distribution,
                                   std::int64_t n, const Target& target) {
    using traits = typename DistributionImpl::traits;
    if constexpr (!traits::has_substreams) {
      throw invalid_argument("rng", "generate",
                             "mrg32k3a with optimal/custom modes doesn't support this distribution");
    } else {
      using T = typename DistributionImpl::distribution_type::result_type;
      constexpr std::uint32_t steps = traits::words_per_value;
      const std::uint32_t substreams = record_of(impl).substreams;
      const std::uint32_t offset = record_of(impl).offset;
      // A row begun with values of more steps keeps that length, so that no step is used twice.
      const std::uint32_t first_steps = std::max(record_of(impl).row_steps, steps);
      const gpu::mrg32k3a_row row{substreams, offset, first_steps};
      const auto state = engine_kernel<mrg32k3a>::capture(impl.stream());

      const auto advance = [&] {
        if (n == 0)
          return;
        const std::uint64_t end = offset + static_cast<std::uint64_t>(n);
        const std::uint64_t rows = end / substreams;
        if (rows != 0)
          impl.skip_ahead(first_steps + (rows - 1) * steps);
        auto& record = record_of(impl);
        record.offset = static_cast<std::uint32_t>(end % substreams);
        record.row_steps = record.offset == 0 ? 0 : rows != 0 ? steps : first_steps;
      };
      const auto command_group = [&](sycl::handler& handler) {
        auto output = target.on_device(handler, n);
        const auto coefficients = distribution.template coefficients<mrg32k3a>();
        const auto transform = distribution.transform();
        using func = gpu::engine_func_sub_seq<T, typename DistributionImpl::computation_type,
                                              std::decay_t<decltype(transform)>,
                                              std::decay_t<decltype(coefficients)>, decltype(output)>;
        const func kernel(output, state, row, coefficients, transform, n);
        if (n > 0)
          handler.parallel_for(sycl::range<1>(std::min(static_cast<std::size_t>(n), std::size_t{substreams})),
                               kernel);
      };
      return advance_and_submit(impl, advance, [&] { return queue.submit(command_group); });
    }
  }
};

} // namespace kestro::hvl::rng::detail
