// Writing values: raw, as text, or as a NumPy array.
#pragma once

#include "catalogue.hpp"
#include "destination.hpp"

#include <cstdint>
#include <memory>

namespace hvl_rng {

enum class output_format { raw, text, npy };

class value_writer {
 public:
  virtual ~value_writer() = default;

  virtual void write(const void* values, std::size_t count) = 0;
};

// `count` values will be written; only npy needs the number beforehand.
std::unique_ptr<value_writer> make_writer(destination& to, output_format format, value_type type,
                                          std::uint64_t count);

} // namespace hvl_rng
