#include "command_numbers.hpp"

#include "failure.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

namespace hvl_rng {
namespace {

std::optional<std::uint64_t> read_digits(std::string_view text, int base = 10) {
  std::uint64_t value = 0;
  const char* const last = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), last, value, base);
  const bool has_leading_zero = base == 10 && text.size() > 1 && text.front() == '0';
  if (error != std::errc() || end != last || has_leading_zero)
    return std::nullopt;
  return value;
}

// The power of ten that "", "k", "M", ... or "e6" stand for.
std::optional<std::uint64_t> read_power(std::string_view text) {
  constexpr std::string_view suffixes = "kMGT";
  if (text.empty())
    return 0;
  if (text.front() == 'e' || text.front() == 'E')
    return read_digits(text.substr(1));
  const std::size_t suffix = suffixes.find(text.front() == 'K' ? 'k' : text.front());
  if (text.size() != 1 || suffix == suffixes.npos)
    return std::nullopt;
  return 3 * (suffix + 1);
}

std::optional<std::uint64_t> scale(std::uint64_t count, std::uint64_t power) {
  for (; power != 0 && count != 0; --power)
    if (__builtin_mul_overflow(count, 10, &count))
      return std::nullopt;
  return count;
}

} // namespace

std::uint64_t read_count(const std::string& option, const std::string& text) {
  const std::string_view whole = text;
  const std::size_t digits = std::min(whole.find_first_not_of("0123456789"), whole.size());
  const auto count = read_digits(whole.substr(0, digits));
  const auto power = read_power(whole.substr(digits));
  const auto scaled = count && power ? scale(*count, *power) : std::nullopt;
  if (!scaled)
    throw failure(exit_status::usage,
                  fmt::format("{} {}: not a whole number below 2^64 such as 1000, 1e6, 500k, 20M or 3G",
                              option, text.empty() ? "''" : text));
  return *scaled;
}

std::vector<std::uint64_t> read_seed(const std::string& text) {
  std::vector<std::uint64_t> words;
  std::string_view rest = text;
  for (bool is_last = false; !is_last;) {
    const std::size_t comma = rest.find(',');
    is_last = comma == rest.npos;
    const std::string_view word = rest.substr(0, comma);
    const auto value = word.starts_with("0x") ? read_digits(word.substr(2), 16) : read_digits(word);
    if (!value)
      throw failure(exit_status::usage,
                    fmt::format("--seed {}: not a whole number below 2^64, nor several separated by commas",
                                text.empty() ? "''" : text));
    words.push_back(*value);
    if (!is_last)
      rest.remove_prefix(comma + 1);
  }
  return words;
}

} // namespace hvl_rng
