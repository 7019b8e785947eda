// A million uniform numbers in a buffer, and their mean.
#include <kestro/hvl/rng.hpp>

#include <cstdio>
#include <exception>

namespace rng = kestro::hvl::rng;

int main() {
  try {
    const std::int64_t count = 1000000;
    sycl::queue queue; // the default device; sycl::queue(sycl::gpu_selector_v) for a GPU
    sycl::buffer<float, 1> numbers{sycl::range<1>(count)};

    rng::philox4x32x10 engine(queue, 42);
    rng::generate(rng::uniform<float>(0.0f, 1.0f), engine, count, numbers);

    sycl::host_accessor values(numbers, sycl::read_only); // waits for the numbers
    double sum = 0.0;
    for (std::int64_t i = 0; i < count; ++i)
      sum += double(values[i]);
    std::printf("first %.7f, mean %.4f\n", double(values[0]), sum / double(count));
  } catch (const std::exception& failed) {
    std::fprintf(stderr, "%s\n", failed.what());
    return 1;
  }
}
