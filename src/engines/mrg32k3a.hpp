#pragma once

#include <cstdint>
#include <variant>

#include "framework/generation.hpp"

namespace kestro::hvl::rng::detail {

namespace gpu {

using tag_vqs_sycl_brng_mrg32k3a_stream_t = definition_of<mrg32k3a>::state;

} // namespace gpu

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
    definition_of<mrg32k3a>::skip_substreams(s, static_cast<std::uint64_t>(item));
    int ahead = static_cast<int>(row_.first_steps); // of the first row, not taken yet
    if (in_first_row) {
      write(j, s);
      j += row_.substreams;
      ahead -= writer::group_words;
    }
    for (; ahead > 0; --ahead)
      definition_of<mrg32k3a>::step(s);
    for (; j < n_; j += row_.substreams)
      write(j, s);
  }

 private:
  void write(std::int64_t j, tag_vqs_sycl_brng_mrg32k3a_stream_t& s) const {
    std::uint32_t words[writer::group_words];
    for (auto& word : words)
      word = definition_of<mrg32k3a>::step(s);
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
      auto output = target.template on_device<typename Transform::result_type>(handler, n);
      const gpu::engine_func_sub_seq<Transform, decltype(output)> kernel(
          output, definition_of<mrg32k3a>::state_of(impl.stream().record<vqs_mrg32k3a_record>()), row,
          transform, n);
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
