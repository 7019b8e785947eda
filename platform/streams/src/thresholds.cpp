#include "threshold_call.hpp"

using namespace hvl::streams;

int viRngThresholds_64(vqs_stream stream, int64_t n, int32_t* r, const vqs_thresholds* thresholds) {
  threshold_parameters parameters{};
  const auto status = [&] { return thresholds != nullptr ? VQS_STATUS_OK : VQS_STATUS_NULL_POINTER; };
  return vector_call(status, stream, n, r, [&](const engine& e, const kernel_set& kernels) {
    return threshold_transform(parameters, *thresholds, e, kernels);
  });
}
