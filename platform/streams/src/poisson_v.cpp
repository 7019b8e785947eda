#include <hvl/math/transforms/poisson_v.hpp>

#include <algorithm>

#include "parameters.hpp"

using namespace hvl::streams;

namespace {

// Of one thread's call: means are taken in order.
struct poisson_v_parameters {
  coefficients<double> unit;
  const double** next_mean;
};

// A call of so many values is never cut over threads.
constexpr std::int64_t values_per_call = 16384;

template <class Word>
std::uint32_t raw(Word word) {
  if constexpr (sizeof(Word) == 8)
    return static_cast<std::uint32_t>(word >> 27);
  else
    return static_cast<std::uint32_t>(word);
}

template <class Word>
void poisson_v(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  const auto& p = *static_cast<const poisson_v_parameters*>(parameters);
  const auto* pair = static_cast<const Word*>(words);
  auto* out = static_cast<std::int32_t*>(values);
  for (std::size_t i = 0; i < count; ++i, pair += 2) {
    const std::uint32_t own[2] = {raw(pair[0]), raw(pair[1])};
    out[i] = hvl::math::poisson_of_mean<hvl::math::scalar_ops<double>>(
        *(*p.next_mean)++, uniform_value<double>(pair[0], p.unit), uniform_value<double>(pair[1], p.unit),
        p.unit.scale, own);
  }
}

transform_function transform_for(word_kind kind) {
  switch (kind) {
  case word_kind::signed32:
    return poisson_v<std::int32_t>;
  case word_kind::unsigned32:
    return poisson_v<std::uint32_t>;
  case word_kind::unsigned64:
    return poisson_v<std::uint64_t>;
  }
  return nullptr;
}

} // namespace

int viRngPoissonV_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r, const double* lambda) {
  if (lambda == nullptr)
    return VQS_STATUS_NULL_POINTER;
  const auto status = [&] { return parameters_status(method == 0, poisson_v_fault(lambda, n)); };
  const auto checked = [] { return VQS_STATUS_OK; };
  const double* next_mean = lambda;
  poisson_v_parameters parameters{{}, &next_mean};
  const auto make = [&](const engine& e, const kernel_set&) {
    parameters.unit = uniform_coefficients(e.scale, 0.0, 1.0);
    return transform_of(transform_for(e.kind), &parameters, hvl::math::transformed_rejection_words,
                        sizeof(*r));
  };
  std::int64_t made = std::min(n, values_per_call);
  int result = vector_call(status, stream, made, r, make);
  for (; result == VQS_STATUS_OK && made < n; made += std::min(n - made, values_per_call))
    result = vector_call(checked, stream, std::min(n - made, values_per_call), r + made, make);
  return result;
}
