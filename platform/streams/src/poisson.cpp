#include <hvl/math/transforms/poisson_rejection.hpp>

#include <optional>

#include "rejection_call.hpp"
#include "threshold_call.hpp"

using namespace hvl::streams;

int viRngPoisson_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r, double lambda) {
  const auto status = [&] { return parameters_status(method == 0, poisson_fault(lambda)); };
  std::optional<law_thresholds> table;
  threshold_parameters of_table{};
  rejection_parameters of_rejection{};
  return vector_call(status, stream, n, r, [&](const engine& e, const kernel_set& kernels) {
    if (!hvl::math::poisson_law::has_table(lambda))
      return rejection_transform(of_rejection, hvl::math::poisson_rejection_of(lambda), e, kernels);
    table.emplace(hvl::math::poisson_law{lambda});
    if (n >= law_thresholds::least_values_of_guide)
      table->add_guide();
    return threshold_transform(of_table, table->view(), e, kernels);
  });
}
