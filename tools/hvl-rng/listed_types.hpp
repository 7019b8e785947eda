// The library's engine and distribution classes as lists of types, and the making of a distribution from the
// program's options.
#pragma once

#include "catalogue.hpp"
#include "distribution_traits.hpp"
#include "failure.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <charconv>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace hvl_rng {

template <class... Types>
struct type_list {
  static constexpr std::size_t size = sizeof...(Types);
};

// The lists begin every element with a comma, hence the type that stands before the first.
template <class, class... Types>
using list_after = type_list<Types...>;

namespace listed {

using namespace kestro::hvl::rng; // the lists name their classes unqualified
using kestro::hvl::rng::gamma;    // <math.h> of the C library has another one

// clang-format off
#define KESTRO_HVL_ENGINE(name) , name
using engine_list = list_after<void
#include <kestro/hvl/rng/detail/engines.def>
>;
#undef KESTRO_HVL_ENGINE

#define KESTRO_HVL_DISTRIBUTION(family, ...) , __VA_ARGS__
using distribution_list = list_after<void
#include <kestro/hvl/rng/detail/distributions.def>
>;
#undef KESTRO_HVL_DISTRIBUTION
// clang-format on

} // namespace listed

using listed::distribution_list;
using listed::engine_list;

template <class T>
T parse_value(const std::string& name, const std::string& text) {
  T value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range)
    throw failure(exit_status::usage, fmt::format("--{} {}: out of range", name, text));
  if (error != std::errc() || end != text.data() + text.size())
    throw failure(exit_status::usage, fmt::format("--{} {}: not {}", name, text,
                                                  std::is_integral_v<T> ? "an integer" : "a number"));
  return value;
}

// Several numbers, separated by commas.
template <class T>
struct parameter_text {
  static T parse(const std::string& name, const std::string& text) { return parse_value<T>(name, text); }
  static std::string of(T value) { return fmt::format("{}", value); }
};
template <class T>
struct parameter_text<std::vector<T>> {
  static std::vector<T> parse(const std::string& name, const std::string& text) {
    std::vector<T> values;
    for (std::size_t first = 0, end = 0; end != text.npos; first = end + 1) {
      end = text.find(',', first);
      values.push_back(parse_value<T>(name, text.substr(first, end == text.npos ? end : end - first)));
    }
    return values;
  }
  static std::string of(const std::vector<T>& values) { return fmt::format("{}", fmt::join(values, ",")); }
};

inline std::string spell(const parameter_values& given) {
  std::string text;
  for (const auto& [name, value] : given)
    text += fmt::format(" --{} {}", name, value);
  return text;
}

// Throws `failure` naming the option that is no number or that the class refuses. Compiled once for all engines.
template <class Distribution>
[[gnu::noinline]] Distribution make_distribution(const std::string& name, const parameter_values& given) {
  const Distribution defaults;
  const auto value_of = [&](const auto& parameter) {
    const auto found = given.find(parameter.name);
    const auto value = (defaults.*parameter.accessor)();
    return found == given.end()
               ? value
               : parameter_text<std::remove_const_t<decltype(value)>>::parse(found->first, found->second);
  };
  try {
    return std::apply(
        [&](const auto&... parameter) {
          // Braces, so that the options are read in order and the first wrong one is reported.
          return Distribution{value_of(parameter)...};
        },
        distribution_traits<Distribution>::parameters);
  } catch (const kestro::hvl::invalid_argument& refused) {
    throw failure(exit_status::usage,
                  fmt::format("--distribution {}{}: {}", name, spell(given), refused.what()));
  }
}

} // namespace hvl_rng
