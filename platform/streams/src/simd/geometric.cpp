// The geometric distribution.
#include "geometric.hpp"

#include <hvl/math/transforms/geometric.hpp>

#include "simd/value_loops.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

// In double; truncation is the floor of a number that is not negative.
template <word_kind Kind>
void geometric(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  const auto& p = *static_cast<const geometric_parameters*>(parameters);
  for_each_of_pair<double>(
      static_cast<std::int32_t*>(values), count, unit_loader<Kind, double>(words, p.unit),
      [&]<class O>(typename O::value first, typename O::value second) HVL_STREAMS_INLINE_LAMBDA {
        return math::geometric_icdf<O>(math::refined<O>(first, second, p.unit.scale), p.scale);
      });
}

} // namespace

transform_function geometric_transform(word_kind kind) noexcept {
  switch (kind) {
  case word_kind::signed32:
    return geometric<word_kind::signed32>;
  case word_kind::unsigned32:
    return geometric<word_kind::unsigned32>;
  case word_kind::unsigned64:
    return geometric<word_kind::unsigned64>;
  }
  return nullptr;
}

} // namespace hvl::streams::HVL_STREAMS_ISA
