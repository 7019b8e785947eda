#include <hvl/math/transforms/inverse_cdf.hpp>

#include "parameters.hpp"

namespace hvl::streams {
namespace {

struct family_description {
  inverse_cdf_family family;
  bool has_accurate;
  math::word_use words;
};

constexpr family_description exponential{inverse_cdf_family::exponential, true, math::exponential_icdf_words};
constexpr family_description laplace{inverse_cdf_family::laplace, false, math::laplace_icdf_words};
constexpr family_description weibull{inverse_cdf_family::weibull, true, math::weibull_icdf_words};
constexpr family_description rayleigh{inverse_cdf_family::rayleigh, true, math::rayleigh_icdf_words};
constexpr family_description gumbel{inverse_cdf_family::gumbel, false, math::gumbel_icdf_words};
constexpr family_description cauchy{inverse_cdf_family::cauchy, false, math::cauchy_icdf_words};

// alpha is the shape of weibull, any positive number elsewhere.
template <class T>
int inverse_cdf(const family_description& f, std::int64_t method, vqs_stream stream, std::int64_t n, T* r,
                T a, T scale, T alpha = T(1)) noexcept {
  const bool accurate = f.has_accurate && method == VQS_METHOD_ACCURATE;
  // with alpha 1 the rule of every other family, too
  const auto status = [&] {
    return parameters_status(method == 0 || accurate, weibull_fault(alpha, a, scale));
  };
  inverse_cdf_parameters<T> p{{}, a, scale, {}, {}};
  return vector_call(status, stream, n, r, [&](const engine& e, const kernel_set& kernels) {
    p.exponent = math::weibull_exponent(alpha);
    p.affine = uniform_coefficients(e.scale, T(0), T(1));
    p.angles = uniform_coefficients(e.scale, math::cauchy_low, math::cauchy_high);
    return transform_of(kernels.inverse_cdf(e.kind, f.family, accurate, precision_of<T>), &p, f.words,
                        sizeof(T));
  });
}

} // namespace
} // namespace hvl::streams

using namespace hvl::streams;

int vsRngExponential_64(int64_t method, vqs_stream stream, int64_t n, float* r, float a, float beta) {
  return inverse_cdf(exponential, method, stream, n, r, a, beta);
}

int vdRngExponential_64(int64_t method, vqs_stream stream, int64_t n, double* r, double a, double beta) {
  return inverse_cdf(exponential, method, stream, n, r, a, beta);
}

int vsRngLaplace_64(int64_t method, vqs_stream stream, int64_t n, float* r, float a, float b) {
  return inverse_cdf(laplace, method, stream, n, r, a, b);
}

int vdRngLaplace_64(int64_t method, vqs_stream stream, int64_t n, double* r, double a, double b) {
  return inverse_cdf(laplace, method, stream, n, r, a, b);
}

int vsRngRayleigh_64(int64_t method, vqs_stream stream, int64_t n, float* r, float a, float beta) {
  return inverse_cdf(rayleigh, method, stream, n, r, a, beta);
}

int vdRngRayleigh_64(int64_t method, vqs_stream stream, int64_t n, double* r, double a, double beta) {
  return inverse_cdf(rayleigh, method, stream, n, r, a, beta);
}

int vsRngGumbel_64(int64_t method, vqs_stream stream, int64_t n, float* r, float a, float beta) {
  return inverse_cdf(gumbel, method, stream, n, r, a, beta);
}

int vdRngGumbel_64(int64_t method, vqs_stream stream, int64_t n, double* r, double a, double beta) {
  return inverse_cdf(gumbel, method, stream, n, r, a, beta);
}

int vsRngCauchy_64(int64_t method, vqs_stream stream, int64_t n, float* r, float a, float b) {
  return inverse_cdf(cauchy, method, stream, n, r, a, b);
}

int vdRngCauchy_64(int64_t method, vqs_stream stream, int64_t n, double* r, double a, double b) {
  return inverse_cdf(cauchy, method, stream, n, r, a, b);
}

int vsRngWeibull_64(int64_t method, vqs_stream stream, int64_t n, float* r, float alpha, float a,
                    float beta) {
  return inverse_cdf(weibull, method, stream, n, r, a, beta, alpha);
}

int vdRngWeibull_64(int64_t method, vqs_stream stream, int64_t n, double* r, double alpha, double a,
                    double beta) {
  return inverse_cdf(weibull, method, stream, n, r, a, beta, alpha);
}
