// cuRAND's host interface on the same card. The order of its MT19937 and of its points is another one.
#include "gpu_bench.hpp"

#ifdef HAVE_CURAND
#include <cuda_runtime_api.h>
#include <curand.h>

#include <stdexcept>
#include <type_traits>

namespace bench {
namespace {

template <class T>
std::shared_ptr<T> allocate(std::size_t values) {
  void* memory = nullptr;
  if (cudaMalloc(&memory, values * sizeof(T)) != cudaSuccess)
    return nullptr;
  return {static_cast<T*>(memory), [](T* p) { cudaFree(p); }};
}

using generator = std::shared_ptr<std::remove_pointer_t<curandGenerator_t>>;

generator make_generator(curandRngType_t type) {
  curandGenerator_t made = nullptr;
  if (curandCreateGenerator(&made, type) != CURAND_STATUS_SUCCESS)
    return nullptr;
  const generator owner(made, curandDestroyGenerator);
  const curandStatus_t status = type == CURAND_RNG_QUASI_SOBOL32
                                    ? curandSetQuasiRandomGeneratorDimensions(made, dimensions)
                                    : curandSetPseudoRandomGeneratorSeed(made, seed);
  return status == CURAND_STATUS_SUCCESS ? owner : nullptr;
}

template <class T, class Generate>
void register_values(const std::string& name, curandRngType_t type, Generate generate) {
  register_device_fill<T>(name, allocate<T>,
                          [generate, type, g = generator()](T* memory, std::size_t values) mutable {
                            if (!g)
                              g = make_generator(type);
                            if (!g || generate(g.get(), memory, values) != CURAND_STATUS_SUCCESS ||
                                cudaDeviceSynchronize() != cudaSuccess)
                              throw std::runtime_error("cuRAND failed");
                          });
}

void register_engine(const std::string& engine, curandRngType_t type) {
  const std::string name = "curand/" + engine + "/";
  register_values<std::uint32_t>(name + "bits", type, curandGenerate);
  register_values<float>(name + "uniform_float", type, curandGenerateUniform);
  register_values<double>(name + "uniform_double", type, curandGenerateUniformDouble);
  register_values<float>(name + "normal_float", type, [](curandGenerator_t g, float* memory, std::size_t n) {
    return curandGenerateNormal(g, memory, n, 0.0f, 1.0f);
  });
  register_values<double>(name + "normal_double", type,
                          [](curandGenerator_t g, double* memory, std::size_t n) {
                            return curandGenerateNormalDouble(g, memory, n, 0.0, 1.0);
                          });
  register_values<float>(name + "lognormal_float", type,
                         [](curandGenerator_t g, float* memory, std::size_t n) {
                           return curandGenerateLogNormal(g, memory, n, 0.0f, 1.0f);
                         });
  register_values<std::uint32_t>(name + "poisson_10", type,
                                 [](curandGenerator_t g, std::uint32_t* memory, std::size_t n) {
                                   return curandGeneratePoisson(g, memory, n, 10.0);
                                 });
}

} // namespace

void register_peers() {
  int devices = 0;
  if (cudaGetDeviceCount(&devices) != cudaSuccess || devices == 0)
    return;
  register_engine("philox4x32x10", CURAND_RNG_PSEUDO_PHILOX4_32_10);
  register_engine("mrg32k3a", CURAND_RNG_PSEUDO_MRG32K3A);
  register_engine("mt19937", CURAND_RNG_PSEUDO_MT19937);
  register_engine("sobol", CURAND_RNG_QUASI_SOBOL32);
}

} // namespace bench
#else
namespace bench {
void register_peers() {}
} // namespace bench
#endif
