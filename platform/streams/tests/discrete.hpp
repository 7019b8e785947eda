// What the suites of discrete distributions share.
#pragma once

#include <functional>

#include "support.hpp"

namespace hvl::streams::test {

inline constexpr std::int32_t poison = -7;

using generator = std::function<int(vqs_stream, std::int64_t, std::int32_t*)>;

inline std::vector<std::int32_t> generated(vqs_stream stream, std::size_t n, const generator& generate) {
  std::vector<std::int32_t> values(n + 1, poison); // never a null pointer
  EXPECT_EQ(generate(stream, static_cast<std::int64_t>(n), values.data()), VQS_STATUS_OK);
  EXPECT_EQ(values.back(), poison) << "written behind the end";
  values.pop_back();
  return values;
}

inline generator poisson(double lambda) {
  return [=](vqs_stream s, std::int64_t n, std::int32_t* r) { return viRngPoisson_64(0, s, n, r, lambda); };
}
inline generator bernoulli(double p) {
  return [=](vqs_stream s, std::int64_t n, std::int32_t* r) { return viRngBernoulli_64(0, s, n, r, p); };
}

} // namespace hvl::streams::test
