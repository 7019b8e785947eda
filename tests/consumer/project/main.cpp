// Uses the installed library as a stranger would: C++17, one link target, exceptions across the boundary.
#include <kestro/hvl/rng.hpp>

#include <cstdint>
#include <cstdio>

namespace rng = kestro::hvl::rng;

namespace {

// The first block of philox4x32-10 for key 0 and counter 0, as J. K. Salmon et al. publish it.
constexpr std::uint32_t published[4] = {0x6627e8d5u, 0xe169c58du, 0xbc57ac4cu, 0x9b00dbd8u};

bool gives_published_words() {
  sycl::queue queue;
  auto* words = sycl::malloc_shared<std::uint32_t>(4, queue);
  rng::philox4x32x10 engine(queue, 0);
  rng::generate(rng::uniform_bits<std::uint32_t>(), engine, 4, words).wait();
  bool same = true;
  for (int i = 0; i < 4; ++i)
    same = same && words[i] == published[i];
  sycl::free(words, queue);
  return same;
}

bool throws_across_the_boundary() {
  sycl::queue queue;
  rng::philox4x32x10 engine(queue, 0);
  float value = -1.0f;
  try {
    rng::generate(rng::uniform<float>(0.0f, 1.0f), engine, -1, &value);
  } catch (const kestro::hvl::invalid_argument&) {
    return value == -1.0f;
  }
  return false;
}

} // namespace

int main() {
  const bool words = gives_published_words();
  const bool exceptions = throws_across_the_boundary();
  std::printf("published words: %d, exceptions: %d\n", words, exceptions);
  return words && exceptions ? 0 : 1;
}
