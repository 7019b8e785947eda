#include "spell.hpp"

#include <fmt/ranges.h>

namespace hvl_rng {
namespace {

std::string seed_of(const source_options& options) {
  const std::vector<std::uint64_t>& seed = options.start.seed;
  if (find_engine(options.engine).is_quasi_random)
    return fmt::format("dimensions {}{}", seed.front(), seed.size() > 1 ? " by words" : "");
  return fmt::format("seed {}", fmt::join(seed, ","));
}

} // namespace

std::string spell_distribution(const source_options& options, const distribution_entry& distribution) {
  std::string text = distribution.name;
  for (const parameter_entry& parameter : distribution.parameters) {
    const auto given = options.parameters.find(parameter.name);
    text += fmt::format("  {}={}", parameter.name,
                        given == options.parameters.end() ? parameter.default_value : given->second);
  }
  return text;
}

std::string spell_numbers(const source_options& options, const distribution_entry& distribution) {
  const engine_start& start = options.start;
  return fmt::format("numbers ({}{}{}) of {}{}{}, {}", distribution.type_name,
                     distribution.method.empty() ? "" : ", ", distribution.method, options.engine,
                     start.member ? fmt::format(", member {}", *start.member) : "",
                     start.mode.empty() ? "" : ", mode " + start.mode, seed_of(options));
}

} // namespace hvl_rng
