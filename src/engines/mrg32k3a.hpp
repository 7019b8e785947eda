#pragma once

#include <algorithm>
#include <cstdint>
#include <variant>

#include "framework/generation.hpp"

namespace kestro::hvl::rng::detail {

namespace gpu {

using tag_vqs_sycl_brng_mrg32k3a_stream_t = definition_of<mrg32k3a>::state;

} // namespace gpu

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
template <class Transform, class Output>
class engine_func_sub_seq {
  using definition = definition_of<mrg32k3a>;
  using writer = value_writer<mrg32k3a, Transform, Output>;
  static_assert(writer::group_values == 1);

 public:
  engine_func_sub_seq(Output output, const tag_vqs_sycl_brng_mrg32k3a_stream_t& state,
                      const mrg32k3a_row& row, const Transform& transform, std::int64_t n)
      : state_(state), row_(row), writer_(output, transform, n), n_(n) {}

  void operator()(sycl::id<1> id) const {
    auto j = static_cast<std::int64_t>(id[0]);
    const std::uint64_t place = std::uint64_t{row_.offset} + id[0];
    const bool in_first_row = place < row_.substreams;
    tag_vqs_sycl_brng_mrg32k3a_stream_t s = state_;
    definition::mrg32k3a_skipahead_substream(s, in_first_row ? place : place - row_.substreams);
    int ahead = static_cast<int>(row_.first_steps); // of the first row, not taken yet
    if (in_first_row) {
      write(j, s);
      j += row_.substreams;
      ahead -= writer::group_words;
    }
    for (; ahead > 0; --ahead)
      definition::step(s);
    for (; j < n_; j += row_.substreams)
      write(j, s);
  }

 private:
  void write(std::int64_t j, tag_vqs_sycl_brng_mrg32k3a_stream_t& s) const {
    std::uint32_t words[writer::group_words];
    for (auto& word : words)
      word = definition::step(s);
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

  static vqs_mrg32k3a_record& record_of(const engine_base_impl<mrg32k3a>& impl) {
    return impl.stream().record<vqs_mrg32k3a_record>();
  }

  static bool in_substreams(const engine_base_impl<mrg32k3a>& impl) {
    return record_of(impl).substreams != 0;
  }

  template <class DistributionImpl, class Target>
  static sycl::event generate_impl_sub_seq(engine_base_impl<mrg32k3a>& impl, sycl::queue& queue,
                                           const DistributionImpl& distribution, std::int64_t n,
                                           const Target& target) {
    if constexpr (!DistributionImpl::traits::has_substreams) {
      throw invalid_argument("rng", "generate",
                             "mrg32k3a with optimal/custom modes doesn't support this distribution");
    } else {
      return distribution.with_transform(queue, [&](const auto& transform) {
        return submit_in_substreams(impl, queue, transform, n, target);
      });
    }
  }

 private:
  template <class Transform, class Target>
  static sycl::event submit_in_substreams(engine_base_impl<mrg32k3a>& impl, sycl::queue& queue,
                                          const Transform& transform, std::int64_t n, const Target& target) {
    constexpr std::uint32_t steps = Transform::words.words;
    vqs_mrg32k3a_record& record = record_of(impl);
    const std::uint32_t substreams = record.substreams;
    // A row begun with values of more steps keeps that length, so that no step is used twice.
    const std::uint32_t first_steps = std::max(record.row_steps, steps);
    const gpu::mrg32k3a_row row{substreams, record.offset, first_steps};

    sycl::event event = queue.submit([&](sycl::handler& handler) {
      auto output = target.template on_device<typename Transform::result_type>(handler, n);
      const gpu::engine_func_sub_seq<Transform, decltype(output)> kernel(
          output, definition_of<mrg32k3a>::state_of(record), row, transform, n);
      if (n > 0)
        handler.parallel_for(sycl::range<1>(std::min(static_cast<std::size_t>(n), std::size_t{substreams})),
                             kernel);
    });
    if (n == 0)
      return event;

    const std::uint64_t end = record.offset + static_cast<std::uint64_t>(n);
    const std::uint64_t rows = end / substreams;
    if (rows != 0)
      impl.skip_ahead(first_steps + (rows - 1) * steps);
    record.offset = static_cast<std::uint32_t>(end % substreams);
    record.row_steps = record.offset == 0 ? 0 : rows != 0 ? steps : first_steps;
    return event;
  }
};

} // namespace kestro::hvl::rng::detail
