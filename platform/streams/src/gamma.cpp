#include "gamma.hpp"

#include "parameters.hpp"

namespace hvl::streams {
namespace {

template <class T>
int gamma(std::int64_t method, vqs_stream stream, std::int64_t n, T* r, T alpha, T a, T beta) noexcept {
  const bool accurate = method == VQS_METHOD_ACCURATE;
  const auto status = [&] { return parameters_status(method == 0 || accurate, gamma_fault(alpha, a, beta)); };
  gamma_parameters<T> p{};
  return vector_call(status, stream, n, r, [&](const engine& e, const kernel_set& kernels) {
    p.symmetric = uniform_coefficients(e.scale, T(-1), T(1));
    p.unit = uniform_coefficients(e.scale, T(0), T(1));
    p.constants = math::gamma_constants_of(alpha, a, beta);
    p.accurate = accurate;
    const bool below_one = p.constants.below_one;
    return transform_of(kernels.gamma(e.kind, below_one, precision_of<T>), &p,
                        math::gamma_words<T>(below_one), sizeof(T));
  });
}

} // namespace
} // namespace hvl::streams

int vsRngGamma_64(int64_t method, vqs_stream stream, int64_t n, float* r, float alpha, float a, float beta) {
  return hvl::streams::gamma(method, stream, n, r, alpha, a, beta);
}

int vdRngGamma_64(int64_t method, vqs_stream stream, int64_t n, double* r, double alpha, double a,
                  double beta) {
  return hvl::streams::gamma(method, stream, n, r, alpha, a, beta);
}
