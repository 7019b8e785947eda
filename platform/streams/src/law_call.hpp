// The call of distributions that a table serves up to a variance.
#pragma once

#include <optional>

#include "parameters.hpp"
#include "threshold_call.hpp"

namespace hvl::streams {

// Values of Law{p...} by its thresholds; where it has no table by otherwise(engine, kernels), a transform.
template <class Law, class... P, class Otherwise>
int law_call(std::int64_t method, const char* (*fault)(P...), vqs_stream stream, std::int64_t n,
             std::int32_t* r, const Otherwise& otherwise, P... p) {
  const auto status = [&] { return parameters_status(method == 0, fault(p...)); };
  std::optional<law_thresholds> table;
  threshold_parameters parameters{};
  return vector_call(status, stream, n, r, [&](const engine& e, const kernel_set& kernels) {
    if (!Law::has_table(p...))
      return otherwise(e, kernels);
    table.emplace(Law{p...});
    if (n >= law_thresholds::least_values_of_guide)
      table->add_guide();
    return threshold_transform(parameters, table->view(), e, kernels);
  });
}

} // namespace hvl::streams
