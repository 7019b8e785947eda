#include "output.hpp"

#include <fmt/compile.h>
#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace hvl_rng {
namespace {

template <class T>
class raw_writer final : public value_writer {
 public:
  explicit raw_writer(destination& to) : to_(to) {}

  void write(const void* values, std::size_t count) override { to_.write(values, count * sizeof(T)); }

 private:
  destination& to_;
};

// One value a line, with the fewest digits that read back to the same value.
template <class T>
class text_writer final : public value_writer {
 public:
  explicit text_writer(destination& to) : to_(to) {}

  void write(const void* values, std::size_t count) override {
    constexpr std::size_t values_per_block = 4096;
    const T* value = static_cast<const T*>(values);
    for (std::size_t done = 0; done < count;) {
      text_.clear();
      for (std::size_t end = std::min(count, done + values_per_block); done != end; ++done)
        fmt::format_to(std::back_inserter(text_), FMT_COMPILE("{}\n"), value[done]);
      to_.write(text_.data(), text_.size());
    }
  }

 private:
  destination& to_;
  fmt::memory_buffer text_;
};

constexpr const char* npy_type(value_type type) {
  switch (type) {
  case value_type::float32:
    return "<f4";
  case value_type::float64:
    return "<f8";
  case value_type::int32:
    return "<i4";
  case value_type::uint32:
    return "<u4";
  default:
    return "<u8";
  }
}

// NumPy's format 1.0: magic, version, header length, a Python literal padded so that the data is aligned to
// 64 bytes.
std::string npy_header(value_type type, std::uint64_t count) {
  std::string literal =
      fmt::format("{{'descr': '{}', 'fortran_order': False, 'shape': ({},), }}", npy_type(type), count);
  constexpr std::size_t preamble = 10, alignment = 64;
  literal.append(alignment - (preamble + literal.size() + 1) % alignment, ' ');
  literal += '\n';
  std::string header("\x93NUMPY\x01\x00", 8);
  header += static_cast<char>(literal.size() & 0xff);
  header += static_cast<char>(literal.size() >> 8);
  return header + literal;
}

template <class T>
std::unique_ptr<value_writer> make_typed_writer(destination& to, output_format format) {
  if (format == output_format::text)
    return std::make_unique<text_writer<T>>(to);
  return std::make_unique<raw_writer<T>>(to);
}

} // namespace

std::unique_ptr<value_writer> make_writer(destination& to, output_format format, value_type type,
                                          std::uint64_t count) {
  if (format == output_format::npy) {
    const std::string header = npy_header(type, count);
    to.write(header.data(), header.size());
  }
  switch (type) {
  case value_type::float32:
    return make_typed_writer<float>(to, format);
  case value_type::float64:
    return make_typed_writer<double>(to, format);
  case value_type::int32:
    return make_typed_writer<std::int32_t>(to, format);
  case value_type::uint32:
    return make_typed_writer<std::uint32_t>(to, format);
  default:
    return make_typed_writer<std::uint64_t>(to, format);
  }
}

} // namespace hvl_rng
