#include <hvl/float_environment.hpp>

#include <gtest/gtest.h>

#include <limits>

namespace {

// Computed when they run, in the environment in force.
#ifdef __clang__
#define COMPUTED_WHEN_RUN [[gnu::noinline, clang::optnone]]
#else
#define COMPUTED_WHEN_RUN [[gnu::noipa]]
#endif
COMPUTED_WHEN_RUN float sum(float a, float b) {
  return a + b;
}
COMPUTED_WHEN_RUN float product(float a, float b) {
  return a * b;
}
COMPUTED_WHEN_RUN long double quotient(long double a, long double b) {
  return a / b;
}

constexpr float tiny = std::numeric_limits<float>::min();
constexpr unsigned flush_results = 0x8000, flush_arguments = 0x0040;

/// The environment of a test, put back to the default at its end.
struct restored {
  ~restored() { std::fesetenv(FE_DFL_ENV); }
};

void expect_default_results() {
  EXPECT_EQ(std::fegetround(), FE_TONEAREST);
  EXPECT_EQ(sum(1.0f, 1e-10f), 1.0f);
  EXPECT_EQ(sum(-1.0f, 1e-10f), -1.0f);
  EXPECT_EQ(product(tiny, 0.5f), std::numeric_limits<float>::denorm_min() * (1 << 22));
  EXPECT_EQ(product(product(tiny, 0.5f), 2.0f), tiny);
  EXPECT_EQ(quotient(1, 3), 1.0L / 3);
}

TEST(float_environment, is_the_default_inside_and_the_callers_after) {
  const restored at_the_end;
  for (int rounding : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO})
    for (unsigned flush : {0u, flush_results, flush_arguments, flush_results | flush_arguments}) {
      std::fesetround(rounding);
      _mm_setcsr((_mm_getcsr() & ~(flush_results | flush_arguments)) | flush);
      const unsigned before = _mm_getcsr();
      {
        const hvl::default_float_environment guard;
        expect_default_results();
        {
          const hvl::default_float_environment nested;
          expect_default_results();
        }
        expect_default_results();
      }
      ASSERT_EQ(_mm_getcsr() & ~0x3fu, before & ~0x3fu) << rounding << ' ' << flush;
      ASSERT_EQ(std::fegetround(), rounding) << flush;
    }
}

TEST(float_environment, covers_the_unit_for_long_double_alone) {
  const restored at_the_end;
  unsigned short to_double_precision = 0x027f;
  asm volatile("fldcw %0" : : "m"(to_double_precision));
  ASSERT_NE(quotient(1, 3), 1.0L / 3);
  {
    const hvl::default_float_environment guard;
    expect_default_results();
  }
  EXPECT_NE(quotient(1, 3), 1.0L / 3);
}

TEST(float_environment, traps_nothing_and_keeps_the_callers_flags) {
  const restored at_the_end;
  std::feclearexcept(FE_ALL_EXCEPT);
  std::feraiseexcept(FE_OVERFLOW);
  ::feenableexcept(FE_DIVBYZERO);
  {
    const hvl::default_float_environment guard;
    EXPECT_GT(quotient(1, product(0, 0)), 1); // else SIGFPE ends the test
  }
  EXPECT_EQ(std::fetestexcept(FE_ALL_EXCEPT), FE_OVERFLOW);
  EXPECT_EQ(::fegetexcept(), FE_DIVBYZERO);
  EXPECT_EQ(quotient(1, 2), 0.5L); // a pending exception would be delivered here
}

} // namespace
