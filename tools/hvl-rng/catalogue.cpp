#include "catalogue.hpp"

#include "listed_types.hpp"
#include "start_engine.hpp"

#include <fmt/ranges.h>
#include <hvl/engines.hpp>

#include <algorithm>
#include <array>
#include <type_traits>
#include <utility>

namespace hvl_rng {
namespace {

// clang-format off
#define KESTRO_HVL_ENGINE(name) ::hvl::engines::name::about,
constexpr ::hvl::engines::facts engine_facts[] = {
#include <kestro/hvl/rng/detail/engines.def>
};
#undef KESTRO_HVL_ENGINE

#define KESTRO_HVL_DISTRIBUTION(family, ...) #__VA_ARGS__,
constexpr std::string_view distribution_spellings[] = {
#include <kestro/hvl/rng/detail/distributions.def>
};
#undef KESTRO_HVL_DISTRIBUTION
// clang-format on

template <class Engine>
engine_entry describe_engine(std::size_t index) {
  const ::hvl::engines::facts& about = engine_facts[index];
  return {about.name,    about.has_uniform_bits, about.has_leapfrog,
          about.members, takes_mode<Engine>,     about.is_quasi_random,
          index};
}

// ---- Distributions

template <class T>
constexpr value_type type_of = std::is_same_v<T, float>           ? value_type::float32
                               : std::is_same_v<T, double>        ? value_type::float64
                               : std::is_same_v<T, std::int32_t>  ? value_type::int32
                               : std::is_same_v<T, std::uint32_t> ? value_type::uint32
                                                                  : value_type::uint64;

constexpr const char* type_names[] = {"float", "double", "int32", "uint32", "uint64"};

template <class Distribution>
distribution_entry describe(std::string_view spelling, std::size_t index) {
  using traits = distribution_traits<Distribution>;
  using value = typename Distribution::result_type;
  const std::size_t method = spelling.find("_method::");
  std::vector<parameter_entry> parameters;
  std::apply(
      [&](const auto&... parameter) {
        [[maybe_unused]] const auto add = [&](const auto& one) {
          const auto by_default = (Distribution().*one.accessor)();
          using text = parameter_text<std::remove_const_t<decltype(by_default)>>;
          parameters.push_back({one.name, text::of(by_default)});
        };
        (add(parameter), ...);
      },
      traits::parameters);
  return {std::string(spelling.substr(0, spelling.find('<'))),
          type_names[static_cast<int>(type_of<value>)],
          method == spelling.npos ? ""
                                  : std::string(spelling.substr(method + 9, spelling.size() - method - 10)),
          traits::is_default_method,
          type_of<value>,
          sizeof(value),
          std::move(parameters),
          index};
}

// ---- Engines joined to distributions

template <class Engine, class Distribution>
class joined_source final : public source {
 public:
  joined_source(Engine engine, Distribution distribution)
      : engine_(std::move(engine)), distribution_(std::move(distribution)) {}

  sycl::event fill(void* memory, std::int64_t count) override {
    return generate(distribution_, engine_, count, static_cast<typename Distribution::result_type*>(memory));
  }

 private:
  Engine engine_;
  Distribution distribution_;
};

struct source_order {
  const sycl::queue& queue;
  const engine_entry& engine;
  const engine_start& start;
  const distribution_entry& distribution;
  const parameter_values& parameters;
};

template <class Engine, class Distribution>
std::unique_ptr<source> join(const source_order& order) {
  // The parameters first: they cost nothing to refuse.
  auto distribution = make_distribution<Distribution>(order.distribution.name, order.parameters);
  auto engine = make_engine<Engine>(order.queue, order.engine.name.c_str(), order.start);
  if (order.start.skip != 0)
    skip(engine, order.engine.name, order.start.skip);
  return std::make_unique<joined_source<Engine, Distribution>>(std::move(engine), std::move(distribution));
}

using join_function = std::unique_ptr<source> (*)(const source_order&);

template <class Engine, class... Distributions>
constexpr auto joins_of(type_list<Distributions...>) {
  return std::array<join_function, sizeof...(Distributions)>{&join<Engine, Distributions>...};
}

template <class... Engines>
constexpr auto all_joins(type_list<Engines...>) {
  return std::array{joins_of<Engines>(distribution_list())...};
}

template <class... Engines>
std::vector<engine_entry> describe_engines(type_list<Engines...>) {
  std::vector<engine_entry> entries;
  (entries.push_back(describe_engine<Engines>(entries.size())), ...);
  return entries;
}

template <class... Distributions>
std::vector<distribution_entry> describe_distributions(type_list<Distributions...>) {
  std::size_t index = 0;
  std::vector<distribution_entry> entries;
  ((entries.push_back(describe<Distributions>(distribution_spellings[index], index)), ++index), ...);
  return entries;
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

const std::vector<engine_entry>& engines() {
  static const std::vector<engine_entry> entries = describe_engines(engine_list());
  return entries;
}

const std::vector<distribution_entry>& distributions() {
  static const std::vector<distribution_entry> entries = describe_distributions(distribution_list());
  return entries;
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
  static constexpr auto joins = all_joins(engine_list());
  require_known(distribution, parameters);
  return joins[engine.index][distribution.index]({queue, engine, start, distribution, parameters});
}

} // namespace hvl_rng
