#include "failure.hpp"
#include "gnuplot.hpp"
#include "memory_fill.hpp"
#include "spell.hpp"
#include "stopwatch.hpp"
#include "usm_memory.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <limits>

namespace hvl_rng {
namespace {

// From what a simulation draws a step to what no cache holds.
constexpr std::uint64_t usual_counts[] = {1'000, 100'000, 1'000'000, 50'000'000};
constexpr std::uint64_t most_bytes = std::uint64_t{4} << 30;

// Calls of one size: the best of all, as what else a machine does only slows them down.
struct speed {
  std::uint64_t numbers, bytes; // of a call
  double seconds = std::numeric_limits<double>::infinity();
  double fill_seconds = std::numeric_limits<double>::infinity();

  double numbers_a_second() const { return static_cast<double>(numbers) / seconds; }
  double bytes_a_second() const { return static_cast<double>(bytes) / seconds; }
  double filled_a_second() const { return static_cast<double>(bytes) / fill_seconds; }
  double scale_from(const speed& smaller) const {
    return static_cast<double>(numbers) / static_cast<double>(smaller.numbers);
  }
  double part() const { return fill_seconds / seconds; }
};

struct device_speeds {
  std::string name;
  std::vector<speed> sizes;
  bool is_cut; // for want of time
};

class stand {
 public:
  stand(const sycl::device& device, const source_options& options, const distribution_entry& distribution)
      : queue_(make_queue(device)), source_(make_source(queue_, find_engine(options.engine), options.start,
                                                        distribution, options.parameters)),
        values_in_one_(source_->values_in_one()), bytes_in_one_(distribution.value_bytes * values_in_one_) {
    const std::uint64_t most = most_bytes / bytes_in_one_;
    if (options.count > most)
      throw failure(exit_status::usage,
                    fmt::format("--count {}: at most {} are measured in a call", options.count, most));
    if (options.count != 0)
      wanted_ = {size_of(options.count)};
    else
      for (const std::uint64_t numbers : usual_counts)
        wanted_.push_back(size_of(std::max(numbers / values_in_one_, std::uint64_t{1})));
  }

  // Sizes whose single call would take a fourth of the time are left out, but for the smallest.
  device_speeds measure(double seconds) {
    const double slowest_call = std::max(seconds / 4, 0.05);
    const usm_memory memory(wanted_.back().bytes, queue_);
    std::vector<speed> sizes;
    double last_call = 0;
    const auto end = clock::now() + std::chrono::duration<double>(seconds);
    for (const speed& next : wanted_) {
      if (!sizes.empty() && last_call * next.scale_from(sizes.back()) > slowest_call)
        break;
      sizes.push_back(next);
      // New pages, tables and kernels cost time once.
      fill_memory(queue_, memory.get(), next.bytes);
      generate(next, memory);
      last_call = generate(next, memory);
    }
    do
      for (speed& one : sizes) {
        // The two meet the same minute of the machine.
        one.seconds = std::min(one.seconds, generate(one, memory));
        one.fill_seconds = std::min(one.fill_seconds, fill_memory(queue_, memory.get(), one.bytes));
      }
    while (clock::now() < end);
    return {"", sizes, sizes.size() < wanted_.size()};
  }

 private:
  using clock = std::chrono::steady_clock;

  speed size_of(std::uint64_t count) const { return {count * values_in_one_, count * bytes_in_one_}; }

  double generate(const speed& size, const usm_memory& memory) {
    const double seconds = seconds_of([&] {
      source_->fill(memory.get(), static_cast<std::int64_t>(size.numbers / values_in_one_)).wait();
    });
    queue_.throw_asynchronous();
    return seconds;
  }

  sycl::queue queue_;
  std::unique_ptr<source> source_;
  std::uint64_t values_in_one_, bytes_in_one_;
  std::vector<speed> wanted_; // in ascending order
};

// With the numbers of `list_devices`.
std::vector<std::pair<std::size_t, sycl::device>> devices_of(const std::string& name) {
  const std::vector<sycl::device> all = sycl::device::get_devices();
  std::vector<std::pair<std::size_t, sycl::device>> chosen;
  for (std::size_t number = 0; number < all.size(); ++number)
    if (name == "all" ? all[number].is_cpu() || all[number].is_gpu() : all[number] == find_device(name))
      chosen.emplace_back(number, all[number]);
  if (chosen.empty())
    throw failure(exit_status::device, fmt::format("--device {}: no CPU or GPU device is there", name));
  return chosen;
}

// 1.23 M: three digits.
std::string with_prefix(double value) {
  constexpr const char* prefixes[] = {"", " k", " M", " G", " T"};
  std::size_t prefix = 0;
  for (; value >= 999.5 && prefix + 1 < std::size(prefixes); ++prefix)
    value /= 1000;
  return fmt::format("{:.3g}{}", value, prefixes[prefix]);
}

std::string table_of(const std::string& title, const std::vector<device_speeds>& devices) {
  constexpr const char* head = "{:>10}  {:>10}  {:>8}  {:>11}  {:>6}\n";
  constexpr const char* row = "{:>10}  {:>10}  {:>8.3g}  {:>11.3g}  {:>4.0f} %  {}\n";
  constexpr double columns = 30, most_columns = 40;
  std::string text = title + "\n";
  const auto to = std::back_inserter(text);
  for (const device_speeds& device : devices) {
    fmt::format_to(to, "\n{}\n", device.name);
    fmt::format_to(to, head, "a call", "a second", "GB/s", "memory GB/s", "part");
    for (const speed& one : device.sizes)
      fmt::format_to(
          to, row, with_prefix(static_cast<double>(one.numbers)), with_prefix(one.numbers_a_second()),
          one.bytes_a_second() / 1e9, one.filled_a_second() / 1e9, 100 * one.part(),
          std::string(static_cast<std::size_t>(std::min(columns * one.part(), most_columns)) + 1, '#'));
    if (device.is_cut)
      text += "       ...  larger calls want more --seconds\n";
  }
  return text;
}

std::string script_of(const std::string& terminal, const std::string& title,
                      const std::vector<device_speeds>& devices) {
  std::string rows, plots;
  for (std::size_t i = 0; i < devices.size(); ++i) {
    fmt::format_to(std::back_inserter(rows), "$device{} << END\n", i);
    for (const speed& one : devices[i].sizes)
      fmt::format_to(std::back_inserter(rows), "\"{}\" {:.6g} {:.6g}\n", with_prefix(double(one.numbers)),
                     one.numbers_a_second() / 1e9, one.numbers_a_second() / 1e9 / one.part());
    rows += "END\n";
    std::string name = devices[i].name;
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '"' || c == '\\'; }, ' ');
    fmt::format_to(std::back_inserter(plots),
                   "{} newhistogram \"{}\", $device{} using 2:xtic(1) linecolor rgb '#2a6fa8' {}, "
                   "$device{} using 3 linecolor rgb '#d5dde5' {}",
                   i == 0 ? "plot" : ",", name, i, i == 0 ? "title \"numbers\"" : "notitle", i,
                   i == 0 ? "title \"what memory takes\"" : "notitle");
  }
  return fmt::format(
      "set terminal {}\n{}set title \"{}\"\nset style data histograms\n"
      "set style histogram clustered gap 1 title offset 0,-1\nset style fill solid 1 noborder\n"
      "set border 3\nset tics nomirror out\nset key above\nset bmargin 4\n"
      "set yrange [0:*]\nset ylabel \"G numbers a second\"\n{}\n",
      terminal, rows, title, plots);
}

} // namespace

void measure_speed(const bench_options& options) {
  const bool is_picture = !options.output.empty() && options.output != "-";
  const std::string terminal = is_picture ? picture_terminal(options.output) : "";
  const distribution_entry& distribution =
      find_distribution(options.distribution, options.type, options.method);
  const auto chosen = devices_of(options.device);

  // Before anything that prints: the figures and traces never share a stream.
  destination to(options.output);
  std::vector<device_speeds> speeds;
  const double seconds = static_cast<double>(options.seconds) / static_cast<double>(chosen.size());
  for (const auto& [number, device] : chosen) {
    speeds.push_back(stand(device, options, distribution).measure(seconds));
    speeds.back().name =
        fmt::format("{} {}: {}", number, kind_of(device), device.get_info<sycl::info::device::name>());
  }
  const std::string title = spell_distribution(options, distribution),
                    of = spell_numbers(options, distribution);
  const std::string shown =
      is_picture
          ? run_gnuplot(script_of(terminal, fmt::format(R"({}\n{}, by numbers a call)", title, of), speeds))
          : table_of(title + "\n" + of, speeds);
  try {
    to.write(shown.data(), shown.size());
    to.close();
  } catch (const closed_pipe&) {
    // Whoever reads has enough.
  }
}

} // namespace hvl_rng
