// The short names of the common vec and marray types: sycl::float4 is vec<float, 4>, sycl::mfloat4 is
// marray<float, 4>.
#pragma once

#include <cstdint>

#include <sycl/marray.hpp>
#include <sycl/vec.hpp>

namespace sycl {

#define QORIN_ALIASES_OF_LENGTH(name, type, n)                                                               \
  using name##n = vec<type, n>;                                                                              \
  using m##name##n = marray<type, n>;
#define QORIN_ALIASES(name, type)                                                                            \
  QORIN_ALIASES_OF_LENGTH(name, type, 2)                                                                     \
  QORIN_ALIASES_OF_LENGTH(name, type, 3)                                                                     \
  QORIN_ALIASES_OF_LENGTH(name, type, 4)                                                                     \
  QORIN_ALIASES_OF_LENGTH(name, type, 8)                                                                     \
  QORIN_ALIASES_OF_LENGTH(name, type, 16)

QORIN_ALIASES(char, std::int8_t)
QORIN_ALIASES(uchar, std::uint8_t)
QORIN_ALIASES(short, std::int16_t)
QORIN_ALIASES(ushort, std::uint16_t)
QORIN_ALIASES(int, std::int32_t)
QORIN_ALIASES(uint, std::uint32_t)
QORIN_ALIASES(long, std::int64_t)
QORIN_ALIASES(ulong, std::uint64_t)
QORIN_ALIASES(half, half)
QORIN_ALIASES(float, float)
QORIN_ALIASES(double, double)
QORIN_ALIASES(bool, bool)

#undef QORIN_ALIASES
#undef QORIN_ALIASES_OF_LENGTH

} // namespace sycl
