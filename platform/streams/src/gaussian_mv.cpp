#include "gaussian_mv.hpp"

#include <algorithm>
#include <limits>

#include "in_parallel.hpp"
#include "parameters.hpp"

namespace hvl::streams {
namespace {

// Values of one step of the pass over the normal numbers, which they stay in cache for.
constexpr std::size_t values_at_once = std::size_t{1} << 14;

template <class T>
int status_of(std::int64_t method, std::int32_t dimen, std::int32_t mstorage, const T* a, const T* t) {
  const char* fault = gaussian_mv_fault(dimen, mstorage);
  if (const int found = parameters_status(method == 0, fault); found != VQS_STATUS_OK)
    return found;
  if (a == nullptr || t == nullptr)
    return VQS_STATUS_NULL_POINTER;
  return parameters_status(true, gaussian_mv_fault(dimen, mstorage, a, t));
}

template <class T>
int gaussian_mv(std::int64_t method, vqs_stream stream, std::int64_t n, T* r, std::int32_t dimen,
                std::int32_t mstorage, const T* a, const T* t) noexcept {
  const auto status = [&] { return status_of(method, dimen, mstorage, a, t); };
  constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
  const std::int64_t values = dimen <= 0 ? n : n > most / dimen ? -1 : n * dimen;
  gaussian_parameters<T> normal{{}, 0, 1};
  vector_function apply = nullptr;
  const int made = vector_call(status, stream, values, r, [&](const engine& e, const kernel_set& kernels) {
    apply = kernels.gaussian_mv(precision_of<T>);
    normal.affine = uniform_coefficients(e.scale, T(0), T(1));
    return transform_of(kernels.gaussian(e.kind, gaussian_method::box_muller2, precision_of<T>), &normal,
                        math::gaussian_box_muller2_words, sizeof(T));
  });
  if (made != VQS_STATUS_OK || n == 0)
    return made;
  const auto dimension = static_cast<std::size_t>(dimen), vectors = static_cast<std::size_t>(n);
  const gaussian_mv_parameters<T> p{static_cast<math::matrix_storage>(mstorage), dimension, a, t};
  const std::size_t at_once = std::max<std::size_t>(values_at_once / dimension, 1);
  const auto pass = [&](std::size_t i) {
    const std::size_t first = i * at_once;
    apply(&p, r + first * dimension, std::min(at_once, vectors - first));
  };
  const std::size_t passes = (vectors + at_once - 1) / at_once;
  return guarded([&] {
    if (passes == 1)
      in_default_float_environment([&] { pass(0); });
    else
      in_parallel(0, passes, pass);
    return VQS_STATUS_OK;
  });
}

} // namespace
} // namespace hvl::streams

int vsRngGaussianMV_64(int64_t method, vqs_stream stream, int64_t n, float* r, int32_t dimen,
                       int32_t mstorage, const float* a, const float* t) {
  return hvl::streams::gaussian_mv(method, stream, n, r, dimen, mstorage, a, t);
}

int vdRngGaussianMV_64(int64_t method, vqs_stream stream, int64_t n, double* r, int32_t dimen,
                       int32_t mstorage, const double* a, const double* t) {
  return hvl::streams::gaussian_mv(method, stream, n, r, dimen, mstorage, a, t);
}
