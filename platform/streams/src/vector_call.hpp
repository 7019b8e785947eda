// What every vector generator does around its transform: checks in one order, then the join with the stream's
// engine.
#pragma once

#include <cstdint>

#include "generate.hpp"
#include "stream.hpp"

namespace hvl::streams {

// `parameters_status` is what the caller found about its own parameters (0: fine). `make` gets the engine and
// the kernels, and returns the transform; one without words_per_group says that the engine does not serve the
// distribution.
template <class Make>
int vector_call(int parameters_status, vqs_stream stream, std::int64_t n, void* r,
                const Make& make) noexcept {
  return guarded([&]() -> int {
    if (stream == nullptr || r == nullptr)
      return VQS_STATUS_NULL_POINTER;
    const engine* e = engine_of(stream);
    if (e == nullptr)
      return VQS_STATUS_BAD_STREAM;
    if (n < 0)
      return VQS_STATUS_BAD_COUNT;
    if (parameters_status != 0)
      return parameters_status;
    const kernel_set* kernels = kernels_for(hvl_serv_isa());
    if (kernels == nullptr)
      return VQS_STATUS_BAD_ISA;
    const transform t = make(*e, *kernels);
    if (t.words_per_group == 0)
      return VQS_STATUS_UNSUPPORTED_PAIR;
    generate(*e, *kernels, stream, static_cast<std::uint64_t>(n), r, t);
    return VQS_STATUS_OK;
  });
}

} // namespace hvl::streams
