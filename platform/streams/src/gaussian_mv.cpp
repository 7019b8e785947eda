#include "gaussian_mv.hpp"

#include "parameters.hpp"
#include "vectors.hpp"

namespace hvl::streams {
namespace {

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
  gaussian_parameters<T> normal{{}, 0, 1};
  vector_function apply = nullptr;
  const auto standard_normal = [&](const engine& e, const kernel_set& kernels) {
    apply = kernels.gaussian_mv(precision_of<T>);
    normal.affine = uniform_coefficients(e.scale, T(0), T(1));
    return transform_of(kernels.gaussian(e.kind, gaussian_method::box_muller2, precision_of<T>), &normal,
                        math::gaussian_box_muller2_words, sizeof(T));
  };
  const int made = vector_call(status, stream, values_of_vectors(n, dimen), r, standard_normal);
  if (made != VQS_STATUS_OK || n == 0)
    return made;
  const auto dimension = static_cast<std::size_t>(dimen);
  const gaussian_mv_parameters<T> p{static_cast<math::matrix_storage>(mstorage), dimension, a, t};
  return second_step(n, dimension, [&](std::size_t first, std::size_t vectors) {
    apply(&p, r + first * dimension, vectors);
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
