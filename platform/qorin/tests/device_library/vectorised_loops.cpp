// Loops as a device runs them, one function per instruction expected; check_vectorised.cmake disassembles
// them.
#include <cstddef>
#include <cstdint>

#include <sycl/device_library.hpp>

#define WIDE __attribute__((target("arch=x86-64-v4,prefer-vector-width=512"), flatten, noinline))
extern "C" {

WIDE void loop_sqrt(double* out, const double* in, std::ptrdiff_t n) {
  for (std::ptrdiff_t i = 0; i < n; ++i)
    out[i] = sycl::sqrt(in[i]);
}

WIDE void loop_fma(float* out, const float* in, std::ptrdiff_t n) {
  for (std::ptrdiff_t i = 0; i < n; ++i)
    out[i] = sycl::fma(in[i], in[i], 1.0f);
}

WIDE void loop_round(double* out, const double* in, std::ptrdiff_t n) {
  for (std::ptrdiff_t i = 0; i < n; ++i)
    out[i] = sycl::floor(in[i]) + sycl::rint(in[i] * 3.0);
}

WIDE void loop_maximum(float* out, const float* in, std::ptrdiff_t n) {
  for (std::ptrdiff_t i = 0; i < n; ++i)
    out[i] = sycl::fmax(in[i], 0.5f);
}

WIDE void loop_vec(float* out, std::uint32_t seed, std::ptrdiff_t n) {
  using sycl::access::address_space;
  using sycl::access::decorated;
  for (std::ptrdiff_t i = 0; i < n; ++i) {
    const auto base = static_cast<std::uint32_t>(i) * 4u + seed;
    const sycl::uint4 bits = (sycl::uint4(base) + sycl::uint4(0, 1, 2, 3)) * 0x9E3779B9u;
    const sycl::float4 values = (bits >> 9u).convert<float>() * 0x1p-23f + 0.5f;
    values.store(static_cast<std::size_t>(i),
                 sycl::address_space_cast<address_space::global_space, decorated::no>(out));
  }
}
}
