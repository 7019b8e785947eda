#include "exact_law.hpp"
#include "failure.hpp"
#include "gnuplot.hpp"
#include "histogram.hpp"
#include "spell.hpp"
#include "usm_memory.hpp"
#include "verbs.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <sys/ioctl.h>
#include <unistd.h>

namespace hvl_rng {
namespace {

// Fewer make no picture. More would only fill memory, for the bars move by less than a pixel and points cover each other.
struct number_range {
  std::uint64_t fewest, most;
};
constexpr number_range of_histogram{100, 100'000'000}, of_points{2, 1'000'000};

// Of text, where no file is named.
std::string terminal_for(const std::string& output) {
  if (!output.empty() && output != "-")
    return picture_terminal(output);
  winsize window{};
  const bool is_known =
      ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) == 0 && window.ws_col >= 40 && window.ws_row >= 12;
  return fmt::format("dumb noenhanced size {},{}", is_known ? window.ws_col : 79,
                     is_known ? window.ws_row - 2 : 24);
}

template <class T>
std::vector<double> to_double(const void* values, std::uint64_t count) {
  const T* first = static_cast<const T*>(values);
  std::vector<double> converted(count);
  std::transform(first, first + count, converted.begin(), [](T value) { return static_cast<double>(value); });
  return converted;
}

std::vector<double> to_double(value_type type, const void* values, std::uint64_t count) {
  switch (type) {
  case value_type::float32:
    return to_double<float>(values, count);
  case value_type::float64:
    return to_double<double>(values, count);
  case value_type::int32:
    return to_double<std::int32_t>(values, count);
  case value_type::uint32:
    return to_double<std::uint32_t>(values, count);
  default:
    return to_double<std::uint64_t>(values, count);
  }
}

std::vector<double> draw_sample(const source_options& options, const distribution_entry& distribution) {
  sycl::queue queue = make_queue(find_device(options.device));
  const std::unique_ptr<source> numbers =
      make_source(queue, find_engine(options.engine), options.start, distribution, options.parameters);
  const std::uint64_t values = options.count * numbers->values_in_one();
  const usm_memory memory(values * distribution.value_bytes, queue);
  numbers->fill(memory.get(), static_cast<std::int64_t>(options.count)).wait();
  queue.throw_asynchronous();
  return to_double(distribution.type, memory.get(), values);
}

std::string title_of(const source_options& options, const distribution_entry& distribution) {
  return fmt::format(R"({}\n{} {})", spell_distribution(options, distribution), options.count,
                     spell_numbers(options, distribution));
}

// Points of the law across the axis, with a step, not a slope, where the support ends.
std::vector<double> places(const exact_law& law, double low, double high) {
  constexpr int steps = 400;
  std::vector<double> at;
  for (int step = 0; step <= steps; ++step)
    at.push_back(low + (high - low) * step / steps);
  for (double end : {law.lower, law.upper})
    if (low < end && end < high)
      for (double beside : {std::nextafter(end, low), end, std::nextafter(end, high)})
        at.push_back(beside);
  std::sort(at.begin(), at.end());
  return at;
}

// A probability is defined at integers only, but where those lie close together a line is what can be seen.
std::vector<double> integer_places(const std::vector<bar>& bars) {
  std::vector<double> at;
  for (const bar& one : bars)
    at.push_back((one.low + one.high) / 2);
  return at;
}

std::string script_of(const std::string& terminal, const std::string& title, const std::vector<bar>& bars,
                      const exact_law& law) {
  constexpr double margin = 0.03, headroom = 1.2, tallest = 2, beyond = 1000;
  const double low = bars.front().low, high = bars.back().high, space = margin * (high - low);
  const bool has_points = law.is_discrete && bars.front().high - bars.front().low == 1;

  double top = 0;
  std::string rows = "$bars << END\n";
  auto row = std::back_inserter(rows);
  for (const bar& one : bars) {
    top = std::max(top, one.height);
    fmt::format_to(row, "{} {:.6g} {}\n", (one.low + one.high) / 2, one.height, one.high - one.low);
  }
  // The law may rise above the bars, but where it grows without bound they set the height.
  const double highest_bar = top;
  fmt::format_to(row, "END\n$law << END\n");
  for (double x : law.is_discrete ? integer_places(bars) : places(law, low - space, high + space)) {
    const double height = law.density(x);
    if (height <= tallest * highest_bar)
      top = std::max(top, height);
    // Out of the picture, yet within what gnuplot can interpolate.
    fmt::format_to(row, "{:.17g} {:.6g}\n", x, std::min(height, beyond * highest_bar));
  }
  fmt::format_to(row, "END\n");

  return fmt::format("set terminal {}\n{}"
                     "set title \"{}\"\nset xrange [{}:{}]\nset yrange [0:{:.9g}]\n"
                     "set border 3\nset tics nomirror out\nset ylabel \"{}\"\n"
                     "set style fill solid 1 noborder\nset key top right\n"
                     "plot $bars using 1:2:3 with boxes linecolor rgb '#9ec1e0' title \"sample\", "
                     "$law using 1:2 with {} title \"exact\"\n",
                     terminal, rows, title, low - space, high + space, headroom * top,
                     law.is_discrete ? "probability" : "density",
                     has_points ? "points pointtype 7 pointsize 0.6 linecolor rgb '#c0392b'"
                                : "lines linewidth 2 linecolor rgb '#c0392b'");
}

std::string script_of_points(const std::string& terminal, const std::string& title,
                             const std::vector<double>& values) {
  std::string rows;
  for (std::size_t i = 0; i + 1 < values.size(); i += 2)
    fmt::format_to(std::back_inserter(rows), "{:.9g} {:.9g}\n", values[i], values[i + 1]);
  return fmt::format(
      "set terminal {}\n$points << END\n{}END\n"
      "set title \"{}\"\nset size square\nset tics out\n"
      "plot $points using 1:2 with points pointtype 7 pointsize 0.5 linecolor rgb '#2a6fa8' notitle\n",
      terminal, rows, title);
}

} // namespace

void plot_numbers(const plot_options& options) {
  const std::string terminal = terminal_for(options.output);
  const number_range range = options.as_points ? of_points : of_histogram;
  if (options.count < range.fewest || options.count > range.most)
    throw failure(exit_status::usage,
                  fmt::format("--count {}: {} drawn of {} to {} numbers", options.count,
                              options.as_points ? "points are" : "a histogram is", range.fewest, range.most));
  const distribution_entry& distribution =
      find_distribution(options.distribution, options.type, options.method);

  // Before anything that prints: the picture and traces never share a stream.
  destination to(options.output);
  const std::string title = title_of(options, distribution);
  std::string script;
  if (options.as_points) {
    script = script_of_points(terminal, title, draw_sample(options, distribution));
  } else {
    const exact_law law = find_law(distribution, options.parameters);
    script = script_of(terminal, title, make_histogram(draw_sample(options, distribution), law), law);
  }
  const std::string picture = run_gnuplot(script);
  try {
    to.write(picture.data(), picture.size());
    to.close();
  } catch (const closed_pipe&) {
    // Whoever reads has enough.
  }
}

} // namespace hvl_rng
