#pragma once

#include <cstdint>
#include <limits>
#include <vector>

#include <hvl/math/transforms/gaussian_mv.hpp>
#include <kestro/hvl/rng/distributions/gaussian_mv.hpp>

#include "distributions/gaussian.hpp"
#include "framework/device_copies.hpp"

namespace kestro::hvl::rng::detail {

/// Mean and rows of the lower triangle, or its diagonal, for devices. From any thread.
class matrix_record {
 public:
  template <class T>
  matrix_record(const std::vector<T>& a, const std::vector<T>& t, ::hvl::math::matrix_storage storage)
      : numbers_(a.begin(), a.end()) {
    using ::hvl::math::matrix_storage;
    for (std::size_t k = 0; k < a.size(); ++k) {
      const auto row = ::hvl::math::row_of(storage, a.size(), k);
      for (std::size_t j = row.first; j <= k; ++j)
        numbers_.push_back(t[row.start + j]);
    }
  }

  device_numbers on(const sycl::queue& queue) { return copies_.on(queue, numbers_.data(), numbers_.size()); }

 private:
  std::vector<double> numbers_;
  device_copies copies_;
};

namespace gpu {

/// Makes one vector of standard normal numbers into values, in place.
template <class T, class Output>
struct gaussian_mv_vector {
  ::hvl::math::matrix_storage storage;
  std::size_t dimension;
  const double* record; // mean, then matrix
  Output output;

  struct vector_at {
    const Output& output;
    std::size_t first;
    T& operator[](std::size_t k) const { return output[first + k]; }
  };

  void operator()(sycl::id<1> vector) const {
    ::hvl::math::gaussian_mv_in_place<device_ops<T>>(storage, dimension, record, record + dimension,
                                                     vector_at{output, vector[0] * dimension});
  }
};

/// Standard normal numbers, and behind them a kernel that does not know the engine.
template <class T>
struct gaussian_mv_box_muller2 {
  static constexpr word_use words = gaussian_box_muller2<T>::words;

  ::hvl::math::matrix_storage storage;
  std::size_t dimension;
  const double* record;

  static gaussian_box_muller2<T> first_step() { return {T(0), T(1)}; }

  template <class Target>
  sycl::event second_step(sycl::queue& queue, const sycl::event& first, std::int64_t values,
                          const Target& target) const {
    return queue.submit([&](sycl::handler& handler) {
      auto output = target.in_place(handler, first);
      if (values > 0)
        handler.parallel_for(sycl::range<1>(static_cast<std::size_t>(values) / dimension),
                             gaussian_mv_vector<T, decltype(output)>{storage, dimension, record, output});
    });
  }
};

} // namespace gpu

template <class T, class Method>
struct distribution_traits<gaussian_mv<T, Method>> {
  using distribution = gaussian_mv<T, Method>;
  static constexpr const char* name = "gaussian_mv";
  static constexpr bool needs_uniform_bits = false;
  static constexpr bool has_substreams = false;

  static std::int64_t dimension_of(const distribution& d) { return d.dimen(); }

  static word_use words_of(const distribution&) { return gpu::gaussian_mv_box_muller2<T>::words; }

  static device_numbers record_on(const distribution& d, const sycl::queue& queue) {
    return distribution_access::record(d)->on(queue);
  }

  static gpu::gaussian_mv_box_muller2<T> transform_of(const distribution& d, const double* record) {
    using ::hvl::math::matrix_storage;
    const bool is_diagonal = d.mstorage() == gaussian_mv_storage::diagonal;
    return {is_diagonal ? matrix_storage::diagonal : matrix_storage::packed, d.a().size(), record};
  }

  static int generate_on_host(const distribution& d, vqs_stream stream, std::int64_t values, T* r) {
    return host_function<T>(vsRngGaussianMV_64, vdRngGaussianMV_64)(
        0, stream, values / d.dimen(), r, d.dimen(), static_cast<std::int32_t>(d.mstorage()), d.a().data(),
        d.t().data());
  }
};

} // namespace kestro::hvl::rng::detail
