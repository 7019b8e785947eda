// The uniform family: words of each kind to real and integer values.
#include "simd/uniform.hpp"

namespace hvl::streams::HVL_STREAMS_ISA {
namespace {

template <word_kind Kind, class T, bool Clamped>
void real_values(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  const auto& p = *static_cast<const uniform_parameters<T>*>(parameters);
  const word_loader<Kind, T> load(words, p.affine);
  for_each_vector<T>(static_cast<T*>(values), count, [&](std::size_t i) {
    const auto v = load(i);
    if constexpr (Clamped)
      return clamp(v, p.range.low, p.range.high);
    else
      return v;
  });
}

template <word_kind Kind, class T, class Integer>
void integer_values(const void* parameters, const void* words, void* values, std::size_t count) noexcept {
  const auto& p = *static_cast<const uniform_parameters<T, Integer>*>(parameters);
  const word_loader<Kind, T> load(words, p.affine);
  for_each_vector<T>(static_cast<Integer*>(values), count,
                     [&](std::size_t i) { return integer_vector<Integer>(load(i), p.range); });
}

void high_words(const void*, const void* words, void* values, std::size_t count) noexcept {
  const auto* x = static_cast<const std::uint64_t*>(words);
  auto* out = static_cast<std::uint32_t*>(values);
  for (std::size_t i = 0; i < count; ++i)
    out[i] = static_cast<std::uint32_t>(x[i] >> 27);
}

void packed_words(const void*, const void* words, void* values, std::size_t count) noexcept {
  const auto* x = static_cast<const std::uint64_t*>(words);
  auto* out = static_cast<std::uint64_t*>(values);
  for (std::size_t i = 0; i < count; ++i)
    out[i] = (x[2 * i] >> 27 & 0xFFFFFFFF) | x[2 * i + 1] >> 27 << 32;
}

template <word_kind Kind>
transform_function transform_for(uniform_result result) noexcept {
  switch (result) {
  case uniform_result::real32:
    return real_values<Kind, float, false>;
  case uniform_result::real64:
    return real_values<Kind, double, false>;
  case uniform_result::real32_clamped:
    return real_values<Kind, float, true>;
  case uniform_result::real64_clamped:
    return real_values<Kind, double, true>;
  case uniform_result::int32_via_float:
    return integer_values<Kind, float, std::int32_t>;
  case uniform_result::int32_via_double:
    return integer_values<Kind, double, std::int32_t>;
  case uniform_result::uint32_via_float:
    return integer_values<Kind, float, std::uint32_t>;
  case uniform_result::uint32_via_double:
    return integer_values<Kind, double, std::uint32_t>;
  case uniform_result::high32:
    return high_words;
  case uniform_result::packed64:
    return packed_words;
  }
  return nullptr;
}

} // namespace

transform_function uniform_transform(word_kind kind, uniform_result result) noexcept {
  return for_kind(kind, [=]<word_kind Kind>() { return transform_for<Kind>(result); });
}

} // namespace hvl::streams::HVL_STREAMS_ISA
