#include <algorithm>
#include <vector>

#include "saved_state.hpp"
#include "whole_file.hpp"

using namespace hvl::streams;

int64_t vqsGetStreamSize_64(vqs_stream stream) {
  if (stream == nullptr)
    return VQS_STATUS_NULL_POINTER;
  const engine* e = engine_of(stream);
  if (e == nullptr)
    return VQS_STATUS_BAD_STREAM;
  return static_cast<int64_t>(saved_state_bytes(*e, stream));
}

int vqsSaveStreamM_64(vqs_stream stream, unsigned char* memory) {
  if (stream == nullptr || memory == nullptr)
    return VQS_STATUS_NULL_POINTER;
  const engine* e = engine_of(stream);
  if (e == nullptr)
    return VQS_STATUS_BAD_STREAM;
  encode_state(*e, stream, std::span(memory, saved_state_bytes(*e, stream)));
  return VQS_STATUS_OK;
}

int vqsSaveStreamF_64(vqs_stream stream, const char* file_name) {
  return guarded([&]() -> int {
    if (stream == nullptr || file_name == nullptr)
      return VQS_STATUS_NULL_POINTER;
    const engine* e = engine_of(stream);
    if (e == nullptr)
      return VQS_STATUS_BAD_STREAM;
    std::vector<std::uint8_t> state(saved_state_bytes(*e, stream));
    encode_state(*e, stream, state);
    return write_whole_file(file_name, state);
  });
}

int vqsLoadStreamM_64(vqs_stream* stream, const unsigned char* memory) {
  return guarded([&]() -> int {
    if (stream == nullptr || memory == nullptr)
      return VQS_STATUS_NULL_POINTER;
    state_header header;
    if (const int status = measure_state(memory, header); status != 0)
      return status;
    record_pointer record;
    const int status = decode_state(std::span(memory, header.state_bytes), record);
    if (status == 0)
      *stream = record.release();
    return status;
  });
}

int vqsLoadStreamF_64(vqs_stream* stream, const char* file_name) {
  return guarded([&]() -> int {
    if (stream == nullptr || file_name == nullptr)
      return VQS_STATUS_NULL_POINTER;
    std::size_t longest = 0;
    for (const engine* e : all_engines())
      longest = std::max(longest, most_saved_state_bytes(*e));
    std::vector<std::uint8_t> state;
    if (const int status = read_whole_file(file_name, longest, state); status != 0)
      return status;
    record_pointer record;
    const int status = decode_state(state, record);
    if (status == 0)
      *stream = record.release();
    return status;
  });
}
