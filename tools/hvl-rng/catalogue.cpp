#include "catalogue.hpp"

#include "make_distribution.hpp"
#include "start_engine.hpp"

#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <utility>

namespace hvl_rng {
namespace {

struct source_order {
  const sycl::queue& queue;
  const engine_entry& engine;
  const engine_start& start;
  const distribution_entry& distribution;
  const parameter_values& parameters;
};

template <class Engine>
std::unique_ptr<any_engine> start(const source_order& order) {
  auto engine = make_engine<Engine>(order.queue, order.engine.name.c_str(), order.start);
  if (order.start.skip != 0)
    skip(engine, order.engine.name, order.start.skip);
  return make_any(std::move(engine));
}

template <class... Engines>
constexpr auto engine_starts(type_list<Engines...>) {
  return std::array{&start<Engines>...};
}

template <class Distribution>
any_distribution read(const source_order& order) {
  return any_distribution(make_distribution<Distribution>(order.distribution.name, order.parameters));
}

template <class... Distributions>
constexpr auto distribution_reads(type_list<Distributions...>) {
  return std::array{&read<Distributions>...};
}

// The names that an option may take, each once, in the order of the list.
template <class Entries, class Name>
std::string choices(const Entries& entries, Name name) {
  std::vector<std::string> names;
  for (const auto& entry : entries)
    if (std::find(names.begin(), names.end(), name(entry)) == names.end())
      names.push_back(name(entry));
  return fmt::format("{}", fmt::join(names, ", "));
}

template <class Name>
std::vector<distribution_entry> keep(std::vector<distribution_entry> entries, const char* option,
                                     const std::string& wanted, Name name) {
  std::vector<distribution_entry> kept;
  for (const distribution_entry& entry : entries)
    if (name(entry) == wanted)
      kept.push_back(entry);
  if (kept.empty())
    throw failure(exit_status::usage,
                  fmt::format("{} {}: not one of {}", option, wanted, choices(entries, name)));
  return kept;
}

} // namespace

void require_known(const distribution_entry& distribution, const parameter_values& given) {
  const auto& known = distribution.parameters;
  for (const auto& [name, value] : given)
    if (std::none_of(known.begin(), known.end(),
                     [&name = name](const parameter_entry& one) { return one.name == name; })) {
      const std::string has =
          known.empty() ? "no parameters"
                        : choices(known, [](const parameter_entry& one) { return "--" + one.name; });
      throw failure(exit_status::usage,
                    fmt::format("--{} {}: {} has {}", name, value, distribution.name, has));
    }
}

const engine_entry& find_engine(const std::string& name) {
  for (const engine_entry& entry : engines())
    if (entry.name == name)
      return entry;
  throw failure(exit_status::usage,
                fmt::format("--engine {}: not one of {}", name,
                            choices(engines(), [](const auto& one) { return one.name; })));
}

const distribution_entry& find_distribution(const std::string& name, const std::string& type,
                                            const std::string& method) {
  auto found = keep(distributions(), "--distribution", name, [](const auto& one) { return one.name; });
  found = keep(found, "--type", type.empty() ? found.front().type_name : type,
               [](const auto& one) { return one.type_name; });
  if (!method.empty() && found.size() == 1 && found.front().method.empty())
    throw failure(exit_status::usage, fmt::format("--method {}: {} has no choice of methods", method, name));
  if (!method.empty())
    found = keep(found, "--method", method, [](const auto& one) { return one.method; });
  const auto best =
      std::find_if(found.begin(), found.end(), [](const auto& one) { return one.is_default_method; });
  return distributions()[(best == found.end() ? found.front() : *best).index];
}

std::unique_ptr<source> make_source(const sycl::queue& queue, const engine_entry& engine,
                                    const engine_start& start, const distribution_entry& distribution,
                                    const parameter_values& parameters) {
  static constexpr auto starts = engine_starts(engine_list());
  static constexpr auto reads = distribution_reads(distribution_list());
  require_known(distribution, parameters);
  const source_order order{queue, engine, start, distribution, parameters};
  // The parameters first: they cost nothing to refuse.
  any_distribution numbers = reads[distribution.index](order);
  return std::make_unique<source>(starts[engine.index](order), std::move(numbers));
}

} // namespace hvl_rng
