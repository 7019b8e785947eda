#include "beta.hpp"

#include "parameters.hpp"

namespace hvl::streams {
namespace {

template <class T>
int beta(std::int64_t method, vqs_stream stream, std::int64_t n, T* r, T p, T q, T a, T scale) noexcept {
  const auto status = [&] { return parameters_status(method == 0, beta_fault(p, q, a, scale)); };
  beta_parameters parameters{};
  return vector_call(status, stream, n, r, [&](const engine& e, const kernel_set& kernels) {
    parameters.unit = uniform_coefficients(e.scale, 0.0, 1.0);
    parameters.constants = math::beta_constants_of(p, q, a, scale);
    return transform_of(kernels.beta(e.kind, precision_of<T>), &parameters, math::beta_words, sizeof(T));
  });
}

} // namespace
} // namespace hvl::streams

int vsRngBeta_64(int64_t method, vqs_stream stream, int64_t n, float* r, float p, float q, float a,
                 float beta) {
  return hvl::streams::beta(method, stream, n, r, p, q, a, beta);
}

int vdRngBeta_64(int64_t method, vqs_stream stream, int64_t n, double* r, double p, double q, double a,
                 double beta) {
  return hvl::streams::beta(method, stream, n, r, p, q, a, beta);
}
