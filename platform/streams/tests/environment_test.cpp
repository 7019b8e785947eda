// The numbers do not depend on the caller's floating-point environment, which is the caller's again afterwards; and no call
// leaves upper halves of vector registers in use, which slow down what the caller computes in lower ones. The
// program is its own probe: given the name of an environment it prints checksums of numbers made in it, from the first
// call of its process on; given one argument more, after threads were started in it.
#include <cpuid.h>
#include <immintrin.h>
#include <oneapi/tbb/parallel_for.h>

#include <cfenv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "continuous_members.hpp"
#include "discrete.hpp"

namespace hvl::streams::test {
namespace {

constexpr const char* environments[] = {"default", "upward", "downward", "toward_zero", "flushing"};

void enter(const std::string& environment) {
  constexpr unsigned flush_results = 0x8000, flush_arguments = 0x0040;
  if (environment == "upward")
    std::fesetround(FE_UPWARD);
  else if (environment == "downward")
    std::fesetround(FE_DOWNWARD);
  else if (environment == "toward_zero")
    std::fesetround(FE_TOWARDZERO);
  else if (environment == "flushing")
    _mm_setcsr(_mm_getcsr() | flush_results | flush_arguments);
}

unsigned control_bits() {
  return _mm_getcsr() & ~0x3Fu;
}

// Which upper halves hold something, as the processor keeps track of for its saving of states; 0 where it does not tell.
unsigned upper_halves_in_use() {
  constexpr unsigned has_xgetbv = 1u << 27, tells_use = 1u << 2, of_256_and_512_bits = 1u << 2 | 1u << 6;
  unsigned a = 0, b = 0, c = 0, d = 0;
  if (!__get_cpuid(1, &a, &b, &c, &d) || (c & has_xgetbv) == 0 || !__get_cpuid_count(13, 1, &a, &b, &c, &d) ||
      (a & tells_use) == 0)
    return 0;
  unsigned low, high;
  asm volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(1));
  return low & of_256_and_512_bits;
}

template <class T, class Generate>
void print_checksum(const char* name, std::int32_t engine, std::size_t n, const Generate& generate) {
  const unsigned before = control_bits();
  const int rounding = std::fegetround();
  std::vector<T> values(n);
  owned_stream stream(engine);
  const unsigned upper_halves = upper_halves_in_use();
  const int status = generate(stream, static_cast<std::int64_t>(n), values.data());
  const bool same_halves = upper_halves_in_use() == upper_halves;
  std::uint64_t sum = 14695981039346656037u; // FNV-1a
  for (const unsigned char byte : std::span(reinterpret_cast<unsigned char*>(values.data()), n * sizeof(T)))
    sum = (sum ^ byte) * 1099511628211u;
  std::printf("%d %s %zu %d %016llx%s%s\n", static_cast<int>(engine), name, n, status,
              static_cast<unsigned long long>(sum),
              control_bits() == before && std::fegetround() == rounding ? "" : " environment lost",
              same_halves ? "" : " upper halves in use");
}

template <class T>
void print_continuous(std::int32_t engine) {
  for (const member<T>& m : continuous_members<T>())
    print_checksum<T>(m.name, engine, 3001, m.generate);
}

template <class Value, class Bound>
void print_uniform(std::int32_t engine, std::size_t n, auto function, Bound a, Bound b) {
  for (const int method : {VQS_METHOD_UNIFORM_STANDARD, VQS_METHOD_UNIFORM_ACCURATE})
    print_checksum<Value>("uniform", engine, n, [=](vqs_stream s, std::int64_t count, Value* r) {
      return function(method, s, count, r, a, b);
    });
}

// What the caller did before with the threads that long calls share: they keep the environment of that.
void start_threads() {
  tbb::parallel_for(0, 1000, [](int) { std::this_thread::yield(); });
}

void print_all() {
  for (const engine_entry& e : engines) {
    // long enough for several threads
    print_uniform<float>(e.id, 300'000, vsRngUniform_64, -1.0f / 3, 1.0f);
    print_uniform<double>(e.id, 3001, vdRngUniform_64, -1.0 / 3, 1.0);
    print_uniform<float>(e.id, 3001, vsRngUniform_64, 1e-40f, 3e-40f);
    print_uniform<float>(e.id, 3001, vsRngUniform_64, -3e38f,
                         3e38f); // refused: b - a overflows, in no rounding
    print_uniform<std::int32_t>(e.id, 3001, viRngUniform_64, -16777219, 1000000007);
    print_uniform<std::uint32_t>(e.id, 3001, viRngUniformU_64, 7u, 4000000007u);
    print_continuous<float>(e.id);
    print_continuous<double>(e.id);
    print_checksum<std::int32_t>("geometric", e.id, 3001, [](vqs_stream s, std::int64_t n, std::int32_t* r) {
      return viRngGeometric_64(0, s, n, r, 1e-7);
    });
    for (const double mean : {0.7, 3e4, 3e7})
      print_checksum<std::int32_t>("poisson", e.id, 3001, poisson(mean));
    print_checksum<std::int32_t>("poisson", e.id, 1, poisson(30));
    print_checksum<std::int32_t>("poisson_v", e.id, 3001, poisson_v(9));
    print_checksum<std::int32_t>("negative_binomial", e.id, 3001, negative_binomial(2.5, 1e-3));
    print_checksum<std::int32_t>("multinomial", e.id, 3001,
                                 [](vqs_stream s, std::int64_t n, std::int32_t* r) {
                                   const double p[] = {0.3, 0.7};
                                   return viRngMultinomial_64(0, s, n / 2, r, 40, 2, p);
                                 });
  }
}

std::string output_of_probe(const std::string& program, const std::string& arguments) {
  FILE* pipe = popen((program + " " + arguments).c_str(), "r");
  std::string output;
  for (int next = std::fgetc(pipe); next != EOF; next = std::fgetc(pipe))
    output += static_cast<char>(next);
  EXPECT_EQ(pclose(pipe), 0);
  return output;
}

std::string program;

TEST(float_environment, changes_no_number_and_is_restored) {
  const std::string expected = output_of_probe(program, "default");
  ASSERT_NE(expected.find("uniform 3001 -6 "), std::string::npos) << "nothing was refused:\n" << expected;
  ASSERT_EQ(expected.find("lost"), std::string::npos) << expected;
  ASSERT_EQ(expected.find("in use"), std::string::npos) << expected;
  for (const std::string environment : environments) {
    SCOPED_TRACE(environment);
    for (int isa = HVL_ISA_SCALAR; isa <= HVL_ISA_AVX512; ++isa) {
      const std::string named = "HVL_ISA=" + std::string(hvl_serv_isa_name(isa)) + " " + program;
      if (hvl_serv_isa_supported(isa)) {
        EXPECT_EQ(output_of_probe(named, environment), expected);
        EXPECT_EQ(output_of_probe(named, environment + " with-threads"), expected);
      }
    }
  }
}

} // namespace
} // namespace hvl::streams::test

int main(int count, char** arguments) {
  using namespace hvl::streams::test;
  for (const char* environment : environments) {
    if (count >= 2 && std::strcmp(arguments[1], environment) == 0) {
      enter(environment);
      if (count == 3)
        start_threads();
      print_all();
      return ::testing::Test::HasFailure() ? 1 : 0;
    }
  }
  program = arguments[0];
  ::testing::InitGoogleTest(&count, arguments);
  return RUN_ALL_TESTS();
}
