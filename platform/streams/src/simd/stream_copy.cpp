#include <cstring>

#include "simd/isa.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {

#ifdef HVL_STREAMS_ISA_IS_SCALAR

void stream_copy(void* out, const void* in, std::size_t bytes) noexcept {
  std::memcpy(out, in, bytes);
}

#else

void stream_copy(void* out, const void* in, std::size_t bytes) noexcept {
  namespace hn = hwy::HWY_NAMESPACE;
  const hn::ScalableTag<std::uint8_t> d;
  constexpr std::size_t step = hn::MaxLanes(hn::ScalableTag<std::uint8_t>());
  auto* to = static_cast<std::uint8_t*>(out);
  const auto* from = static_cast<const std::uint8_t*>(in);
  std::size_t head =
      (vector_alignment - reinterpret_cast<std::uintptr_t>(to) % vector_alignment) % vector_alignment;
  if (head > bytes)
    head = bytes;
  std::memcpy(to, from, head);
  std::size_t i = head;
  for (; i + step <= bytes; i += step)
    hn::Stream(hn::LoadU(d, from + i), d, to + i);
  std::memcpy(to + i, from + i, bytes - i);
}

#endif

} // namespace hvl::streams::HVL_STREAMS_ISA
