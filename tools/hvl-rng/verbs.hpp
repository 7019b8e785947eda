// The program's verbs. Each throws `failure`.
#pragma once

#include "catalogue.hpp"
#include "output.hpp"

#include <cstdint>
#include <string>

namespace hvl_rng {

// Which numbers, and where they are made.
struct source_options {
  std::string engine = "philox4x32x10";
  engine_start start;
  std::string distribution = "uniform";
  std::string type;
  std::string method;
  parameter_values parameters;
  std::uint64_t count = 0;
  std::string device = "cpu";
  std::string output; // empty: standard output
};

struct generate_options : source_options {
  bool forever = false; // until the reader closes, instead of `count`
  output_format format = output_format::text;
};

struct plot_options : source_options {
  bool as_points = false;
};

struct bench_options : source_options {
  std::uint64_t seconds = 5; // for all devices and sizes together
};

void generate_numbers(const generate_options& options);

// A histogram of the numbers under the exact density, or each pair of them as a point: SVG or PNG as the output's suffix
// says, otherwise text.
void plot_numbers(const plot_options& options);

// How fast the numbers are made, beside what a fill of the same memory takes: on the device, or every one for "all", in
// calls of `count` or, for 0, of several sizes. A table with bars, or a picture where the output has its suffix.
void measure_speed(const bench_options& options);

// "cpu", "gpu", or the number of a device as `list_devices` prints it.
sycl::device find_device(const std::string& name);
sycl::queue make_queue(const sycl::device& device);
const char* kind_of(const sycl::device& device);
void list_devices();

void list_catalogue();

void summarise_trace(const std::string& file);

} // namespace hvl_rng
