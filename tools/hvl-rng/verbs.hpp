// The program's verbs. Each throws `failure`.
#pragma once

#include "catalogue.hpp"
#include "output.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace hvl_rng {

struct generate_options {
  std::string engine = "philox4x32x10";
  std::vector<std::uint64_t> seed = {1};
  std::uint64_t skip = 0;
  std::string distribution = "uniform";
  std::string type;
  std::string method;
  parameter_values parameters;
  std::uint64_t count = 0;
  bool forever = false; // until the reader closes, instead of `count`
  std::string device = "cpu";
  output_format format = output_format::text;
  std::string output;
};

void generate_numbers(const generate_options& options);

// "cpu", "gpu", or the number of a device as `list_devices` prints it.
sycl::device find_device(const std::string& name);
void list_devices();

void list_catalogue();

void summarise_trace(const std::string& file);

} // namespace hvl_rng
