// From handle to engine and record, and the guard that every exported function runs in.
#pragma once

#include <cstdint>
#include <new>

#include "engine.hpp"
#include "hvl/core.h"

namespace hvl::streams {

inline constexpr std::uint32_t live_stream_magic = 0x4D525453; // "STRM"

// Null for a handle that is not a live stream of a known engine.
inline const engine* engine_of(vqs_stream stream) noexcept {
  const auto* header = static_cast<const vqs_record_header*>(stream);
  return header != nullptr && header->magic == live_stream_magic ? find_engine(header->engine) : nullptr;
}

// A zeroed record of an engine's member, up to the end of its fields; throws std::bad_alloc.
record_pointer new_record(const engine& e, std::int32_t id);

// Runs `body`, which returns a status; what it throws becomes one.
template <class Body>
int guarded(Body&& body) noexcept {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return VQS_STATUS_NO_MEMORY;
  } catch (...) {
    return VQS_STATUS_INTERNAL;
  }
}

} // namespace hvl::streams
