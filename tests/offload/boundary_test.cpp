// The 152 entry points: names, checks, statuses, what is printed, and what ends the process.
#include "fake_runtime.hpp"
#include "support.hpp"

#include <kestro/hvl/offload.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <csignal>
#include <cstring>
#include <functional>
#include <limits>
#include <map>
#include <string_view>

#include <dlfcn.h>

namespace offload_test {
namespace {

/// A parameter that every distribution with a parameter of this name accepts.
template <class T>
T chosen(std::string_view name) {
  static const std::map<std::string_view, double> values = {{"a", 1}, {"b", 2},  {"p", 0.5}, {"q", 0.5},
                                                            {"k", 2}, {"l", 10}, {"s", 5},   {"m", 5}};
  const auto found = values.find(name);
  return static_cast<T>(found == values.end() ? 1 : found->second);
}

template <class T>
const T* chosen_array() {
  static const std::array<T, 16> values = {T(0.5), T(0.5), T(1), T(1), T(1), T(1), T(1), T(1),
                                           T(1),   T(1),   T(1), T(1), T(1), T(1), T(1), T(1)};
  return values.data();
}

#define CHOSEN(parameters) KESTRO_HVL_ENDED(_END, CHOSEN_1 parameters)
#define CHOSEN_1(kind, type, name) , CHOSEN_##kind(type, name) CHOSEN_2
#define CHOSEN_2(kind, type, name) , CHOSEN_##kind(type, name) CHOSEN_1
#define CHOSEN_1_END
#define CHOSEN_2_END
#define CHOSEN_scalar(type, name) chosen<type>(#name)
#define CHOSEN_array(type, name) chosen_array<type>()

#define CHOSEN_ADDRESSES(parameters) KESTRO_HVL_ENDED(_END, CHOSEN_ADDRESSES_1 parameters)
#define CHOSEN_ADDRESSES_1(kind, type, name) , CHOSEN_ADDRESSES_##kind(type, name) CHOSEN_ADDRESSES_2
#define CHOSEN_ADDRESSES_2(kind, type, name) , CHOSEN_ADDRESSES_##kind(type, name) CHOSEN_ADDRESSES_1
#define CHOSEN_ADDRESSES_1_END
#define CHOSEN_ADDRESSES_2_END
#define CHOSEN_ADDRESSES_scalar(type, name) std::array<type, 1>{chosen<type>(#name)}.data()
#define CHOSEN_ADDRESSES_array(type, name) chosen_array<type>()

using call = std::function<int(std::int64_t method, vqs_stream, std::int64_t n, void* r, void* interop)>;

struct entry {
  const char* name;
  std::array<call, 4> spellings;
};

const std::vector<entry>& entries() {
  using std::int64_t;
#define KESTRO_HVL_OFFLOAD(tag, Name, name, result, parameters, ...)                                         \
  {#tag #Name,                                                                                               \
   {[](int64_t method, vqs_stream stream, int64_t n, void* r, void* interop) {                               \
      return hvl_vqs_##tag##Rng##Name##_omp_offload_ilp64(                                                   \
          method, stream, n, static_cast<result*>(r) CHOSEN(parameters), interop);                           \
    },                                                                                                       \
    [](int64_t method, vqs_stream stream, int64_t n, void* r, void* interop) {                               \
      return hvl_vqs_##tag##Rng##Name##_omp_offload_lp64(                                                    \
          static_cast<int>(method), stream, static_cast<int>(n), static_cast<result*>(r) CHOSEN(parameters), \
          interop);                                                                                          \
    },                                                                                                       \
    [](int64_t method, vqs_stream stream, int64_t n, void* r, void* interop) {                               \
      return hvl_vqs_##tag##rng##name##_omp_offload(                                                         \
          &method, &stream, &n, static_cast<result*>(r) CHOSEN_ADDRESSES(parameters), interop);              \
    },                                                                                                       \
    [](int64_t method, vqs_stream stream, int64_t n, void* r, void* interop) {                               \
      const auto narrow_method = static_cast<int>(method), narrow_n = static_cast<int>(n);                   \
      return hvl_vqs_##tag##rng##name##_omp_offload_lp64(                                                    \
          &narrow_method, &stream, &narrow_n, static_cast<result*>(r) CHOSEN_ADDRESSES(parameters),          \
          interop);                                                                                          \
    }}},
  static const std::vector<entry> all = {
#include <kestro/hvl/detail/offload.def>
  };
#undef KESTRO_HVL_OFFLOAD
  return all;
}

class poisoned_output {
 public:
  poisoned_output() { std::memset(bytes_, 0xA5, sizeof bytes_); }
  operator void*() { return bytes_; }
  bool is_untouched() const {
    return std::all_of(std::begin(bytes_), std::end(bytes_), [](unsigned char b) { return b == 0xA5; });
  }

 private:
  alignas(8) unsigned char bytes_[64];
};

/// Every spelling answers `status`, prints nothing, writes nothing and leaves the stream alone.
void expect_refused(const entry& e, std::int64_t method, void* interop, int status) {
  const stream numbers;
  const auto before = numbers.state();
  poisoned_output r;
  for (const call& spelling : e.spellings) {
    const outcome seen = observe([&] { return spelling(method, numbers, 4, r, interop); });
    EXPECT_EQ(seen.status, status) << e.name;
    EXPECT_EQ(seen.error, "") << e.name;
  }
  EXPECT_TRUE(r.is_untouched()) << e.name;
  EXPECT_EQ(numbers.state(), before) << e.name;
}

std::string exception_line(const std::string& what) {
  return "KestroHVL RNG: kestro::hvl::exception: what: kestro::hvl::rng::" + what + "\n";
}

TEST(entry_points, are_152_with_the_names_of_the_classic_interface) {
  const char* real[] = {"Beta",   "Cauchy",  "ChiSquare", "Exponential", "Gamma",   "Gaussian", "GaussianMV",
                        "Gumbel", "Laplace", "Lognormal", "Rayleigh",    "Uniform", "Weibull"};
  const char* integer[] = {"Bernoulli",   "Binomial",    "Geometric",     "Hypergeometric",
                           "Multinomial", "Negbinomial", "Poisson",       "PoissonV",
                           "Uniform",     "UniformBits", "UniformBits32", "UniformBits64"};
  std::vector<std::string> stems;
  for (const char* name : real) {
    stems.push_back(std::string("vsRng") + name);
    stems.push_back(std::string("vdRng") + name);
  }
  for (const char* name : integer)
    stems.push_back(std::string("viRng") + name);
  ASSERT_EQ(stems.size(), 38u);
  ASSERT_EQ(entries().size(), 38u);
  for (const std::string& stem : stems) {
    std::string lower = stem;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return static_cast<char>(std::tolower(c)); });
    for (const std::string& name : {stem + "_omp_offload_ilp64", stem + "_omp_offload_lp64",
                                    lower + "_omp_offload", lower + "_omp_offload_lp64"})
      EXPECT_NE(dlsym(RTLD_DEFAULT, ("hvl_vqs_" + name).c_str()), nullptr) << name;
  }
}

TEST(entry_points, refuse_every_method_but_0) {
  const target device(path::zerlin);
  for (const entry& e : entries())
    for (const std::int64_t method : {1, -1, 1 << 30})
      expect_refused(e, method, device.interop(), -3);
  // seen in 64 bits by those that take 64 bits
  const stream numbers;
  poisoned_output r;
  EXPECT_EQ(entries().front().spellings[0](std::int64_t{1} << 32, numbers, 4, r, device.interop()), -3);
  EXPECT_EQ(device.completions(), 0);
}

TEST(entry_points, refuse_interop_objects_without_a_known_runtime) {
  for (const entry& e : entries()) {
    expect_refused(e, 0, nullptr, -2);
    fake_interop none(0);
    expect_refused(e, 0, &none, -2);
    for (const long runtime : {1, 2, 5, 7, -3}) {
      fake_interop unknown(runtime);
      expect_refused(e, 0, &unknown, -1);
      EXPECT_EQ(unknown.completions, 0);
    }
  }
}

TEST(entry_points, generate) {
  const target device(path::zerlin);
  for (const entry& e : entries())
    for (const call& spelling : e.spellings) {
      const stream numbers;
      const auto before = numbers.state();
      const std::int64_t completions = device.completions();
      poisoned_output r;
      const outcome seen = observe([&] { return spelling(0, numbers, 4, r, device.interop()); });
      ASSERT_EQ(seen.status, 0) << e.name << ": " << seen.error;
      EXPECT_EQ(seen.error, "") << e.name;
      device.wait(completions + 1);
      EXPECT_FALSE(r.is_untouched()) << e.name;
      EXPECT_NE(numbers.state(), before) << e.name;
    }
}

TEST(entry_points, check_the_sizes_of_multinomial) {
  const target device(path::zerlin);
  const stream numbers;
  const auto before = numbers.state();
  const double p[] = {1};
  std::int32_t r[2] = {-7, -7};
  const auto status = [&](std::int32_t trials, std::int32_t outcomes) {
    return observe([&] {
             return hvl_vqs_viRngMultinomial_omp_offload_ilp64(0, numbers, 2, r, trials, outcomes, p,
                                                               device.interop());
           })
        .status;
  };
  EXPECT_EQ(status(-1, 1), -3);
  EXPECT_EQ(status(3, 0), -3);
  EXPECT_EQ(status(3, -1), -3);
  EXPECT_EQ(r[0], -7);
  EXPECT_EQ(numbers.state(), before);
  EXPECT_EQ(status(0, 1), 0);
  device.wait(1);
  EXPECT_EQ(r[1], 0);
}

class failures : public testing::TestWithParam<path> {};

TEST_P(failures, inside_the_driver_are_one_line_and_minus_2) {
  target device(GetParam());
  const stream numbers;
  const auto before = numbers.state();
  poisoned_output r;
  const auto uniform = [&](vqs_stream s, std::int64_t n, void* output, void* interop) {
    return observe([&] {
      return hvl_vqs_vsRngUniform_omp_offload_ilp64(0, s, n, static_cast<float*>(output), 0, 1, interop);
    });
  };
  std::uint64_t stranger[64] = {};
  const struct {
    outcome seen;
    const char* what;
  } expected[] = {
      {uniform(numbers, -1, r, device.interop()), "generate: invalid argument: n"},
      {uniform(numbers, 4, nullptr, device.interop()), "generate: invalid argument: r"},
      {uniform(nullptr, 4, r, device.interop()), "generate: invalid argument: stream"},
      {uniform(stranger, 4, r, device.interop()), "generate: invalid argument: stream"},
  };
  for (const auto& [seen, what] : expected) {
    EXPECT_EQ(seen.status, -2) << what;
    EXPECT_EQ(seen.error, exception_line(what));
  }
  fake_interop without_handles(GetParam() == path::opencl ? 3 : 6, -5);
  EXPECT_EQ(uniform(numbers, 4, r, &without_handles).error,
            exception_line("offload: invalid argument: interop"));
  EXPECT_TRUE(r.is_untouched());
  EXPECT_EQ(numbers.state(), before);

  const stream without_bits(VQS_ENGINE_MRG32K3A);
  const outcome pair = observe([&] {
    std::uint32_t words[4];
    return hvl_vqs_viRngUniformBits32_omp_offload_lp64(0, without_bits, 4, words, device.interop());
  });
  EXPECT_EQ(pair.status, -2);
  EXPECT_EQ(pair.error,
            exception_line("generate: unimplemented functionality: uniform_bits distribution and mrg32k3a "
                           "engine combination"));
  EXPECT_EQ(device.completions(), 0);
}

TEST_P(failures, of_the_sycl_runtime_are_told_apart) {
  target device(GetParam()), other(GetParam());
  native_objects mixed = device.objects();
  mixed.context = other.objects().context;
  hvl_omp_interop interop = make_interop(&mixed);
  const stream numbers;
  poisoned_output r;
  const outcome seen = observe([&] {
    return hvl_vqs_vsRngUniform_omp_offload_ilp64(0, numbers, 4, static_cast<float*>(static_cast<void*>(r)),
                                                  0, 1, interop);
  });
  EXPECT_EQ(seen.status, -2);
  EXPECT_TRUE(seen.error.starts_with("KestroHVL RNG: sycl::exception what: ")) << seen.error;
  EXPECT_TRUE(seen.error.ends_with(" \n")) << seen.error;
  EXPECT_EQ(std::count(seen.error.begin(), seen.error.end(), '\n'), 1);
  EXPECT_EQ(hvl_omp_interop_destroy(&interop), HVL_TGT_OK);
}

INSTANTIATE_TEST_SUITE_P(paths, failures, testing::Values(path::opencl, path::zerlin),
                         [](const auto& given) { return given.param == path::opencl ? "opencl" : "zerlin"; });

class ending : public testing::Test {
 protected:
  static void SetUpTestSuite() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

// The child process makes its own target: native objects of the parent are not its own.
TEST_F(ending, a_poisson_v_without_means_ends_the_process) {
  const double lambda[] = {1};
  const std::int64_t method = 0, n = 0;
  const std::int32_t narrow_method = 0, narrow_n = 0;
  std::int32_t r[1];
  stream numbers;
  const auto ends = testing::KilledBySignal(SIGABRT);
  const char* why = "poisson_v: invalid argument: size of lambda < 0";
  EXPECT_EXIT(hvl_vqs_viRngPoissonV_omp_offload_ilp64(0, numbers, 0, r, lambda, nullptr), ends, why);
  EXPECT_EXIT(hvl_vqs_viRngPoissonV_omp_offload_lp64(0, numbers, 0, r, lambda, nullptr), ends, why);
  EXPECT_EXIT(hvl_vqs_virngpoissonv_omp_offload(&method, numbers.address(), &n, r, lambda, nullptr), ends,
              why);
  EXPECT_EXIT(hvl_vqs_virngpoissonv_omp_offload_lp64(&narrow_method, numbers.address(), &narrow_n, r, lambda,
                                                     nullptr),
              ends, why);
  // the method is looked at first
  EXPECT_EQ(hvl_vqs_viRngPoissonV_omp_offload_ilp64(1, numbers, 0, r, lambda, nullptr), -3);
}

TEST_F(ending, an_invalid_parameter_ends_the_process) {
  float r[1];
  std::int32_t values[1];
  stream numbers;
  const auto ends = testing::KilledBySignal(SIGABRT);
  const float nan = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EXIT(hvl_vqs_vsRngUniform_omp_offload_ilp64(0, numbers, 1, r, 1, 1, nullptr), ends, "a >= b");
  EXPECT_EXIT(hvl_vqs_vsRngUniform_omp_offload_lp64(0, numbers, 1, r, nan, 1, nullptr), ends, "a >= b");
  EXPECT_EXIT(hvl_vqs_viRngUniform_omp_offload_ilp64(0, numbers, 1, values, 5, -5, nullptr), ends, "a >= b");
  EXPECT_EXIT(hvl_vqs_vsRngGaussian_omp_offload_ilp64(0, numbers, 1, r, 0, -1, nullptr), ends, "stddev <= 0");
  EXPECT_EXIT(hvl_vqs_vsRngWeibull_omp_offload_ilp64(0, numbers, 1, r, 0, 0, 1, nullptr), ends, "alpha <= 0");
  EXPECT_EXIT(hvl_vqs_vsRngGamma_omp_offload_ilp64(0, numbers, 1, r, 0, 0, 1, nullptr), ends, "alpha <= 0");
  EXPECT_EXIT(hvl_vqs_vsRngGamma_omp_offload_lp64(0, numbers, 1, r, 1, 0, nan, nullptr), ends, "beta <= 0");
  EXPECT_EXIT(hvl_vqs_vsRngBeta_omp_offload_ilp64(0, numbers, 1, r, 0, 1, 0, 1, nullptr), ends, "p <= 0");
  EXPECT_EXIT(hvl_vqs_vsRngBeta_omp_offload_lp64(0, numbers, 1, r, 1, 1, 0, nan, nullptr), ends, "beta <= 0");
  EXPECT_EXIT(hvl_vqs_vsRngGaussianMV_omp_offload_ilp64(0, numbers, 1, r, 0, 0, r, r, nullptr), ends,
              "dimen <= 0");
  EXPECT_EXIT(hvl_vqs_vsRngGaussianMV_omp_offload_lp64(0, numbers, 1, r, 1, 3, &nan, &nan, nullptr), ends,
              "mstorage is none of 0, 1, 2");
  EXPECT_EXIT(hvl_vqs_vsRngGaussianMV_omp_offload_lp64(0, numbers, 1, r, 1, 0, &nan, &nan, nullptr), ends,
              "a is not finite");
  EXPECT_EXIT(hvl_vqs_vsRngChiSquare_omp_offload_ilp64(0, numbers, 1, r, 0, nullptr), ends, "v <= 0");
  EXPECT_EXIT(hvl_vqs_viRngGeometric_omp_offload_ilp64(0, numbers, 1, values, 0, nullptr), ends,
              "p is not in \\(0, 1\\]");
  EXPECT_EXIT(hvl_vqs_viRngBernoulli_omp_offload_ilp64(0, numbers, 1, values, 1.5, nullptr), ends,
              "p is not in \\[0, 1\\]");
  EXPECT_EXIT(hvl_vqs_viRngBinomial_omp_offload_ilp64(0, numbers, 1, values, -1, 0.5, nullptr), ends,
              "ntrial < 0");
  EXPECT_EXIT(hvl_vqs_viRngHypergeometric_omp_offload_lp64(0, numbers, 1, values, 3, 4, 1, nullptr), ends,
              "s is not in \\[0, l\\]");
  const double sum_2[] = {1, 1};
  EXPECT_EXIT(hvl_vqs_viRngMultinomial_omp_offload_ilp64(0, numbers, 1, values, 1, 2, sum_2, nullptr), ends,
              "p does not add up to 1");
  EXPECT_EXIT(hvl_vqs_viRngMultinomial_omp_offload_lp64(0, numbers, 1, values, 1, 2, nullptr, nullptr), ends,
              "size of p < 1");
  EXPECT_EXIT(hvl_vqs_viRngNegbinomial_omp_offload_ilp64(0, numbers, 1, values, 0, 0.5, nullptr), ends,
              "a <= 0");
  EXPECT_EXIT(hvl_vqs_viRngPoisson_omp_offload_lp64(0, numbers, 1, values, -1, nullptr), ends, "lambda < 0");
}

} // namespace
} // namespace offload_test
