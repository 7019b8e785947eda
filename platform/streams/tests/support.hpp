// What the suites share: streams that clean up after themselves, every engine, every way of running.
#pragma once

#include <gtest/gtest.h>
#include <oneapi/tbb/global_control.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <ostream>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "hvl/core.h"
#include "hvl/engines.hpp"
#include "hvl/streams.h"
#include "hvl/streams_detail.h"

namespace hvl::streams::test {

struct engine_entry {
  const char* name;
  std::int32_t id;
  hvl::engines::facts about;
};
inline void PrintTo(const engine_entry& e, std::ostream* out) {
  *out << e.name;
}

inline constexpr engine_entry engines[] = {
#define HVL_ENGINE(name) {#name, hvl::engines::name::about.identifier, hvl::engines::name::about},
#include "hvl/engines.def"
#undef HVL_ENGINE
};

inline bool offers_skips(vqs_stream stream) {
  for (const engine_entry& e : engines)
    if (e.about.has_member(vqsEngineOfStream(stream)))
      return e.about.skip != hvl::engines::skip_form::none;
  return false;
}

// Of a quasi-random engine a seed is the number of dimensions.
inline std::uint64_t sample_seed(std::int32_t engine) {
  for (const engine_entry& e : engines)
    if (e.about.has_member(engine) && e.about.is_quasi_random)
      return 11;
  return 12345;
}

class owned_stream {
 public:
  explicit owned_stream(std::int32_t engine) : owned_stream(engine, sample_seed(engine)) {}
  owned_stream(std::int32_t engine, std::uint64_t seed) {
    EXPECT_EQ(vqsNewStream_64(&handle_, engine, seed), VQS_STATUS_OK);
  }
  owned_stream(std::int32_t engine, std::span<const std::uint32_t> words) {
    EXPECT_EQ(vqsNewStreamEx_64(&handle_, engine, static_cast<std::int64_t>(words.size()), words.data()),
              VQS_STATUS_OK);
  }
  owned_stream(const owned_stream& other) {
    EXPECT_EQ(vqsCopyStream_64(&handle_, other.handle_), VQS_STATUS_OK);
  }
  owned_stream(owned_stream&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  owned_stream& operator=(owned_stream other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~owned_stream() {
    if (handle_ != nullptr) {
      EXPECT_EQ(vqsDeleteStream_64(&handle_), VQS_STATUS_OK);
    }
  }

  static owned_stream adopt(vqs_stream handle) { return owned_stream(adopted{}, handle); }
  operator vqs_stream() const { return handle_; }

  // By the inner way where callers have none.
  owned_stream& skip(std::uint64_t n) { return skip_words({n}); }
  owned_stream& skip_words(std::vector<std::uint64_t> words) {
    const auto count = static_cast<std::int64_t>(words.size());
    EXPECT_EQ(offers_skips(handle_) ? vqsSkipAheadStreamEx_64(handle_, count, words.data())
                                    : vqsAdvanceStream_64(handle_, count, words.data()),
              VQS_STATUS_OK);
    return *this;
  }
  std::vector<std::uint32_t> bits(std::size_t n) {
    std::vector<std::uint32_t> words(n + 1, 0xDEADBEEF); // never a null pointer
    EXPECT_EQ(viRngUniformBits_64(0, handle_, static_cast<std::int64_t>(n), words.data()), VQS_STATUS_OK);
    words.pop_back();
    return words;
  }
  std::vector<double> doubles(std::size_t n) {
    std::vector<double> values(n, -1e300);
    EXPECT_EQ(vdRngUniform_64(0, handle_, static_cast<std::int64_t>(n), values.data(), 0.0, 1.0),
              VQS_STATUS_OK);
    return values;
  }
  std::vector<unsigned char> saved() const {
    const std::int64_t bytes = vqsGetStreamSize_64(handle_);
    EXPECT_GT(bytes, 0);
    std::vector<unsigned char> state(static_cast<std::size_t>(bytes), 0xEE);
    EXPECT_EQ(vqsSaveStreamM_64(handle_, state.data()), VQS_STATUS_OK);
    return state;
  }

 private:
  struct adopted {};
  owned_stream(adopted, vqs_stream handle) : handle_(handle) {}
  vqs_stream handle_ = nullptr;
};

inline owned_stream copy_of(vqs_stream stream) {
  vqs_stream copy = nullptr;
  EXPECT_EQ(vqsCopyStream_64(&copy, stream), VQS_STATUS_OK);
  return owned_stream::adopt(copy);
}

inline const hvl::engines::facts& about_engine_of(vqs_stream stream) {
  const std::int32_t id = vqsEngineOfStream(stream);
  return std::find_if(std::begin(engines), std::end(engines),
                      [=](const engine_entry& e) { return e.about.has_member(id); })
      ->about;
}

// An instruction set and a number of threads, in force while this lives.
class run_mode {
 public:
  run_mode(int isa, std::size_t threads) : threads_(tbb::global_control::max_allowed_parallelism, threads) {
    EXPECT_EQ(hvl_serv_set_isa(isa), HVL_SERV_OK);
  }
  run_mode(const run_mode&) = delete;
  run_mode& operator=(const run_mode&) = delete;
  ~run_mode() { hvl_serv_set_isa(-1); }

 private:
  tbb::global_control threads_;
};

// Runs `body` under every instruction set that this machine has, on 1 and on 2 threads.
template <class Body>
void for_every_mode(const Body& body) {
  for (int isa = HVL_ISA_SCALAR; isa <= HVL_ISA_AVX512; ++isa) {
    if (!hvl_serv_isa_supported(isa))
      continue;
    for (const std::size_t threads : {1u, 2u}) {
      SCOPED_TRACE(std::string(hvl_serv_isa_name(isa)) + ", threads: " + std::to_string(threads));
      const run_mode mode(isa, threads);
      body();
    }
  }
}

template <class T>
void expect_equal(const std::vector<T>& actual, const std::vector<T>& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i)
    ASSERT_EQ(actual[i], expected[i]) << "at " << i << " of " << actual.size();
}

class each_engine : public ::testing::TestWithParam<engine_entry> {
 protected:
  std::int32_t id() const { return GetParam().id; }
};

#define HVL_STREAMS_FOR_EACH_ENGINE(suite)                                                                   \
  INSTANTIATE_TEST_SUITE_P(engines, suite, ::testing::ValuesIn(engines),                                     \
                           [](const auto& entry) { return std::string(entry.param.name); })

} // namespace hvl::streams::test
