#include "verbs.hpp"

#include <fmt/format.h>

namespace hvl_rng {

void list_catalogue() {
  fmt::print("engines\n");
  for (const engine_entry& engine : engines())
    fmt::print("  {:<16}{}{}\n", engine.name, engine.takes_seed_list ? "seed list  " : "           ",
               engine.takes_skip ? "skip" : "");
  fmt::print("\ndistributions (* where --type and --method say nothing)\n");
  std::string before;
  for (const distribution_entry& one : distributions()) {
    if (one.name != before) {
      fmt::print("  {}", one.name);
      for (const parameter_entry& parameter : one.parameters)
        fmt::print(" --{} {}", parameter.name, parameter.default_value);
      fmt::print("\n");
      before = one.name;
    }
    const bool chosen = find_distribution(one.name, "", "").index == one.index;
    fmt::print("    {} --type {}{}{}\n", chosen ? "*" : " ", one.type_name,
               one.method.empty() ? "" : " --method ", one.method);
  }
}

} // namespace hvl_rng
