#include "gamma.hpp"

#include "parameters.hpp"

namespace hvl::streams {
namespace {

// `constants` forms them, where parameters are computed.
template <class T, class Status, class Constants>
int generate_gamma(const Status& status, vqs_stream stream, std::int64_t n, T* r, bool accurate,
                   const Constants& constants) noexcept {
  gamma_parameters<T> p{};
  return vector_call(status, stream, n, r, [&](const engine& e, const kernel_set& kernels) {
    p.symmetric = uniform_coefficients(e.scale, T(-1), T(1));
    p.unit = uniform_coefficients(e.scale, T(0), T(1));
    p.constants = constants();
    p.accurate = accurate;
    const bool below_one = p.constants.below_one;
    return transform_of(kernels.gamma(e.kind, below_one, precision_of<T>), &p,
                        math::gamma_words<T>(below_one), sizeof(T));
  });
}

template <class T>
int gamma(std::int64_t method, vqs_stream stream, std::int64_t n, T* r, T alpha, T a, T beta) noexcept {
  const bool accurate = method == VQS_METHOD_ACCURATE;
  const auto status = [&] { return parameters_status(method == 0 || accurate, gamma_fault(alpha, a, beta)); };
  return generate_gamma(status, stream, n, r, accurate,
                        [&] { return math::gamma_constants_of<T>(alpha, a, beta); });
}

template <class T>
int chi_square(std::int64_t method, vqs_stream stream, std::int64_t n, T* r, std::int32_t v) noexcept {
  const auto status = [&] { return parameters_status(method == 0, chi_square_fault(v)); };
  return generate_gamma(status, stream, n, r, false, [&] { return math::chi_square_constants_of<T>(v); });
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

int vsRngChiSquare_64(int64_t method, vqs_stream stream, int64_t n, float* r, int32_t v) {
  return hvl::streams::chi_square(method, stream, n, r, v);
}

int vdRngChiSquare_64(int64_t method, vqs_stream stream, int64_t n, double* r, int32_t v) {
  return hvl::streams::chi_square(method, stream, n, r, v);
}
