#include "verbs.hpp"

#include <fmt/format.h>

#include <iterator>

namespace hvl_rng {

namespace {

std::string spell(const std::vector<parameter_entry>& parameters) {
  std::string text;
  for (const parameter_entry& one : parameters)
    text += fmt::format(" --{} {}", one.name, one.default_value);
  return text;
}

} // namespace

void list_catalogue() {
  std::string text = "engines\n";
  const auto to = std::back_inserter(text);
  for (const engine_entry& engine : engines())
    fmt::format_to(to, "  {:<14}{}{}{}{}{}\n", engine.name, engine.has_uniform_bits ? "  uniform_bits" : "",
                   engine.has_leapfrog ? "  leapfrog" : "",
                   engine.is_quasi_random ? "  --seed DIMENSIONS" : "",
                   engine.members > 1 ? fmt::format("  --member 0 ... {}", engine.members - 1) : "",
                   engine.has_modes ? "  --mode standard|optimal|custom:N" : "");
  text += "\ndistributions (* where --type and --method say nothing, + where --method does)\n";
  std::string name, defaults;
  for (const distribution_entry& one : distributions()) {
    const std::string own_defaults = spell(one.parameters);
    if (one.name != name) {
      name = one.name;
      defaults = own_defaults;
      fmt::format_to(to, "  {}{}\n", name, defaults);
    }
    const bool is_default = find_distribution(name, "", "").index == one.index;
    fmt::format_to(to, "    {} --type {}{}{}{}\n",
                   is_default              ? "*"
                   : one.is_default_method ? "+"
                                           : " ",
                   one.type_name, one.method.empty() ? "" : " --method ", one.method,
                   own_defaults == defaults ? "" : own_defaults);
  }
  write_output("", text);
}

} // namespace hvl_rng
