// math_accuracy [--all] [--points N]: measures the functions and prints the table of largest errors. --all tries every
// float instead of each 65521st.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "accuracy.hpp"

namespace {

using hvl::math::test::measured;

bool print(const char* type, const std::vector<measured>& all) {
  bool within = true;
  for (const measured& m : all) {
    std::printf("| %s | `%s` | %s | %llu | %.3f | %g (%a) |\n", m.function.c_str(), type, m.domain.c_str(),
                static_cast<unsigned long long>(m.error.arguments), m.error.ulp, m.error.argument,
                m.error.argument);
    within = within && m.error.ulp <= m.bound;
  }
  return within;
}

} // namespace

int main(int count, char** arguments) {
  std::uint64_t stride = 65521;
  std::uint64_t points = 1'000'000;
  for (int i = 1; i < count; ++i) {
    if (std::strcmp(arguments[i], "--all") == 0) {
      stride = 1;
    } else if (std::strcmp(arguments[i], "--points") == 0 && i + 1 < count) {
      points = std::strtoull(arguments[++i], nullptr, 10);
    } else {
      std::fprintf(stderr, "usage: math_accuracy [--all] [--points N]\n");
      return 2;
    }
  }
  std::printf(
      "# Accuracy of the elementary functions\n\n"
      "Largest errors found, in units in the last place of the exact result, by `math_accuracy%s`. `double` "
      "is\n"
      "measured against MPFR at random and hard points, `float` against the `double` function%s.\n"
      "Bounds: 1 ulp in `float`, 2 ulp in `double`.\n\n"
      "| function | type | arguments | tried | largest error, ulp | at |\n|---|---|---|---|---|---|\n",
      stride == 1 ? " --all" : "", stride == 1 ? " at every number of the domain" : "");
  const bool floats = print("float", hvl::math::test::measure_float(stride));
  const bool doubles = print("double", hvl::math::test::measure_double(points));
  return floats && doubles ? 0 : 1;
}
