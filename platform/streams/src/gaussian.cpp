#include <hvl/math/transforms/gaussian.hpp>

#include "parameters.hpp"

namespace hvl::streams {
namespace {

constexpr math::word_use words_of(gaussian_method method) {
  switch (method) {
  case gaussian_method::box_muller:
    return math::gaussian_box_muller_words;
  case gaussian_method::box_muller2:
    return math::gaussian_box_muller2_words;
  case gaussian_method::icdf:
    break;
  }
  return math::gaussian_icdf_words;
}

template <class T>
int gaussian(std::int64_t code, vqs_stream stream, std::int64_t n, T* r, T mean, T stddev) noexcept {
  const bool known = code >= VQS_METHOD_GAUSSIAN_BOX_MULLER && code <= VQS_METHOD_GAUSSIAN_ICDF;
  const auto method = static_cast<gaussian_method>(known ? code : 0);
  const bool icdf = method == gaussian_method::icdf;
  gaussian_parameters<T> p{{}, mean, stddev};
  const auto status = [&] { return parameters_status(known, gaussian_fault(mean, stddev)); };
  return vector_call(status, stream, n, r, [&](const engine& e, const kernel_set& kernels) {
    p.affine = uniform_coefficients(e.scale, icdf ? T(-1) : T(0), T(1));
    if (icdf)
      p.scale = math::icdf_scale(stddev);
    return transform_of(kernels.gaussian(e.kind, method, precision_of<T>), &p, words_of(method), sizeof(T));
  });
}

} // namespace
} // namespace hvl::streams

int vsRngGaussian_64(int64_t method, vqs_stream stream, int64_t n, float* r, float a, float sigma) {
  return hvl::streams::gaussian(method, stream, n, r, a, sigma);
}

int vdRngGaussian_64(int64_t method, vqs_stream stream, int64_t n, double* r, double a, double sigma) {
  return hvl::streams::gaussian(method, stream, n, r, a, sigma);
}
