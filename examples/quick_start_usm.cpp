// A million uniform numbers in USM memory, and their mean.
#include <kestro/hvl/rng.hpp>

#include <cstdio>
#include <exception>
#include <numeric>

namespace rng = kestro::hvl::rng;

int main() {
  try {
    const std::int64_t count = 1000000;
    sycl::queue queue; // the default device; sycl::queue(sycl::gpu_selector_v) for a GPU
    float* numbers = sycl::malloc_shared<float>(count, queue);

    rng::philox4x32x10 engine(queue, 42);
    rng::uniform<float> distribution(0.0f, 1.0f);
    sycl::event done = rng::generate(distribution, engine, count, numbers);

    done.wait();
    const double sum = std::accumulate(numbers, numbers + count, 0.0);
    std::printf("first %.7f, mean %.4f\n", double(numbers[0]), sum / double(count));
    sycl::free(numbers, queue);
  } catch (const std::exception& failed) {
    std::fprintf(stderr, "%s\n", failed.what());
    return 1;
  }
}
