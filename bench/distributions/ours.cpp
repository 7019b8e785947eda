// Every distribution on philox4x32x10: cached output on one thread, under each instruction set.
#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

#include "hvl/core.h"
#include "hvl/streams.h"
#include "subjects.hpp"

namespace bench {
namespace {

template <class T>
using call = std::function<int(vqs_stream, std::int64_t, T*)>;

class fill_by {
 public:
  explicit fill_by(int isa) : isa_(isa) {
    vqs_stream stream = nullptr;
    check(vqsNewStream_64(&stream, VQS_ENGINE_PHILOX4X32X10, 20211113));
    stream_ = {stream, [](void* s) { vqsDeleteStream_64(&s); }};
  }
  template <class T>
  void operator()(const call<T>& generate, std::span<T> out) const {
    hvl_serv_set_isa(isa_);
    check(generate(stream_.get(), static_cast<std::int64_t>(out.size()), out.data()));
    hvl_serv_set_isa(-1);
  }

 private:
  static void check(int status) {
    if (status != VQS_STATUS_OK)
      throw std::runtime_error(vqsStatusText(status));
  }
  int isa_;
  std::shared_ptr<void> stream_;
};

template <class T>
void add(const std::string& name, const call<T>& generate) {
  const auto add_one = [&](const std::string& suffix, int isa) {
    register_fill<T>("ours/" + name + suffix, cached_bytes,
                     [generate, fill = fill_by(isa)](std::span<T> out) { fill(generate, out); });
  };
  for (const int isa : {HVL_ISA_SCALAR, HVL_ISA_AVX2, HVL_ISA_AVX512})
    if (hvl_serv_isa_supported(isa))
      add_one(std::string("/") + hvl_serv_isa_name(isa), isa);
  add_one("", -1);
}

template <class T, class Function, class... Parameters>
call<T> bound(Function function, std::int64_t method, Parameters... parameters) {
  return [=](vqs_stream s, std::int64_t n, T* r) { return function(method, s, n, r, parameters...); };
}

template <class T, class F>
void add_normal(const std::string& type, F gaussian, auto lognormal) {
  add("gaussian_box_muller/" + type, bound<T>(gaussian, VQS_METHOD_GAUSSIAN_BOX_MULLER, T(0), T(1)));
  add("gaussian_box_muller2/" + type, bound<T>(gaussian, VQS_METHOD_GAUSSIAN_BOX_MULLER2, T(0), T(1)));
  add("gaussian_icdf/" + type, bound<T>(gaussian, VQS_METHOD_GAUSSIAN_ICDF, T(0), T(1)));
  add("lognormal_box_muller2/" + type,
      bound<T>(lognormal, VQS_METHOD_LOGNORMAL_BOX_MULLER2, T(0), T(1), T(0), T(1)));
  add("lognormal_icdf/" + type, bound<T>(lognormal, VQS_METHOD_LOGNORMAL_ICDF, T(0), T(1), T(0), T(1)));
}

} // namespace

void register_distributions() {
  add_normal<float>("float", vsRngGaussian_64, vsRngLognormal_64);
  add_normal<double>("double", vdRngGaussian_64, vdRngLognormal_64);
  add("exponential/float", bound<float>(vsRngExponential_64, 0, 0.0f, 1.0f));
  add("exponential/double", bound<double>(vdRngExponential_64, 0, 0.0, 1.0));
  add("laplace/float", bound<float>(vsRngLaplace_64, 0, 0.0f, 1.0f));
  add("laplace/double", bound<double>(vdRngLaplace_64, 0, 0.0, 1.0));
  add("weibull/float", bound<float>(vsRngWeibull_64, 0, 1.7f, 0.0f, 1.0f));
  add("weibull/double", bound<double>(vdRngWeibull_64, 0, 1.7, 0.0, 1.0));
  add("rayleigh/float", bound<float>(vsRngRayleigh_64, 0, 0.0f, 1.0f));
  add("rayleigh/double", bound<double>(vdRngRayleigh_64, 0, 0.0, 1.0));
  add("gumbel/float", bound<float>(vsRngGumbel_64, 0, 0.0f, 1.0f));
  add("gumbel/double", bound<double>(vdRngGumbel_64, 0, 0.0, 1.0));
  add("cauchy/float", bound<float>(vsRngCauchy_64, 0, 0.0f, 1.0f));
  add("cauchy/double", bound<double>(vdRngCauchy_64, 0, 0.0, 1.0));
  add("gamma_2.5/float", bound<float>(vsRngGamma_64, 0, 2.5f, 0.0f, 1.0f));
  add("gamma_0.5/float", bound<float>(vsRngGamma_64, 0, 0.5f, 0.0f, 1.0f));
  add("gamma_2.5/double", bound<double>(vdRngGamma_64, 0, 2.5, 0.0, 1.0));
  const auto add_vectors = [](const char* type, auto function, auto number) {
    using T = decltype(number);
    static const std::vector<T> mean(vector_dimension, T(1)), matrix(vector_elements, T(0.5));
    add<T>(std::string("gaussian_mv_8/") + type, [=](vqs_stream s, std::int64_t n, T* r) {
      return function(0, s, n / vector_dimension, r, vector_dimension, VQS_MATRIX_PACKED, mean.data(),
                      matrix.data());
    });
  };
  add_vectors("float", vsRngGaussianMV_64, 0.0f);
  add_vectors("double", vdRngGaussianMV_64, 0.0);
  for (const int v : chi_square_degrees) {
    add(chi_square_name(v) + "/float", bound<float>(vsRngChiSquare_64, 0, v));
    add(chi_square_name(v) + "/double", bound<double>(vdRngChiSquare_64, 0, v));
  }
  for (const beta_shapes& s : beta_cases) {
    add(beta_name(s) + "/float",
        bound<float>(vsRngBeta_64, 0, static_cast<float>(s.p), static_cast<float>(s.q), 0.0f, 1.0f));
    add(beta_name(s) + "/double", bound<double>(vdRngBeta_64, 0, s.p, s.q, 0.0, 1.0));
  }
  for (const double p : geometric_probabilities)
    add(geometric_name(p), bound<std::int32_t>(viRngGeometric_64, 0, p));
  add("bernoulli", bound<std::int32_t>(viRngBernoulli_64, 0, 0.3));
  for (const double mean : poisson_means)
    add(poisson_name(mean), bound<std::int32_t>(viRngPoisson_64, 0, mean));
  for (const trials& t : binomial_trials)
    add(t.name, bound<std::int32_t>(viRngBinomial_64, 0, t.count, t.p));
  for (const counted& m : multinomial_trials)
    add<std::int32_t>(m.name, [count = m.count, p = outcome_probabilities()](vqs_stream s, std::int64_t n,
                                                                             std::int32_t* r) {
      return viRngMultinomial_64(0, s, n / outcomes, r, count, outcomes, p.data());
    });
  for (const sample& s : hypergeometric_samples)
    add(s.name, bound<std::int32_t>(viRngHypergeometric_64, 0, s.lot, s.size, s.marked));
  for (const successes& s : negative_binomial_successes)
    add(s.name, bound<std::int32_t>(viRngNegbinomial_64, 0, s.count, s.p));
}

} // namespace bench
