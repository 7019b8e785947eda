#include "parameters.hpp"

namespace hvl::streams {
namespace {

bool is_method(std::int64_t method) {
  return method == VQS_METHOD_UNIFORM_STANDARD || method == VQS_METHOD_UNIFORM_ACCURATE;
}

// T is the type of computation.
template <class T, class Value>
int uniform(std::int64_t method, uniform_result result, vqs_stream stream, std::int64_t n, Value* r, Value a,
            Value b) noexcept {
  uniform_parameters<T, Value> p{};
  direct_values direct{sizeof(T) == 4 ? value_form::real32 : value_form::real64, {}, {}};
  const bool plain = result == uniform_result::real32 || result == uniform_result::real64;
  const auto status = [&] { return parameters_status(is_method(method), uniform_fault(a, b)); };
  return vector_call(status, stream, n, r, [&](const engine& e, const kernel_set& kernels) {
    p.affine = uniform_coefficients(e.scale, static_cast<T>(a), static_cast<T>(b));
    p.range = values_on(a, b); // b - 1, which only the parameters that are taken have
    if constexpr (sizeof(T) == 4)
      direct.single = p.affine;
    else
      direct.wide = p.affine;
    return transform{kernels.uniform(e.kind, result), &p, 1, 1, sizeof(Value), plain ? &direct : nullptr};
  });
}

template <class T>
int real_uniform(std::int64_t method, uniform_result standard, uniform_result accurate, vqs_stream stream,
                 std::int64_t n, T* r, T a, T b) noexcept {
  return uniform<T>(method, method == VQS_METHOD_UNIFORM_ACCURATE ? accurate : standard, stream, n, r, a, b);
}

template <class Integer>
int integer_uniform(std::int64_t method, uniform_result standard, uniform_result accurate, vqs_stream stream,
                    std::int64_t n, Integer* r, Integer a, Integer b) noexcept {
  return method == VQS_METHOD_UNIFORM_ACCURATE ? uniform<double>(method, accurate, stream, n, r, a, b)
                                               : uniform<float>(method, standard, stream, n, r, a, b);
}

auto bits_status(std::int64_t method) {
  return [=] { return parameters_status(method == 0, nullptr); };
}

transform bits32(const engine& e, const kernel_set& kernels) {
  static constexpr direct_values words = {value_form::words, {}, {}};
  const bool wide = e.kind == word_kind::unsigned64;
  return {wide ? kernels.uniform(e.kind, uniform_result::high32) : nullptr, nullptr, 1, 1, 4, &words};
}

constexpr transform unsupported{};

} // namespace
} // namespace hvl::streams

using namespace hvl::streams;

int vsRngUniform_64(int64_t method, vqs_stream stream, int64_t n, float* r, float a, float b) {
  return real_uniform(method, uniform_result::real32, uniform_result::real32_clamped, stream, n, r, a, b);
}

int vdRngUniform_64(int64_t method, vqs_stream stream, int64_t n, double* r, double a, double b) {
  return real_uniform(method, uniform_result::real64, uniform_result::real64_clamped, stream, n, r, a, b);
}

int viRngUniform_64(int64_t method, vqs_stream stream, int64_t n, int32_t* r, int32_t a, int32_t b) {
  return integer_uniform(method, uniform_result::int32_via_float, uniform_result::int32_via_double, stream, n,
                         r, a, b);
}

int viRngUniformU_64(int64_t method, vqs_stream stream, int64_t n, uint32_t* r, uint32_t a, uint32_t b) {
  return integer_uniform(method, uniform_result::uint32_via_float, uniform_result::uint32_via_double, stream,
                         n, r, a, b);
}

int viRngUniformBits_64(int64_t method, vqs_stream stream, int64_t n, uint32_t* r) {
  return vector_call(bits_status(method), stream, n, r, bits32);
}

int viRngUniformBits32_64(int64_t method, vqs_stream stream, int64_t n, uint32_t* r) {
  return vector_call(bits_status(method), stream, n, r, [](const engine& e, const kernel_set& kernels) {
    return e.has_uniform_bits ? bits32(e, kernels) : unsupported;
  });
}

int viRngUniformBits64_64(int64_t method, vqs_stream stream, int64_t n, uint64_t* r) {
  const engine* e = stream != nullptr ? engine_of(stream) : nullptr;
  if (e != nullptr && e->has_uniform_bits && e->kind != word_kind::unsigned64) {
    // little-endian: the words side by side are the values
    if (n > INT64_MAX / 2)
      return VQS_STATUS_BAD_COUNT;
    return viRngUniformBits_64(method, stream, n < 0 ? n : 2 * n, reinterpret_cast<uint32_t*>(r));
  }
  return vector_call(bits_status(method), stream, n, r, [](const engine& en, const kernel_set& kernels) {
    return en.has_uniform_bits
               ? transform{kernels.uniform(en.kind, uniform_result::packed64), nullptr, 2, 1, 8}
               : unsupported;
  });
}
