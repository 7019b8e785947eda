#include "accuracy.hpp"

#include <mpfr.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <random>

#include "hvl/math/stirling.hpp"
#include "hvl/math/transforms.hpp"

namespace hvl::math::test {
namespace {

using F = scalar_ops<float>;
using D = scalar_ops<double>;

template <class O>
typename O::value sine(typename O::value x) {
  typename O::value s, c;
  sincos_turns<O>(x, s, c);
  return s;
}
template <class O>
typename O::value cosine(typename O::value x) {
  typename O::value s, c;
  sincos_turns<O>(x, s, c);
  return c;
}

float float_of(std::uint32_t bits) {
  float f;
  std::memcpy(&f, &bits, sizeof f);
  return f;
}

// The distance of doubles around x.
double double_unit(double x) {
  int exponent = 0;
  std::frexp(x, &exponent);
  return std::ldexp(1.0, std::max(exponent, std::numeric_limits<double>::min_exponent) - 53);
}

// The same for float, quickly: from the exponent field.
double float_unit(double x) {
  std::uint64_t bits;
  std::memcpy(&bits, &x, sizeof bits);
  const std::uint64_t exponent = std::max<std::uint64_t>(bits >> 52 & 0x7ff, 1023 - 126) - 23;
  bits = exponent << 52;
  std::memcpy(&x, &bits, sizeof bits);
  return x;
}

double float_error(float value, double exact) {
  const double error = std::fabs(static_cast<double>(value) - exact) / float_unit(exact);
  if (!std::isinf(value))
    return error;
  // right from half a unit above the greatest float on
  return std::fabs(exact) >= 0x1.ffffffp+127 && std::signbit(value) == std::signbit(exact) ? 0 : INFINITY;
}

constexpr std::size_t block = 1024;

// Both functions over a block, in loops that compilers turn into vectors.
template <auto Single, auto Double>
void over_block(const float* x, float* value, double* exact) {
  for (std::size_t i = 0; i < block; ++i)
    value[i] = Single(x[i]);
  for (std::size_t i = 0; i < block; ++i)
    exact[i] = Double(static_cast<double>(x[i]));
}

// The numbers first to last, and with the sign bit set too.
struct float_function {
  const char* name;
  const char* domain;
  void (*over_block)(const float* x, float* value, double* exact);
  float first;
  float last;
  bool both_signs;
};

constexpr float least = std::numeric_limits<float>::min();
constexpr float greatest = std::numeric_limits<float>::max();

constexpr auto log_of_double = [](double x) { return log<D>(x); };

constexpr float_function float_functions[] = {
    {"log", "every positive normal number", over_block<[](float x) { return log<F>(x); }, log_of_double>,
     least, greatest, false},
    {"log_of_uniform", "every normal number in (0, 1]",
     over_block<[](float x) { return log_of_uniform<F>(x); }, log_of_double>, least, 1.0f, false},
    {"log_of_uniform times -2", "every normal number in (0, 1]",
     over_block<[](float x) { return log_of_uniform<F, -2>(x); }, [](double x) { return -2 * log<D>(x); }>,
     least, 1.0f, false},
    {"log1p", "every positive normal number",
     over_block<[](float x) { return log1p<F>(x); }, [](double x) { return log1p<D>(x); }>, least, greatest,
     false},
    {"log1p of -x", "every normal number in (0, 1)",
     over_block<[](float x) { return log1p<F>(-x); }, [](double x) { return log1p<D>(-x); }>, least,
     0x1.fffffep-1f, false},
    {"exp", "every number", over_block<[](float x) { return exp<F>(x); }, [](double x) { return exp<D>(x); }>,
     0.0f, greatest, true},
    {"sin of turns", "every number in [-1, 1] from 2^-100 on in magnitude", over_block<sine<F>, sine<D>>,
     0x1p-100f, 1.0f, true},
    {"cos of turns", "every number in [-1, 1]", over_block<cosine<F>, cosine<D>>, 0.0f, 1.0f, true},
    {"erfinv", "every number in (-1, 1) from 2^-100 on in magnitude",
     over_block<[](float x) { return erfinv<F>(x); }, [](double x) { return erfinv<D>(x); }>, 0x1p-100f,
     0x1.fffffep-1f, true},
    {"powr, y = 1/3", "every normal number in (0, 104]",
     over_block<[](float x) { return powr<F>(x, 1.0f / 3); },
                [](double x) { return powr<D>(x, static_cast<double>(1.0f / 3)); }>,
     least, 104.0f, false},
    {"powr, y = 2.5", "every normal number in (0, 104]",
     over_block<[](float x) { return powr<F>(x, 2.5f); }, [](double x) { return powr<D>(x, 2.5); }>, least,
     104.0f, false},
    {"powr, y = 18", "every normal number in (0, 104]",
     over_block<[](float x) { return powr<F>(x, 18.0f); }, [](double x) { return powr<D>(x, 18.0); }>, least,
     104.0f, false},
};

class number {
 public:
  number() { mpfr_init2(x_, 200); }
  explicit number(double v) : number() { mpfr_set_d(x_, v, MPFR_RNDN); }
  number(const number&) = delete;
  number& operator=(const number&) = delete;
  ~number() { mpfr_clear(x_); }
  operator mpfr_ptr() { return x_; }

 private:
  mpfr_t x_;
};

double double_error(double value, number& exact) {
  const double nearest = mpfr_get_d(exact, MPFR_RNDN);
  if (std::isinf(nearest) || std::isinf(value))
    return nearest == value ? 0 : INFINITY;
  mpfr_sub_d(exact, exact, value, MPFR_RNDN);
  return std::fabs(mpfr_get_d(exact, MPFR_RNDN)) / double_unit(nearest);
}

// erf(e) = v by one Newton step from e, which doubles the 50 right bits of e.
void exact_erfinv(number& result, double v, double e) {
  number at(e), slope, residue;
  mpfr_sqr(slope, at, MPFR_RNDN);
  mpfr_exp(slope, slope, MPFR_RNDN); // e^(e^2)
  mpfr_const_pi(residue, MPFR_RNDN);
  mpfr_sqrt(residue, residue, MPFR_RNDN);
  mpfr_mul(slope, slope, residue, MPFR_RNDN);
  mpfr_div_ui(slope, slope, 2, MPFR_RNDN);
  mpfr_erf(residue, at, MPFR_RNDN);
  mpfr_sub_d(residue, residue, v, MPFR_RNDN);
  mpfr_mul(residue, residue, slope, MPFR_RNDN);
  mpfr_sub(result, at, residue, MPFR_RNDN);
}

using mpfr_function = std::function<int(mpfr_t, const mpfr_t, mpfr_rnd_t)>;

class double_measurement {
 public:
  explicit double_measurement(std::uint64_t points) : points_(points) {}

  double fraction() { return std::ldexp(static_cast<double>(random_() >> 11), -53); }
  // Its exponent is uniform in [low, high).
  double of_exponents(int low, int high) {
    return std::ldexp(1 + fraction(), low + static_cast<int>(random_() % static_cast<unsigned>(high - low)));
  }

  // `random` draws an argument; those of `hard` are tried with their neighbours.
  void against(const char* name, const char* domain, double (*f)(double), const mpfr_function& exact,
               const std::function<double()>& random, const std::vector<double>& hard) {
    run(name, domain, random, hard, [&](double x) {
      number reference(x);
      exact(reference, reference, MPFR_RNDN);
      return double_error(f(x), reference);
    });
  }

  void run(const char* name, const char* domain, const std::function<double()>& random,
           const std::vector<double>& hard, const std::function<double(double)>& error_at) {
    measured m{name, domain, 2, {}};
    for (const double centre : hard) {
      double below = centre, above = centre;
      for (int i = 0; i < 40; ++i) {
        m.error.add(error_at(below), below);
        m.error.add(error_at(above), above);
        below = std::nextafter(below, -INFINITY);
        above = std::nextafter(above, INFINITY);
      }
    }
    for (std::uint64_t i = 0; i < points_; ++i) {
      const double x = random();
      m.error.add(error_at(x), x);
    }
    results.push_back(m);
  }

  std::vector<measured> results;

 private:
  std::uint64_t points_;
  std::mt19937_64 random_{20211113};
};

// step * k for -count <= k <= count, and half-way between.
std::vector<double> multiples(double step, int count) {
  std::vector<double> all;
  for (int k = -2 * count; k <= 2 * count; ++k)
    all.push_back(k * step / 2);
  return all;
}

} // namespace

std::vector<measured> measure_float(std::uint64_t stride) {
  std::vector<measured> results;
  float x[block], value[block];
  double exact[block], error[block];
  for (const float_function& f : float_functions) {
    measured m{f.name, f.domain, 1, {}};
    std::uint32_t first, last;
    std::memcpy(&first, &f.first, sizeof first);
    std::memcpy(&last, &f.last, sizeof last);
    for (std::uint64_t word = first; word <= last; word += stride * block) {
      const std::size_t count = std::min<std::uint64_t>(block, (last - word) / stride + 1);
      for (const std::uint32_t sign : {0u, 0x80000000u}) {
        if (sign != 0 && !f.both_signs)
          continue;
        for (std::size_t i = 0; i < block; ++i) // the last word again behind the end
          x[i] =
              float_of(static_cast<std::uint32_t>(std::min<std::uint64_t>(word + i * stride, last)) | sign);
        f.over_block(x, value, exact);
        for (std::size_t i = 0; i < block; ++i)
          error[i] = float_error(value[i], exact[i]);
        for (std::size_t i = 0; i < count; ++i)
          m.error.add(error[i], static_cast<double>(x[i]));
      }
    }
    results.push_back(m);
  }
  return results;
}

std::vector<measured> measure_double(std::uint64_t points) {
  double_measurement d(points);
  const auto log_random = [&] { return d.fraction() < 0.5 ? 1 - d.fraction() : d.of_exponents(-1022, 1024); };
  d.against("log", "positive normal numbers", [](double x) { return log<D>(x); }, mpfr_log, log_random,
            {0.5, std::sqrt(0.5), 1, std::sqrt(2.0), 2, 0x1p-32, 0x1p-59, 0x1.fffffffffff00p+1023});
  const auto log1p_random = [&] {
    if (d.fraction() < 0.5)
      return d.of_exponents(-60, 60);
    return d.fraction() < 0.5 ? d.fraction() - 1 : -d.of_exponents(-60, 0);
  };
  d.against("log1p", "above -1", [](double x) { return log1p<D>(x); }, mpfr_log1p, log1p_random,
            {-1 + 0x1p-47, std::sqrt(0.5) - 1, -0x1p-53, 0x1p-53, 0x1p-52, std::sqrt(2.0) - 1, 1, 0x1p53});
  // 200 bits lose at most 60 here
  const auto exact_log1pmx = [](mpfr_t result, const mpfr_t x, mpfr_rnd_t rounding) {
    number argument(mpfr_get_d(x, MPFR_RNDN));
    mpfr_log1p(result, argument, rounding);
    return mpfr_sub(result, result, argument, rounding);
  };
  d.against("log1pmx", "above -1, from 2^-60 on in magnitude", [](double x) { return log1pmx<D>(x); },
            exact_log1pmx, log1p_random,
            {-1 + 0x1p-47, std::sqrt(0.5) - 1, -0.5, -0x1p-53, 0x1p-53, std::sqrt(2.0) - 1,
             std::sqrt(8.0) - 1, 1, 2, 0x1p53});
  d.run(
      "stirling_correction", "integers from 1 to 2^40", [&] { return std::floor(d.of_exponents(0, 40)); }, {},
      [](double n) {
        number exact(n), formula(n), constant;
        mpfr_lngamma(exact, exact, MPFR_RNDN);
        mpfr_log(formula, formula, MPFR_RNDN);
        mpfr_mul_d(formula, formula, n - 0.5, MPFR_RNDN);
        mpfr_sub(exact, exact, formula, MPFR_RNDN);
        mpfr_add_d(exact, exact, n, MPFR_RNDN);
        mpfr_const_pi(constant, MPFR_RNDN);
        mpfr_mul_ui(constant, constant, 2, MPFR_RNDN);
        mpfr_log(constant, constant, MPFR_RNDN);
        mpfr_div_ui(constant, constant, 2, MPFR_RNDN);
        mpfr_sub(exact, exact, constant, MPFR_RNDN);
        return double_error(stirling_correction<D>(n), exact);
      });
  auto exp_hard = multiples(0.69314718055994531, 60);
  for (const double x : {709.782712893384, 709.5, -708.396, -744.44, -745.1332, 0x1p-54, 1e-300})
    exp_hard.push_back(x);
  d.against(
      "exp", "every number", [](double x) { return exp<D>(x); }, mpfr_exp,
      [&] { return d.fraction() < 0.2 ? d.of_exponents(-60, 2) : d.fraction() * 1460 - 748; }, exp_hard);
  const auto part_of_turn = [&] {
    return d.fraction() < 0.1 ? d.of_exponents(-60, 0) : d.fraction() * 2 - 1;
  };
  const auto in_turns = [](auto exact) {
    return
        [exact](mpfr_t result, const mpfr_t x, mpfr_rnd_t rounding) { return exact(result, x, 1, rounding); };
  };
  auto eighths = multiples(0.25, 3);
  eighths.push_back(1 - 0x1p-46); // and its neighbours stay inside
  d.against("sin of turns", "[-1, 1]", sine<D>, in_turns(mpfr_sinu), part_of_turn, eighths);
  d.against("cos of turns", "[-1, 1]", cosine<D>, in_turns(mpfr_cosu), part_of_turn, eighths);
  d.against(
      "tan", "[-7, 7]", [](double x) { return tan<D>(x); }, mpfr_tan, [&] { return d.fraction() * 14 - 7; },
      multiples(1.5707963267948966, 4));

  std::vector<double> pieces = {0x1p-1000, 0x1p-30};
  for (int k = 1; k < 53; ++k)
    for (int quarter = 0; quarter < 4; ++quarter)
      pieces.push_back(1 - std::ldexp(1 + quarter / 4.0, -k));
  for (double& x : pieces)
    x = std::fmin(x, 1 - 0x1p-47); // so that the neighbours stay inside
  d.run(
      "erfinv", "(-1, 1)",
      [&] {
        const double v = d.fraction() < 0.5
                             ? d.fraction()
                             : 1 - std::ldexp(1 + d.fraction(), -2 - static_cast<int>(d.fraction() * 50));
        return d.fraction() < 0.5 ? v : -v;
      },
      pieces,
      [](double v) {
        const double e = erfinv<D>(v);
        number exact;
        exact_erfinv(exact, v, e);
        return double_error(e, exact);
      });
  double y = 1;
  d.run(
      "powr", "x in (0, 745), y in (0.001, 1000)",
      [&] {
        y = std::exp((d.fraction() * 2 - 1) * 6.9);
        return d.fraction() < 0.5 ? d.of_exponents(-60, 9) : d.fraction() * 104;
      },
      {0.5, std::sqrt(0.5), 1, std::sqrt(2.0), 2},
      [&](double x) {
        number exact(x), exponent(y);
        mpfr_pow(exact, exact, exponent, MPFR_RNDN);
        return double_error(powr<D>(x, y), exact);
      });
  return d.results;
}

} // namespace hvl::math::test
