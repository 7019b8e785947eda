#include "stream.hpp"

#include <cstring>

#include "hvl/streams_detail.h"

namespace hvl::streams {
namespace {

record_pointer allocate(std::size_t bytes) {
  record_pointer record(hvl_serv_malloc(bytes, 64));
  if (!record)
    throw std::bad_alloc();
  return record;
}

// Hands over a new stream of an engine that `seed(engine, record)` seeds.
template <class Seed>
int new_stream(vqs_stream* stream, std::int32_t id, const Seed& seed) {
  const engine* e = find_engine(id);
  if (e == nullptr)
    return VQS_STATUS_UNKNOWN_ENGINE;
  record_pointer record = new_record(*e, id);
  const int status = seed(*e, record);
  if (status == VQS_STATUS_OK)
    *stream = record.release();
  return status;
}

// By as many words as `words` spell, where the engine `can`.
template <class Can>
int advance(vqs_stream stream, std::int64_t count, const std::uint64_t* words, const Can& can) {
  return guarded([&]() -> int {
    if (stream == nullptr || (words == nullptr && count != 0))
      return VQS_STATUS_NULL_POINTER;
    const engine* e = engine_of(stream);
    if (e == nullptr)
      return VQS_STATUS_BAD_STREAM;
    if (count < 0)
      return VQS_STATUS_BAD_COUNT;
    if (!can(*e))
      return VQS_STATUS_SKIP_UNSUPPORTED;
    e->advance(stream, std::span(words, static_cast<std::size_t>(count)));
    return VQS_STATUS_OK;
  });
}

} // namespace

void record_delete::operator()(void* record) const noexcept {
  hvl_serv_free(record);
}

record_pointer allocate_record(vqs_record_header header, std::size_t bytes) {
  record_pointer record = allocate(bytes);
  std::memset(record.get(), 0, bytes);
  header.record_bytes = static_cast<std::uint32_t>(bytes);
  std::memcpy(record.get(), &header, sizeof header);
  return record;
}

record_pointer new_record(const engine& e, std::int32_t id) {
  return allocate_record({live_stream_magic, id, 0, 0}, e.field_bytes);
}

} // namespace hvl::streams

using namespace hvl::streams;

int32_t vqsEngineOfStream(vqs_stream stream) {
  if (stream == nullptr)
    return VQS_STATUS_NULL_POINTER;
  const engine* e = engine_of(stream);
  if (e == nullptr)
    return VQS_STATUS_BAD_STREAM;
  return static_cast<const vqs_record_header*>(stream)->engine;
}

int vqsNewStream_64(vqs_stream* stream, int32_t engine_id, uint64_t seed) {
  return guarded([&]() -> int {
    if (stream == nullptr)
      return VQS_STATUS_NULL_POINTER;
    return new_stream(stream, engine_id,
                      [seed](const engine& e, record_pointer& record) { return e.seed(record, seed); });
  });
}

int vqsNewStreamEx_64(vqs_stream* stream, int32_t engine_id, int64_t count, const uint32_t* words) {
  return guarded([&]() -> int {
    if (stream == nullptr || (words == nullptr && count != 0))
      return VQS_STATUS_NULL_POINTER;
    return new_stream(stream, engine_id, [=](const engine& e, record_pointer& record) -> int {
      if (count < 0)
        return VQS_STATUS_BAD_COUNT;
      return e.seed_words(record, std::span(words, static_cast<std::size_t>(count)));
    });
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
    record_pointer record = allocate(record_bytes(in));
    std::memcpy(record.get(), in, record_bytes(in));
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
  return advance(stream, count, words,
                 [](const engine& e) { return e.skip != hvl::engines::skip_form::none; });
}

int vqsAdvanceStream_64(vqs_stream stream, int64_t count, const uint64_t* words) {
  return advance(stream, count, words, [](const engine& e) { return e.is_reproducible; });
}

int vqsLeapfrogStream_64(vqs_stream stream, uint64_t idx, uint64_t stride) {
  if (stream == nullptr)
    return VQS_STATUS_NULL_POINTER;
  const engine* e = engine_of(stream);
  if (e == nullptr)
    return VQS_STATUS_BAD_STREAM;
  if (!e->has_leapfrog)
    return VQS_STATUS_LEAPFROG_UNSUPPORTED;
  if (stride == 0)
    return VQS_STATUS_BAD_PARAMETER;
  e->leapfrog(stream, idx, stride);
  return VQS_STATUS_OK;
}
