#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include <hvl/math/transforms/poisson_v.hpp>
#include <hvl/streams.h>
#include <kestro/hvl/rng/distributions/poisson_v.hpp>

#include "distributions/device_ops.hpp"
#include "distributions/means_record.hpp"
#include "framework/distribution_impl.hpp"

namespace kestro::hvl::rng::detail {

namespace gpu {

struct poisson_of_means {
  using result_type = std::int32_t;
  using uniform_type = double;
  static constexpr word_use words = ::hvl::math::transformed_rejection_words;

  const double* means;
  std::int64_t count;

  interval<double> uniforms(int) const { return {0.0, 1.0}; }
  void operator()(const word_group<double, 2>& group, std::int32_t (&values)[1]) const {
    values[0] = ::hvl::math::poisson_of_mean<device_ops<double>>(
        means[group.first % count], group.uniforms[0], group.uniforms[1], group.cells[0], group.raw);
  }
};

} // namespace gpu

/// Never negative, so both result types are made by one kernel and one function.
template <class T>
struct distribution_traits<poisson_v<T>> {
  static constexpr const char* name = "poisson_v";
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = false;

  static word_use words_of(const poisson_v<T>&) { return gpu::poisson_of_means::words; }

  static device_numbers record_on(const poisson_v<T>& d, const sycl::queue& queue) {
    return distribution_access::record(d)->on(queue);
  }

  static gpu::poisson_of_means transform_of(const poisson_v<T>& d, const double* means) {
    return {means, static_cast<std::int64_t>(d.lambda().size())};
  }

  static int generate_on_host(const poisson_v<T>& d, vqs_stream stream, std::int64_t n, T* r) {
    // Few means are repeated, so that a call of the function is worth it.
    constexpr std::size_t worth_a_call = 4096;
    std::vector<double> repeated;
    const std::vector<double>* means = &d.lambda();
    if (means->size() < worth_a_call && static_cast<std::uint64_t>(n) > means->size()) {
      for (std::size_t times = worth_a_call / means->size() + 1; times != 0; --times)
        repeated.insert(repeated.end(), means->begin(), means->end());
      means = &repeated;
    }
    const auto period = static_cast<std::int64_t>(means->size());
    int status = VQS_STATUS_OK;
    for (std::int64_t made = 0; made < n && status == VQS_STATUS_OK; made += period)
      status = viRngPoissonV_64(0, stream, std::min(n - made, period),
                                reinterpret_cast<std::int32_t*>(r) + made, means->data());
    return status;
  }
};

} // namespace kestro::hvl::rng::detail
