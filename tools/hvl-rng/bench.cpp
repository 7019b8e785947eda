#include "failure.hpp"
#include "gnuplot.hpp"
#include "memory_fill.hpp"
#include "spell.hpp"
#include "stopwatch.hpp"
#include "usm_memory.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
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
  double part() const { return fill_seconds / seconds; }
};

struct device_speeds {
  std::string name;
  std::vector<speed> sizes;
};

class stand {
 public:
  stand(const sycl::device& device, const source_options& options, const distribution_entry& distribution)
      : queue_(make_queue(device)), source_(make_source(queue_, find_engine(options.engine), options.start,
                                                        distribution, options.parameters)),
        count_(options.count), values_in_one_(source_->values_in_one()),
        bytes_in_one_(distribution.value_bytes * values_in_one_) {
    if (count_ > most_bytes / bytes_in_one_)
      throw failure(exit_status::usage, fmt::format("--count {}: at most {} are measured in a call", count_,
                                                    most_bytes / bytes_in_one_));
  }

  // Sizes whose single call would take a fourth of the time are left out, but for the smallest.
  std::vector<speed> measure(double seconds) {
    const double slowest_call = std::max(seconds / 4, 0.05);
    const std::uint64_t most = count_ != 0 ? count_ : std::end(usual_counts)[-1] / values_in_one_;
    const usm_memory memory(most * bytes_in_one_, queue_);
    std::vector<speed> sizes;
    double spent = 0;
    if (count_ != 0) {
      sizes.push_back(size_of(count_));
      spent += warm_up(sizes.back(), memory);
    } else {
      for (const std::uint64_t numbers : usual_counts) {
        const speed next = size_of(std::max(numbers / values_in_one_, std::uint64_t{1}));
        const auto expected = [&] {
          return spent_last_ / double(sizes.back().numbers) * double(next.numbers);
        };
        if (!sizes.empty() && expected() > slowest_call)
          break;
        sizes.push_back(next);
        spent += warm_up(sizes.back(), memory);
      }
    }
    do {
      spent += seconds_of([&] {
        for (speed& one : sizes)
          measure_once(one, memory);
      });
    } while (spent < seconds);
    return sizes;
  }

 private:
  speed size_of(std::uint64_t count) const { return {count * values_in_one_, count * bytes_in_one_}; }

  void generate(const speed& size, const usm_memory& memory) {
    source_->fill(memory.get(), static_cast<std::int64_t>(size.numbers / values_in_one_)).wait();
    queue_.throw_asynchronous();
  }

  // New pages, tables and kernels cost time once.
  double warm_up(const speed& size, const usm_memory& memory) {
    return seconds_of([&] {
      fill_memory(queue_, memory.get(), size.bytes);
      generate(size, memory);
      spent_last_ = seconds_of([&] { generate(size, memory); });
    });
  }

  // The numbers and the fill meet the same minute of the machine.
  void measure_once(speed& size, const usm_memory& memory) {
    size.seconds = std::min(size.seconds, seconds_of([&] { generate(size, memory); }));
    size.fill_seconds = std::min(size.fill_seconds, fill_memory(queue_, memory.get(), size.bytes));
  }

  sycl::queue queue_;
  std::unique_ptr<source> source_;
  std::uint64_t count_, values_in_one_, bytes_in_one_;
  double spent_last_ = 0; // on the last call for warming up
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
  for (const auto& [number, device] : chosen)
    speeds.push_back(
        {fmt::format("{} {}: {}", number, kind_of(device), device.get_info<sycl::info::device::name>()),
         stand(device, options, distribution)
             .measure(static_cast<double>(options.seconds) / static_cast<double>(chosen.size()))});
  const std::string title = spell_distribution(options, distribution),
                    of = spell_numbers(options, distribution);
  const std::string shown =
      is_picture ? run_gnuplot(script_of(terminal, fmt::format(R"({}\n{}, by numbers a call)", title, of), speeds))
                 : table_of(title + "\n" + of, speeds);
  try {
    to.write(shown.data(), shown.size());
    to.close();
  } catch (const closed_pipe&) {
    // Whoever reads has enough.
  }
}

} // namespace hvl_rng
