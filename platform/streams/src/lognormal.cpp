#include <hvl/math/transforms/gaussian.hpp>

#include "parameters.hpp"

namespace hvl::streams {
namespace {

template <class T>
int lognormal(std::int64_t code, vqs_stream stream, std::int64_t n, T* r, T m, T s, T displacement,
              T scale) noexcept {
  const std::int64_t plain = code & ~std::int64_t{VQS_METHOD_ACCURATE};
  const bool accurate = plain != code;
  const bool known = plain == VQS_METHOD_LOGNORMAL_BOX_MULLER2 || plain == VQS_METHOD_LOGNORMAL_ICDF;
  const bool icdf = plain == VQS_METHOD_LOGNORMAL_ICDF;
  const auto method = icdf ? lognormal_method::icdf : lognormal_method::box_muller2;
  lognormal_parameters<T> p{{}, m, s, displacement, scale};
  const auto status = [&] { return parameters_status(known, lognormal_fault(m, s, displacement, scale)); };
  return vector_call(status, stream, n, r, [&](const engine& e, const kernel_set& kernels) {
    p.affine = uniform_coefficients(e.scale, icdf ? T(-1) : T(0), T(1));
    if (icdf)
      p.s = math::icdf_scale(s);
    return transform_of(kernels.lognormal(e.kind, method, accurate, precision_of<T>), &p,
                        icdf ? math::lognormal_icdf_words : math::lognormal_box_muller2_words, sizeof(T));
  });
}

} // namespace
} // namespace hvl::streams

int vsRngLognormal_64(int64_t method, vqs_stream stream, int64_t n, float* r, float a, float sigma, float b,
                      float beta) {
  return hvl::streams::lognormal(method, stream, n, r, a, sigma, b, beta);
}

int vdRngLognormal_64(int64_t method, vqs_stream stream, int64_t n, double* r, double a, double sigma,
                      double b, double beta) {
  return hvl::streams::lognormal(method, stream, n, r, a, sigma, b, beta);
}
