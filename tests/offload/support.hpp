#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include <hvl/streams.h>

#include "native_objects.h"

namespace offload_test {

enum class path { opencl, zerlin };

/// Native objects and an interop object around them. Waits for completions before it goes.
class target {
 public:
  explicit target(path which) {
    EXPECT_EQ(which == path::opencl ? make_opencl_objects(&objects_, 1) : make_zerlin_objects(&objects_, 1),
              0);
    interop_ = make_interop(&objects_);
  }
  target(const target&) = delete;
  ~target() {
    EXPECT_EQ(hvl_omp_interop_destroy(&interop_), HVL_TGT_OK);
    release_objects(&objects_);
  }

  native_objects& objects() { return objects_; }
  hvl_omp_interop interop() const { return interop_; }
  std::int64_t completions() const { return hvl_omp_interop_completions(interop_); }
  void wait(std::int64_t completions) const {
    ASSERT_EQ(hvl_omp_interop_wait(interop_, completions, 120000), HVL_TGT_OK);
  }

 private:
  native_objects objects_;
  hvl_omp_interop interop_;
};

class stream {
 public:
  explicit stream(std::int32_t engine = VQS_ENGINE_PHILOX4X32X10, std::uint64_t seed = 1) {
    EXPECT_EQ(vqsNewStream_64(&handle_, engine, seed), 0);
  }
  stream(const stream&) = delete;
  ~stream() { EXPECT_EQ(vqsDeleteStream_64(&handle_), 0); }
  operator vqs_stream() const { return handle_; }
  vqs_stream* address() { return &handle_; }

  std::vector<unsigned char> state() const {
    std::vector<unsigned char> bytes(static_cast<std::size_t>(vqsGetStreamSize_64(handle_)));
    EXPECT_EQ(vqsSaveStreamM_64(handle_, bytes.data()), 0);
    return bytes;
  }

 private:
  vqs_stream handle_ = nullptr;
};

/// What `call` writes to standard error, and its status.
struct outcome {
  int status;
  std::string error;
};

template <class Call>
outcome observe(const Call& call) {
  testing::internal::CaptureStderr();
  const int status = call();
  return {status, testing::internal::GetCapturedStderr()};
}

} // namespace offload_test
