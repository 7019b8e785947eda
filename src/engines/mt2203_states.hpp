#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <sycl/sycl.hpp>

#include "framework/device_state.hpp"
#include "framework/kernel_frame.hpp"
#include "framework/stream.hpp"

/// Several states of mt2203 whose values are dealt in turn.
namespace kestro::hvl::rng::detail {

/// The last words of a member, in a ring.
struct mt2203_state {
  using recurrence = definition_of<mt2203>::recurrence;
  static constexpr std::uint32_t size = recurrence::size;

  recurrence twister;
  std::uint32_t oldest; // whose place the next word takes
  std::uint32_t words[size];

  std::uint32_t next() {
    const std::uint32_t second = oldest + 1 == size ? 0 : oldest + 1;
    const std::uint32_t middle =
        oldest + recurrence::middle < size ? oldest + recurrence::middle : oldest + recurrence::middle - size;
    const std::uint32_t made = twister.twist(words[oldest], words[second], words[middle]);
    words[oldest] = made;
    oldest = second;
    return twister.output(made);
  }
};

namespace gpu {

/// A work-item makes the values of one state: every group of the call whose turn it is.
template <class Transform, class Output>
class generate_in_turn {
  using writer = value_writer<mt2203, Transform, Output>;

 public:
  /// The first group of the call is that of state `turn`.
  generate_in_turn(Output output, mt2203_state* states, std::size_t count, std::size_t turn,
                   const Transform& transform, std::int64_t n)
      : states_(states), count_(count), turn_(turn), writer_(output, transform, n), n_(n) {}

  void operator()(sycl::id<1> id) const {
    const std::size_t i = id[0];
    const std::size_t first = i >= turn_ ? i - turn_ : i + count_ - turn_;
    mt2203_state state = states_[i];
    for (auto value = static_cast<std::int64_t>(first) * writer::group_values; value < n_;
         value += static_cast<std::int64_t>(count_) * writer::group_values) {
      std::uint32_t words[writer::group_words];
      for (auto& word : words)
        word = state.next();
      writer_.write(words, value);
    }
    states_[i] = state;
  }

 private:
  mt2203_state* states_;
  std::size_t count_, turn_;
  writer writer_;
  std::int64_t n_;
};

} // namespace gpu

/// Group g of values, counted over all calls, is made of the next words of state g modulo their number.
class mt2203_states final : public device_state {
 public:
  /// The states of streams that have given out nothing yet. Throws `device_bad_alloc`.
  mt2203_states(const sycl::queue& queue, const std::vector<stream_handle>& streams);

  /// A copy, behind the work in flight.
  mt2203_states(mt2203_states& other);

  template <class Transform, class Target>
  sycl::event submit(sycl::queue& queue, const Transform& transform, std::int64_t n, const Target& target) {
    sycl::event event = queue.submit([&](sycl::handler& handler) {
      auto output = target.template on_device<typename Transform::result_type>(handler, n);
      handler.depends_on(last());
      const gpu::generate_in_turn<Transform, decltype(output)> kernel(output, states_.get(), count_, turn_,
                                                                      transform, n);
      if (n > 0)
        handler.parallel_for(sycl::range<1>(count_), kernel);
    });
    constexpr std::int64_t group_values = Transform::words.values;
    turn_ = (turn_ + static_cast<std::size_t>((n + group_values - 1) / group_values)) % count_;
    set_last(event);
    return event;
  }

 private:
  static std::shared_ptr<mt2203_state> allocate(const sycl::queue& queue, std::size_t count);

  sycl::queue queue_;
  std::size_t count_;
  std::size_t turn_ = 0; // the state whose group is next
  std::shared_ptr<mt2203_state> states_;
};

} // namespace kestro::hvl::rng::detail
