#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>

#include <hvl/float_environment.hpp>
#include <hvl/math/transforms/thresholds.hpp>
#include <hvl/streams_thresholds.hpp>
#include <kestro/hvl/rng/detail/record.hpp>

#include "distributions/device_ops.hpp"
#include "framework/device_copies.hpp"

namespace kestro::hvl::rng::detail {

/// The thresholds of a law, built when first asked for. From any thread.
class threshold_record {
 public:
  template <class Law>
  explicit threshold_record(const Law& law) : build_([law] { return ::hvl::streams::law_thresholds(law); }) {}

  /// For `n` values on the host; refers to the record.
  vqs_thresholds for_values(std::int64_t n) {
    const std::lock_guard lock(mutex_);
    auto& table = built();
    if (n >= table.least_values_of_guide && !table.has_guide())
      table.add_guide();
    return table.view();
  }

  device_numbers on(const sycl::queue& queue) {
    const vqs_thresholds table = for_values(0);
    return copies_.on(queue, table.upper, table.count + 1);
  }

 private:
  ::hvl::streams::law_thresholds& built() {
    if (!table_)
      table_ = ::hvl::in_default_float_environment(build_);
    return *table_;
  }

  std::function<::hvl::streams::law_thresholds()> build_;
  std::mutex mutex_;
  std::optional<::hvl::streams::law_thresholds> table_;
  device_copies copies_;
};

namespace gpu {

/// Two words a value, the second one refining the first.
struct threshold_icdf {
  using result_type = std::int32_t;
  using uniform_type = double;
  static constexpr word_use words = ::hvl::math::thresholds_words;

  threshold_icdf(const vqs_thresholds& table, const double* on_device)
      : thresholds(on_device), count(table.count), origin(table.origin), step(table.step) {}

  const double* thresholds;
  std::uint32_t count;
  std::int32_t origin, step;

  interval<double> uniforms(int) const { return {0.0, 1.0}; }
  void operator()(const word_group<double, 2>& group, std::int32_t (&values)[1]) const {
    const double u =
        ::hvl::math::refined<device_ops<double>>(group.uniforms[0], group.uniforms[1], group.cells[0]);
    values[0] =
        origin + step * static_cast<std::int32_t>(::hvl::math::thresholds_passed(thresholds, count, u));
  }
};

} // namespace gpu

} // namespace kestro::hvl::rng::detail
