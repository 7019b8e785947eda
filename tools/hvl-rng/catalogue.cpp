#include "catalogue.hpp"

#include "listed_types.hpp"

#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <limits>
#include <type_traits>
#include <utility>

namespace hvl_rng {
namespace {

// clang-format off
#define KESTRO_HVL_ENGINE(name) #name,
constexpr const char* engine_names[] = {
#include <kestro/hvl/rng/detail/engines.def>
};
#undef KESTRO_HVL_ENGINE

#define KESTRO_HVL_DISTRIBUTION(family, ...) #__VA_ARGS__,
constexpr std::string_view distribution_spellings[] = {
#include <kestro/hvl/rng/detail/distributions.def>
};
#undef KESTRO_HVL_DISTRIBUTION
// clang-format on

// ---- Engines

template <class Engine, class Word>
constexpr bool takes_list_of = std::is_constructible_v<Engine, sycl::queue, std::initializer_list<Word>>;

template <class Engine>
constexpr bool takes_list = takes_list_of<Engine, std::uint64_t> || takes_list_of<Engine, std::uint32_t>;

template <class Engine>
constexpr bool takes_skip = requires(Engine& engine) {
  engine.skip_ahead(std::uint64_t{});
};

// Braces refuse narrowing, so this tells engines seeded by 64 bits from those seeded by 32.
template <class Engine>
constexpr bool takes_64_bits = requires(sycl::queue queue, std::uint64_t seed) {
  Engine{queue, seed};
};

constexpr std::size_t max_seed_words = 8;

void require_words_fit(const std::vector<std::uint64_t>& seed, bool fits_64_bits, const char* engine) {
  constexpr std::uint64_t largest = std::numeric_limits<std::uint32_t>::max();
  for (std::uint64_t word : seed)
    if (!fits_64_bits && word > largest)
      throw failure(exit_status::usage, fmt::format("--seed {}: the words of {} have 32 bits (at most {})",
                                                    word, engine, largest));
}

template <class Engine, class Word, std::size_t... Index>
Engine make_from_list(const sycl::queue& queue, const std::vector<std::uint64_t>& seed,
                      std::index_sequence<Index...>) {
  return Engine(queue, std::initializer_list<Word>{static_cast<Word>(seed[Index])...});
}

// An initializer list's length is fixed by the compiler: one call for each length.
template <class Engine, class Word, std::size_t Words = 1>
Engine make_from_list(const sycl::queue& queue, const std::vector<std::uint64_t>& seed) {
  if constexpr (Words < max_seed_words)
    if (seed.size() > Words)
      return make_from_list<Engine, Word, Words + 1>(queue, seed);
  return make_from_list<Engine, Word>(queue, seed, std::make_index_sequence<Words>());
}

// The library takes a list of 64-bit seeds as twice as many words of 32 bits.
void warn_of_halves(const std::vector<std::uint64_t>& seed, const char* engine) {
  fmt::print(
      stderr,
      "hvl-rng: warning: --seed {}: {} on a CPU device takes the first half of such a list, on others all "
      "of it; their numbers differ\n",
      fmt::join(seed, ","), engine);
}

template <class Engine>
Engine make_engine(const sycl::queue& queue, const std::vector<std::uint64_t>& seed, const char* name) {
  if (seed.size() > max_seed_words)
    throw failure(exit_status::usage, fmt::format("--seed: at most {} words", max_seed_words));
  if (seed.size() > 1) {
    require_words_fit(seed, takes_list_of<Engine, std::uint64_t>, name);
    if constexpr (takes_list_of<Engine, std::uint64_t>) {
      warn_of_halves(seed, name);
      return make_from_list<Engine, std::uint64_t>(queue, seed);
    } else if constexpr (takes_list_of<Engine, std::uint32_t>)
      return make_from_list<Engine, std::uint32_t>(queue, seed);
    else
      throw failure(exit_status::usage, fmt::format("--seed: {} takes one word", name));
  }
  require_words_fit(seed, takes_64_bits<Engine>, name);
  if constexpr (takes_64_bits<Engine>)
    return Engine(queue, seed.at(0));
  else
    return Engine(queue, static_cast<std::uint32_t>(seed.at(0)));
}

template <class Engine>
void skip(Engine& engine, std::uint64_t count, const char* name) {
  if (count == 0)
    return;
  if constexpr (takes_skip<Engine>)
    engine.skip_ahead(count);
  else
    throw failure(exit_status::usage, fmt::format("--skip: {} cannot skip", name));
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
        (parameters.push_back({parameter.name, fmt::format("{}", (Distribution().*parameter.accessor)())}),
         ...);
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
  const std::vector<std::uint64_t>& seed;
  std::uint64_t skip;
  const distribution_entry& distribution;
  const parameter_values& parameters;
};

template <class Engine, class Distribution>
std::unique_ptr<source> join(const source_order& order) {
  // The parameters first: they cost nothing to refuse.
  auto distribution = make_distribution<Distribution>(order.distribution.name, order.parameters);
  auto engine = make_engine<Engine>(order.queue, order.seed, order.engine.name.c_str());
  skip(engine, order.skip, order.engine.name.c_str());
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
  std::size_t index = 0;
  std::vector<engine_entry> entries;
  ((entries.push_back({engine_names[index], takes_list<Engines>, takes_skip<Engines>, index}), ++index), ...);
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
  if (!method.empty())
    found = keep(found, "--method", method, [](const auto& one) { return one.method; });
  const auto best =
      std::find_if(found.begin(), found.end(), [](const auto& one) { return one.is_default_method; });
  return distributions()[(best == found.end() ? found.front() : *best).index];
}

std::unique_ptr<source> make_source(const sycl::queue& queue, const engine_entry& engine,
                                    const std::vector<std::uint64_t>& seed, std::uint64_t skip,
                                    const distribution_entry& distribution,
                                    const parameter_values& parameters) {
  static constexpr auto joins = all_joins(engine_list());
  require_known(distribution, parameters);
  return joins[engine.index][distribution.index]({queue, engine, seed, skip, distribution, parameters});
}

} // namespace hvl_rng
