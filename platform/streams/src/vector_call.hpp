// What every vector generator does around its transform: the floating-point environment, checks in one order, the join
// with the stream's engine.
#pragma once

#include <cstdint>

#include "generate.hpp"
#include "hvl/float_environment.hpp"
#include "stream.hpp"

namespace hvl::streams {

// `status` gives what the caller finds about its own parameters (0: fine). `make` gets the engine and the kernels, and
// returns the transform; one without words_per_group says that the engine does not serve the distribution. Both run in
// the default floating-point environment, so all that is computed of the parameters belongs into them.
template <class Status, class Make>
int vector_call(const Status& status, vqs_stream stream, std::int64_t n, void* r, const Make& make) noexcept {
  const auto call = [&]() -> int {
    if (stream == nullptr || r == nullptr)
      return VQS_STATUS_NULL_POINTER;
    const engine* e = engine_of(stream);
    if (e == nullptr)
      return VQS_STATUS_BAD_STREAM;
    if (n < 0)
      return VQS_STATUS_BAD_COUNT;
    if (const int found = status(); found != VQS_STATUS_OK)
      return found;
    const kernel_set* kernels = kernels_for(hvl_serv_isa());
    if (kernels == nullptr)
      return VQS_STATUS_BAD_ISA;
    const transform t = make(*e, *kernels);
    if (t.words_per_group == 0)
      return VQS_STATUS_UNSUPPORTED_PAIR;
    generate(*e, *kernels, stream, static_cast<std::uint64_t>(n), r, t);
    return VQS_STATUS_OK;
  };
  return guarded([&] { return in_default_float_environment(call); });
}

} // namespace hvl::streams
