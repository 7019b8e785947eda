#include "stream.hpp"

#include <cstring>

namespace hvl::streams {

record_pointer new_record(const engine& e) {
  record_pointer record(hvl_serv_malloc(e.record_bytes, 64));
  if (!record)
    throw std::bad_alloc();
  std::memset(record.get(), 0, e.record_bytes);
  const vqs_record_header header{live_stream_magic, e.id, e.record_bytes, 0};
  std::memcpy(record.get(), &header, sizeof header);
  return record;
}

} // namespace hvl::streams

using namespace hvl::streams;

int32_t vqsEngineOfStream(vqs_stream stream) {
  if (stream == nullptr)
    return VQS_STATUS_NULL_POINTER;
  const engine* e = engine_of(stream);
  if (e == nullptr)
    return VQS_STATUS_BAD_STREAM;
  return e->id;
}

int vqsNewStream_64(vqs_stream* stream, int32_t engine_id, uint64_t seed) {
  return guarded([&]() -> int {
    if (stream == nullptr)
      return VQS_STATUS_NULL_POINTER;
    const engine* e = find_engine(engine_id);
    if (e == nullptr)
      return VQS_STATUS_UNKNOWN_ENGINE;
    record_pointer record = new_record(*e);
    e->seed(record.get(), seed);
    *stream = record.release();
    return VQS_STATUS_OK;
  });
}

int vqsNewStreamEx_64(vqs_stream* stream, int32_t engine_id, int64_t count, const uint32_t* words) {
  return guarded([&]() -> int {
    if (stream == nullptr || (words == nullptr && count != 0))
      return VQS_STATUS_NULL_POINTER;
    const engine* e = find_engine(engine_id);
    if (e == nullptr)
      return VQS_STATUS_UNKNOWN_ENGINE;
    if (count < 0)
      return VQS_STATUS_BAD_COUNT;
    record_pointer record = new_record(*e);
    e->seed_words(record.get(), std::span(words, static_cast<std::size_t>(count)));
    *stream = record.release();
    return VQS_STATUS_OK;
  });
}

int vqsCopyStream_64(vqs_stream* out, vqs_stream in) {
  return guarded([&]() -> int {
    if (out == nullptr || in == nullptr)
      return VQS_STATUS_NULL_POINTER;
    const engine* e = engine_of(in);
    if (e == nullptr)
      return VQS_STATUS_BAD_STREAM;
    if (!e->in_range(in))
      return VQS_STATUS_STATE_RANGE;
    record_pointer record = new_record(*e);
    std::memcpy(record.get(), in, e->record_bytes);
    *out = record.release();
    return VQS_STATUS_OK;
  });
}

int vqsDeleteStream_64(vqs_stream* stream) {
  if (stream == nullptr || *stream == nullptr)
    return VQS_STATUS_NULL_POINTER;
  if (engine_of(*stream) == nullptr)
    return VQS_STATUS_BAD_STREAM;
  // volatile: the store must reach the memory although it is freed next
  static_cast<volatile vqs_record_header*>(*stream)->magic = 0;
  record_delete{}(*stream);
  *stream = nullptr;
  return VQS_STATUS_OK;
}

int vqsSkipAheadStream_64(vqs_stream stream, uint64_t n) {
  return vqsSkipAheadStreamEx_64(stream, 1, &n);
}

int vqsSkipAheadStreamEx_64(vqs_stream stream, int64_t count, const uint64_t* words) {
  return guarded([&]() -> int {
    if (stream == nullptr || (words == nullptr && count != 0))
      return VQS_STATUS_NULL_POINTER;
    const engine* e = engine_of(stream);
    if (e == nullptr)
      return VQS_STATUS_BAD_STREAM;
    if (count < 0)
      return VQS_STATUS_BAD_COUNT;
    if (e->skip == nullptr)
      return VQS_STATUS_SKIP_UNSUPPORTED;
    e->skip(stream, std::span(words, static_cast<std::size_t>(count)));
    return VQS_STATUS_OK;
  });
}

int vqsLeapfrogStream_64(vqs_stream stream, uint64_t idx, uint64_t stride) {
  if (stream == nullptr)
    return VQS_STATUS_NULL_POINTER;
  const engine* e = engine_of(stream);
  if (e == nullptr)
    return VQS_STATUS_BAD_STREAM;
  if (e->leapfrog == nullptr)
    return VQS_STATUS_LEAPFROG_UNSUPPORTED;
  if (stride == 0)
    return VQS_STATUS_BAD_PARAMETER;
  e->leapfrog(stream, idx, stride);
  return VQS_STATUS_OK;
}
