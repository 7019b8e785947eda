#pragma once

#include <cstdint>
#include <memory>

#include <hvl/streams.h>
#include <kestro/hvl/exceptions.hpp>

namespace kestro::hvl::rng::detail {

/// Turns a status of the stream library into `computation_error`.
inline void check_stream_status(int status, const char* function, const char* info) {
  if (status != VQS_STATUS_OK)
    throw computation_error("rng", function, info);
}

/// Shared owner of a stream of the stream library. Work in flight holds a copy, so the stream outlives it.
class stream_handle {
 public:
  stream_handle() = default;

  /// Takes over a stream.
  explicit stream_handle(vqs_stream stream) : stream_(stream, [](void* s) { vqsDeleteStream_64(&s); }) {}

  vqs_stream get() const { return stream_.get(); }

  /// The record behind the stream, as the structure of its engine.
  template <class Record>
  Record& record() const {
    return *static_cast<Record*>(stream_.get());
  }

 private:
  std::shared_ptr<void> stream_;
};

inline stream_handle new_stream(std::int32_t engine, std::uint64_t seed) {
  vqs_stream stream = nullptr;
  check_stream_status(vqsNewStream_64(&stream, engine, seed), "engine initialization",
                      "initialization failure");
  return stream_handle(stream);
}

inline stream_handle new_stream(std::int32_t engine, std::int64_t count, const std::uint32_t* words) {
  vqs_stream stream = nullptr;
  check_stream_status(vqsNewStreamEx_64(&stream, engine, count, words), "engine initialization",
                      "initialization failure");
  return stream_handle(stream);
}

inline stream_handle copy_stream(const stream_handle& other) {
  vqs_stream stream = nullptr;
  check_stream_status(vqsCopyStream_64(&stream, other.get()), "engine initialization",
                      "initialization failure");
  return stream_handle(stream);
}

} // namespace kestro::hvl::rng::detail
