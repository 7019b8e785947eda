#include <cstring>

#include "simd/isa.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {

#ifdef HVL_STREAMS_ISA_IS_SCALAR

void stream_lines(void* out, const void* in, std::size_t bytes) noexcept {
  std::memcpy(out, in, bytes);
}

#else

void stream_lines(void* out, const void* in, std::size_t bytes) noexcept {
  namespace hn = hwy::HWY_NAMESPACE;
  const hn::ScalableTag<std::uint8_t> d;
  auto* const to = static_cast<std::uint8_t*>(out);
  const auto* const from = static_cast<const std::uint8_t*>(in);
  for (std::size_t i = 0; i < bytes; i += hn::MaxLanes(d))
    hn::Stream(hn::LoadU(d, from + i), d, to + i);
}

#endif

} // namespace hvl::streams::HVL_STREAMS_ISA
