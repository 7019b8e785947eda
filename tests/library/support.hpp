#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>
#include <hvl/core.h>
#include <hvl/engines.hpp>
#include <kestro/hvl/rng.hpp>

#include "service/portability.hpp"

namespace kestro::hvl::rng::test {

/// A device that generates, by host tasks ("CPU") or by kernels ("GPU").
struct device_case {
  const char* name;
  sycl::queue queue;
};

/// One of each kind of those that are there; with the embedded runtime both are. Where a test build has kernels run on CPU
/// devices (KESTRO_TEST_KERNELS), HVL_TEST_KERNELS in the environment makes one the only device, of the second kind.
inline std::vector<device_case> devices() {
  if (std::getenv("HVL_TEST_KERNELS") != nullptr)
    return {{"GPU", sycl::queue(sycl::cpu_selector_v)}};
  std::vector<device_case> found;
#ifdef KESTRO_HVL_HAS_ZERLIN
  const bool is_cpu_needed = true, is_gpu_needed = true;
#else
  const auto is_there = [](sycl::info::device_type type) { return !sycl::device::get_devices(type).empty(); };
  const bool is_cpu_needed = is_there(sycl::info::device_type::cpu),
             is_gpu_needed = is_there(sycl::info::device_type::gpu);
#endif
  if (is_cpu_needed)
    found.push_back({"CPU", sycl::queue(sycl::cpu_selector_v)});
  if (is_gpu_needed)
    found.push_back({"GPU", sycl::queue(sycl::gpu_selector_v)});
  return found;
}

/// Calls `body` on every device, with its name traced.
template <class Body>
void on_every_device(Body body) {
  for (device_case& device : devices()) {
    SCOPED_TRACE(device.name);
    body(device.queue);
  }
}

/// Calls `body` under every instruction set of this machine.
template <class Body>
void under_every_instruction_set(Body body) {
  for (int isa = HVL_ISA_SCALAR; isa <= HVL_ISA_AVX512; ++isa) {
    if (!hvl_serv_isa_supported(isa))
      continue;
    SCOPED_TRACE(hvl_serv_isa_name(isa));
    ASSERT_EQ(hvl_serv_set_isa(isa), HVL_SERV_OK);
    body();
  }
  ASSERT_EQ(hvl_serv_set_isa(-1), HVL_SERV_OK);
}

inline constexpr std::size_t guard = 67;

template <class T>
std::vector<T> poisoned(std::size_t count) {
  std::vector<T> values(count);
  std::memset(values.data(), 0xA5, count * sizeof(T));
  return values;
}

template <class T>
bool same_bits(const T* a, const T* b, std::size_t count) {
  return std::memcmp(a, b, count * sizeof(T)) == 0;
}

/// Values that n stands for: of vectors all their elements.
template <class Distribution>
std::size_t values_in(const Distribution& distribution, std::int64_t n) {
  if constexpr (requires { distribution.dimen(); })
    return static_cast<std::size_t>(n * distribution.dimen());
  else
    return static_cast<std::size_t>(n);
}

/// `n` values into USM memory, `shift` elements behind an allocation's start; nothing around them may change.
template <class Distribution, class Engine>
auto usm_values(const Distribution& distribution, Engine& engine, sycl::queue queue, std::int64_t n,
                std::size_t shift = 0) {
  using T = typename Distribution::result_type;
  const std::size_t before = guard + shift, count = values_in(distribution, n);
  const std::vector<T> poison = poisoned<T>(before + count + guard);
  T* const memory = sycl::malloc_shared<T>(poison.size(), queue);
  std::copy(poison.begin(), poison.end(), memory);
  generate(distribution, engine, n, memory + before).wait();
  EXPECT_TRUE(same_bits(memory, poison.data(), before)) << "written before the output";
  EXPECT_TRUE(same_bits(memory + before + count, poison.data(), guard)) << "written past the output";
  std::vector<T> values(memory + before, memory + before + count);
  sycl::free(memory, queue);
  return values;
}

/// `n` values into a buffer that is longer by a guard band.
template <class Distribution, class Engine>
auto buffer_values(const Distribution& distribution, Engine& engine, std::int64_t n) {
  using T = typename Distribution::result_type;
  const std::size_t count = values_in(distribution, n);
  std::vector<T> values = poisoned<T>(count + guard);
  {
    sycl::buffer<T, 1> buffer(values.data(), sycl::range<1>(values.size()));
    generate(distribution, engine, n, buffer);
  }
  EXPECT_TRUE(same_bits(values.data() + count, poisoned<T>(guard).data(), guard))
      << "written past the output";
  values.resize(count);
  return values;
}

template <class T>
void expect_same(const std::vector<T>& actual, const std::vector<T>& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i)
    ASSERT_TRUE(same_bits(&actual[i], &expected[i], 1))
        << "value " << i << " is " << actual[i] << ", not " << expected[i];
}

template <class Engine>
constexpr const ::hvl::engines::facts& facts_of() {
#define KESTRO_HVL_ENGINE(name)                                                                              \
  if constexpr (std::is_same_v<Engine, name>)                                                                \
    return ::hvl::engines::name::about;
#include <kestro/hvl/rng/detail/engines.def>
#undef KESTRO_HVL_ENGINE
}

template <class Kept, class... Engines>
struct reproducible {
  using type = Kept;
};
template <class... Kept, class First, class... Rest>
struct reproducible<::testing::Types<Kept...>, First, Rest...>
    : std::conditional_t<facts_of<First>().is_reproducible,
                         reproducible<::testing::Types<Kept..., First>, Rest...>,
                         reproducible<::testing::Types<Kept...>, Rest...>> {};

/// All whose numbers can be had again; the suite of nondeterministic is its own.
#define KESTRO_HVL_ENGINE(name) , name
using all_engines = reproducible<::testing::Types<>
#include <kestro/hvl/rng/detail/engines.def>
                                 >::type;
#undef KESTRO_HVL_ENGINE

/// What not every engine has.
template <class Engine>
concept leapfrogs = requires(Engine engine) {
  engine.leapfrog(std::uint64_t{}, std::uint64_t{});
};
template <class Engine>
concept skips = requires(Engine engine) {
  engine.skip_ahead(std::uint64_t{});
};
template <class Engine>
concept skips_by_words = requires(Engine engine) {
  engine.skip_ahead({std::uint64_t{}, std::uint64_t{}});
};

/// Of a quasi-random engine a seed is the number of dimensions: then some, as the seed says.
template <class Engine>
Engine seeded(sycl::queue queue, std::uint32_t seed) {
  return Engine(queue, facts_of<Engine>().is_quasi_random ? 1 + seed % 17 : seed);
}

/// Names the instances of a typed suite.
struct engine_names {
  template <class Engine>
  static std::string GetName(int) {
    return facts_of<Engine>().name;
  }
};

/// The text of the exception of type `Exception` that `call` throws.
template <class Exception, class Call>
std::string refusal(Call call) {
  try {
    call();
  } catch (const Exception& e) {
    return e.what();
  } catch (const std::exception& e) {
    return std::string("another exception: ") + e.what();
  }
  return "no exception";
}

/// A host task that other work can be made to wait for until it is opened.
class gate {
 public:
  explicit gate(sycl::queue queue) {
    event_ = queue.submit([&](sycl::handler& handler) {
      portability::host_task(handler, [open = open_] {
        while (!open->load())
          std::this_thread::yield();
      });
    });
  }
  ~gate() { open(); }

  const sycl::event& event() const { return event_; }
  void open() { open_->store(true); }

 private:
  std::shared_ptr<std::atomic<bool>> open_ = std::make_shared<std::atomic<bool>>(false);
  sycl::event event_;
};

} // namespace kestro::hvl::rng::test
