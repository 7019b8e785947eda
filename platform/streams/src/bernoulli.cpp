#include "threshold_call.hpp"

using namespace hvl::streams;

int viRngBernoulli_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r, double p) {
  const auto status = [&] { return parameters_status(method == 0, bernoulli_fault(p)); };
  threshold_parameters parameters{};
  double upper[2];
  std::uint32_t low[3];
  return vector_call(status, stream, n, r, [&](const engine& e, const kernel_set& kernels) {
    upper[0] = p;
    upper[1] = 2;
    low[0] = low_of_threshold(p);
    low[1] = low[2] = 0xFFFFFFFFu;
    const std::uint32_t count = p < 1 ? 1 : 0; // a uniform may be rounded to 1
    return threshold_transform(parameters, {upper + (1 - count), low, nullptr, count, 0, 1, -1}, e, kernels);
  });
}
