// Where a program's random numbers cost: the calls of a trace, summed by engine and distribution.
#include "failure.hpp"
#include "verbs.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <regex>
#include <utility>

namespace hvl_rng {
namespace {

struct cost {
  std::uint64_t calls = 0;
  std::uint64_t numbers = 0;
  std::optional<double> host_seconds; // empty while no call told its time
  std::optional<double> device_seconds;
};

// Traces print "nan" for a time that was not taken.
void add_time(std::optional<double>& sum, const std::string& number, const std::string& unit) {
  if (number == "nan")
    return;
  const double scale = unit == "s" ? 1.0 : unit == "ms" ? 1e-3 : unit == "us" ? 1e-6 : 1e-9;
  sum = sum.value_or(0.0) + std::stod(number) * scale;
}

// Every name of this library's lies in one namespace; the table does not repeat it.
std::string without_namespace(std::string name) {
  constexpr std::string_view prefix = "kestro::hvl::rng::";
  for (std::size_t at = name.find(prefix); at != name.npos; at = name.find(prefix))
    name.erase(at, prefix.size());
  return name;
}

std::string spell_time(const std::optional<double>& seconds) {
  return seconds ? fmt::format("{:.6f}", *seconds) : "-";
}

class summary {
 public:
  void read(std::istream& lines) {
    for (std::string line; std::getline(lines, line);)
      if (line.find(call_mark) != line.npos && !add(line))
        ++not_understood_;
  }

  void print() const {
    std::size_t width = 12;
    for (const auto& [names, one] : costs_)
      width = std::max({width, names.first.size(), names.second.size()});
    fmt::print("{:<16}{:<{}}{:>10}{:>16}{:>14}{:>14}\n", "engine", "distribution", width + 2, "calls",
               "numbers", "host s", "device s");
    for (const auto& [names, one] : costs_)
      fmt::print("{:<16}{:<{}}{:>10}{:>16}{:>14}{:>14}\n", names.first, names.second, width + 2, one.calls,
                 one.numbers, spell_time(one.host_seconds), spell_time(one.device_seconds));
    if (not_understood_ != 0)
      fmt::print(stderr, "hvl-rng: {} trace lines were not understood\n", not_understood_);
  }

  bool is_empty() const { return costs_.empty(); }

 private:
  static constexpr const char* call_mark = "HVL_VERBOSE kestro::hvl::rng::generate ";

  bool add(const std::string& line) {
    static const std::regex call(
        "HVL_VERBOSE kestro::hvl::rng::generate (?:USM|Buffer) call with parameters "
        "distribution = (.+), engine = (.+), n = ([0-9]+)(?:, r = [^ ]+)? "
        "host:(nan|[0-9.]+)(s|ms|us|ns)? device:(nan|[0-9.]+)(s|ms|us|ns)?(?: GPU[0-9]+)? *");
    std::smatch found;
    if (!std::regex_match(line, found, call))
      return false;
    cost& sum = costs_[{without_namespace(found[2]), without_namespace(found[1])}];
    ++sum.calls;
    sum.numbers += std::stoull(found[3]);
    add_time(sum.host_seconds, found[4], found[5]);
    add_time(sum.device_seconds, found[6], found[7]);
    return true;
  }

  std::map<std::pair<std::string, std::string>, cost> costs_;
  std::uint64_t not_understood_ = 0;
};

} // namespace

void summarise_trace(const std::string& file) {
  summary calls;
  if (file == "-") {
    calls.read(std::cin);
  } else {
    std::ifstream lines(file);
    if (!lines)
      throw failure(exit_status::usage, fmt::format("{}: {}", file, std::strerror(errno)));
    calls.read(lines);
  }
  calls.print();
  if (calls.is_empty())
    throw failure(exit_status::failed, fmt::format("{}: holds no traced call", file));
}

} // namespace hvl_rng
