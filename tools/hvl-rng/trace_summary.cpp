// Where a program's random numbers cost: the calls of a trace, summed by engine and distribution.
#include "failure.hpp"
#include "verbs.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

namespace hvl_rng {
namespace {

struct cost {
  std::uint64_t calls = 0;
  std::uint64_t numbers = 0;
  std::optional<double> host_seconds; // empty while no call told its time
  std::optional<double> device_seconds;
};

constexpr std::string_view call_mark = "HVL_VERBOSE kestro::hvl::rng::generate ";

struct traced_call {
  std::string_view distribution, engine;
  std::uint64_t numbers = 0;
  std::optional<double> host_seconds, device_seconds;
};

// Takes pieces off the front of a line. Once one is missing all that follow are, too.
class line_reader {
 public:
  explicit line_reader(std::string_view line) : rest_(line) {}

  // Whether every piece was there and nothing but blanks is left.
  bool is_understood() const { return is_sound_ && rest_.find_first_not_of(' ') == rest_.npos; }

  bool try_take(std::string_view text) {
    const bool is_there = rest_.starts_with(text);
    if (is_there)
      rest_.remove_prefix(text.size());
    return is_there;
  }

  void take(std::string_view text) { require(try_take(text)); }

  // What stands before `text`, which is taken with it.
  std::string_view take_before(std::string_view text) {
    const std::string_view before = rest_.substr(0, rest_.find(text));
    require(!before.empty() && before.size() < rest_.size());
    if (is_sound_)
      rest_.remove_prefix(before.size() + text.size());
    return before;
  }

  // Arguments after the number are those of std::from_chars.
  template <class T, class... Format>
  T take_number(Format... format) {
    T value{};
    const bool has_digit = !rest_.empty() && '0' <= rest_.front() && rest_.front() <= '9';
    const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), value, format...);
    require(has_digit && error == std::errc());
    if (is_sound_)
      rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
    return value;
  }

  // Traces print "nan" for a time that was not taken.
  std::optional<double> take_seconds() {
    if (try_take("nan"))
      return std::nullopt;
    const double value = take_number<double>(std::chars_format::fixed);
    for (const auto& [unit, scale] : {std::pair{"s", 1.0}, {"ms", 1e-3}, {"us", 1e-6}, {"ns", 1e-9}})
      if (try_take(unit))
        return value * scale;
    require(false);
    return std::nullopt;
  }

 private:
  void require(bool condition) { is_sound_ = is_sound_ && condition; }

  std::string_view rest_;
  bool is_sound_ = true;
};

std::optional<traced_call> parse(std::string_view line) {
  constexpr std::size_t longest_line = 4096; // the library's own have some hundred characters
  if (line.size() > longest_line)
    return std::nullopt;
  traced_call call;
  line_reader reader(line);
  reader.take(call_mark);
  if (!reader.try_take("USM"))
    reader.take("Buffer");
  reader.take(" call with parameters distribution = ");
  call.distribution = reader.take_before(", engine = ");
  call.engine = reader.take_before(", n = ");
  call.numbers = reader.take_number<std::uint64_t>();
  if (reader.try_take(", r = "))
    reader.take_before(" ");
  else
    reader.take(" ");
  reader.take("host:");
  call.host_seconds = reader.take_seconds();
  reader.take(" device:");
  call.device_seconds = reader.take_seconds();
  if (reader.try_take(" GPU"))
    reader.take_number<std::uint64_t>();
  return reader.is_understood() ? std::optional(call) : std::nullopt;
}

void add_time(std::optional<double>& sum, const std::optional<double>& seconds) {
  if (seconds)
    sum = sum.value_or(0.0) + *seconds;
}

// Every name of this library's lies in one namespace; the table does not repeat it.
std::string without_namespace(std::string_view full) {
  std::string name(full);
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

  std::string table() const {
    constexpr const char* row = "{:<16}{:<{}}{:>10}{:>16}{:>14}{:>14}\n";
    std::size_t width = 12;
    for (const auto& [names, one] : costs_)
      width = std::max(width, names.second.size());
    std::string text =
        fmt::format(row, "engine", "distribution", width + 2, "calls", "numbers", "host s", "device s");
    for (const auto& [names, one] : costs_)
      text += fmt::format(row, names.first, names.second, width + 2, one.calls, one.numbers,
                          spell_time(one.host_seconds), spell_time(one.device_seconds));
    return text;
  }

  std::uint64_t not_understood() const { return not_understood_; }
  bool is_empty() const { return costs_.empty(); }

 private:
  bool add(const std::string& line) {
    const std::optional<traced_call> call = parse(line);
    if (!call)
      return false;
    cost& sum = costs_[{without_namespace(call->engine), without_namespace(call->distribution)}];
    std::uint64_t numbers = 0;
    if (__builtin_add_overflow(sum.numbers, call->numbers, &numbers))
      return false;
    sum.numbers = numbers;
    ++sum.calls;
    add_time(sum.host_seconds, call->host_seconds);
    add_time(sum.device_seconds, call->device_seconds);
    return true;
  }

  std::map<std::pair<std::string, std::string>, cost> costs_;
  std::uint64_t not_understood_ = 0;
};

} // namespace

void summarise_trace(const std::string& file) {
  summary calls;
  errno = 0;
  std::ifstream named;
  if (file != "-")
    named.open(file);
  std::istream& lines = file == "-" ? std::cin : named;
  if (lines)
    calls.read(lines);
  // A folder can be opened, but not read.
  if (lines.bad() || !(named.is_open() || file == "-"))
    throw failure(exit_status::usage, fmt::format("{}: {}", file, std::strerror(errno)));
  if (calls.not_understood() != 0)
    fmt::print(stderr, "hvl-rng: {} trace lines were not understood\n", calls.not_understood());
  if (calls.is_empty())
    throw failure(exit_status::failed, fmt::format("{}: holds no traced call", file));
  write_output("", calls.table());
}

} // namespace hvl_rng
