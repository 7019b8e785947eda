#include "threshold_call.hpp"

#include <optional>

using namespace hvl::streams;

int viRngPoisson_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r, double lambda) {
  const auto status = [&] { return parameters_status(method == 0, poisson_fault(lambda)); };
  threshold_parameters parameters{};
  std::optional<law_thresholds> table;
  return vector_call(status, stream, n, r, [&](const engine& e, const kernel_set& kernels) {
    table.emplace(hvl::math::poisson_law{lambda});
    if (n >= law_thresholds::least_values_of_guide)
      table->add_guide();
    return threshold_transform(parameters, table->view(), e, kernels);
  });
}
