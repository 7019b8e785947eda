#include "catalogue.hpp"
#include "engine_traits.hpp"
#include "make_distribution.hpp"

#include <hvl/engines.hpp>

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
std::vector<parameter_entry> parameters_of() {
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
      distribution_traits<Distribution>::parameters);
  return parameters;
}

struct distribution_facts {
  value_type type;
  std::size_t value_bytes;
  bool is_default_method;
  std::vector<parameter_entry> (*parameters)();
};

template <class Distribution>
constexpr distribution_facts facts_of = {
    type_of<typename Distribution::result_type>, sizeof(typename Distribution::result_type),
    distribution_traits<Distribution>::is_default_method, parameters_of<Distribution>};

distribution_entry describe(std::string_view spelling, const distribution_facts& facts, std::size_t index) {
  const std::size_t method = spelling.find("_method::");
  return {std::string(spelling.substr(0, spelling.find('<'))),
          type_names[static_cast<int>(facts.type)],
          method == spelling.npos ? ""
                                  : std::string(spelling.substr(method + 9, spelling.size() - method - 10)),
          facts.is_default_method,
          facts.type,
          facts.value_bytes,
          facts.parameters(),
          index};
}

template <class... Engines>
std::vector<engine_entry> describe_engines(type_list<Engines...>) {
  std::vector<engine_entry> entries;
  (entries.push_back(describe_engine<Engines>(entries.size())), ...);
  return entries;
}

template <class... Distributions>
std::vector<distribution_entry> describe_distributions(type_list<Distributions...>) {
  std::vector<distribution_entry> entries;
  for (const distribution_facts& facts : {facts_of<Distributions>...})
    entries.push_back(describe(distribution_spellings[entries.size()], facts, entries.size()));
  return entries;
}

} // namespace

const std::vector<engine_entry>& engines() {
  static const std::vector<engine_entry> entries = describe_engines(engine_list());
  return entries;
}

const std::vector<distribution_entry>& distributions() {
  static const std::vector<distribution_entry> entries = describe_distributions(distribution_list());
  return entries;
}

} // namespace hvl_rng
