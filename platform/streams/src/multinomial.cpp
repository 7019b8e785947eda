#include "multinomial.hpp"

#include <hvl/math/transforms/multinomial.hpp>

#include <vector>

#include "parameters.hpp"
#include "vectors.hpp"

using namespace hvl::streams;

namespace {

int status_of(std::int64_t method, std::int32_t ntrial, std::int32_t k, const double* p) {
  if (const int found = parameters_status(method == 0, multinomial_fault(ntrial, k)); found != VQS_STATUS_OK)
    return found;
  return p == nullptr ? VQS_STATUS_NULL_POINTER : parameters_status(true, multinomial_fault(k, p));
}

} // namespace

int viRngMultinomial_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r, int32_t ntrial, int32_t k,
                        const double* p) {
  const auto status = [&] { return status_of(method, ntrial, k, p); };
  uniform_parameters<double, std::int32_t> every_integer{};
  std::vector<double> table;
  vector_function apply = nullptr;
  const auto integers = [&](const engine& e, const kernel_set& kernels) {
    hvl::math::make_multinomial_table(p, static_cast<std::size_t>(k), table);
    apply = kernels.multinomial;
    every_integer = {uniform_coefficients(e.scale, -0x1p31, 0x1p31),
                     {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()}};
    return transform_of(kernels.uniform(e.kind, uniform_result::int32_via_double), &every_integer,
                        hvl::math::multinomial_words, sizeof(*r));
  };
  const int made = vector_call(status, stream, values_of_vectors(n, k), r, integers);
  if (made != VQS_STATUS_OK || n == 0)
    return made;
  const auto dimension = static_cast<std::size_t>(k);
  const multinomial_parameters parameters{ntrial, dimension, table.data()};
  return second_step(n, dimension, [&](std::size_t first, std::size_t vectors) {
    apply(&parameters, r + first * dimension, vectors);
  });
}
